// The typed bitmap: where its pixels live (memory under the limit, mapped
// temporary files above it), creation, block transfer, pixel access, turns,
// derived images, and sample and colour-mode conversion at the boundaries
// where rounding and truncation part ways.

#include "Sourcen/Image/gwBitmapMM_MMF.h"
#include "Sourcen/Image/gwBitmapT.h"
#include "Sourcen/Image/gwSampleConvert.h"
#include "settings/gwFilterOptions.h"
#include "settings/gwParamKeys.h"
#include "support/gwTestEnv.h"

#include <QDir>
#include <QFile>
#include <qplatformdefs.h>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace {

using Rgb8 = CgwBitmapT<CgwPixel8x4>;
using Rgb16 = CgwBitmapT<CgwPixel16x3>;
using Samples = std::vector<int>;

// Sets the memory limit; the usual 1024 MiB comes back also when an
// assertion leaves the test early.
struct RamLimit {
    explicit RamLimit(int megabytes) { CgwFilterOptions::instance().setOption(GgwParam_MMFRamLimit, megabytes); }
    ~RamLimit() { CgwFilterOptions::instance().setOption(GgwParam_MMFRamLimit, 1024); }
};

int tempFiles()
{
    return QDir(CgwFilterOptions::instance().selectedTempPath()).entryList({"hdr8_*.tmp"}, QDir::Files).size();
}

// Resident anonymous memory of this process, in bytes.
qint64 anonymousMemory()
{
    const auto match = QRegularExpression("RssAnon:\\s*(\\d+) kB").match(gwReadFile("/proc/self/status"));
    return match.hasMatch() ? match.captured(1).toLongLong() * 1024 : -1;
}

template <class Pixel>
Samples samples(const Pixel& pixel)
{
    return Samples(std::begin(pixel.s), std::end(pixel.s));
}

// Pixel (x, y) holds x, y, x + y in its first three samples.
template <class Bitmap>
void fillPattern(Bitmap& bitmap)
{
    using S = typename Bitmap::Sample;
    for (int y = 0; y < bitmap.size().height(); ++y)
        for (int x = 0; x < bitmap.size().width(); ++x) {
            auto& p = bitmap.line(y)[x];
            p.s[0] = S(x), p.s[1] = S(y), p.s[2] = S(x + y);
        }
}

// One pixel through setBlock from a bitmap of type Src and mode to Dst.
template <class Src, class Dst>
Dst transferred(const Src& pixel, int sourceMode, int targetMode)
{
    CgwBitmapT<Src> source;
    CgwBitmapT<Dst> target;
    EXPECT_TRUE(source.createBitmap(QSize(1, 1), sourceMode, 0) && target.createBitmap(QSize(1, 1), targetMode, 0));
    source.line(0)[0] = pixel;
    EXPECT_TRUE(target.setBlock(QPoint(0, 0), source));
    return target.line(0)[0];
}

// One pixel through convertColorMode; the border converts alike.
template <class Pixel>
Pixel converted(const Pixel& pixel, int from, int to)
{
    CgwBitmapT<Pixel> bitmap;
    EXPECT_TRUE(bitmap.createBitmap(QSize(1, 1), from, 0));
    bitmap.line(0)[0] = bitmap.line(-23)[-23] = pixel;
    bitmap.convertColorMode(to);
    EXPECT_EQ(bitmap.colorMode(), to);
    EXPECT_EQ(std::memcmp(&bitmap.line(-23)[-23], &bitmap.line(0)[0], sizeof(Pixel)), 0);
    return bitmap.line(0)[0];
}

// Runs the block transfers on memory and on mapped storage alike.
class BitmapStorage : public ::testing::TestWithParam<int>
{
    const RamLimit mLimit{GetParam()};
};

} // namespace

TEST(Storage, SmallAndThumbnailSizesStayInMemoryAtLimitZero)
{
    const RamLimit limit(0);
    const std::pair<QSize, bool> cases[] = {{{1, 1}, true}, {{256, 256}, true}, {{2, 2}, false}, {{256, 255}, false}};
    for (const auto& [size, inMemory] : cases) {
        const quint64 before = gwAccountedBitmapBytes();
        CgwBitmapT<CgwPixel16x3> bitmap;
        ASSERT_TRUE(bitmap.createBitmap(size, EgwColorModeRGB, 0));
        const quint64 bordered = quint64(size.width() + 46) * quint64(size.height() + 46) * 6;
        EXPECT_EQ(gwAccountedBitmapBytes() - before, inMemory ? bordered : 0) << size.width();
        EXPECT_EQ(tempFiles(), inMemory ? 0 : 1) << size.width();
    }
    EXPECT_EQ(tempFiles(), 0) << "the temporary file goes with its bitmap";
}

TEST(Storage, AccountingFollowsTheLimit)
{
    const RamLimit limit(1);
    const quint64 before = gwAccountedBitmapBytes();
    auto first = std::make_unique<CgwBitmapT<CgwPixelGrey8>>();
    ASSERT_TRUE(first->createBitmap(QSize(700, 700), EgwColorModeGrey, 0)); // fits under 1 MiB
    EXPECT_EQ(tempFiles(), 0);
    CgwBitmapT<CgwPixelGrey8> second;
    ASSERT_TRUE(second.createBitmap(QSize(700, 700), EgwColorModeGrey, 0)); // does not fit any more
    EXPECT_EQ(tempFiles(), 1);
    first.reset();
    EXPECT_EQ(gwAccountedBitmapBytes(), before) << "memory storage gives its bytes back";
}

TEST(Storage, MappedViewsCoverTheFileAndOutliveTheCacheAndTheStorage)
{
    // Views of 8 MiB: 3759 rows of 2232 bytes, three views with a shorter
    // last one; or rows longer than a view, one row each.
    const struct { int width, height, rowsPerView; } cases[] = {{512 + 46, 10000, 3759}, {8388608 / 4 + 10, 3, 1}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.width);
        auto storage = std::make_unique<CgwBitmapMM_MMF<CgwPixel8x4>>(QSize(c.width, c.height));
        EXPECT_EQ(storage->rowsPerMapping(), c.rowsPerView);
        QT_STATBUF info;
        ASSERT_EQ(QT_STAT(QFile::encodeName(storage->fileName()).constData(), &info), 0);
        EXPECT_GE(qint64(info.st_blocks) * 512, storage->totalBytes()) << "the disk blocks are taken when it is made";
        CgwArrayT<CgwPixel8x4> held = storage->getLine(0);
        held[0].s[0] = 7;
        for (int y = 0; y < c.height; ++y)
            storage->getLine(y)[c.width - 24].s[1] = static_cast<unsigned char>(y + 1);
        EXPECT_EQ(held[0].s[0], 7) << "the held view stayed mapped while the cache moved on";
        held[5].s[2] = 9;
        EXPECT_EQ(storage->getLine(0)[5].s[2], 9) << "both views show the same pages";
        for (int y = c.height - 1; y >= 0; y -= 997)
            EXPECT_EQ(storage->getLine(y)[c.width - 24].s[1], static_cast<unsigned char>(y + 1)) << y;
        EXPECT_TRUE(storage->getLine(c.height).isEmpty());
        storage.reset();
        EXPECT_EQ(tempFiles(), 0) << "the file's name goes with its storage";
        held[c.width - 24].s[3] = 5;
        EXPECT_EQ(held[0].s[0] + held[5].s[2] + held[c.width - 24].s[3], 21) << "the held row keeps its pages";
    }
}

TEST(Storage, BitmapOfSeveralGibibytesLivesInAFile)
{
    const RamLimit limit(64);
    const qint64 anonymousBefore = anonymousMemory();
    ASSERT_GT(anonymousBefore, 0);
    CgwBitmapT<CgwPixel16x3> bitmap;
    const QSize size(24000, 18000); // 432 million pixels, 2.4 GiB with the border
    ASSERT_TRUE(bitmap.createBitmap(size, EgwColorModeRGB, 0));
    ASSERT_EQ(tempFiles(), 1);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); x += 1000)
            bitmap.line(y)[x] = CgwPixel16x3{{quint16(y), quint16(x), quint16(x ^ y)}};
    for (int y = 0; y < size.height(); y += 7)
        for (int x = 0; x < size.width(); x += 1000)
            ASSERT_EQ(samples(bitmap.line(y)[x]), (Samples{quint16(y), quint16(x), quint16(x ^ y)})) << x << "," << y;
#ifndef __SANITIZE_THREAD__ // ThreadSanitizer keeps anonymous shadow memory for every page touched
    const qint64 growth = anonymousMemory() - anonymousBefore;
    EXPECT_LT(growth, 256ll << 20) << "anonymous memory grew by " << (growth >> 20) << " MiB";
#endif
}

TEST(Bitmap, CreateChecksRadiusAndKeepsPixelsOfAnEqualBitmap)
{
    Rgb16 bitmap;
    EXPECT_TRUE(bitmap.createBitmap(QSize(10, 5), EgwColorModeRGB, 23));
    bitmap.line(4)[9].s[0] = 4242;
    bitmap.setLegalRectBottom(5);
    EXPECT_TRUE(bitmap.createBitmap(QSize(10, 5), EgwColorModeRGB, 2));
    EXPECT_EQ(bitmap.line(4)[9].s[0], 4242) << "same size and mode keep the pixels";
    EXPECT_EQ(bitmap.getLegalRectBottom(), 0) << "a new bitmap has no legal rows";
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
    EXPECT_TRUE(bitmap.getPixelRef(-24, 0).isNull());
    EXPECT_TRUE(gwLastLogLine().endsWith("Pixel at [-24][0] cannot be found!"));
    bitmap.getPixelRef(26, -23)->s[1] = 5;
    EXPECT_EQ(bitmap.line(-23)[26].s[1], 5);
}

TEST_P(BitmapStorage, BlocksOfTheSameAndOfAnotherTypeCopyWhatFits)
{
    Rgb16 source, same;
    Rgb8 other;
    ASSERT_TRUE(source.createBitmap(QSize(300, 200), EgwColorModeRGB, 0));
    for (int y = 0; y < 200; ++y)
        for (int x = 0; x < 300; ++x)
            source.line(y)[x] = CgwPixel16x3{{quint16(x * 200), quint16(y * 300), 65535}};
    ASSERT_TRUE(same.createBitmap(QSize(250, 150), EgwColorModeRGB, 0));
    ASSERT_TRUE(other.createBitmap(QSize(250, 150), EgwColorModeRGB, 0));

    EXPECT_TRUE(same.setBlock(QPoint(-10, 20), source));
    EXPECT_TRUE(other.setBlock(QPoint(-10, 20), source));
    const QByteArray log = gwReadFile(gwTestLogPath());
    EXPECT_TRUE(log.contains("gwDebug: CgwBitmapT::setBlock: hint for x 250 < 300\n"));
    EXPECT_TRUE(log.contains("gwDebug: CgwBitmapT::setBlock: hint for y 150 < 200\n"));
    // The negative corner skips ten source columns; rows start at target row 20.
    // Into 8 bits several channels truncate; the spare fourth sample stays 0.
    for (int y = 20; y < 150; y += 13) {
        for (int x = 0; x < 240; x += 17) {
            const int s0 = (x + 10) * 200, s1 = (y - 20) * 300;
            ASSERT_EQ(samples(same.line(y)[x]), (Samples{s0, s1, 65535})) << x << "," << y;
            ASSERT_EQ(samples(other.line(y)[x]), (Samples{s0 * 255 / 65535, s1 * 255 / 65535, 255, 0})) << x << y;
        }
    }
    EXPECT_EQ(same.line(10)[5].s[0] + other.line(10)[5].s[0], 0) << "rows above the corner stay";
    EXPECT_FALSE(same.setBlock(QPoint(250, 0), source)) << "nothing left of the row";
}

TEST_P(BitmapStorage, BlocksAndBlinkBandsOfARectangle)
{
    Rgb16 source;
    ASSERT_TRUE(source.createBitmap(QSize(100, 80), EgwColorModeRGB, 0));
    fillPattern(source);
    source.line(-1)[40].s[0] = 999; // in the source's border, inside the block's border
    std::unique_ptr<CgwBitmapBase> block(source.getBlock(CgwRectT<int>(30, 10, 70, 50), 5));
    ASSERT_TRUE(block && block->isInitialized());
    auto& typed = static_cast<Rgb16&>(*block);
    EXPECT_EQ(block->size(), QSize(40, 40));
    EXPECT_EQ(block->head().mBounds, CgwRectT<int>(30, 10, 70, 50));
    EXPECT_EQ(typed.line(39)[39].s[1], 49);
    EXPECT_EQ(typed.line(-5)[-5].s[0], 25) << "the border comes along";
    EXPECT_EQ(typed.line(-11)[10].s[0], 0) << "beyond the radius nothing is copied";
    EXPECT_EQ(std::unique_ptr<CgwBitmapBase>(source.getBlock(CgwRectT<int>(200, 0, 300, 10), 0)), nullptr);

    // Blink bands share the storage; past its band a row comes from the next member.
    std::unique_ptr<CgwBitmapBase> top(source.getBlockBlink(CgwRectT<int>(0, 0, 100, 40)));
    std::unique_ptr<CgwBitmapBase> rest(source.getBlockBlink(CgwRectT<int>(0, 40, 100, 80)));
    ASSERT_TRUE(top && rest && top->isBlink() && top->hasSameStorage(source));
    auto& band = static_cast<CgwBitmapBlinkT<CgwPixel16x3>&>(*top);
    band.setNext(rest.get());
    EXPECT_EQ(band.line(45)[0].s[1], 45);
    EXPECT_EQ(static_cast<Rgb16&>(*rest).line(0)[0].s[1], 40);
    EXPECT_FALSE(band.createBitmap(QSize(1, 1), EgwColorModeRGB, 0));
}

INSTANTIATE_TEST_SUITE_P(MemoryAndMapped, BitmapStorage, ::testing::Values(1024, 0));

TEST(Bitmap, IncompatibleModesTypesAndSizes)
{
    Rgb8 rgb;
    ASSERT_TRUE(rgb.createBitmap(QSize(8, 8), EgwColorModeRGB, 0));
    fillPattern(rgb);
    CgwBitmapT<CgwPixelGrey16Type> grey;
    ASSERT_TRUE(grey.createBitmap(QSize(8, 8), EgwColorModeGrey, 0));
    EXPECT_TRUE(grey.setBlock(QPoint(0, 0), rgb)) << "other type, other mode: true, nothing copied";
    EXPECT_EQ(grey.line(3)[3].s[0], 0);

    Rgb8 lab, unknown;
    ASSERT_TRUE(lab.createBitmap(QSize(8, 8), EgwColorModeLab, 0));
    ASSERT_TRUE(unknown.createBitmap(QSize(8, 8), EgwColorModeUnknown, 0));
    EXPECT_FALSE(lab.setBlock(QPoint(0, 0), rgb));
    EXPECT_EQ(gwLastLogLine(), "gwDebug: CgwBitmapT::setBlock : Error: Incompatible color modes!");
    EXPECT_FALSE(unknown.setBlock(QPoint(0, 0), rgb));
    EXPECT_EQ(gwLastLogLine(), "gwDebug: CgwBitmapT::setBlock : Error: Output color mode unknown!");
    EXPECT_FALSE(grey.setBlock(QPoint(0, 0), unknown));
    EXPECT_EQ(gwLastLogLine(), "gwDebug: CgwBitmapT::setBlockFromOtherTypeBmp : Error: Input color mode unknown!");
    EXPECT_FALSE(Rgb8().setBlock(QPoint(0, 0), rgb)) << "uninitialised target";
}

TEST(Bitmap, TurnsAndMirrorsMovePixelsWhereTheyBelong)
{
    // Where source pixel (3, 0) of a 4x3 bitmap ends up.
    const struct { bool flipH, flipV; int rotate, x, y; } cases[] = {
        {true, false, 0, 0, 0}, {false, true, 0, 3, 2}, {false, false, 1, 2, 3}, {false, false, 2, 0, 2},
        {false, false, -1, 0, 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.flipH << c.flipV << " rotate " << c.rotate);
        Rgb16 bitmap;
        ASSERT_TRUE(bitmap.createBitmap(QSize(4, 3), EgwColorModeRGB, 0));
        fillPattern(bitmap);
        ASSERT_TRUE(bitmap.transform(c.flipH, c.flipV, c.rotate));
        EXPECT_EQ(bitmap.size(), c.rotate % 2 ? QSize(3, 4) : QSize(4, 3));
        EXPECT_EQ(samples(bitmap.line(c.y)[c.x]), (Samples{3, 0, 3}));
    }
}

TEST(Bitmap, PixelAndMeanReads)
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
    EXPECT_EQ(Samples(mean.s, mean.s + 2), (Samples{32768, 8192}));
    EXPECT_FALSE(bitmap.getMean(CgwRectT<int>(5, 5, 9, 9), mean));

    EXPECT_FALSE(bitmap.isConstantGrey());
    bitmap.convertColorMode(EgwColorModeGrey);
    bitmap.convertColorMode(EgwColorModeRGB);
    EXPECT_TRUE(bitmap.isConstantGrey());
}

TEST(Bitmap, ThumbnailsTakeTheNearestPixelAndNeverUpscale)
{
    // The message stands for no thumbnail.
    const struct { QSize size, thumbnail; int maxSize; const char* message; } cases[] = {
        {{1000, 3}, {256, 2}, 256, nullptr}, {{3, 1000}, {2, 256}, 256, nullptr},
        {{256, 256}, {256, 256}, 256, nullptr},
        {{100, 50}, {}, 256, "Error: Upscale necessary for thumbnail!"},
        {{100, 50}, {}, 0, "Error: Zero-sized output image!"},
    };
    for (const auto& c : cases) {
        Rgb8 bitmap;
        ASSERT_TRUE(bitmap.createBitmap(c.size, EgwColorModeRGB, 0));
        fillPattern(bitmap);
        std::unique_ptr<CgwBitmapBase> thumbnail(bitmap.getThumbnail(c.maxSize));
        ASSERT_EQ(thumbnail ? thumbnail->size() : QSize(), c.thumbnail) << c.size.width() << "x" << c.size.height();
        if (c.message)
            EXPECT_TRUE(gwLastLogLine().endsWith(c.message)) << gwLastLogLine().constData();
        else // nearest neighbour from the first pixel on: x times the step
            EXPECT_EQ(static_cast<Rgb8&>(*thumbnail).line(1)[1].s[0], c.size.width() / c.thumbnail.width());
    }
}

TEST(Bitmap, QImageShowsTheScannedRowsAndLeavesTheRestTransparent)
{
    Rgb16 bitmap;
    ASSERT_TRUE(bitmap.createBitmap(QSize(4, 6), EgwColorModeRGB, 0));
    bitmap.line(1)[3] = CgwPixel16x3{{65535, 32896, 256}};
    bitmap.setLegalRectBottom(2); // rows 0 and 1 are scanned
    const QImage image = bitmap.toQImage(0.0);
    ASSERT_EQ(image.size(), QSize(4, 6));
    EXPECT_EQ(image.pixel(3, 1), qRgba(255, 128, 0, 255));
    EXPECT_EQ(qAlpha(image.pixel(0, 2)), 0);
    EXPECT_EQ(bitmap.toQImage(90.0).size(), QSize(6, 4));

    CgwBitmapT<CgwPixelGrey8> grey;
    ASSERT_TRUE(grey.createBitmap(QSize(2, 2), EgwColorModeGrey, 0));
    grey.line(0)[0].s[0] = 77;
    EXPECT_EQ(grey.toQImage().pixel(0, 0), qRgb(77, 77, 77));
    CgwBitmapT<CgwPixel8x2> twoChannel;
    ASSERT_TRUE(twoChannel.createBitmap(QSize(2, 2), EgwColorModeTwoChannel, 0));
    EXPECT_TRUE(twoChannel.toQImage().isNull());
    EXPECT_EQ(gwLastLogLine(), "gwDebug: CgwBitmapT::toQImage : Error: Unsupported bitmap format (8 bits per channel)!");
}

TEST(Bitmap, CreateBitmapFromReusesOrConverts)
{
    Rgb16 source, same, three;
    Rgb8 other, cmyk;
    ASSERT_TRUE(source.createBitmap(QSize(3, 3), EgwColorModeRGB, 0));
    source.line(2)[2] = CgwPixel16x3{{65535, 0, 257}};
    ASSERT_TRUE(other.createBitmapFrom(source, true));
    EXPECT_EQ(gwLastLogLine(), "gwDebug: CgwBitmapT<>::createBitmapFrom : Info': Could not reuse input bitmap's memory.");
    EXPECT_EQ(other.line(2)[2].s[2], 1);
    ASSERT_TRUE(same.createBitmapFrom(source, false));
    EXPECT_EQ(same.line(2)[2].s[2], 257);
    EXPECT_TRUE(source.isInitialized());
    ASSERT_TRUE(same.createBitmapFrom(source, true));
    EXPECT_FALSE(source.isInitialized()) << "reuse hands over the memory";
    EXPECT_EQ(same.line(2)[2].s[0], 65535);

    EXPECT_FALSE(other.createBitmapFrom(source, false));
    EXPECT_EQ(gwLastLogLine(), "gwDebug: CgwBitmapT<>::createBitmapFrom : Error: Input bitmap is not legal!");
    ASSERT_TRUE(cmyk.createBitmap(QSize(2, 2), EgwColorModeCMYK, 0));
    EXPECT_FALSE(three.createBitmapFrom(cmyk, false));
}

TEST(Conversion, SamplesRoundForOneChannelAndTruncateForSeveral)
{
    using G8 = CgwPixelGrey8;
    using G16 = CgwPixelGrey16Type;
    using L1 = CgwPixelLineArt;
    using P8 = CgwPixel8x4;
    using P16 = CgwPixel16x3;
    // 32895 is 127.996 in eight bits: the two paths part ways there.
    EXPECT_EQ((gwConvertSample<P16, P8>(32895)), 127);
    EXPECT_EQ((gwConvertSample<G16, G8>(32895)), 128);
    EXPECT_EQ((gwConvertSample<G16, G8>(32767)), 127) << "127.498 rounds down";
    EXPECT_EQ((gwConvertSample<P16, P8>(65535)), 255);
    EXPECT_EQ((gwConvertSample<P8, P16>(1)), 257);
    EXPECT_EQ((gwConvertSample<L1, G16>(1)), 65535);
    EXPECT_EQ((gwConvertSample<G8, L1>(128)), 1);
    EXPECT_EQ((gwConvertSample<G8, L1>(127)), 0);
    EXPECT_FLOAT_EQ((gwConvertSample<G16, CgwPixelGreyFloat>(65535)), 1.0f);
    EXPECT_EQ((gwConvertSample<CgwPixelGreyFloat, G8>(0.999f)), 255) << "one float channel rounds";
    EXPECT_EQ((gwConvertSample<CgwPixelFloat4, P8>(0.999f)), 254) << "four float channels truncate";
    EXPECT_EQ((gwConvertSample<CgwPixelFloat4, P8>(1.5f)), 255) << "held to the range";
    EXPECT_EQ((gwConvertSample<CgwPixelFloat4, P8>(-0.5f)), 0);
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
    const struct { P in; int from, to; P out; } cases[] = {
        {{{90, 0, 0, 0}}, 1, 3, {{90, 90, 90, 0}}}, {{{90, 0, 0, 0}}, 1, 7, {{90, 90, 90, 255}}},
        {{{90, 7, 8, 0}}, 1, 5, {{0, 0, 8, 0}}},        // the grey itself is cleared, as it stands
        {{{90, 0, 0, 0}}, 1, 6, {{0, 0, 0, 90}}},       // convertColorMode puts the grey into K
        {{{100, 150, 200, 9}}, 3, 1, {{140, 0, 0, 9}}}, // trunc(29.9 + 88.05 + 22.8)
        {{{100, 150, 200, 9}}, 4, 7, {{100, 150, 200, 255}}}, {{{77, 20, 30, 0}}, 5, 1, {{77, 0, 0, 0}}},
        {{{10, 200, 120, 99}}, 7, 6, {{0, 190, 110, 10}}}, // K = min, no inversion
        {{{255, 255, 255, 255}}, 3, 6, {{255, 255, 255, 255}}}, {{{0, 0, 0, 0}}, 3, 6, {{255, 255, 255, 0}}},
        {{{0, 0, 0, 0}}, 6, 3, {{0, 0, 0, 255}}}, {{{255, 255, 255, 255}}, 6, 3, {{255, 255, 255, 255}}},
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
    for (int r = 0; r < 256; r += 15)
        for (int g = 0; g < 256; g += 15)
            for (int b = 0; b < 256; b += 15) {
                const P rgb{{quint16(r * 257), quint16(g * 257), quint16(b * 257)}};
                const P back = converted(converted(rgb, 3, 5), 5, 3);
                for (int c = 0; c < 3; ++c)
                    worst = std::max(worst, std::abs(int(back.s[c]) - int(rgb.s[c])));
            }
    EXPECT_LE(worst, 257) << "one 8-bit step";
}
