// The import scan as a host application drives it: the plug-in loaded with
// QLibrary, the scanner made by its exported factory, the host's own bitmaps.

#include "Sourcen/Image/gwBitmapT.h"
#include "Sourcen/Image/gwColorMode.h"
#include "imagefile/gwImageFileList.h"
#include "imagefile/gwImageFileScan.h"
#include "imagefile/gwTestTiff.h"
#include "scanner/gwScannerBase.h"
#include "settings/gwParamKeys.h"
#include "support/gwCorpus.h"
#include "support/gwTestEnv.h"
#include "gwScanHost.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QProcess>
#include <QSignalSpy>
#include <QThread>

#include <cmath>
#include <functional>

#include <gtest/gtest.h>

namespace {

CgwScanHost& host()
{
    static CgwScanHost library;
    static const bool loaded = library.load();
    EXPECT_TRUE(loaded) << qPrintable(library.errorString());
    return library;
}

std::unique_ptr<CgwScannerBase> scannerFor(const QString& location)
{
    std::unique_ptr<CgwScannerBase> scanner = host().newScanner();
    scanner->setImageSource(location);
    return scanner;
}

// The log lines written since `from` (a gwLogLineCount), by both copies of
// the core: the plug-in's and this program's write to the same file.
QString logSince(int from)
{
    const QList<QByteArray> lines = gwReadFile(gwTestLogPath()).split('\n');
    return QString::fromUtf8(lines.mid(from).join('\n'));
}

// An RGB bitmap the host sized itself, for sources without information.
std::unique_ptr<CgwBitmapBase> hostSizedBitmap(const QSize& size)
{
    auto bitmap = std::make_unique<CgwBitmapT<CgwPixel8x4>>();
    bitmap->setColorMode(EgwColorModeRGB);
    bitmap->setScanSize(size);
    bitmap->setScannerMode(9);
    return bitmap;
}

// What a host's viewer hears from a background scan.
class ScanReceiver : public QObject
{
    Q_OBJECT

public:
    QList<int> codes;
    bool finished() const { return !codes.isEmpty() && codes.last() >= 100; }

Q_SIGNALS:
    void signalStopBitmapLoadingThreads();

public Q_SLOTS:
    void slotNewImageData(int percent, QString) { codes << percent; }
};

// Serves queued signals until `done` holds or `ms` have passed.
bool waitFor(const std::function<bool()>& done, int ms)
{
    QElapsedTimer timer;
    timer.start();
    while (!done() && timer.elapsed() < ms) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(5);
    }
    return done();
}

QString corpusLocation(const QString& file)
{
    return gwFileLocation(gwCorpusDir() + QLatin1Char('/') + file);
}

} // namespace

TEST(HdrImport, CorpusFilesArriveAsTheirFormatsReadThem)
{
    const struct {
        const char* file;
        int channels;
        int pixelType; // the host's choice for the information
    } cases[] = {
        {"jpeg/hopper.jpg", 3, 0},
        {"bmp/g_rgb24.bmp", 3, 0},
        {"tiff/tiff_16bit_RGB.tiff", 3, 3},
        {"tiff/minisblack-1c-16b.tiff", 1, 5},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        const QString location = corpusLocation(QString::fromLatin1(c.file));
        const SgwCorpusReference reference = gwCorpusReferences(QString::fromLatin1(c.file).section('/', 0, 0))
                                                 .value(QString::fromLatin1(c.file).section('/', 1));
        std::unique_ptr<CgwScannerBase> scanner = scannerFor(location);
        const CgwBitmapHead info = scanner->getScannerInformation(nullptr, 0, 17);
        bool abort = false;
        const SgwHostScan scan = gwHostScan(*scanner, info, &abort);
        ASSERT_TRUE(scan.ok);
        EXPECT_EQ(scan.bitmap->pixelType(), c.pixelType);
        EXPECT_EQ(scan.bitmap->size(), QSize(reference.width, reference.height));
        EXPECT_EQ(scan.bitmap->getLegalRectBottom(), reference.height);
        EXPECT_EQ(gwSampleHash(*scan.bitmap, c.channels), reference.sha256);
        // The resolution is the file's, or 72 where it has none.
        const CgwImageFileList& formats = CgwImageFileList::instance();
        std::unique_ptr<CgwImageFileBase> format(formats.createImageFile(formats.imageFileType(location, 0)));
        const QPointF own = format->loadImageInformation(location, 0).mResolution;
        EXPECT_EQ(scan.bitmap->resolution(), own.isNull() ? QPointF(72, 72) : own);
    }
}

TEST(HdrImport, InformationReportsTheFileAsAScanner)
{
    // A JFIF header with an aspect ratio alone (unit 0): the resolution is unknown.
    QImage image(9, 5, QImage::Format_RGB32);
    image.fill(Qt::gray);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    ASSERT_TRUE(image.save(&buffer, "JPEG"));
    QByteArray bytes = buffer.data();
    const int jfif = bytes.indexOf(QByteArray("JFIF\0", 5));
    ASSERT_GT(jfif, 0);
    bytes.replace(jfif + 7, 5, QByteArray("\0\0\1\0\1", 5));
    const QString bare = gwWriteTestFile(QStringLiteral("bare.jpg"), bytes);

    const struct {
        QString source;
        QPointF resolution;
        QStringList values; // key=value, "-" for a key that must be missing
    } cases[] = {
        {QString(), {300, 300},
         {"MaxResAllowed=600", "UnitDivisor=300", "InternalScannerID=HDR Atelier", "VendorAndScannerID=5767170",
          "InternalScannerNameMake=HDR", "InternalScannerNameModel=Atelier", "SupportedResolutions=-"}},
        {gwFileLocation(bare), {72, 72},
         {"MaxResAllowed=144", "UnitDivisor=72", "SupportedResolutions=72", "HighestResolutionMaxPixels=9 5"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.source.toStdString());
        const CgwBitmapHead info = scannerFor(c.source)->getScannerInformation(nullptr, 0, 17);
        EXPECT_EQ(info.mResolution, c.resolution);
        for (const QString& entry : c.values) {
            const QString key = entry.section('=', 0, 0), expected = entry.section('=', 1);
            const QString value = info.mParameters.value(key).toQString();
            EXPECT_EQ((info.mParameters.hasKey(key) ? gwReadableValue(value) : QStringLiteral("-")).toStdString(),
                      expected.toStdString())
                << key.toStdString();
        }
    }
}

TEST(HdrImport, OnlyActiveModes17And18LetAScanRun)
{
    const QString location = corpusLocation(QStringLiteral("bmp/g_rgb24.bmp"));
    const struct {
        int activeMode;
        bool scans;
    } cases[] = {{16, false}, {0, false}, {19, false}, {17, true}, {18, true}, {0, true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.activeMode);
        std::unique_ptr<CgwScannerBase> scanner = scannerFor(location);
        const CgwBitmapHead info = scanner->getScannerInformation(nullptr, 0, c.activeMode);
        const int from = gwLogLineCount();
        EXPECT_EQ(gwHostScan(*scanner, info, nullptr).ok, c.scans);
        EXPECT_EQ(logSince(from).contains("CgwScannerHDRImport::startScanHDRImport : Error: Unsupported scanner mode!"),
                  !c.scans);
    }
}

TEST(HdrImport, ScanEndings)
{
    // A sample precision of 3 bits: libjpeg gives up at once, by its error exit.
    QByteArray corrupt = gwReadFile(gwCorpusDir() + QStringLiteral("/jpeg/hopper.jpg"));
    corrupt[corrupt.indexOf("\xff\xc0") + 4] = 3;
    const struct {
        QString source;
        bool ok;
        const char* logLine;
    } cases[] = {
        {gwFileLocation(gwWriteTestFile(QStringLiteral("note.txt"), "no image in here")), true, nullptr},
        {QStringLiteral("abcd"), false, "L659 Error: Filename does not exist"},
        {gwFileLocation(gwWriteTestFile(QStringLiteral("corrupt.jpg"), corrupt)), false,
         "CgwScannerHDRImport::startScanHDRImport: Error: Could not load image!"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.source.toStdString());
        std::unique_ptr<CgwScannerBase> scanner = scannerFor(c.source);
        scanner->getScannerInformation(nullptr, 0, 17);
        QSignalSpy codes(scanner.get(), SIGNAL(signalNewImageData(int, QString)));
        std::unique_ptr<CgwBitmapBase> bitmap = hostSizedBitmap(QSize(6, 4));
        bool abort = false;
        const int from = gwLogLineCount();
        EXPECT_EQ(scanner->startScan(bitmap.get(), &abort, nullptr, nullptr), c.ok);
        if (c.ok) {
            // Nothing could read it: the bitmap stays as prepared, blank.
            ASSERT_TRUE(bitmap->isInitialized());
            EXPECT_EQ(bitmap->getData(), QByteArray(6 * 4 * 4, '\0'));
        } else {
            EXPECT_TRUE(logSince(from).contains(c.logLine)) << qPrintable(logSince(from));
            ASSERT_FALSE(codes.isEmpty());
            EXPECT_EQ(codes.last().value(0).toInt(), 104);
        }
    }
}

TEST(HdrImport, HdrFilesArriveLinearAndInfraredFollows)
{
    SgwTestPage main;
    main.size = QSize(16, 9);
    main.bits = 16;
    SgwTestPage infrared = main;
    infrared.samples = 1;
    infrared.subfileType = 4;
    infrared.seed = 3;
    SgwTestTiff layout;
    layout.pages = {main, infrared};
    layout.software = QStringLiteral("Glimmerway 8.2.1 r5 b");
    layout.makerNote = true;
    layout.hdrMark = 1;
    layout.gamma = 22000;

    for (int kind : {1, 0}) {
        SCOPED_TRACE(kind);
        layout.hdrKind = kind; // only the kind with 0xC00F is taken back to linear
        std::unique_ptr<CgwScannerBase> scanner = scannerFor(gwWriteTestTiff(QStringLiteral("hdr.tif"), layout));
        const CgwBitmapHead info = scanner->getScannerInformation(nullptr, 0, 17);
        ASSERT_TRUE(info.mParameters.boolValue(GgwParam_ScanModeSupportsIR, false));
        QSignalSpy codes(scanner.get(), SIGNAL(signalNewImageData(int, QString)));
        const SgwHostScan scan = gwHostScan(*scanner, info, nullptr);
        ASSERT_TRUE(scan.ok);
        EXPECT_FLOAT_EQ(scan.bitmap->gamma(), kind ? 1.0f : 2.2f);
        const auto linear = [kind](double v) { return kind ? std::pow(v / 65535.0, 2.2) * 65535.0 : v; };
        const auto& rgb = dynamic_cast<const CgwBitmapT<CgwPixel16x4>&>(*scan.bitmap);
        for (int y = 0; y < main.size.height(); ++y)
            for (int x = 0; x < main.size.width(); ++x)
                for (int c = 0; c < 3; ++c) {
                    ASSERT_NEAR(rgb.line(y)[x].s[c], linear(gwTestSample(main, x, y, c)), 1.0) << x << "," << y;
                }
        // The infrared pass is an import of its own, with the same gamma rule.
        ASSERT_TRUE(scan.ir);
        const auto& ir = dynamic_cast<const CgwBitmapT<CgwPixelGrey16Type>&>(*scan.ir);
        EXPECT_NEAR(ir.line(8)[15].s[0], linear(gwTestSample(infrared, 15, 8, 0)), 1.0);
        QList<int> statuses;
        for (const QList<QVariant>& code : codes)
            if (code.value(0).toInt() >= 100)
                statuses << code.value(0).toInt();
        EXPECT_EQ(statuses, QList<int>{105});
    }
}

TEST(HdrImport, BackgroundScanReportsProgressThenTheEnd)
{
    SgwTestTiff layout;
    layout.pages[0].size = QSize(64, 400); // 80 stripes
    layout.pages[0].bits = 16;
    std::unique_ptr<CgwScannerBase> scanner = scannerFor(gwWriteTestTiff(QStringLiteral("tall.tif"), layout));
    CgwImageFileScan format(scanner.get());
    const QString path = QStringLiteral("scnr:HDR Atelier");
    ASSERT_EQ(format.loadImageInformation(path, 17).mSize, QSize(64, 400)); // the offset stands for the mode

    ScanReceiver receiver;
    SgwLoadThreadRequest request;
    request.receiver = &receiver;
    std::unique_ptr<CgwBitmapBase> bitmap(format.loadBitmapThread(path, 0, request));
    ASSERT_TRUE(bitmap);
    ASSERT_TRUE(waitFor([&] { return receiver.finished(); }, 20000));
    EXPECT_EQ(receiver.codes.last(), 100);
    EXPECT_GT(receiver.codes.size(), 10);
    for (int i = 1; i < receiver.codes.size(); ++i)
        EXPECT_LT(receiver.codes[i - 1], receiver.codes[i]);
    EXPECT_EQ(bitmap->getLegalRectBottom(), 400);
    const auto& rgb = dynamic_cast<const CgwBitmapT<CgwPixel16x3>&>(*bitmap);
    for (int c = 0; c < 3; ++c)
        EXPECT_EQ(rgb.line(399)[63].s[c], gwTestSample(layout.pages[0], 63, 399, c));
    const QString log = logSince(0);
    EXPECT_TRUE(log.contains("*** Log of scan ***"));
    EXPECT_TRUE(log.contains("Wanted size of normal exposure-scan in pixels: 64 x 400"));
}

TEST(HdrImport, BackgroundScanStopsWhenTheHostAsks)
{
    std::unique_ptr<CgwScannerBase> scanner = scannerFor(QString());
    scanner->getScannerInformation(nullptr, 0, 17); // gives the table row up when done
    CgwImageFileScan format(scanner.get());
    const QString path = QStringLiteral("scnr:HDR Atelier");
    // The request comes as parameters, so the scan starts without asking
    // the scanner first; another scanner holds the table row, so the scan
    // waits for it until the host gives up.
    CgwParameterSet parameters;
    parameters.setValue(GgwParam_ImageSize, CgwQString(QStringLiteral("64 40")));
    parameters.setLongLong(GgwParam_ImageColorMode, EgwColorModeRGB);
    parameters.setLongLong(GgwParam_ImageBitDepth, 8);
    format.setParameter(parameters);
    std::unique_ptr<CgwScannerBase> other = host().newScanner();
    QSignalSpy waiting(scanner.get(), SIGNAL(signalConnectorWaitingStarted()));
    ScanReceiver receiver;
    SgwLoadThreadRequest request;
    request.receiver = &receiver;
    std::unique_ptr<CgwBitmapBase> bitmap(format.loadBitmapThread(path, 0, request));
    ASSERT_TRUE(bitmap);
    ASSERT_TRUE(waitFor([&] { return waiting.count() == 1; }, 5000));
    emit receiver.signalStopBitmapLoadingThreads();
    ASSERT_TRUE(waitFor([&] { return receiver.finished(); }, 5000));
    EXPECT_EQ(receiver.codes, QList<int>{103});
    EXPECT_FALSE(bitmap->isInitialized());
}

TEST(ScanFormat, RequestFollowsItsParameters)
{
    const struct {
        const char* resolution; // null: no ImageResolution in the set
        int colorMode;
        QPointF wantedResolution;
        int wantedMode;
        const char* logLine; // null: nothing logged
    } cases[] = {
        {"1 1", 0, {1, 1}, 0, nullptr},
        {"0.99 300", 0, {72, 72}, 0, "this->mBitmapInfo.mResolution had to be reset to 72.0."},
        {nullptr, 1, {72, 72}, 1, nullptr},
        {"300 300", 6, {300, 300}, 3, nullptr},
        {"300 300", 7, {300, 300}, 3, "Warning: Dismissing alpha channel!"},
        {"300 300", 2, {300, 300}, 3, "Error: Unsupported color mode!"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.resolution ? c.resolution : "none");
        CgwParameterSet parameters;
        if (c.resolution)
            parameters.setValue(GgwParam_ImageResolution, CgwQString(QString::fromLatin1(c.resolution)));
        if (c.colorMode)
            parameters.setLongLong(GgwParam_ImageColorMode, c.colorMode);
        CgwImageFileScan format;
        const int from = gwLogLineCount();
        format.setParameter(parameters);
        EXPECT_EQ(format.request().mResolution, c.wantedResolution);
        EXPECT_EQ(format.request().mColorMode, c.wantedMode);
        EXPECT_EQ(logSince(from).contains(QString::fromLatin1(c.logLine ? c.logLine : "CgwImageFileScan")),
                  c.logLine != nullptr);
        // A clone asks for the same, the defaults of the passing keys included.
        std::unique_ptr<CgwImageFileBase> copy(format.clone());
        CgwParameterSet mine, its;
        format.getParameter(mine);
        copy->getParameter(its);
        EXPECT_EQ(its, mine);
        EXPECT_EQ(gwReadableValue(its.value(GgwParam_MultiImageIndex).toQString()), QStringLiteral("1"));
    }
    CgwImageFileScan format;
    EXPECT_TRUE(format.isFormat(QStringLiteral("scnr:HDR Atelier"), nullptr));
    EXPECT_FALSE(format.isFormat(QStringLiteral("SCNR:HDR Atelier"), nullptr));
}

TEST(Gwscan, AnswersWithAnExitCodeAndOneLine)
{
    const QString png = gwTestRoot() + QStringLiteral("/scan.png");
    const QString note = gwWriteTestFile(QStringLiteral("words.txt"), "no image in here");
    const struct {
        QStringList arguments;
        int exitCode;
        const char* out; // in standard output, or the one line of standard error
    } cases[] = {
        {{QStringLiteral("/no/such/file.jpg"), QStringLiteral("--no-output")}, 2, "gwscan: no such file: /no/such/file.jpg"},
        {{note, QStringLiteral("--no-output")}, 3, "gwscan: no image format recognises"},
        {{QStringLiteral("--info")}, 0, "MaxResAllowed                  600"},
        {{QStringLiteral("-o"), png}, 0, "scanned the built-in picture: 640 x 420, 8 bits, 300 dpi"},
        {{QStringLiteral("-o"), gwTestRoot() + QStringLiteral("/scan.xyz")}, 5, "gwscan: no image format writes \".xyz\" files"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments.join(' ').toStdString());
        QProcess gwscan;
        gwscan.start(QStringLiteral(GW_GWSCAN_PATH), c.arguments);
        ASSERT_TRUE(gwscan.waitForFinished(60000));
        EXPECT_EQ(gwscan.exitCode(), c.exitCode);
        const QByteArray out = c.exitCode ? gwscan.readAllStandardError() : gwscan.readAllStandardOutput();
        EXPECT_TRUE(out.contains(c.out)) << out.toStdString();
        if (c.exitCode) {
            EXPECT_EQ(out.count('\n'), 1) << out.toStdString();
        }
    }
    EXPECT_EQ(QImage(png).size(), QSize(640, 420));
}

#include "test_hdrimport.moc"
