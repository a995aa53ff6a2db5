// Pixel types, colour modes, rectangles and pixel views.

#include "Sourcen/Image/gwArrayT.h"
#include "Sourcen/Image/gwPixelT.h"
#include "Sourcen/Image/gwRectT.h"
#include "support/gwTestEnv.h"

#include <gtest/gtest.h>

namespace {
template <class Pixel>
void expectPixel(int id, int bitDepth, int channels, size_t sampleBytes)
{
    EXPECT_EQ(gwPixelTypeId<Pixel>(), id);
    EXPECT_EQ(gwPixelBitDepth<Pixel>(), bitDepth) << id;
    EXPECT_EQ(Pixel::kChannels, channels) << id;
    EXPECT_EQ(sizeof(Pixel), channels * sampleBytes) << "pixels are packed samples, type " << id;
}
} // namespace

TEST(PixelTypes, IdentifiersDepthsAndLayout)
{
    expectPixel<CgwPixel8x4>(0, 8, 4, 1);
    expectPixel<CgwPixelGrey8>(1, 8, 1, 1);
    expectPixel<CgwPixelLineArt>(2, 1, 1, 1);
    expectPixel<CgwPixel16x4>(3, 16, 4, 2);
    expectPixel<CgwPixel16x3>(4, 16, 3, 2);
    expectPixel<CgwPixelGrey16Type>(5, 16, 1, 2);
    expectPixel<CgwPixelFloat4>(6, 32, 4, 4);
    expectPixel<CgwPixelGreyFloat>(7, 32, 1, 4);
    expectPixel<CgwPixel8x2>(8, 8, 2, 1);
    expectPixel<CgwPixel16x2>(9, 16, 2, 2);
    // Resampling types are outside the dispatched set.
    expectPixel<CgwPixelFloat1x255>(-1, 32, 1, 4);
    expectPixel<CgwPixelFloat4x65535>(-1, 32, 4, 4);
    EXPECT_EQ(CgwPixelFloat3x65535::kMax, 65535);
}

TEST(PixelTypes, DispatchReachesTheTypeOfEachIdentifier)
{
    for (int id = 0; id < kGwPixelTypeCount; ++id) {
        int seen = -2;
        EXPECT_TRUE(gwDispatchPixelType(id, [&](auto pixel) { seen = gwPixelTypeId<decltype(pixel)>(); }));
        EXPECT_EQ(seen, id);
    }
    EXPECT_FALSE(gwDispatchPixelType(10, [](auto) {}));
    EXPECT_FALSE(gwDispatchPixelType(-1, [](auto) {}));
}

TEST(PixelTypes, RectNormalisesAndMeasures)
{
    CgwRectT<int> r(10, 20, 2, 5);
    EXPECT_TRUE(r.isEmpty());
    r.normalize();
    EXPECT_EQ(r, CgwRectT<int>(2, 5, 10, 20));
    EXPECT_EQ(r.width(), 8);
    EXPECT_EQ(r.height(), 15);
    EXPECT_FALSE(r.isEmpty());
    EXPECT_TRUE(CgwRectT<int>(3, 3, 3, 9).isEmpty()) << "right is exclusive";
}

TEST(PixelTypes, ArrayIndexesFromColumnZeroAndRefusesWhenEmpty)
{
    auto row = std::make_shared<std::vector<CgwPixelGrey8>>(10);
    for (int i = 0; i < 10; ++i)
        (*row)[i].s[0] = static_cast<unsigned char>(i);
    // Three border pixels before column 0.
    CgwArrayT<CgwPixelGrey8> view(row, row->data(), 3, 10);
    EXPECT_EQ(view[0].s[0], 3);
    EXPECT_EQ(view[-3].s[0], 0);
    EXPECT_EQ(view[6].s[0], 9);

    CgwArrayT<CgwPixelGrey8> empty;
    EXPECT_TRUE(empty.isEmpty());
    EXPECT_EQ(empty[5].s[0], 0);
    EXPECT_TRUE(gwReadFile(gwTestLogPath()).endsWith(
        "gwDebug: CgwArrayT::operator[] : not allowed to access an empty array\n"));
}
