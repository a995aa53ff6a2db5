#include "gwBenchSupport.h"

#include "imagefile/gwTiffIO.h"
#include "settings/gwFilterOptions.h"
#include "settings/gwParamKeys.h"

#include <QFile>
#include <QThread>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {
using Clock = std::chrono::steady_clock;
}

double gwTimeOnce(const std::function<void()>& work)
{
    const auto start = Clock::now();
    work();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double gwBestTime(const std::function<void()>& work, const std::function<void()>& prepare)
{
    double best = 1e30;
    for (int i = 0; i < 4; ++i) {
        if (prepare)
            prepare();
        const double seconds = gwTimeOnce(work);
        if (i > 0)
            best = std::min(best, seconds);
    }
    return best;
}

SgwMemcpyBaselines gwMemcpyTimes(size_t bytes)
{
    std::vector<char> from(bytes, 1);
    std::vector<char> resident(bytes, 2);
    char* fresh = nullptr;
    SgwMemcpyBaselines b;
    b.warm = gwBestTime([&] { std::memcpy(resident.data(), from.data(), bytes); });
    b.cold = gwBestTime([&] { std::memcpy(fresh, from.data(), bytes); }, [&] {
        std::free(fresh);
        fresh = static_cast<char*>(std::malloc(bytes));
    });
    std::free(fresh);
    return b;
}

void gwPrintBaselines(size_t bytes, const SgwMemcpyBaselines& base)
{
    std::printf("%-30s %-6s %-4s %8.0f MB/s\n", "memcpy", "", "warm", bytes / base.warm / 1e6);
    std::printf("%-30s %-6s %-4s %8.0f MB/s\n", "memcpy", "", "cold", bytes / base.cold / 1e6);
}

void gwReport(const char* name, const char* storage, const char* kind, double bytes, double seconds, double baseline)
{
    std::printf("%-30s %-6s %-4s %8.0f MB/s  %5.2f x memcpy\n", name, storage, kind, bytes / seconds / 1e6,
                baseline / seconds);
}

SgwBenchSetup gwBenchSetup(int argc, char** argv)
{
    const double megapixels = argc > 1 ? std::atof(argv[1]) : 51.2;
    const int width = 8000;
    SgwBenchSetup setup;
    setup.size = QSize(width, int(megapixels * 1e6 / width));
    setup.bytes = size_t(setup.size.width()) * size_t(setup.size.height()) * 6;
    std::printf("16-bit RGB bitmap %d x %d (%.1f million pixels, %.0f MB), %d worker threads\n", setup.size.width(),
                setup.size.height(), setup.size.width() * double(setup.size.height()) / 1e6, setup.bytes / 1e6,
                QThread::idealThreadCount());
    setup.base = gwMemcpyTimes(setup.bytes);
    gwPrintBaselines(setup.bytes, setup.base);
    return setup;
}

void gwRunInMemoryAndMapped(const std::function<void(const char*)>& cases)
{
    CgwFilterOptions::instance().setOption(GgwParam_MMFRamLimit, 1 << 20);
    cases("memory");
    CgwFilterOptions::instance().setOption(GgwParam_MMFRamLimit, 0);
    cases("mapped");
}

bool gwWriteBenchTiff(const QString& path, const QSize& size)
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

qint64 gwPeakResidentBytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').value(0).toLongLong() * 1024;
    return -1;
}

void gwResetPeakResident()
{
    // "5" resets the peak to the present resident size (Linux 4.0 and later).
    QFile refs(QStringLiteral("/proc/self/clear_refs"));
    if (refs.open(QIODevice::WriteOnly))
        refs.write("5");
}
