#pragma once

#include "Sourcen/Image/gwPixelT.h"

#include <cmath>
#include <type_traits>

// The one conversion of samples between pixel types. One-channel sources
// round, sources of several channels truncate: the two paths have always
// differed and files depend on it.
template <class Src, class Dst>
inline typename Dst::SampleType gwConvertSample(typename Src::SampleType s)
{
    using S = typename Src::SampleType;
    using D = typename Dst::SampleType;
    if constexpr (std::is_same_v<Src, Dst>) {
        return s;
    } else if constexpr (std::is_floating_point_v<D>) {
        return D(float(s) / float(Src::kMax) * float(Dst::kMax));
    } else {
        double v;
        if constexpr (std::is_floating_point_v<S>)
            v = double(float(s) / float(Src::kMax) * float(Dst::kMax)); // the product in float
        else
            v = double(s) * double(Dst::kMax) / double(Src::kMax);
        if constexpr (Src::kChannels == 1)
            v += 0.5;
        // Out-of-range floats are held to the sample's range instead of wrapping.
        if (!(v > 0.0))
            return D(0);
        return v >= double(Dst::kMax) ? D(Dst::kMax) : D(std::trunc(v));
    }
}

// Equal colour modes: channels in order up to the smaller count; the others
// stay. A four-channel float target of a one-channel integer source gets the
// value in all four samples.
template <class Src, class Dst>
inline void gwConvertPixel(const Src& src, Dst& dst)
{
    if constexpr (Src::kChannels == 1 && Dst::kChannels == 4 && std::is_floating_point_v<typename Dst::SampleType>
                  && !std::is_floating_point_v<typename Src::SampleType>) {
        const auto v = gwConvertSample<Src, Dst>(src.s[0]);
        for (int c = 0; c < 4; ++c)
            dst.s[c] = v;
    } else {
        constexpr int n = Src::kChannels < Dst::kChannels ? Src::kChannels : Dst::kChannels;
        for (int c = 0; c < n; ++c)
            dst.s[c] = gwConvertSample<Src, Dst>(src.s[c]);
    }
}

// A grey source into an RGB, CMY, CMYK or RGBA target: the grey in the first
// three samples, and a zero fourth for CMYK and RGBA.
template <class Src, class Dst>
inline void gwConvertGreyPixel(const Src& src, Dst& dst, bool zeroFourth)
{
    const auto v = gwConvertSample<Src, Dst>(src.s[0]);
    constexpr int n = Dst::kChannels < 3 ? Dst::kChannels : 3;
    for (int c = 0; c < n; ++c)
        dst.s[c] = v;
    if constexpr (Dst::kChannels >= 4) {
        if (zeroFourth)
            dst.s[3] = 0;
    }
}
