// The typed bitmap: creation, block transfer, copies, pixel access, turns.

#include "Sourcen/Image/gwBitmapT.h"
#include "settings/gwFilterOptions.h"
#include "settings/gwParamKeys.h"
#include "support/gwTestEnv.h"

#include <gtest/gtest.h>

namespace {

using Rgb8 = CgwBitmapT<CgwPixel8x4>;
using Rgb16 = CgwBitmapT<CgwPixel16x3>;
using Grey16 = CgwBitmapT<CgwPixelGrey16Type>;

// Pixel (x, y) holds x, y, x + y in its first three samples.
template <class Bitmap>
void fillPattern(Bitmap& bitmap)
{
    for (int y = 0; y < bitmap.size().height(); ++y) {
        const auto row = bitmap.line(y);
        for (int x = 0; x < bitmap.size().width(); ++x) {
            row[x].s[0] = typename Bitmap::Sample(x);
            row[x].s[1] = typename Bitmap::Sample(y);
            row[x].s[2] = typename Bitmap::Sample(x + y);
        }
    }
}

// Runs the block transfers on memory and on mapped storage alike.
class BitmapStorage : public ::testing::TestWithParam<int>
{
protected:
    void SetUp() override { CgwFilterOptions::instance().setOption(GgwParam_MMFRamLimit, GetParam()); }
    void TearDown() override { CgwFilterOptions::instance().setOption(GgwParam_MMFRamLimit, 1024); }
};

} // namespace

TEST(Bitmap, CreateChecksRadiusAndKeepsPixelsOfAnEqualBitmap)
{
    Rgb16 bitmap;
    EXPECT_TRUE(bitmap.createBitmap(QSize(10, 5), EgwColorModeRGB, 23));
    EXPECT_EQ(bitmap.head().mBitDepth, 16);
    EXPECT_EQ(bitmap.head().mChannels, 3);
    bitmap.line(4)[9].s[0] = 4242;
    bitmap.setLegalRectBottom(5);

    EXPECT_TRUE(bitmap.createBitmap(QSize(10, 5), EgwColorModeRGB, 2));
    EXPECT_EQ(bitmap.line(4)[9].s[0], 4242) << "same size and mode keep the pixels";
    EXPECT_EQ(bitmap.getLegalRectBottom(), 0) << "a new bitmap has no legal rows";
    EXPECT_EQ(bitmap.filterRadius(), 2);

    EXPECT_FALSE(bitmap.createBitmap(QSize(10, 5), EgwColorModeRGB, 24));
    EXPECT_FALSE(bitmap.isInitialized()) << "radius 24 resets the bitmap";
    EXPECT_FALSE(bitmap.createBitmap(QSize(0, 5), EgwColorModeRGB, 0));

    CgwBitmapT<CgwPixelLineArt> lineArt;
    ASSERT_TRUE(lineArt.createBitmap(QSize(3, 3), EgwColorModeGrey, 0));
    EXPECT_EQ(lineArt.head().mBitDepth, 1) << "line art reports one bit, not its byte";
}

TEST(Bitmap, BaseAccessorsReportBadValues)
{
    Rgb16 bitmap;
    bitmap.setGamma(-1.0f);
    EXPECT_EQ(bitmap.gamma(), 0.0f);
    EXPECT_EQ(gwLastLogLine(), "gwDebug: CgwBitmapBase::setGamma error: inGamma input not valid! Setting to 0.");
    bitmap.setFilterRadius(24);
    EXPECT_EQ(gwLastLogLine(), "gwDebug: CgwBitmapBase::setFilterRadius : Error: Given radius is out of range!");
    EXPECT_EQ(bitmap.filterRadius(), 0);

    // A 4x4 bitmap with its border of 23 reaches from -23 to 26.
    ASSERT_TRUE(bitmap.createBitmap(QSize(4, 4), EgwColorModeRGB, 0));
    EXPECT_TRUE(bitmap.isLegalPosition(QPoint(-23, 26)));
    EXPECT_FALSE(bitmap.isLegalPosition(QPoint(-24, 0)));
    EXPECT_FALSE(bitmap.isLegalPosition(QPoint(0, 27)));
    EXPECT_TRUE(bitmap.getPixelRef(-24, 0).isNull());
    EXPECT_TRUE(gwLastLogLine().endsWith("Pixel at [-24][0] cannot be found!"));
    bitmap.getPixelRef(26, -23)->s[1] = 5;
    EXPECT_EQ(bitmap.line(-23)[26].s[1], 5);
}

TEST_P(BitmapStorage, BlocksOfTheSameAndOfAnotherTypeCopyWhatFits)
{
    Rgb16 source;
    ASSERT_TRUE(source.createBitmap(QSize(300, 200), EgwColorModeRGB, 0));
    for (int y = 0; y < 200; ++y)
        for (int x = 0; x < 300; ++x)
            source.line(y)[x] = CgwPixel16x3{{quint16(x * 200), quint16(y * 300), 65535}};
    Rgb16 same;
    Rgb8 other;
    ASSERT_TRUE(same.createBitmap(QSize(250, 150), EgwColorModeRGB, 0));
    ASSERT_TRUE(other.createBitmap(QSize(250, 150), EgwColorModeRGB, 0));

    EXPECT_TRUE(same.setBlock(QPoint(-10, 20), source));
    EXPECT_TRUE(other.setBlock(QPoint(-10, 20), source));
    const QByteArray log = gwReadFile(gwTestLogPath());
    EXPECT_TRUE(log.contains("gwDebug: CgwBitmapT::setBlock: hint for x 250 < 300\n"));
    EXPECT_TRUE(log.contains("gwDebug: CgwBitmapT::setBlock: hint for y 150 < 200\n"));
    // The negative corner skips ten source columns; rows start at target row 20.
    // Into 8 bits several channels truncate: trunc(v * 255 / 65535).
    for (int y = 20; y < 150; y += 13) {
        for (int x = 0; x < 240; x += 17) {
            const int s0 = (x + 10) * 200, s1 = (y - 20) * 300;
            ASSERT_EQ(same.line(y)[x].s[0], s0) << x << "," << y;
            ASSERT_EQ(same.line(y)[x].s[1], s1) << x << "," << y;
            const CgwPixel8x4& p = other.line(y)[x];
            ASSERT_EQ(p.s[0], s0 * 255 / 65535) << x << "," << y;
            ASSERT_EQ(p.s[1], s1 * 255 / 65535) << x << "," << y;
            ASSERT_EQ(p.s[2], 255);
            ASSERT_EQ(p.s[3], 0) << "the spare fourth sample stays";
        }
    }
    EXPECT_EQ(same.line(10)[5].s[0], 0) << "rows above the corner stay";
    EXPECT_EQ(other.line(10)[5].s[0], 0);
    EXPECT_FALSE(same.setBlock(QPoint(250, 0), source)) << "nothing left of the row";
}

TEST_P(BitmapStorage, GetBlockCopiesTheRectangleWithItsBorder)
{
    Rgb16 source;
    ASSERT_TRUE(source.createBitmap(QSize(100, 80), EgwColorModeRGB, 0));
    fillPattern(source);
    source.line(-1)[40].s[0] = 999; // in the source's border, inside the block's border
    source.setGamma(1.8f);
    std::unique_ptr<CgwBitmapBase> block(source.getBlock(CgwRectT<int>(30, 10, 70, 50), 5));
    ASSERT_TRUE(block && block->isInitialized());
    auto& typed = static_cast<Rgb16&>(*block);
    EXPECT_EQ(block->size(), QSize(40, 40));
    EXPECT_EQ(block->gamma(), 1.8f);
    EXPECT_EQ(block->head().mBounds, CgwRectT<int>(30, 10, 70, 50));
    EXPECT_EQ(typed.line(0)[0].s[0], 30);
    EXPECT_EQ(typed.line(39)[39].s[1], 49);
    EXPECT_EQ(typed.line(-5)[-5].s[0], 25) << "the border comes along";
    EXPECT_EQ(typed.line(-11)[10].s[0], 0) << "beyond the radius nothing is copied";
    EXPECT_EQ(std::unique_ptr<CgwBitmapBase>(source.getBlock(CgwRectT<int>(200, 0, 300, 10), 0)), nullptr);
}

INSTANTIATE_TEST_SUITE_P(MemoryAndMapped, BitmapStorage, ::testing::Values(1024, 0));

TEST(Bitmap, IncompatibleModesAndTypes)
{
    Rgb8 rgb;
    ASSERT_TRUE(rgb.createBitmap(QSize(8, 8), EgwColorModeRGB, 0));
    fillPattern(rgb);
    Grey16 grey;
    ASSERT_TRUE(grey.createBitmap(QSize(8, 8), EgwColorModeGrey, 0));
    EXPECT_TRUE(grey.setBlock(QPoint(0, 0), rgb)) << "other type, other mode: true, nothing copied";
    EXPECT_EQ(grey.line(3)[3].s[0], 0);

    Rgb8 lab;
    ASSERT_TRUE(lab.createBitmap(QSize(8, 8), EgwColorModeLab, 0));
    EXPECT_FALSE(lab.setBlock(QPoint(0, 0), rgb));
    EXPECT_EQ(gwLastLogLine(), "gwDebug: CgwBitmapT::setBlock : Error: Incompatible color modes!");
    Rgb8 unknown;
    ASSERT_TRUE(unknown.createBitmap(QSize(8, 8), EgwColorModeUnknown, 0));
    EXPECT_FALSE(unknown.setBlock(QPoint(0, 0), rgb));
    EXPECT_EQ(gwLastLogLine(), "gwDebug: CgwBitmapT::setBlock : Error: Output color mode unknown!");
    EXPECT_FALSE(grey.setBlock(QPoint(0, 0), unknown));
    EXPECT_EQ(gwLastLogLine(), "gwDebug: CgwBitmapT::setBlockFromOtherTypeBmp : Error: Input color mode unknown!");
    EXPECT_FALSE(Rgb8().setBlock(QPoint(0, 0), rgb)) << "uninitialised target";
}

TEST(Bitmap, SwapCloneAndAssignment)
{
    Rgb8 a;
    ASSERT_TRUE(a.createBitmap(QSize(5, 5), EgwColorModeRGB, 1));
    fillPattern(a);
    a.setGamma(2.2f);
    Rgb16 other;
    ASSERT_TRUE(other.createBitmap(QSize(7, 7), EgwColorModeRGB, 0));
    a.swap(other);
    EXPECT_EQ(a.size(), QSize(5, 5)) << "unlike pixel types do not swap";

    Rgb8 b;
    a.swap(b);
    EXPECT_FALSE(a.isInitialized());
    EXPECT_EQ(b.gamma(), 2.2f);

    std::unique_ptr<CgwBitmapBase> copy(b.clone());
    ASSERT_TRUE(copy && copy->isInitialized());
    EXPECT_EQ(static_cast<Rgb8&>(*copy).line(4)[3].s[2], 7);
    EXPECT_EQ(copy->gamma(), 2.2f);
    EXPECT_FALSE(copy->hasSameStorage(b));

    // Assignment copies pixels only between bitmaps of equal size and radius.
    Rgb8 small, empty;
    ASSERT_TRUE(small.createBitmap(QSize(4, 5), EgwColorModeRGB, 1));
    for (const auto& [target, source] : {std::pair<Rgb8*, Rgb8*>{&small, &b}, {&static_cast<Rgb8&>(*copy), &empty}}) {
        *target = *source;
        EXPECT_EQ(gwLastLogLine(), "gwDebug: CgwBitmapT::operator= : Error: Did not copy data: Size and/or max. "
                                   "filter radius did not match!");
    }
}

TEST(Bitmap, TurnsAndMirrorsMovePixelsWhereTheyBelong)
{
    Rgb16 bitmap;
    ASSERT_TRUE(bitmap.createBitmap(QSize(4, 3), EgwColorModeRGB, 0));
    fillPattern(bitmap);
    const struct {
        bool flipH, flipV;
        int rotate;
        QSize size;
        int x, y; // where source pixel (3, 0) ends up
    } cases[] = {
        {true, false, 0, QSize(4, 3), 0, 0}, {false, true, 0, QSize(4, 3), 3, 2},
        {false, false, 1, QSize(3, 4), 2, 3}, {false, false, 2, QSize(4, 3), 0, 2},
        {false, false, 3, QSize(3, 4), 0, 0}, {false, false, -1, QSize(3, 4), 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.flipH << c.flipV << " rotate " << c.rotate);
        std::unique_ptr<CgwBitmapBase> copy(bitmap.clone());
        auto& turned = static_cast<Rgb16&>(*copy);
        ASSERT_TRUE(turned.transform(c.flipH, c.flipV, c.rotate));
        EXPECT_EQ(turned.size(), c.size);
        EXPECT_EQ(turned.line(c.y)[c.x].s[0], 3);
        EXPECT_EQ(turned.line(c.y)[c.x].s[1], 0);
    }
}

TEST(Bitmap, BlinkBandsShareTheStorageAndChain)
{
    Rgb16 image;
    ASSERT_TRUE(image.createBitmap(QSize(10, 100), EgwColorModeRGB, 0));
    fillPattern(image);
    std::unique_ptr<CgwBitmapBase> top(image.getBlockBlink(CgwRectT<int>(0, 0, 10, 40)));
    std::unique_ptr<CgwBitmapBase> rest(image.getBlockBlink(CgwRectT<int>(0, 40, 10, 100)));
    ASSERT_TRUE(top && rest);
    EXPECT_TRUE(top->isBlink());
    EXPECT_TRUE(top->hasSameStorage(image));
    auto& band = static_cast<CgwBitmapBlinkT<CgwPixel16x3>&>(*top);
    band.setNext(rest.get());
    EXPECT_EQ(band.line(10)[0].s[1], 10);
    EXPECT_EQ(band.line(45)[0].s[1], 45) << "past its band a row comes from the next member";
    EXPECT_EQ(static_cast<Rgb16&>(*rest).line(0)[0].s[1], 40);
    EXPECT_FALSE(band.createBitmap(QSize(1, 1), EgwColorModeRGB, 0));
}

TEST(Bitmap, PixelAndMeanReadsConvert)
{
    Rgb16 bitmap;
    ASSERT_TRUE(bitmap.createBitmap(QSize(2, 2), EgwColorModeRGB, 0));
    bitmap.line(0)[0] = CgwPixel16x3{{65535, 32768, 0}};
    bitmap.line(0)[1] = CgwPixel16x3{{65535, 0, 0}};
    CgwPixel8x4 p8;
    ASSERT_TRUE(bitmap.getPixel(0, 0, p8));
    EXPECT_EQ(p8.s[1], 127) << "several channels truncate";
    EXPECT_FALSE(bitmap.getPixel(30, 0, p8));
    CgwPixel16x4 mean;
    ASSERT_TRUE(bitmap.getMean(CgwRectT<int>(0, 0, 2, 2), mean));
    EXPECT_EQ(mean.s[0], 32768);
    EXPECT_EQ(mean.s[1], 8192);
    EXPECT_FALSE(bitmap.getMean(CgwRectT<int>(5, 5, 9, 9), mean));

    EXPECT_FALSE(bitmap.isConstantGrey());
    bitmap.convertColorMode(EgwColorModeGrey);
    bitmap.convertColorMode(EgwColorModeRGB);
    EXPECT_TRUE(bitmap.isConstantGrey());
}
