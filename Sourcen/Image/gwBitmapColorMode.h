#pragma once

// convertColorMode of CgwBitmapT: one pixel operation per pair of modes,
// chosen once and run over every row with its border.

#include "Sourcen/Image/gwBitmapT_core.h"
#include "Sourcen/Image/gwColorMath.h"

template <class Pixel>
struct GwModeOps {
    using S = typename Pixel::SampleType;
    static constexpr int N = Pixel::kChannels;

    static float in(S s) { return float(s) / float(Pixel::kMax); }
    static S out(float v)
    {
        v = std::min(1.0f, std::max(0.0f, v)) * float(Pixel::kMax);
        if constexpr (std::is_floating_point_v<S>)
            return S(v);
        else
            return S(std::trunc(v));
    }
    static void readRgb(const Pixel& p, float rgb[3])
    {
        for (int c = 0; c < 3; ++c)
            rgb[c] = in(p.s[c]);
    }
    static void writeRgb(Pixel& p, const float rgb[3])
    {
        for (int c = 0; c < 3; ++c)
            p.s[c] = out(rgb[c]);
    }
    static void cmykToRgb(Pixel& p)
    {
        const float cmyk[4] = {in(p.s[0]), in(p.s[1]), in(p.s[2]), in(p.s[3])};
        float rgb[3];
        gwCmykToRgb(cmyk, rgb);
        writeRgb(p, rgb);
        p.s[3] = S(Pixel::kMax);
    }
    static void rgbToCmyk(Pixel& p)
    {
        float rgb[3];
        readRgb(p, rgb);
        float cmyk[4];
        gwRgbToCmyk(rgb, cmyk);
        for (int c = 0; c < 4; ++c)
            p.s[c] = out(cmyk[c]);
    }
    static void rgbToLab(Pixel& p)
    {
        float rgb[3];
        readRgb(p, rgb);
        float lab[3];
        gwRgbToLab(rgb, lab);
        writeRgb(p, lab);
    }
    static void labToRgb(Pixel& p)
    {
        float lab[3];
        readRgb(p, lab);
        float rgb[3];
        gwLabToRgb(lab, rgb);
        writeRgb(p, rgb);
    }
    static void weightsToGrey(Pixel& p)
    {
        p.s[0] = S(std::trunc(0.299 * double(p.s[0]) + 0.587 * double(p.s[1]) + 0.114 * double(p.s[2])));
        p.s[1] = p.s[2] = 0;
    }

    using Op = void (*)(Pixel&);

    // The operation for a change of mode; null where the samples stay as they are.
    static Op pick(int from, int to)
    {
        if constexpr (N >= 3) {
            const bool rgbFrom = from == 3 || from == 4;
            const bool rgbTo = to == 3 || to == 4;
            if (from == 1 && rgbTo)
                return [](Pixel& p) { p.s[1] = p.s[2] = p.s[0]; };
            if (from == 1 && to == 5)
                return [](Pixel& p) { p.s[0] = p.s[1] = 0; };
            if (rgbFrom && to == 1)
                return [](Pixel& p) { weightsToGrey(p); };
            if (rgbFrom && to == 5)
                return [](Pixel& p) { rgbToLab(p); };
            if (from == 5 && to == 1)
                return [](Pixel& p) { p.s[1] = p.s[2] = 0; };
            if (from == 5 && rgbTo)
                return [](Pixel& p) { labToRgb(p); };
            if (from == 7 && to == 5)
                return [](Pixel& p) { rgbToLab(p); };
            if (from == 7 && to == 1)
                return [](Pixel& p) {
                    p.s[0] = S(std::trunc(0.299f * float(p.s[0]) + 0.587f * float(p.s[1]) + 0.114f * float(p.s[2])));
                    p.s[1] = p.s[2] = 0;
                };
            if constexpr (N >= 4) {
                if (from == 1 && to == 6)
                    return [](Pixel& p) {
                        p.s[3] = p.s[0];
                        p.s[0] = p.s[1] = p.s[2] = 0;
                    };
                if (from == 1 && to == 7)
                    return [](Pixel& p) {
                        p.s[1] = p.s[2] = p.s[0];
                        p.s[3] = S(Pixel::kMax);
                    };
                if (rgbFrom && to == 6)
                    return [](Pixel& p) { rgbToCmyk(p); };
                if (rgbFrom && to == 7)
                    return [](Pixel& p) { p.s[3] = S(Pixel::kMax); };
                if (from == 5 && to == 6)
                    return [](Pixel& p) {
                        labToRgb(p);
                        rgbToCmyk(p);
                    };
                if (from == 5 && to == 7)
                    return [](Pixel& p) {
                        labToRgb(p);
                        p.s[3] = S(Pixel::kMax);
                    };
                if (from == 6 && to == 1)
                    return [](Pixel& p) {
                        cmykToRgb(p);
                        weightsToGrey(p);
                    };
                if (from == 6 && (rgbTo || to == 7))
                    return [](Pixel& p) { cmykToRgb(p); };
                if (from == 6 && to == 5)
                    return [](Pixel& p) {
                        cmykToRgb(p);
                        rgbToLab(p);
                    };
                if (from == 7 && to == 6)
                    return [](Pixel& p) {
                        const S k = std::min({p.s[0], p.s[1], p.s[2]});
                        p.s[0] -= k;
                        p.s[1] -= k;
                        p.s[2] -= k;
                        p.s[3] = k;
                    };
            }
        }
        return nullptr;
    }
};

template <class Pixel>
void CgwBitmapT<Pixel>::convertColorMode(int target)
{
    const int channels = gwColorModeChannels(target);
    if (!isInitialized() || channels < 0 || channels >= 5 || target == colorMode())
        return;
    const auto op = GwModeOps<Pixel>::pick(colorMode(), target);
    if (op) {
        const int width = size().width() + kBorder;
        gwRunOverRows(-kBorder, size().height() + kBorder, [&](int first, int end) {
            for (int y = first; y < end; ++y) {
                const CgwArrayT<Pixel> row = line(y);
                for (int x = -kBorder; x < width; ++x)
                    op(row[x]);
            }
        });
    }
    setColorMode(target);
}
