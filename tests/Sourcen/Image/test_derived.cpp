// Thumbnails, QImages and bitmaps made from bitmaps of another type.

#include "Sourcen/Image/gwBitmapT.h"
#include "support/gwTestEnv.h"

#include <gtest/gtest.h>

TEST(Derived, ThumbnailSizesAndSampling)
{
    const struct {
        QSize size;
        int maxSize;
        QSize thumbnail; // empty: no thumbnail
        const char* message;
    } cases[] = {
        {QSize(1000, 3), 256, QSize(256, 2), nullptr},
        {QSize(3, 1000), 256, QSize(2, 256), nullptr},
        {QSize(600, 600), 256, QSize(256, 256), nullptr},
        {QSize(256, 256), 256, QSize(256, 256), nullptr},
        {QSize(100, 50), 256, QSize(), "Error: Upscale necessary for thumbnail!"},
        {QSize(100, 50), 0, QSize(), "Error: Zero-sized output image!"},
    };
    for (const auto& c : cases) {
        CgwBitmapT<CgwPixel8x4> bitmap;
        ASSERT_TRUE(bitmap.createBitmap(c.size, EgwColorModeRGB, 0));
        for (int y = 0; y < c.size.height(); ++y)
            for (int x = 0; x < c.size.width(); ++x)
                bitmap.line(y)[x].s[0] = static_cast<unsigned char>(x);
        std::unique_ptr<CgwBitmapBase> thumbnail(bitmap.getThumbnail(c.maxSize));
        if (c.thumbnail.isEmpty()) {
            EXPECT_EQ(thumbnail, nullptr);
            EXPECT_TRUE(gwLastLogLine().endsWith(c.message)) << gwLastLogLine().constData();
            continue;
        }
        ASSERT_NE(thumbnail, nullptr);
        EXPECT_EQ(thumbnail->size(), c.thumbnail);
        // Nearest neighbour from the first pixel on: x times the step.
        const int step = c.size.width() / c.thumbnail.width();
        auto& typed = static_cast<CgwBitmapT<CgwPixel8x4>&>(*thumbnail);
        EXPECT_EQ(typed.line(1)[1].s[0], static_cast<unsigned char>(step));
    }
}

TEST(Derived, QImageShowsTheScannedRowsAndLeavesTheRestTransparent)
{
    CgwBitmapT<CgwPixel16x3> bitmap;
    ASSERT_TRUE(bitmap.createBitmap(QSize(4, 6), EgwColorModeRGB, 0));
    bitmap.line(1)[3] = CgwPixel16x3{{65535, 32896, 256}};
    bitmap.setLegalRectBottom(2); // rows 0 and 1 are scanned
    QImage image = bitmap.toQImage(0.0);
    ASSERT_EQ(image.size(), QSize(4, 6));
    EXPECT_EQ(image.pixel(3, 1), qRgba(255, 128, 0, 255));
    EXPECT_EQ(qAlpha(image.pixel(0, 2)), 0);

    bitmap.setLegalRectBottom(-1);
    image = bitmap.toQImage(90.0);
    EXPECT_EQ(image.size(), QSize(6, 4));

    CgwBitmapT<CgwPixelGrey8> grey;
    ASSERT_TRUE(grey.createBitmap(QSize(2, 2), EgwColorModeGrey, 0));
    grey.line(0)[0].s[0] = 77;
    EXPECT_EQ(grey.toQImage().pixel(0, 0), qRgb(77, 77, 77));

    CgwBitmapT<CgwPixel8x2> twoChannel;
    ASSERT_TRUE(twoChannel.createBitmap(QSize(2, 2), EgwColorModeTwoChannel, 0));
    EXPECT_TRUE(twoChannel.toQImage().isNull());
    EXPECT_EQ(gwLastLogLine(), "gwDebug: CgwBitmapT::toQImage : Error: Unsupported bitmap format (8 bits per channel)!");
}

TEST(Derived, CreateBitmapFromReusesOrConverts)
{
    CgwBitmapT<CgwPixel16x3> source;
    ASSERT_TRUE(source.createBitmap(QSize(3, 3), EgwColorModeRGB, 0));
    source.line(2)[2] = CgwPixel16x3{{65535, 0, 257}};
    source.setGamma(1.8f);

    CgwBitmapT<CgwPixel8x4> other;
    ASSERT_TRUE(other.createBitmapFrom(source, true));
    EXPECT_EQ(gwLastLogLine(), "gwDebug: CgwBitmapT<>::createBitmapFrom : Info': Could not reuse input bitmap's memory.");
    EXPECT_EQ(other.line(2)[2].s[2], 1);
    EXPECT_EQ(other.gamma(), 1.8f);
    EXPECT_TRUE(source.isInitialized());

    CgwBitmapT<CgwPixel16x3> same;
    ASSERT_TRUE(same.createBitmapFrom(source, false));
    EXPECT_EQ(same.line(2)[2].s[2], 257);
    EXPECT_TRUE(source.isInitialized());
    ASSERT_TRUE(same.createBitmapFrom(source, true));
    EXPECT_FALSE(source.isInitialized()) << "reuse hands over the memory";
    EXPECT_EQ(same.line(2)[2].s[0], 65535);

    EXPECT_FALSE(other.createBitmapFrom(source, false));
    EXPECT_EQ(gwLastLogLine(), "gwDebug: CgwBitmapT<>::createBitmapFrom : Error: Input bitmap is not legal!");
    CgwBitmapT<CgwPixel8x4> cmyk;
    ASSERT_TRUE(cmyk.createBitmap(QSize(2, 2), EgwColorModeCMYK, 0));
    CgwBitmapT<CgwPixel16x3> three;
    EXPECT_FALSE(three.createBitmapFrom(cmyk, false));
}
