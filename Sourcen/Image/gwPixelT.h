#pragma once

#include <type_traits>

// One pixel: `channels` samples of type T; `max` is full intensity.
template <typename T, int channels, int max>
struct CgwPixelT {
    using SampleType = T;
    static constexpr int kChannels = channels;
    static constexpr int kMax = max;
    T s[channels];
};

// The closed set of pixel types that bitmaps are dispatched over, by identifier.
using CgwPixel8x4 = CgwPixelT<unsigned char, 4, 255>;        // 0
using CgwPixelGrey8 = CgwPixelT<unsigned char, 1, 255>;      // 1
using CgwPixelLineArt = CgwPixelT<unsigned char, 1, 1>;      // 2
using CgwPixel16x4 = CgwPixelT<unsigned short, 4, 65535>;    // 3
using CgwPixel16x3 = CgwPixelT<unsigned short, 3, 65535>;    // 4
using CgwPixelGrey16Type = CgwPixelT<unsigned short, 1, 65535>; // 5, the infrared bitmap's type
using CgwPixelFloat4 = CgwPixelT<float, 4, 1>;               // 6
using CgwPixelGreyFloat = CgwPixelT<float, 1, 1>;            // 7
using CgwPixel8x2 = CgwPixelT<unsigned char, 2, 255>;        // 8
using CgwPixel16x2 = CgwPixelT<unsigned short, 2, 65535>;    // 9

// Float pixels for resampling only, with the integer ranges kept in the samples.
using CgwPixelFloat1x255 = CgwPixelT<float, 1, 255>;
using CgwPixelFloat1x65535 = CgwPixelT<float, 1, 65535>;
using CgwPixelFloat2x255 = CgwPixelT<float, 2, 255>;
using CgwPixelFloat2x65535 = CgwPixelT<float, 2, 65535>;
using CgwPixelFloat3x65535 = CgwPixelT<float, 3, 65535>;
using CgwPixelFloat4x255 = CgwPixelT<float, 4, 255>;
using CgwPixelFloat4x65535 = CgwPixelT<float, 4, 65535>;

constexpr int kGwPixelTypeCount = 10;

// The identifier of a pixel type, -1 for the resampling types.
template <class Pixel>
constexpr int gwPixelTypeId()
{
    if constexpr (std::is_same_v<Pixel, CgwPixel8x4>) return 0;
    else if constexpr (std::is_same_v<Pixel, CgwPixelGrey8>) return 1;
    else if constexpr (std::is_same_v<Pixel, CgwPixelLineArt>) return 2;
    else if constexpr (std::is_same_v<Pixel, CgwPixel16x4>) return 3;
    else if constexpr (std::is_same_v<Pixel, CgwPixel16x3>) return 4;
    else if constexpr (std::is_same_v<Pixel, CgwPixelGrey16Type>) return 5;
    else if constexpr (std::is_same_v<Pixel, CgwPixelFloat4>) return 6;
    else if constexpr (std::is_same_v<Pixel, CgwPixelGreyFloat>) return 7;
    else if constexpr (std::is_same_v<Pixel, CgwPixel8x2>) return 8;
    else if constexpr (std::is_same_v<Pixel, CgwPixel16x2>) return 9;
    else return -1;
}

// Bits a channel as the bitmap head reports them: 1 for line art, else the sample's.
template <class Pixel>
constexpr int gwPixelBitDepth()
{
    return gwPixelTypeId<Pixel>() == 2 ? 1 : int(sizeof(typename Pixel::SampleType) * 8);
}

// Calls f(CgwPixel...{}) with the pixel type of identifier `id`; false for an unknown id.
template <class F>
bool gwDispatchPixelType(int id, F&& f)
{
    switch (id) {
    case 0: f(CgwPixel8x4{}); return true;
    case 1: f(CgwPixelGrey8{}); return true;
    case 2: f(CgwPixelLineArt{}); return true;
    case 3: f(CgwPixel16x4{}); return true;
    case 4: f(CgwPixel16x3{}); return true;
    case 5: f(CgwPixelGrey16Type{}); return true;
    case 6: f(CgwPixelFloat4{}); return true;
    case 7: f(CgwPixelGreyFloat{}); return true;
    case 8: f(CgwPixel8x2{}); return true;
    case 9: f(CgwPixel16x2{}); return true;
    default: return false;
    }
}
