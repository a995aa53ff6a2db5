// gwscan [SOURCE] [-o OUT] [--info] [--no-output] [--plugin LIB]
//
// A command-line host: loads the scanner plug-in with QLibrary as the host
// application does, asks it for the scanner "HDR Atelier" and scans SOURCE
// (default: the plug-in's built-in picture) through the scanner interface
// alone. OUT is written by its extension (PNG through Qt, else through the
// image format that lists the extension).

#include "Sourcen/Image/gwBitmapBase.h"
#include "Sourcen/Image/gwColorMode.h"
#include "diagnostics/gwSystem.h"
#include "gwScanHost.h"
#include "gwScanOutput.h"
#include "scanner/gwScannerBase.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>

#include <cstdio>
#include <unistd.h>

namespace {
enum EgwExit {
    kOk = 0,
    kUsage = 1,
    kNoSource = 2,
    kUnknownFormat = 3,
    kScanFailed = 4,
    kNotWritten = 5,
    kNoPlugin = 6,
};

int fail(int code, const QString& message)
{
    std::fprintf(stderr, "gwscan: %s\n", qPrintable(message));
    return code;
}

QString logHint()
{
    const QString folder = CgwSystem::logFolder();
    const QString plain = folder.startsWith(QLatin1String("file:")) ? folder.mid(5) : folder;
    return QStringLiteral("; the log is %1/LogFile.txt").arg(plain);
}

void printInformation(const QString& source, const CgwBitmapHead& info)
{
    std::printf("source:        %s\n", qPrintable(source));
    std::printf("size:          %d x %d pixels\n", info.mSize.width(), info.mSize.height());
    std::printf("resolution:    %g x %g dpi\n", info.mResolution.x(), info.mResolution.y());
    std::printf("colour mode:   %d (%d channels)\n", info.mColorMode, info.mChannels);
    std::printf("bit depth:     %d\n", info.mBitDepth);
    std::printf("gamma:         %g\n", double(info.mGamma));
    std::printf("parameters:\n");
    for (auto it = info.mParameters.begin(); it != info.mParameters.end(); ++it)
        std::printf("  %-30s %s\n", qPrintable(it.key().toQString()),
                    qPrintable(gwReadableValue(it.value().toQString())));
}

// A bar on a terminal, a line a step elsewhere; codes above 100 are the
// scanner's status reports.
class CgwProgressPrinter
{
public:
    CgwProgressPrinter() : mTerminal(isatty(fileno(stderr))) {}

    void report(int percent)
    {
        if (percent == 105) {
            end();
            std::fprintf(stderr, "infrared pass\n");
            return;
        }
        if (percent > 100 || percent == mLast)
            return;
        mLast = percent;
        if (mTerminal) {
            const int filled = percent / 2;
            std::fprintf(stderr, "\r[%.*s%*s] %3d%%", filled, "##################################################",
                         50 - filled, "", percent);
        } else {
            std::fprintf(stderr, "%d%%\n", percent);
        }
        std::fflush(stderr);
    }
    void end()
    {
        if (mTerminal && mLast >= 0)
            std::fprintf(stderr, "\n");
        mLast = -1;
    }

private:
    bool mTerminal;
    int mLast = -1;
};
} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Scans an image file through the HDR import scanner plug-in."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("SOURCE"),
                                 QStringLiteral("image file (default: the built-in picture)"));
    parser.addOption({{QStringLiteral("o"), QStringLiteral("output")}, QStringLiteral("write the scan to OUT"),
                      QStringLiteral("OUT")});
    parser.addOption({QStringLiteral("info"), QStringLiteral("print the scanner information and stop")});
    parser.addOption({QStringLiteral("no-output"), QStringLiteral("scan without writing anything")});
    parser.addOption({QStringLiteral("plugin"), QStringLiteral("the plug-in library"), QStringLiteral("LIB")});
    parser.process(app);
    if (parser.positionalArguments().size() > 1)
        return fail(kUsage, QStringLiteral("one SOURCE at most; see --help"));

    const QString source = parser.positionalArguments().value(0);
    if (!source.isEmpty() && !QFileInfo(source.startsWith(QLatin1String("file:")) ? source.mid(5) : source).isFile())
        return fail(kNoSource, QStringLiteral("no such file: %1").arg(source));
    const QString output = parser.value(QStringLiteral("o"));
    if (output.isEmpty() && !parser.isSet(QStringLiteral("info")) && !parser.isSet(QStringLiteral("no-output")))
        return fail(kUsage, QStringLiteral("say where to write the scan (-o OUT) or give --no-output"));
    QString error;
    if (!output.isEmpty() && !gwCanWriteScan(output, &error))
        return fail(kNotWritten, error);

    CgwScanHost host(parser.value(QStringLiteral("plugin")));
    if (!host.load())
        return fail(kNoPlugin, host.errorString());
    const QString id = QStringLiteral("HDR Atelier");
    if (!host.supports(id))
        return fail(kNoPlugin, QStringLiteral("the plug-in does not offer the scanner \"%1\"").arg(id));
    std::unique_ptr<CgwScannerBase> scanner = host.newScanner();
    scanner->setImageSource(source.isEmpty() ? QString() : gwFileLocation(source));
    const QString shown = source.isEmpty() ? QStringLiteral("the built-in picture") : source;

    // 17: the file import mode the scan asks for.
    const CgwBitmapHead info = scanner->getScannerInformation(nullptr, 9, 17);
    if (info.mSize.isEmpty())
        return fail(kUnknownFormat, QStringLiteral("no image format recognises %1").arg(shown));
    if (parser.isSet(QStringLiteral("info"))) {
        printInformation(shown, info);
        return kOk;
    }

    CgwProgressPrinter progress;
    QObject::connect(scanner.get(), &CgwScannerBase::signalNewImageData,
                     [&progress](int percent, const QString&) { progress.report(percent); });
    bool abort = false;
    QElapsedTimer timer;
    timer.start();
    const SgwHostScan scan = gwHostScan(*scanner, info, &abort);
    progress.report(100);
    progress.end();
    if (!scan.ok || !scan.bitmap || !scan.bitmap->isInitialized())
        return fail(kScanFailed, QStringLiteral("the scan of %1 failed").arg(shown) + logHint());
    std::printf("scanned %s: %d x %d, %d bits, %.0f dpi%s in %lld ms\n", qPrintable(shown),
                scan.bitmap->size().width(), scan.bitmap->size().height(), scan.bitmap->bitDepth(),
                scan.bitmap->resolution().x(), scan.ir ? ", with infrared" : "", timer.elapsed());
    if (output.isEmpty())
        return kOk;
    if (!gwWriteScan(output, *scan.bitmap, scan.ir.get(), &error))
        return fail(kNotWritten, error + logHint());
    std::printf("wrote %s\n", qPrintable(QFileInfo(output).absoluteFilePath()));
    return kOk;
}
