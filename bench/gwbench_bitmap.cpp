// Throughput of the bitmap hot paths against a plain memcpy of the same
// bytes, measured in the same run, on a 16-bit RGB bitmap in memory and in
// mapped storage.
//
// Two kinds of run, each against its own memcpy:
//   warm  the target exists and its pages are resident (repeated transfers);
//   cold  the target is made for the run, as a scan copies into the host's
//         new bitmap, and every page is touched for the first time.
//
// gwbench_bitmap [megapixels]   (default 51.2)

#include "Sourcen/Image/gwBitmapT.h"
#include "settings/gwFilterOptions.h"
#include "settings/gwParamKeys.h"

#include <QCoreApplication>
#include <QThread>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <malloc.h>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using Rgb16 = CgwBitmapT<CgwPixel16x3>;

// Best of three after one warm-up run, in seconds; `prepare` runs before
// each run, outside the timing.
double bestTime(const std::function<void()>& work, const std::function<void()>& prepare = {})
{
    double best = 1e30;
    for (int i = 0; i < 4; ++i) {
        if (prepare)
            prepare();
        const auto start = Clock::now();
        work();
        const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
        if (i > 0)
            best = std::min(best, seconds);
    }
    return best;
}

struct Baselines {
    double warm;
    double cold;
};

Baselines memcpyTimes(size_t bytes)
{
    std::vector<char> from(bytes, 1);
    std::vector<char> resident(bytes, 2);
    char* fresh = nullptr;
    Baselines b;
    b.warm = bestTime([&] { std::memcpy(resident.data(), from.data(), bytes); });
    b.cold = bestTime([&] { std::memcpy(fresh, from.data(), bytes); }, [&] {
        std::free(fresh);
        fresh = static_cast<char*>(std::malloc(bytes));
    });
    std::free(fresh);
    return b;
}

void report(const char* name, const char* storage, const char* kind, double bytes, double seconds, double baseline)
{
    std::printf("%-30s %-6s %-4s %8.0f MB/s  %5.2f x memcpy\n", name, storage, kind, bytes / seconds / 1e6,
                baseline / seconds);
}

// A bitmap made anew, its memory given back to the system first so that
// every page is new.
void remake(Rgb16& bitmap, const QSize& size)
{
    bitmap.reset(true);
    malloc_trim(0);
    bitmap.createBitmap(size, EgwColorModeRGB, 0);
}

void runCases(const char* storage, const QSize& size, const Baselines& base)
{
    const double bytes = double(size.width()) * size.height() * sizeof(CgwPixel16x3);
    Rgb16 source;
    Rgb16 target;
    CgwBitmapT<CgwPixel8x4> target8;
    if (!source.createBitmap(size, EgwColorModeRGB, 0) || !target.createBitmap(size, EgwColorModeRGB, 0)
        || !target8.createBitmap(size, EgwColorModeRGB, 0)) {
        std::printf("%s: could not create the bitmaps\n", storage);
        return;
    }
    for (int y = 0; y < size.height(); ++y) {
        const auto row = source.line(y);
        for (int x = 0; x < size.width(); ++x)
            row[x] = CgwPixel16x3{{quint16(x * 7), quint16(y * 3), quint16(x ^ y)}};
    }
    const auto setBlock = [&] { target.setBlock(QPoint(0, 0), source); };
    report("setBlock 16-bit RGB", storage, "warm", bytes, bestTime(setBlock), base.warm);
    report("setBlock 16-bit RGB", storage, "cold", bytes, bestTime(setBlock, [&] { remake(target, size); }), base.cold);
    report("getBlock whole image", storage, "cold", bytes, bestTime([&] {
               delete source.getBlock(CgwRectT<int>(0, 0, size.width(), size.height()), 0);
           }, [] { malloc_trim(0); }),
           base.cold);
    report("setBlock 16-bit to 8-bit RGB", storage, "warm", bytes,
           bestTime([&] { target8.setBlock(QPoint(0, 0), source); }), base.warm);
    report("convertColorMode RGB to Lab", storage, "warm", bytes, bestTime([&] {
               target.convertColorMode(EgwColorModeLab);
           }, [&] { target.setColorMode(EgwColorModeRGB); }),
           base.warm);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const double megapixels = argc > 1 ? std::atof(argv[1]) : 51.2;
    const int width = 8000;
    const QSize size(width, int(megapixels * 1e6 / width));
    const size_t bytes = size_t(size.width()) * size.height() * sizeof(CgwPixel16x3);
    std::printf("16-bit RGB bitmap %d x %d (%.1f million pixels, %.0f MB), %d worker threads\n", size.width(),
                size.height(), size.width() * double(size.height()) / 1e6, bytes / 1e6, QThread::idealThreadCount());
    const Baselines base = memcpyTimes(bytes);
    std::printf("%-30s %-6s %-4s %8.0f MB/s\n", "memcpy", "", "warm", bytes / base.warm / 1e6);
    std::printf("%-30s %-6s %-4s %8.0f MB/s\n", "memcpy", "", "cold", bytes / base.cold / 1e6);

    CgwFilterOptions::instance().setOption(GgwParam_MMFRamLimit, 1 << 20);
    runCases("memory", size, base);
    CgwFilterOptions::instance().setOption(GgwParam_MMFRamLimit, 0);
    runCases("mapped", size, base);
    return 0;
}
