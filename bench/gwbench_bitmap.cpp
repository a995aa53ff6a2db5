// Throughput of the bitmap hot paths against a plain memcpy of the same
// bytes, measured in the same run, on a 16-bit RGB bitmap in memory and in
// mapped storage.
//
// Two kinds of run, each against its own memcpy:
//   warm  the target exists and its pages are resident (repeated transfers);
//   cold  the target is made in the timed run, as a scan copies into the
//         host's new bitmap, and every page is touched for the first time;
//         making it counts, since memory storage zeroes its pages there and
//         mapped storage gets them only when they are written.
//
// gwbench_bitmap [megapixels]   (default 51.2)

#include "gwBenchSupport.h"

#include "Sourcen/Image/gwBitmapT.h"

#include <QCoreApplication>

#include <cstdio>
#include <malloc.h>

namespace {

using Rgb16 = CgwBitmapT<CgwPixel16x3>;

// Gives a bitmap's memory back to the system, so that its next creation
// gets new pages.
void release(Rgb16& bitmap)
{
    bitmap.reset(true);
    malloc_trim(0);
}

void runCases(const char* storage, const QSize& size, const SgwMemcpyBaselines& base)
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
    gwReport("setBlock 16-bit RGB", storage, "warm", bytes, gwBestTime(setBlock), base.warm);
    gwReport("setBlock 16-bit RGB", storage, "cold", bytes, gwBestTime([&] {
               target.createBitmap(size, EgwColorModeRGB, 0);
               setBlock();
           }, [&] { release(target); }),
           base.cold);
    gwReport("getBlock whole image", storage, "cold", bytes, gwBestTime([&] {
               delete source.getBlock(CgwRectT<int>(0, 0, size.width(), size.height()), 0);
           }, [] { malloc_trim(0); }),
           base.cold);
    gwReport("setBlock 16-bit to 8-bit RGB", storage, "warm", bytes,
           gwBestTime([&] { target8.setBlock(QPoint(0, 0), source); }), base.warm);
    gwReport("convertColorMode RGB to Lab", storage, "warm", bytes, gwBestTime([&] {
               target.convertColorMode(EgwColorModeLab);
           }, [&] { target.setColorMode(EgwColorModeRGB); }),
           base.warm);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const SgwBenchSetup setup = gwBenchSetup(argc, argv);

    gwRunInMemoryAndMapped([&](const char* storage) { runCases(storage, setup.size, setup.base); });
    return 0;
}
