// TIFF load against libtiff's own tiffcp copying the same file in the same
// run: an uncompressed 16-bit RGB TIFF of about 290 MB (8000 x 6040),
// loaded into bitmaps in memory and in mapped files. The file is read once
// before timing, so both sides read from the page cache; tiffcp's time
// includes starting the process and writing its copy.
//
// gwbench_tiff [width height]   (default 8000 x 6040)

#include "gwBenchSupport.h"

#include "imagefile/gwImageFileTIF.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QSize size(argc > 2 ? std::atoi(argv[1]) : 8000, argc > 2 ? std::atoi(argv[2]) : 6040);
    QTemporaryDir dir;
    const QString path = dir.filePath("scan.tif");
    if (!gwWriteBenchTiff(path, size)) {
        std::printf("could not write %s\n", qPrintable(path));
        return 1;
    }
    const double bytes = double(QFile(path).size());
    std::printf("%d x %d 16-bit RGB, uncompressed TIFF of %.1f MB\n", size.width(), size.height(), bytes / 1e6);

    const QString copy = dir.filePath("copy.tif");
    const double tiffcp = gwBestTime([&] {
        QProcess process;
        process.start("tiffcp", {path, copy});
        process.waitForFinished(-1);
    });
    QFile::remove(copy);
    std::printf("%-22s %8.1f ms\n", "tiffcp", tiffcp * 1e3);
    gwRunInMemoryAndMapped([&](const char* storage) {
        const double load = gwBestTime([&] { delete CgwImageFileTIF().loadBitmap("file:" + path, 0); });
        std::printf("%-22s %8.1f ms   %5.2f x tiffcp   (%s)\n", "loadBitmap", load * 1e3, load / tiffcp, storage);
    });
    return 0;
}
