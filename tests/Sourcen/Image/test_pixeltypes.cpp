// Pixel types, rectangles and pixel views.

#include "Sourcen/Image/gwArrayT.h"
#include "Sourcen/Image/gwPixelT.h"
#include "Sourcen/Image/gwRectT.h"
#include "support/gwTestEnv.h"

#include <gtest/gtest.h>

TEST(PixelTypes, DispatchReachesThePackedTypeOfEachIdentifier)
{
    for (int id = 0; id < kGwPixelTypeCount; ++id) {
        int seen = -2;
        EXPECT_TRUE(gwDispatchPixelType(id, [&](auto pixel) {
            using Pixel = decltype(pixel);
            seen = gwPixelTypeId<Pixel>();
            // Rows are copied as raw bytes: no padding between samples.
            EXPECT_EQ(sizeof(Pixel), Pixel::kChannels * sizeof(typename Pixel::SampleType)) << id;
        }));
        EXPECT_EQ(seen, id);
    }
    EXPECT_FALSE(gwDispatchPixelType(kGwPixelTypeCount, [](auto) {}));
    EXPECT_FALSE(gwDispatchPixelType(-1, [](auto) {}));
    EXPECT_EQ(gwPixelTypeId<CgwPixelFloat4x65535>(), -1) << "resampling types stay outside the dispatched set";
}

TEST(PixelTypes, RectNormalisesAndRightIsExclusive)
{
    CgwRectT<int> r(10, 20, 2, 5);
    EXPECT_TRUE(r.isEmpty());
    r.normalize();
    EXPECT_EQ(r, CgwRectT<int>(2, 5, 10, 20));
    EXPECT_TRUE(CgwRectT<int>(3, 3, 3, 9).isEmpty());
}

TEST(PixelTypes, ArrayIndexesFromColumnZeroAndRefusesWhenEmpty)
{
    auto row = std::make_shared<std::vector<CgwPixelGrey8>>(10);
    for (int i = 0; i < 10; ++i)
        (*row)[i].s[0] = static_cast<unsigned char>(i);
    const CgwArrayT<CgwPixelGrey8> view(row, row->data(), 3, 10); // three border pixels before column 0
    EXPECT_EQ(view[0].s[0], 3);
    EXPECT_EQ(view[-3].s[0], 0);
    EXPECT_EQ(view[6].s[0], 9);

    CgwArrayT<CgwPixelGrey8> empty;
    EXPECT_TRUE(empty.isEmpty());
    EXPECT_EQ(empty[5].s[0], 0);
    EXPECT_TRUE(gwReadFile(gwTestLogPath()).endsWith(
        "gwDebug: CgwArrayT::operator[] : not allowed to access an empty array\n"));
}
