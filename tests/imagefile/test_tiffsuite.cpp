// The suite's own TIFF layout: which page is which, the HDR mark, the
// maker note's values, the older IR plane, and files cut short.

#include "Sourcen/Image/gwBitmapT.h"
#include "gwTestTiff.h"
#include "imagefile/gwImageFileList.h"
#include "imagefile/gwImageFileTIF.h"
#include "settings/gwParamKeys.h"
#include "support/gwCorpus.h"
#include "support/gwTestEnv.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace {

const QString kOurs = QStringLiteral("Glimmerway 8.2.1 r5 b");

SgwTestPage page(QSize size, int bits, int samples, quint32 subfileType, int seed = 0)
{
    SgwTestPage p;
    p.size = size;
    p.bits = bits;
    p.samples = samples;
    p.subfileType = subfileType;
    p.seed = seed;
    return p;
}

// A main image above the HiRePX threshold, tags only.
SgwTestPage bigMain()
{
    SgwTestPage p = page(QSize(4000, 2501), 8, 1, 0);
    p.pixels = false;
    return p;
}

SgwTestTiff hdrScan(std::vector<SgwTestPage> pages, quint64 hdri)
{
    SgwTestTiff layout;
    layout.pages = std::move(pages);
    layout.software = kOurs;
    layout.makerNote = true;
    layout.hdrMark = 1;
    if (hdri)
        layout.hdri = gwHdriBytes(hdri, false);
    return layout;
}

QString location(const QString& path)
{
    return "file:" + path;
}

// Every sample of `bitmap` against the pattern of `p`, in the first
// `channels` slots.
bool holdsPattern(const CgwBitmapBase& bitmap, const SgwTestPage& p, int channels)
{
    if (bitmap.size() != p.size)
        return false;
    QByteArray expected;
    for (int y = 0; y < p.size.height(); ++y)
        for (int x = 0; x < p.size.width(); ++x)
            for (int c = 0; c < channels; ++c) {
                const quint16 v = gwTestSample(p, x, y, c);
                expected.append(char(p.bits == 1 ? (v ? 255 : 0) : v & 0xFF));
                if (p.bits == 16)
                    expected.append(char(v >> 8));
            }
    return gwSampleBytes(bitmap, channels) == expected;
}

} // namespace

TEST(TiffSuite, IrLocationFollowsTheLayoutTable)
{
    const SgwTestPage main = page(QSize(13, 7), 16, 3, 0);
    const SgwTestPage reduced = page(QSize(7, 4), 8, 3, 1);
    const SgwTestPage ir = page(QSize(13, 7), 16, 1, 4);
    const struct {
        const char* name;
        std::vector<SgwTestPage> pages;
        quint64 hdri;
        int expected;
    } cases[] = {
        {"one page, tag", {main}, 4096, -1},
        {"one page, no tag", {main}, 0, 0},
        {"two pages, tag", {main, ir}, 1, 2},
        {"two pages, no tag", {main, ir}, 0, 2},
        {"HiRePX only, tag", {bigMain(), reduced}, 4096, -1},
        {"HiRePX only, no tag", {bigMain(), reduced}, 0, 0},
        {"three pages with HiRePX, tag", {bigMain(), reduced, ir}, 1, 3},
        {"three pages with HiRePX, no tag", {bigMain(), reduced, ir}, 0, 3},
        {"three pages without HiRePX, tag", {main, ir, ir}, 1, 0},
        {"three pages without HiRePX, no tag", {main, ir, ir}, 0, 0},
        {"four pages", {bigMain(), reduced, ir, ir}, 1, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const QString path = gwWriteTestTiff("layout.tif", hdrScan(c.pages, c.hdri));
        ASSERT_FALSE(path.isEmpty());
        CgwImageFileTIF tiff;
        EXPECT_EQ(tiff.irLocation(location(path)), c.expected);
        // Without the HDR mark no layout has an IR channel.
        SgwTestTiff plain = hdrScan(c.pages, c.hdri);
        plain.hdrMark = 0;
        EXPECT_EQ(tiff.irLocation(location(gwWriteTestTiff("plain.tif", plain))), 0);
    }
}

TEST(TiffSuite, HiRePXPagesBeginAboveTenMillionPixels)
{
    const struct {
        QSize main;
        quint32 secondType;
        bool expected;
    } cases[] = {
        {QSize(4000, 2500), 1, false},  // exactly 10,000,000
        {QSize(4000, 2501), 1, true},
        {QSize(4000, 2501), 0, false},  // the second page is no reduced view
        {QSize(65536, 65537), 1, false}, // the product wraps to 65,536
        {QSize(70000, 70000), 1, true},  // wraps to 605,032,704
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(QStringLiteral("%1 x %2").arg(c.main.width()).arg(c.main.height()).toStdString());
        SgwTestPage main = page(c.main, 8, 1, 0);
        main.pixels = false;
        SgwTestPage second = page(QSize(400, 250), 8, 3, c.secondType);
        second.resolution = 40.0;
        SgwTestTiff layout;
        layout.pages = {main, second};
        const QString path = gwWriteTestTiff("hirepx.tif", layout);
        ASSERT_FALSE(path.isEmpty());
        CgwImageFileTIF tiff;
        double resolution[2] = {0.0, 0.0};
        int size[2] = {0, 0};
        EXPECT_EQ(tiff.hiRepxInfo(location(path), resolution, size), c.expected);
        if (c.expected) {
            EXPECT_EQ(size[0], 400);
            EXPECT_EQ(size[1], 250);
            EXPECT_EQ(resolution[0], 40.0);
        }
    }
}

TEST(TiffSuite, TheHdrMarkNeedsTheProductsSoftwareTag)
{
    const struct {
        QString software;
        int mark;
        int gamma;
        bool hdr;
        float expectedGamma;
        bool markKept;
    } cases[] = {
        {kOurs, 1, 22000, true, 2.2f, true},
        {kOurs, 1, 0, true, 1.0f, true},            // HDR without a gamma record is linear
        {"OtherScan 3.1", 1, 22000, false, 2.2f, false}, // a foreign program's claim is removed
        {"glimmerway 8.2.1 r5 b", 1, 0, false, 0.0f, false},
        {kOurs, 0, 0, false, 0.0f, true},
        {kOurs, 2, 0, false, 0.0f, true}, // unknown value: warned about, counts as no
    };
    for (const auto& c : cases) {
        SCOPED_TRACE((c.software + QStringLiteral(" mark %1").arg(c.mark)).toStdString());
        SgwTestTiff layout = hdrScan({page(QSize(13, 7), 16, 3, 0)}, 0);
        layout.software = c.software;
        layout.hdrMark = c.mark;
        layout.gamma = c.gamma;
        const QString path = gwWriteTestTiff("hdr.tif", layout);
        const int linesBefore = gwLogLineCount();
        CgwImageFileTIF tiff;
        const CgwBitmapHead head = tiff.loadImageInformation(location(path), 0);
        EXPECT_EQ(head.mParameters.boolValue(GgwParam_IsHDR, !c.hdr), c.hdr);
        EXPECT_FLOAT_EQ(head.mGamma, c.expectedGamma);
        bool found = false;
        head.mExif.getGWMakerNotValueByTag(0xC005, &found);
        EXPECT_EQ(found, c.markKept);
        if (c.mark == 2)
            EXPECT_TRUE(gwLastLogLine().endsWith("WARNING - unrecognized makernote-value."));
        else
            EXPECT_EQ(gwLogLineCount(), linesBefore);
        const std::unique_ptr<CgwBitmapBase> bitmap(tiff.loadBitmap(location(path), 0));
        ASSERT_TRUE(bitmap);
        EXPECT_EQ(bitmap->parameters().boolValue(GgwParam_IsHDR, !c.hdr), c.hdr);
        EXPECT_FLOAT_EQ(bitmap->gamma(), c.expectedGamma);
    }
}

TEST(TiffSuite, TheHeadCarriesWhatTheFileSays)
{
    QByteArray film(288, '\0');
    film.replace(0, 4, "Fuji");
    film.replace(96, 6, "Velvia");
    film.replace(192, 3, "100");
    SgwTestTiff layout = hdrScan({page(QSize(13, 7), 16, 3, 0)}, 0);
    layout.pages[0].resolution = 300.0;
    layout.film = film;
    layout.iptc = QByteArray("\x1c\x02\x78\x00\x0cHarbour 1962", 17);
    const CgwTiffHandle withProfile =
        gwTiffOpenHandle(location(gwCorpusDir() + "/tiff/hopper.iccprofile.tif"), 1, 0);
    if (withProfile)
        layout.icc = gwTiffFieldBytes(withProfile.get(), TIFFTAG_ICCPROFILE);
    layout.vendor = 3;
    layout.scanner = 17;
    const QString path = gwWriteTestTiff("suite.tif", layout);
    CgwImageFileTIF tiff;
    const CgwBitmapHead head = tiff.loadImageInformation(location(path), 0);
    EXPECT_EQ(head.mSize, QSize(13, 7));
    EXPECT_EQ(head.mBitDepth, 16);
    EXPECT_EQ(head.mColorMode, EgwColorModeRGB);
    EXPECT_EQ(head.mChannels, 3);
    EXPECT_EQ(head.mResolution, QPointF(300.0, 300.0));
    EXPECT_EQ(head.mScannerMode, 9);
    const CgwParameterSet& p = head.mParameters;
    EXPECT_EQ(p.value(GgwParam_SupportedResolutions).toQString(), "300 ");
    EXPECT_EQ(p.value(GgwParam_HighestResolutionMaxPixels).toQString(), "13 7 ");
    EXPECT_EQ(p.value(GgwParam_ScannerModes).toQString(), "9 ");
    EXPECT_EQ(p.longLongValue(GgwParam_VendorAndScannerID, 0), 3 * 65536 + 17);
    EXPECT_EQ(p.stringValue(GgwParam_General_CreatorVersion, ""), "8.2.1r5");
    EXPECT_EQ(p.stringValue(GgwParam_FilmVendor, ""), "Fuji");
    EXPECT_EQ(p.stringValue(GgwParam_FilmBrand, ""), "Velvia");
    EXPECT_EQ(p.stringValue(GgwParam_FilmType, ""), "100");
    EXPECT_FALSE(p.boolValue(GgwParam_HasHiRePX, true));
    EXPECT_FALSE(p.boolValue(GgwParam_ScanModeSupportsIR, true));
    EXPECT_EQ(head.mIptc.value(0x0278), "Harbour 1962");
    EXPECT_EQ(head.mProfile.isValid(), !layout.icc.isEmpty());

    // The optical resolution of the note replaces the tags' resolution.
    layout.optical = 4000;
    const CgwBitmapHead optical = tiff.loadImageInformation(location(gwWriteTestTiff("optical.tif", layout)), 0);
    EXPECT_EQ(optical.mResolution, QPointF(4000.0, 4000.0));
    EXPECT_EQ(optical.mParameters.value(GgwParam_SupportedResolutions).toQString(), "4000 ");

    // No resolution at all reads as 72.
    SgwTestTiff bare;
    const CgwBitmapHead plain = tiff.loadImageInformation(location(gwWriteTestTiff("bare.tif", bare)), 0);
    EXPECT_EQ(plain.mResolution, QPointF(72.0, 72.0));
    EXPECT_FALSE(plain.mParameters.boolValue(GgwParam_IsHDR, true));
    EXPECT_EQ(CgwImageFileList::instance().imageFileType(location(path), 0), EgwImageFileTIF);
}

TEST(TiffSuite, EachPageLoadsByItsRole)
{
    const SgwTestPage main = page(QSize(13, 7), 16, 3, 0, 1);
    const SgwTestPage reduced = page(QSize(7, 4), 8, 3, 1, 2);
    const SgwTestPage ir = page(QSize(13, 7), 16, 1, 4, 3);
    CgwImageFileTIF tiff;

    const QString two = location(gwWriteTestTiff("two.tif", hdrScan({main, ir}, 1)));
    std::unique_ptr<CgwBitmapBase> bitmap(tiff.loadBitmap(two, 0));
    ASSERT_TRUE(bitmap);
    EXPECT_TRUE(holdsPattern(*bitmap, main, 3));
    bitmap.reset(tiff.loadBitmapIR(two, 0));
    ASSERT_TRUE(bitmap);
    EXPECT_TRUE(holdsPattern(*bitmap, ir, 1));
    EXPECT_EQ(bitmap->colorMode(), EgwColorModeGrey);
    bitmap.reset(tiff.loadPreview(two, 0));
    ASSERT_TRUE(bitmap);
    EXPECT_TRUE(holdsPattern(*bitmap, main, 3)) << "the IR page is no preview";

    const QString three = location(gwWriteTestTiff("three.tif", hdrScan({bigMain(), reduced, ir}, 1)));
    bitmap.reset(tiff.loadBitmapIR(three, 0));
    ASSERT_TRUE(bitmap);
    EXPECT_TRUE(holdsPattern(*bitmap, ir, 1));
    bitmap.reset(tiff.loadHiRePX(three, 0));
    ASSERT_TRUE(bitmap);
    EXPECT_TRUE(holdsPattern(*bitmap, reduced, 3));
    bitmap.reset(tiff.loadPreview(three, 0));
    ASSERT_TRUE(bitmap);
    EXPECT_TRUE(holdsPattern(*bitmap, reduced, 3));

    // A plain second page from another program stands back for the main image.
    SgwTestTiff foreign;
    foreign.pages = {main, page(QSize(5, 5), 8, 3, 0, 9)};
    const QString other = location(gwWriteTestTiff("foreign.tif", foreign));
    bitmap.reset(tiff.loadPage(other, 0, 1));
    ASSERT_TRUE(bitmap);
    EXPECT_TRUE(holdsPattern(*bitmap, main, 3));
    EXPECT_EQ(tiff.irLocation(other), 0);
    EXPECT_EQ(tiff.loadBitmapIR(other, 0), nullptr);
}

TEST(TiffSuite, TheOlderIrPlaneLiesBehindTheData)
{
    const QSize size(11, 6);
    for (bool big : {false, true}) {
        SCOPED_TRACE(big ? "big-endian" : "little-endian");
        QByteArray plane;
        for (int i = 0; i < size.width() * size.height(); ++i) {
            const quint16 v = quint16(i * 611 + 5);
            plane.append(big ? char(v >> 8) : char(v)).append(big ? char(v) : char(v >> 8));
        }
        SgwTestTiff layout = hdrScan({page(size, 8, 3, 0)}, 0);
        layout.bigEndian = big;
        layout.hdri = gwHdriBytes(1, big);
        layout.behind = plane;
        qint64 at = 0;
        gwWriteTestTiff("gw6.tif", layout, &at);
        layout.hdri = gwHdriBytes(quint64(at), big);
        const QString path = location(gwWriteTestTiff("gw6.tif", layout));
        CgwImageFileTIF tiff;
        ASSERT_EQ(tiff.irLocation(path), -1);
        const std::unique_ptr<CgwBitmapBase> ir(tiff.loadBitmapIR(path, 0));
        ASSERT_TRUE(ir);
        ASSERT_EQ(ir->size(), size);
        const auto& grey = dynamic_cast<const CgwBitmapT<CgwPixelGrey16Type>&>(*ir);
        EXPECT_EQ(grey.line(0)[0].s[0], 5);
        EXPECT_EQ(grey.line(5)[10].s[0], quint16(65 * 611 + 5));
    }
}

TEST(TiffSuite, ACutIrPlaneEndsThePlaneWhereTheDataEnds)
{
    SgwTestTiff layout = hdrScan({page(QSize(8, 4), 8, 3, 0)}, 0);
    layout.hdri = gwHdriBytes(1, false);
    layout.behind = QByteArray(8 * 2 * 2, '\x7f'); // two of four rows
    qint64 at = 0;
    gwWriteTestTiff("cut.tif", layout, &at);
    layout.hdri = gwHdriBytes(quint64(at), false);
    const QString path = location(gwWriteTestTiff("cut.tif", layout));
    CgwImageFileTIF tiff;
    const std::unique_ptr<CgwBitmapBase> ir(tiff.loadBitmapIR(path, 0));
    ASSERT_TRUE(ir);
    const auto& grey = dynamic_cast<const CgwBitmapT<CgwPixelGrey16Type>&>(*ir);
    EXPECT_EQ(grey.line(1)[7].s[0], 0x7f7f);
    EXPECT_EQ(grey.line(2)[0].s[0], 0);
    EXPECT_EQ(gwLastLogLine(), "gwDebug: Error: loadBitmapIR_GW6: No more data available");
}

TEST(TiffSuite, RowsAreCroppedWhileDecodingAndColumnsAfter)
{
    const SgwTestPage main = page(QSize(13, 12), 8, 3, 0);
    SgwTestTiff layout;
    layout.pages = {main};
    const QString path = location(gwWriteTestTiff("crop.tif", layout));
    CgwImageFileTIF tiff;
    const CgwRectT<int> crop(2, 6, 10, 11);
    tiff.setCropRect(crop);
    const std::unique_ptr<CgwBitmapBase> bitmap(tiff.loadBitmap(path, 0));
    ASSERT_TRUE(bitmap);
    ASSERT_EQ(bitmap->size(), QSize(8, 5));
    const auto& typed = dynamic_cast<const CgwBitmapT<CgwPixel8x4>&>(*bitmap);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 8; ++x)
            ASSERT_EQ(typed.line(y)[x].s[1], gwTestSample(main, x + 2, y + 6, 1)) << x << "," << y;
    EXPECT_EQ(tiff.cropRect(), crop) << "the caller's rectangle stays as it was";
}

TEST(TiffSuite, ProgressRisesAndCancelStops)
{
    SgwTestTiff layout;
    layout.pages = {page(QSize(9, 23), 8, 3, 0)}; // five stripes of five rows
    const QString path = location(gwWriteTestTiff("progress.tif", layout));
    CgwImageFileTIF tiff;
    QList<int> seen;
    QObject::connect(tiff.progress(), &CgwImportProgress::signalNewImageData, [&](int p) { seen << p; });
    std::unique_ptr<CgwBitmapBase> bitmap(tiff.loadBitmap(path, 0));
    ASSERT_TRUE(bitmap);
    EXPECT_EQ(seen, QList<int>({0, 21, 43, 65, 86}));
    const bool cancel = true;
    tiff.setCancelFlag(&cancel);
    bitmap.reset(tiff.loadBitmap(path, 0));
    EXPECT_FALSE(bitmap);
}

TEST(TiffSuite, CutAndBrokenFilesGiveNothingOrAPartialBitmap)
{
    SgwTestTiff layout = hdrScan({page(QSize(21, 9), 16, 3, 0), page(QSize(21, 9), 16, 1, 4)}, 1);
    const QByteArray whole = gwReadFile(gwWriteTestTiff("whole.tif", layout));
    QStringList files;
    for (int cut = 0; cut < whole.size(); cut += 37)
        files << gwWriteTestFile(QStringLiteral("cut%1.tif").arg(cut), whole.left(cut));
    for (const char* broken : {"libtiff_segfault.tif", "oom-225817ca0f8c663be7ab4b9e717b02c661e66834.tif",
                                  "test_ifd_loop_to_self.tif", "separate_planar_extra_samples.tiff"})
        files << gwCorpusDir() + "/tiff/" + broken;
    for (const QString& file : files) {
        SCOPED_TRACE(file.toStdString());
        CgwImageFileTIF tiff;
        tiff.loadImageInformation(location(file), 0);
        for (CgwBitmapBase* loaded : {tiff.loadBitmap(location(file), 0), tiff.loadBitmapIR(location(file), 0),
                                      tiff.loadPreview(location(file), 0)}) {
            const std::unique_ptr<CgwBitmapBase> bitmap(loaded);
            if (bitmap) {
                EXPECT_GT(bitmap->size().width(), 0);
            }
        }
    }
}
