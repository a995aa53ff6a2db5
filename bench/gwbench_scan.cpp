// The import scan through the plug-in against loading the same file with the
// TIFF format alone: the difference is the transfer into the host's bitmap.
// An uncompressed 16-bit RGB TIFF of about 290 MB (8000 x 6040), read once
// before timing so both sides read from the page cache. Peak resident
// memory is measured for each side from a reset peak.
//
// gwbench_scan [width height]   (default 8000 x 6040)

#include "gwBenchSupport.h"

#include "Sourcen/Image/gwBitmapBase.h"
#include "gwScanHost.h"
#include "imagefile/gwImageFileTIF.h"
#include "scanner/gwScannerBase.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>

namespace {
void printPeak(const char* name, qint64 base, double imageBytes)
{
    const qint64 peak = gwPeakResidentBytes() - base;
    std::printf("%-28s peak memory above the start %7.1f MB = %4.2f x the file's pixels\n", name, peak / 1e6,
                peak / imageBytes);
}
} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QSize size(argc > 2 ? std::atoi(argv[1]) : 8000, argc > 2 ? std::atoi(argv[2]) : 6040);
    QTemporaryDir dir;
    const QString location = QStringLiteral("file:") + dir.filePath("scan.tif");
    if (!gwWriteBenchTiff(location.mid(5), size)) {
        std::printf("could not write %s\n", qPrintable(location));
        return 1;
    }
    const double bytes = double(QFile(location.mid(5)).size());
    std::printf("%d x %d 16-bit RGB, uncompressed TIFF of %.1f MB\n", size.width(), size.height(), bytes / 1e6);

    CgwScanHost host;
    if (!host.load()) {
        std::printf("%s\n", qPrintable(host.errorString()));
        return 1;
    }
    std::unique_ptr<CgwScannerBase> scanner = host.newScanner();
    scanner->setImageSource(location);
    const CgwBitmapHead info = scanner->getScannerInformation(nullptr, 0, 17);

    gwResetPeakResident();
    qint64 base = gwPeakResidentBytes();
    const double load = gwBestTime([&] { delete CgwImageFileTIF().loadBitmap(location, 0); });
    printPeak("loadBitmap (TIFF alone)", base, bytes);

    SgwHostScan scan;
    gwResetPeakResident();
    base = gwPeakResidentBytes();
    const double scanned = gwBestTime([&] { scan = gwHostScan(*scanner, info, nullptr); },
                                      [&] { scan = SgwHostScan(); });
    printPeak("startScan (through plug-in)", base, bytes);
    if (!scan.ok) {
        std::printf("the scan failed\n");
        return 1;
    }
    std::printf("%-28s %8.1f ms\n", "loadBitmap (TIFF alone)", load * 1e3);
    std::printf("%-28s %8.1f ms   %5.2f x loading alone\n", "startScan (through plug-in)", scanned * 1e3,
                scanned / load);
    return 0;
}
