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
#include <vector>

namespace {

bool writeTiff(const QString& path, const QSize& size)
{
    const CgwTiffHandle tiff(TIFFOpen(QFile::encodeName(path).constData(), "w"));
    if (!tiff)
        return false;
    TIFFSetField(tiff.get(), TIFFTAG_IMAGEWIDTH, quint32(size.width()));
    TIFFSetField(tiff.get(), TIFFTAG_IMAGELENGTH, quint32(size.height()));
    TIFFSetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, 16);
    TIFFSetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, 3);
    TIFFSetField(tiff.get(), TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(tiff.get(), TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff.get(), TIFFTAG_ROWSPERSTRIP, 16);
    std::vector<quint16> row(size_t(size.width()) * 3);
    for (int y = 0; y < size.height(); ++y) {
        for (size_t i = 0; i < row.size(); ++i)
            row[i] = quint16(i * 7 + size_t(y) * 13);
        if (TIFFWriteScanline(tiff.get(), row.data(), quint32(y), 0) < 0)
            return false;
    }
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QSize size(argc > 2 ? std::atoi(argv[1]) : 8000, argc > 2 ? std::atoi(argv[2]) : 6040);
    QTemporaryDir dir;
    const QString path = dir.filePath("scan.tif");
    if (!writeTiff(path, size)) {
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
