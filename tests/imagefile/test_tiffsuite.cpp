// The suite's own TIFF layout: which page is which, the HDR mark, the
// maker note's values, the older IR plane, libtiff's messages.

#include "Sourcen/Image/gwBitmapT.h"
#include "gwTestTiff.h"
#include "imagefile/gwImageFileList.h"
#include "imagefile/gwImageFileTIF.h"
#include "settings/gwParamKeys.h"
#include "support/gwCorpus.h"
#include "support/gwTestEnv.h"

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
SgwTestPage bigMain(QSize size = QSize(4000, 2501))
{
    SgwTestPage p = page(size, 8, 1, 0);
    p.pixels = false;
    return p;
}

SgwTestTiff hdrScan(std::vector<SgwTestPage> pages, quint64 hdri = 0)
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

// Every sample of `bitmap` against the pattern of `p`, in the first
// `channels` slots.
bool holdsPattern(const CgwBitmapBase* bitmap, const SgwTestPage& p, int channels)
{
    if (!bitmap || bitmap->size() != p.size)
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
    return gwSampleBytes(*bitmap, channels) == expected;
}

quint16 greyAt(const CgwBitmapBase& bitmap, int x, int y)
{
    return dynamic_cast<const CgwBitmapT<CgwPixelGrey16Type>&>(bitmap).line(y)[x].s[0];
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
        CgwImageFileTIF tiff;
        EXPECT_EQ(tiff.irLocation(gwWriteTestTiff("layout.tif", hdrScan(c.pages, c.hdri))), c.expected);
        // Without the HDR mark no layout has an IR channel.
        SgwTestTiff plain = hdrScan(c.pages, c.hdri);
        plain.hdrMark = 0;
        EXPECT_EQ(tiff.irLocation(gwWriteTestTiff("plain.tif", plain)), 0);
    }
}

TEST(TiffSuite, HiRePXPagesBeginAboveTenMillionPixels)
{
    const struct {
        QSize main;
        quint32 secondType;
        bool expected;
    } cases[] = {
        {QSize(4000, 2500), 1, false},   // exactly 10,000,000
        {QSize(4000, 2501), 1, true},
        {QSize(4000, 2501), 0, false},   // the second page is no reduced view
        {QSize(65536, 65537), 1, false}, // the product wraps to 65,536
        {QSize(70000, 70000), 1, true},  // wraps to 605,032,704
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.main.width());
        SgwTestPage second = page(QSize(400, 250), 8, 3, c.secondType);
        second.resolution = 40.0;
        SgwTestTiff layout;
        layout.pages = {bigMain(c.main), second};
        double resolution[2] = {0.0, 0.0};
        int size[2] = {0, 0};
        EXPECT_EQ(CgwImageFileTIF().hiRepxInfo(gwWriteTestTiff("hirepx.tif", layout), resolution, size), c.expected);
        if (c.expected) {
            EXPECT_EQ(QSize(size[0], size[1]), QSize(400, 250));
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
        {kOurs, 1, 0, true, 1.0f, true},                 // HDR without a gamma record is linear
        {"OtherScan 3.1", 1, 22000, false, 2.2f, false}, // a foreign program's claim is removed
        {"glimmerway 8.2.1 r5 b", 1, 0, false, 0.0f, false},
        {kOurs, 0, 0, false, 0.0f, true},
        {kOurs, 2, 0, false, 0.0f, true}, // unknown value: warned about, counts as no
    };
    for (const auto& c : cases) {
        SCOPED_TRACE((c.software + QStringLiteral(" mark %1").arg(c.mark)).toStdString());
        SgwTestTiff layout = hdrScan({page(QSize(13, 7), 16, 3, 0)});
        layout.software = c.software;
        layout.hdrMark = c.mark;
        layout.gamma = c.gamma;
        const QString path = gwWriteTestTiff("hdr.tif", layout);
        const int linesBefore = gwLogLineCount();
        CgwImageFileTIF tiff;
        const CgwBitmapHead head = tiff.loadImageInformation(path, 0);
        EXPECT_EQ(head.mParameters.boolValue(GgwParam_IsHDR, !c.hdr), c.hdr);
        EXPECT_FLOAT_EQ(head.mGamma, c.expectedGamma);
        bool found = false;
        head.mExif.getGWMakerNotValueByTag(0xC005, &found);
        EXPECT_EQ(found, c.markKept);
        if (c.mark == 2)
            EXPECT_TRUE(gwLastLogLine().endsWith("WARNING - unrecognized makernote-value."));
        else
            EXPECT_EQ(gwLogLineCount(), linesBefore);
        const std::unique_ptr<CgwBitmapBase> bitmap(tiff.loadBitmap(path, 0));
        ASSERT_TRUE(bitmap);
        EXPECT_EQ(bitmap->parameters().boolValue(GgwParam_IsHDR, !c.hdr), c.hdr);
        EXPECT_FLOAT_EQ(bitmap->gamma(), c.expectedGamma);
    }
}

TEST(TiffSuite, TheHeadCarriesWhatTheFileSays)
{
    SgwTestTiff layout = hdrScan({page(QSize(13, 7), 16, 3, 0)});
    layout.pages[0].resolution = 300.0;
    layout.film = QByteArray("Fuji").leftJustified(96, '\0') + QByteArray("Velvia").leftJustified(96, '\0') + "100";
    layout.iptc = QByteArray("\x1c\x02\x78\x00\x0cHarbour 1962", 17);
    const CgwTiffHandle withProfile = gwTiffOpenHandle("file:" + gwCorpusDir() + "/tiff/hopper.iccprofile.tif", 1, 0);
    if (withProfile)
        layout.icc = gwTiffFieldBytes(withProfile.get(), TIFFTAG_ICCPROFILE);
    layout.vendor = 3;
    layout.scanner = 17;
    const QString path = gwWriteTestTiff("suite.tif", layout);
    CgwImageFileTIF tiff;
    const CgwBitmapHead head = tiff.loadImageInformation(path, 0);
    EXPECT_EQ(head.mSize, QSize(13, 7));
    EXPECT_EQ(head.mBitDepth, 16);
    EXPECT_EQ(head.mColorMode, EgwColorModeRGB);
    EXPECT_EQ(head.mResolution, QPointF(300.0, 300.0));
    const CgwParameterSet& p = head.mParameters;
    EXPECT_EQ(p.value(GgwParam_SupportedResolutions).toQString(), "300 ");
    EXPECT_EQ(p.value(GgwParam_HighestResolutionMaxPixels).toQString(), "13 7 ");
    EXPECT_EQ(p.value(GgwParam_ScannerModes).toQString(), "9 ");
    EXPECT_EQ(p.longLongValue(GgwParam_VendorAndScannerID, 0), 3 * 65536 + 17);
    EXPECT_EQ(p.stringValue(GgwParam_General_CreatorVersion, ""), "8.2.1r5");
    EXPECT_EQ(QStringList({p.stringValue(GgwParam_FilmVendor, ""), p.stringValue(GgwParam_FilmBrand, ""),
                           p.stringValue(GgwParam_FilmType, "")}),
              QStringList({"Fuji", "Velvia", "100"}));
    EXPECT_FALSE(p.boolValue(GgwParam_HasHiRePX, true));
    EXPECT_FALSE(p.boolValue(GgwParam_ScanModeSupportsIR, true));
    EXPECT_EQ(head.mIptc.value(0x0278), "Harbour 1962");
    EXPECT_EQ(head.mProfile.isValid(), !layout.icc.isEmpty());
    EXPECT_EQ(CgwImageFileList::instance().imageFileType(path, 0), EgwImageFileTIF);

    // The optical resolution of the note replaces the tags' resolution.
    layout.optical = 4000;
    const CgwBitmapHead optical = tiff.loadImageInformation(gwWriteTestTiff("optical.tif", layout), 0);
    EXPECT_EQ(optical.mResolution, QPointF(4000.0, 4000.0));
    EXPECT_EQ(optical.mParameters.value(GgwParam_SupportedResolutions).toQString(), "4000 ");
    // No resolution at all reads as 72.
    EXPECT_EQ(tiff.loadImageInformation(gwWriteTestTiff("bare.tif", SgwTestTiff()), 0).mResolution, QPointF(72, 72));
}

TEST(TiffSuite, EachPageLoadsByItsRole)
{
    const SgwTestPage main = page(QSize(13, 7), 16, 3, 0, 1);
    const SgwTestPage reduced = page(QSize(7, 4), 8, 3, 1, 2);
    const SgwTestPage ir = page(QSize(13, 7), 16, 1, 4, 3);
    SgwTestTiff foreign; // a plain second page from another program stands back for the main image
    foreign.pages = {main, page(QSize(5, 5), 8, 3, 0, 9)};
    const QString two = gwWriteTestTiff("two.tif", hdrScan({main, ir}, 1));
    const QString three = gwWriteTestTiff("three.tif", hdrScan({bigMain(), reduced, ir}, 1));
    const QString other = gwWriteTestTiff("foreign.tif", foreign);
    CgwImageFileTIF tiff;
    using Load = CgwBitmapBase* (*)(CgwImageFileTIF&, const QString&);
    const Load bitmap = [](CgwImageFileTIF& t, const QString& p) { return t.loadBitmap(p, 0); };
    const Load infrared = [](CgwImageFileTIF& t, const QString& p) { return t.loadBitmapIR(p, 0); };
    const Load preview = [](CgwImageFileTIF& t, const QString& p) { return t.loadPreview(p, 0); };
    const Load hiRepx = [](CgwImageFileTIF& t, const QString& p) { return t.loadHiRePX(p, 0); };
    const Load second = [](CgwImageFileTIF& t, const QString& p) { return t.loadPage(p, 0, 1); };
    const struct {
        const char* what;
        const QString& path;
        Load load;
        const SgwTestPage* expected; // null: no bitmap
        int channels;
    } cases[] = {
        {"main", two, bitmap, &main, 3},          {"IR as second page", two, infrared, &ir, 1},
        {"preview of two", two, preview, &main, 3}, {"IR as third page", three, infrared, &ir, 1},
        {"HiRePX", three, hiRepx, &reduced, 3},   {"preview of three", three, preview, &reduced, 3},
        {"foreign second", other, second, &main, 3}, {"foreign IR", other, infrared, nullptr, 0},
    };
    for (const auto& c : cases) {
        const std::unique_ptr<CgwBitmapBase> loaded(c.load(tiff, c.path));
        if (c.expected)
            EXPECT_TRUE(holdsPattern(loaded.get(), *c.expected, c.channels)) << c.what;
        else
            EXPECT_FALSE(loaded) << c.what;
    }
}

TEST(TiffSuite, TheOlderIrPlaneLiesBehindTheData)
{
    const QSize size(11, 6);
    for (bool big : {false, true}) {
        SCOPED_TRACE(big ? "big-endian" : "little-endian");
        SgwTestTiff layout = hdrScan({page(size, 8, 3, 0)});
        layout.bigEndian = big;
        for (int i = 0; i < size.width() * size.height(); ++i) {
            const quint16 v = quint16(i * 611 + 5);
            layout.behind.append(big ? char(v >> 8) : char(v)).append(big ? char(v) : char(v >> 8));
        }
        const QString path = gwWriteTestTiff("gw6.tif", layout);
        CgwImageFileTIF tiff;
        ASSERT_EQ(tiff.irLocation(path), -1);
        const std::unique_ptr<CgwBitmapBase> ir(tiff.loadBitmapIR(path, 0));
        ASSERT_TRUE(ir);
        ASSERT_EQ(ir->size(), size);
        EXPECT_EQ(greyAt(*ir, 0, 0), 5);
        EXPECT_EQ(greyAt(*ir, 10, 5), quint16(65 * 611 + 5));
    }
    // A plane cut short ends where its data ends.
    SgwTestTiff layout = hdrScan({page(QSize(8, 4), 8, 3, 0)});
    layout.behind = QByteArray(8 * 2 * 2, '\x7f'); // two of four rows
    const std::unique_ptr<CgwBitmapBase> cut(CgwImageFileTIF().loadBitmapIR(gwWriteTestTiff("cut.tif", layout), 0));
    ASSERT_TRUE(cut);
    EXPECT_EQ(greyAt(*cut, 7, 1), 0x7f7f);
    EXPECT_EQ(greyAt(*cut, 0, 2), 0);
    EXPECT_EQ(gwLastLogLine(), "gwDebug: Error: loadBitmapIR_GW6: No more data available");
    // A page of 65536 x 4096 pixels over a byte of data: neither it nor its
    // plane of a few bytes becomes a bitmap of half a gigabyte.
    layout = hdrScan({bigMain(QSize(1 << 16, 1 << 12))});
    layout.behind = QByteArray(64, '\x7f');
    const QString huge = gwWriteTestTiff("huge.tif", layout);
    EXPECT_EQ(std::unique_ptr<CgwBitmapBase>(CgwImageFileTIF().loadBitmap(huge, 0)), nullptr);
    EXPECT_EQ(std::unique_ptr<CgwBitmapBase>(CgwImageFileTIF().loadBitmapIR(huge, 0)), nullptr);
}

TEST(TiffSuite, CropProgressCancelAndOffset)
{
    const SgwTestPage main = page(QSize(13, 23), 8, 3, 0); // five stripes of five rows
    SgwTestTiff layout;
    layout.pages = {main};
    const QString path = gwWriteTestTiff("crop.tif", layout);
    CgwImageFileTIF tiff;
    QList<int> seen;
    QObject::connect(tiff.progress(), &CgwImportProgress::signalNewImageData, [&](int p) { seen << p; });
    std::unique_ptr<CgwBitmapBase> bitmap(tiff.loadBitmap(path, 0));
    EXPECT_EQ(seen, QList<int>({0, 21, 43, 65, 86}));

    // Rows are cropped while decoding, columns afterwards.
    const CgwRectT<int> crop(2, 6, 10, 11);
    tiff.setCropRect(crop);
    bitmap.reset(tiff.loadBitmap(path, 0));
    ASSERT_TRUE(bitmap);
    ASSERT_EQ(bitmap->size(), QSize(8, 5));
    const auto& typed = dynamic_cast<const CgwBitmapT<CgwPixel8x4>&>(*bitmap);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 8; ++x)
            ASSERT_EQ(typed.line(y)[x].s[1], gwTestSample(main, x + 2, y + 6, 1)) << x << "," << y;
    EXPECT_EQ(tiff.cropRect(), crop) << "the caller's rectangle stays as it was";
    tiff.clearCropRect();

    // A TIFF behind other bytes is read from its header on.
    const QString embedded = gwWriteTestFile("embedded.bin", QByteArray(333, 'x') + gwReadFile(path.mid(5)));
    bitmap.reset(tiff.loadBitmap("file:" + embedded, 333));
    EXPECT_TRUE(holdsPattern(bitmap.get(), main, 3));
    EXPECT_FALSE(gwTiffOpenHandle("file:" + embedded, 1, 0)) << "junk where the header should be";

    const bool cancel = true;
    tiff.setCancelFlag(&cancel);
    EXPECT_FALSE(std::unique_ptr<CgwBitmapBase>(tiff.loadBitmap(path, 0)));
}

TEST(TiffSuite, DirectoriesAreCountedUpToAHundred)
{
    for (const auto& [pages, count] : {std::pair{100, 100}, {105, 100}}) {
        SgwTestTiff layout;
        layout.pages.assign(size_t(pages), page(QSize(4, 3), 8, 1, 0));
        EXPECT_EQ(gwTiffDirectoryCount(gwWriteTestTiff("pages.tif", layout)), count) << pages;
    }
    const QString missing = "file:" + gwTestRoot() + "/missing.tif";
    EXPECT_EQ(gwTiffDirectoryCount(missing), 0);
    EXPECT_EQ(gwLastLogLine(), "gwDebug: Error: directoryCount: " + missing.toUtf8());
}

TEST(TiffSuite, LibtiffWarningsReachTheLogOnceErrorsNever)
{
    // The film tag renumbered to 40000: a tag libtiff does not know.
    SgwTestTiff layout;
    layout.film = "film";
    const QString film = gwWriteTestTiff("film.tif", layout);
    QByteArray bytes = gwReadFile(film.mid(5));
    bytes.replace(QByteArray("\xac\x89\x01\x00", 4), QByteArray("\x40\x9c\x01\x00", 4));
    const QString unknown = "file:" + gwWriteTestFile("unknown.tif", bytes);
    const QString broken = "file:" + gwWriteTestFile("broken.tif", bytes.left(16)); // the directory is gone
    const int before = gwLogLineCount();
    for (int i = 0; i < 3; ++i) {
        gwTiffOpenHandle(unknown, 1, 0);
        gwTiffOpenHandle(film, 1, 0); // read without the private tags merged: noise
        EXPECT_FALSE(gwTiffOpenHandle(broken, 1, 0));
    }
    const QStringList seen = gwTiffSeenMessages();
    const auto mentions = [&](const char* text) {
        return std::count_if(seen.begin(), seen.end(), [&](const QString& m) { return m.contains(text); });
    };
    EXPECT_EQ(mentions("40000"), 1);
    EXPECT_EQ(mentions("0x89ac"), 1);
    EXPECT_EQ(gwLogLineCount(), before + 1);
    EXPECT_TRUE(gwLastLogLine().contains("40000"));
}
