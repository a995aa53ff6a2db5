// Throughput of the gamma filter from 2.2 to 1.0 over a 16-bit RGB bitmap,
// in place and into a second bitmap, against a plain memcpy of the same
// bytes measured in the same run; and the table built with an empty cache
// against the same table served from the cache.
//
// gwbench_gamma [megapixels]   (default 51.2)

#include "gwBenchSupport.h"

#include "Sourcen/Image/gwBitmapT.h"
#include "processing/gwFilterGamma.h"
#include "settings/gwParamKeys.h"

#include <QCoreApplication>

#include <cstdio>
#include <memory>

namespace {

using Rgb16 = CgwBitmapT<CgwPixel16x3>;

void fill(Rgb16& bitmap)
{
    const QSize size = bitmap.size();
    for (int y = 0; y < size.height(); ++y) {
        const auto row = bitmap.line(y);
        for (int x = 0; x < size.width(); ++x)
            row[x] = CgwPixel16x3{{quint16(x * 7), quint16(y * 3), quint16(x ^ y)}};
    }
}

// A filter taking data of `gammaIn` to linear.
std::unique_ptr<CgwFilterGamma> linearisingFilter(double gammaIn)
{
    auto filter = std::make_unique<CgwFilterGamma>();
    CgwParameterSet params;
    params.setDouble(GgwParam_GammaIn, gammaIn);
    params.setDouble(GgwParam_GammaOut, 1.0);
    filter->setParameters(params);
    return filter;
}

// The table alone: prepareExecute on a small 16-bit bitmap, 65536 entries.
void tableCase()
{
    Rgb16 small;
    small.createBitmap(QSize(4, 4), EgwColorModeRGB, 0);
    const auto build = [&](double gammaIn) {
        const auto filter = linearisingFilter(gammaIn);
        filter->prepareRun({&small});
        const double seconds = gwTimeOnce([&] { filter->prepareExecute({&small}, {&small}); });
        filter->endRun();
        return seconds;
    };
    const double first = build(2.4);  // the cache holds nothing for 2.4 yet
    const double second = build(2.4); // the same gamma again
    std::printf("%-30s first %7.3f ms, cached %7.3f ms, cached run %5.1f x faster\n", "gamma table 65536 steps",
                first * 1e3, second * 1e3, first / second);
}

void runCases(const char* storage, const QSize& size, const SgwMemcpyBaselines& base)
{
    const double bytes = double(size.width()) * size.height() * sizeof(CgwPixel16x3);
    Rgb16 source;
    Rgb16 target;
    if (!source.createBitmap(size, EgwColorModeRGB, 0) || !target.createBitmap(size, EgwColorModeRGB, 0)) {
        std::printf("%s: could not create the bitmaps\n", storage);
        return;
    }
    fill(source);
    fill(target);
    const auto filter = linearisingFilter(2.2);
    gwReport("gamma 2.2 to 1.0 in place", storage, "warm", bytes,
             gwBestTime([&] { filter->run({&source}, {&source}); }), base.warm);
    gwReport("gamma 2.2 to 1.0 into second", storage, "warm", bytes,
             gwBestTime([&] { filter->run({&source}, {&target}); }), base.warm);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const SgwBenchSetup setup = gwBenchSetup(argc, argv);

    tableCase();
    gwRunInMemoryAndMapped([&](const char* storage) { runCases(storage, setup.size, setup.base); });
    return 0;
}
