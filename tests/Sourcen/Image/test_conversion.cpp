// Sample conversion between pixel types and colour-mode conversion, checked
// at the boundaries where rounding and truncation part ways.

#include "Sourcen/Image/gwBitmapT.h"
#include "Sourcen/Image/gwSampleConvert.h"

#include <cstring>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Samples = std::vector<int>;

template <class Pixel>
Samples samples(const Pixel& pixel)
{
    return Samples(std::begin(pixel.s), std::end(pixel.s));
}

// One pixel through setBlock from a bitmap of type Src and mode to Dst.
template <class Src, class Dst>
Dst transferred(const Src& pixel, int sourceMode, int targetMode)
{
    CgwBitmapT<Src> source;
    EXPECT_TRUE(source.createBitmap(QSize(1, 1), sourceMode, 0));
    source.line(0)[0] = pixel;
    CgwBitmapT<Dst> target;
    EXPECT_TRUE(target.createBitmap(QSize(1, 1), targetMode, 0));
    EXPECT_TRUE(target.setBlock(QPoint(0, 0), source));
    return target.line(0)[0];
}

template <class Pixel>
Pixel converted(const Pixel& pixel, int from, int to)
{
    CgwBitmapT<Pixel> bitmap;
    EXPECT_TRUE(bitmap.createBitmap(QSize(1, 1), from, 0));
    bitmap.line(0)[0] = pixel;
    bitmap.line(-23)[-23] = pixel; // the border converts too
    bitmap.convertColorMode(to);
    EXPECT_EQ(bitmap.colorMode(), to);
    EXPECT_EQ(std::memcmp(&bitmap.line(-23)[-23], &bitmap.line(0)[0], sizeof(Pixel)), 0);
    return bitmap.line(0)[0];
}

} // namespace

TEST(Conversion, SamplesRoundForOneChannelAndTruncateForSeveral)
{
    using G8 = CgwPixelGrey8;
    using G16 = CgwPixelGrey16Type;
    using L1 = CgwPixelLineArt;
    using Rgb8 = CgwPixel8x4;
    using Rgb16 = CgwPixel16x3;
    // 32895 is 127.996 in eight bits: the two paths part ways there.
    EXPECT_EQ((gwConvertSample<Rgb16, Rgb8>(32895)), 127);
    EXPECT_EQ((gwConvertSample<G16, G8>(32895)), 128);
    EXPECT_EQ((gwConvertSample<G16, G8>(32767)), 127) << "127.498 rounds down";
    EXPECT_EQ((gwConvertSample<Rgb16, Rgb8>(65535)), 255);
    EXPECT_EQ((gwConvertSample<Rgb8, Rgb16>(1)), 257);
    EXPECT_EQ((gwConvertSample<L1, G16>(1)), 65535);
    EXPECT_EQ((gwConvertSample<G8, L1>(128)), 1);
    EXPECT_EQ((gwConvertSample<G8, L1>(127)), 0);
    EXPECT_FLOAT_EQ((gwConvertSample<G16, CgwPixelGreyFloat>(65535)), 1.0f);
    EXPECT_EQ((gwConvertSample<CgwPixelGreyFloat, G8>(0.999f)), 255) << "one float channel rounds";
    EXPECT_EQ((gwConvertSample<CgwPixelFloat4, Rgb8>(0.999f)), 254) << "four float channels truncate";
    EXPECT_EQ((gwConvertSample<CgwPixelFloat4, Rgb8>(1.5f)), 255) << "held to the range";
    EXPECT_EQ((gwConvertSample<CgwPixelFloat4, Rgb8>(-0.5f)), 0);
}

TEST(Conversion, BlockTransferChannelRules)
{
    // Grey into CMYK through setBlock: the rounded grey in three samples, the fourth 0.
    EXPECT_EQ(samples(transferred<CgwPixelGrey16Type, CgwPixel8x4>({{32895}}, 1, 6)), (Samples{128, 128, 128, 0}));
    // Fewer target channels: copied in order up to the smaller count.
    EXPECT_EQ(samples(transferred<CgwPixel8x4, CgwPixel16x2>({{1, 2, 3, 4}}, 2, 2)), (Samples{257, 514}));
    // A one-channel integer source fills all four float samples.
    for (float v : transferred<CgwPixelGrey8, CgwPixelFloat4>({{51}}, 1, 1).s)
        EXPECT_FLOAT_EQ(v, 0.2f);
}

TEST(Conversion, ColorModeTable)
{
    using P = CgwPixel8x4;
    const struct {
        P in;
        int from, to;
        P out;
    } cases[] = {
        {{{90, 0, 0, 0}}, 1, 3, {{90, 90, 90, 0}}},
        {{{90, 7, 8, 0}}, 1, 5, {{0, 0, 8, 0}}},     // the grey itself is cleared, as it stands
        {{{90, 0, 0, 0}}, 1, 6, {{0, 0, 0, 90}}},    // convertColorMode puts the grey into K
        {{{90, 0, 0, 0}}, 1, 7, {{90, 90, 90, 255}}},
        {{{100, 150, 200, 9}}, 3, 1, {{140, 0, 0, 9}}}, // trunc(29.9 + 88.05 + 22.8)
        {{{100, 150, 200, 9}}, 4, 7, {{100, 150, 200, 255}}},
        {{{77, 20, 30, 0}}, 5, 1, {{77, 0, 0, 0}}},
        {{{10, 200, 120, 99}}, 7, 6, {{0, 190, 110, 10}}}, // K = min, no inversion
        {{{255, 255, 255, 255}}, 3, 6, {{255, 255, 255, 255}}},
        {{{0, 0, 0, 0}}, 3, 6, {{255, 255, 255, 0}}},
        {{{0, 0, 0, 0}}, 6, 3, {{0, 0, 0, 255}}},
        {{{255, 255, 255, 255}}, 6, 3, {{255, 255, 255, 255}}},
        {{{1, 2, 3, 4}}, 3, 4, {{1, 2, 3, 4}}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(samples(converted(c.in, c.from, c.to)), samples(c.out)) << c.from << "->" << c.to;
    EXPECT_EQ(converted<P>({{255, 255, 255, 0}}, 3, 5).s[0], 255) << "white has L = 100";
}

TEST(Conversion, LabRoundTripWithinOneStep)
{
    using P = CgwPixel16x3;
    int worst = 0;
    for (int r = 0; r < 256; r += 15) {
        for (int g = 0; g < 256; g += 15) {
            for (int b = 0; b < 256; b += 15) {
                const P rgb{{quint16(r * 257), quint16(g * 257), quint16(b * 257)}};
                const P lab = converted(rgb, 3, 5);
                const P back = converted(lab, 5, 3);
                for (int c = 0; c < 3; ++c)
                    worst = std::max(worst, std::abs(int(back.s[c]) - int(rgb.s[c])));
            }
        }
    }
    EXPECT_LE(worst, 257) << "one 8-bit step";
}
