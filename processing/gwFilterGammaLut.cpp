#include "processing/gwFilterGamma.h"

#include "diagnostics/gwAssert.h"
#include "diagnostics/gwDebug.h"

#include <cmath>
#include <memory>
#include <mutex>
#include <new>

namespace {

// The powers of the last gamma, shared by every gamma filter: previews of a
// scan repeat the same gamma, and 65536 calls of pow are what it saves.
struct SgwGammaCache {
    std::mutex mutex;
    quint64 steps = 0;
    double gamma = 0.0;
    std::unique_ptr<double[]> table;
};

SgwGammaCache& gammaCache()
{
    static SgwGammaCache sCache;
    return sCache;
}

} // namespace

template <class T>
void CgwFilterGamma::fillGammaLutT(quint64 inSteps, double gamma, bool allocate, T*& lut, quint64 outSteps)
{
    if (outSteps == 0)
        outSteps = inSteps;
    if (outSteps > inSteps) {
        gwDebugString(QStringLiteral("CgwFilterGamma::fillGammaLutT : Warning: Output- higher than input- step "
                                     "count. Currently not supported, using input step count."));
        outSteps = inSteps;
    }
    if (allocate)
        lut = new (std::nothrow) T[inSteps];
    if (!lut)
        return;

    const double last = double(inSteps - 1);
    const double scale = double(outSteps - 1);
    const double exponent = 1.0 / gamma;
    SgwGammaCache& cache = gammaCache();
    std::lock_guard<std::mutex> locker(cache.mutex);
    const bool valid = cache.table && !differsByRatio(cache.gamma, gamma) && cache.steps == inSteps;
    if (!valid) {
        cache.table.reset();
        cache.gamma = gamma;
        cache.steps = inSteps;
        cache.table.reset(new (std::nothrow) double[inSteps]);
        if (!cache.table) {
            gwDebug("%s: Unable to cache Gamma LUT for gamma %.2f with %llu steps.", GW_FUNCTION_SIGNATURE, gamma,
                    static_cast<unsigned long long>(inSteps));
            for (quint64 i = 0; i < inSteps; ++i)
                lut[i] = T(std::trunc(std::pow(double(i) / last, exponent) * scale + 0.5));
            return;
        }
        double* powers = cache.table.get();
        for (quint64 i = 0; i < inSteps; ++i)
            powers[i] = std::pow(double(i) / last, exponent);
    }
    const double* powers = cache.table.get();
    for (quint64 i = 0; i < inSteps; ++i)
        lut[i] = T(std::trunc(powers[i] * scale + 0.5));
}

template void CgwFilterGamma::fillGammaLutT<int>(quint64, double, bool, int*&, quint64);
