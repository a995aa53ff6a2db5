// The pixel loop of the gamma filter: a table lookup per sample, rows split
// over the worker pool, the abort flag polled before every row.

#include "processing/gwFilterGamma.h"

#include "Sourcen/Image/gwAbortFlag.h"
#include "Sourcen/Image/gwBitmapT.h"
#include "diagnostics/gwDebug.h"

#include <algorithm>
#include <atomic>
#include <limits>
#include <vector>

namespace {

// The types the table serves: 8-bit RGBA and grey, 16-bit RGBA, RGB and grey.
template <class Pixel>
constexpr bool gammaRunsOn()
{
    constexpr int id = gwPixelTypeId<Pixel>();
    return id == 0 || id == 1 || id == 3 || id == 4 || id == 5;
}

// One row through the table. Indices past the table's end take its last
// entry; the test is left out when every sample value has an entry.
template <class Sample, bool clamp>
void mapRow(const Sample* in, Sample* out, qint64 count, const Sample* lut, quint64 lutSteps)
{
    for (qint64 i = 0; i < count; ++i) {
        quint64 index = in[i];
        if (clamp && index >= lutSteps)
            index = lutSteps - 1;
        out[i] = lut[index];
    }
}

} // namespace

template <class Pixel>
bool CgwFilterGamma::applyLutT(const CgwBitmapBase& in, CgwBitmapBase& out) const
{
    using Sample = typename Pixel::SampleType;
    const auto& source = static_cast<const CgwBitmapT<Pixel>&>(in);
    const auto& target = static_cast<const CgwBitmapT<Pixel>&>(out);
    const int width = source.size().width();
    const qint64 samples = qint64(width) * Pixel::kChannels;
    const bool clamp = mLutSteps <= quint64(std::numeric_limits<Sample>::max());
    const quint64 steps = mLutSteps;
    // The entries cast to the sample's width once: a 16-bit table is half
    // the size of the int one and stays in the cache.
    const std::vector<Sample> lut(mLut.get(), mLut.get() + steps);
    std::atomic<bool> stopped{false};

    gwRunOverRows(0, source.size().height(), [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            if (stopped.load(std::memory_order_relaxed) || gwAbortRequested(mAbortFlag)) {
                stopped.store(true, std::memory_order_relaxed);
                return;
            }
            const CgwArrayT<Pixel> inRow = source.line(y);
            const CgwArrayT<Pixel> outRow = target.line(y);
            const auto* from = reinterpret_cast<const Sample*>(&inRow[0]);
            auto* to = reinterpret_cast<Sample*>(&outRow[0]);
            if (clamp)
                mapRow<Sample, true>(from, to, samples, lut.data(), steps);
            else
                mapRow<Sample, false>(from, to, samples, lut.data(), steps);
        }
    });
    return !stopped.load();
}

bool CgwFilterGamma::applyLut(const CgwBitmapBase& in, CgwBitmapBase& out) const
{
    if (out.pixelType() != in.pixelType() || out.size() != in.size()) {
        gwDebugString(QStringLiteral("CgwFilterGamma::executeMain error: outbitmap differs from inbitmap in type or size"));
        return false;
    }
    bool done = false;
    gwDispatchPixelType(in.pixelType(), [&](auto pixel) {
        using Pixel = decltype(pixel);
        if constexpr (gammaRunsOn<Pixel>())
            done = applyLutT<Pixel>(in, out);
    });
    return done;
}

bool CgwFilterGamma::executeMain(const CgwBitmapList& inBitmaps, const CgwBitmapList& outBitmaps)
{
    if (inBitmaps.isEmpty()) {
        gwDebugString(QStringLiteral("CgwFilterGamma::executeMain error: no input bitmap"));
        return false;
    }
    if (outBitmaps.isEmpty()) {
        gwDebugString(QStringLiteral("CgwFilterGamma::executeMain error: not output bitmap"));
        return false;
    }
    CgwBitmapBase* in = inBitmaps.first();
    CgwBitmapBase* out = outBitmaps.first();
    if (!in || !out) {
        gwDebugString(QStringLiteral("CgwFilterGamma::executeMain error: in- or outbitmap is null"));
        return false;
    }
    double source = 0.0;
    double target = 0.0;
    frozenGammas(source, target);
    if (target != 0.0 && !differsByRatio(source, target)) {
        return in == out || out->setBlock(QPoint(0, 0), *in);
    }
    if (!mLut || mLutSteps == 0) {
        gwDebugString(QStringLiteral("CgwFilterGamma::executeMain : Error: Gamma LUT is empty!"));
        return false;
    }
    return applyLut(*in, *out);
}
