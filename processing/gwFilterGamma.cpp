#include "processing/gwFilterGamma.h"

#include "Sourcen/Image/gwBitmapBase.h"
#include "diagnostics/gwDebug.h"
#include "processing/gwFilterInterfaceGamma.h"
#include "settings/gwFilterOptions.h"
#include "settings/gwParamKeys.h"

#include <QCoreApplication>

#include <cmath>
#include <mutex>
#include <cstring>

namespace {

bool insideGammaRange(double gamma)
{
    return gamma >= CgwFilterOptions::kMinimumGamma && gamma <= CgwFilterOptions::kMaximumGamma;
}

// Reads `key` into `value` when the set has it; true when that changes it.
bool takeGamma(const CgwParameterSet& params, const QString& key, double compareWith, double& value)
{
    if (!params.hasKey(key))
        return false;
    const double given = params.doubleValue(key, compareWith);
    if (!CgwFilterBase::differsByRatio(compareWith, given))
        return false;
    value = given;
    return true;
}

} // namespace

CgwFilterGamma::CgwFilterGamma(const QString& id, bool* abortFlag) : CgwFilterBase(id, abortFlag)
{
    setDefaults();
}

CgwFilterGamma::~CgwFilterGamma() = default;

bool CgwFilterGamma::setParameterHelper(const CgwParameterSet& params, bool direct)
{
    // Both ways take the lock: the running thread reads the live values when
    // it finishes, so even the direct way from the user interface must not
    // write them unguarded.
    std::unique_lock<std::shared_mutex> locker(mLock);
    const bool againstFrozen = !direct && mFrozen;
    bool changed = false;
    double gamma = 0.0;
    if (takeGamma(params, GgwParam_GammaIn, againstFrozen ? mFrozenGammaIn : mGammaIn, gamma)) {
        mGammaIn = gamma;
        if (!direct)
            mFrozenGammaIn = gamma;
        changed = true;
    }
    if (takeGamma(params, GgwParam_GammaOut, againstFrozen ? mFrozenGammaOut : mGammaOut, gamma)) {
        mGammaOut = gamma;
        if (!direct)
            mFrozenGammaOut = gamma;
        changed = true;
    }
    const bool oldUse = againstFrozen ? mFrozenUseBmpGamma : mUseBmpGamma;
    if (params.hasKey(GgwParam_UseBmpGamma) && params.boolValue(GgwParam_UseBmpGamma, oldUse) != oldUse) {
        mUseBmpGamma = !oldUse;
        if (!direct)
            mFrozenUseBmpGamma = !oldUse;
        changed = true;
    }
    return changed;
}

void CgwFilterGamma::validateParameters()
{
    std::unique_lock<std::shared_mutex> locker(mLock);
    if (!insideGammaRange(mGammaIn)) {
        mGammaIn = 1.0;
        gwDebugString(QStringLiteral("Warning: CgwFilterGamma has reset input gamma value to default."));
    } else if (!insideGammaRange(mGammaOut)) {
        mGammaOut = CgwFilterOptions::instance().gamma();
        gwDebugString(QStringLiteral("Warning: CgwFilterGamma has reset target gamma value to default."));
    }
}

void CgwFilterGamma::setDefaults()
{
    const double target = CgwFilterOptions::instance().gamma();
    std::unique_lock<std::shared_mutex> locker(mLock);
    mGammaIn = 1.0;
    mGammaOut = target;
    mUseBmpGamma = false;
}

CgwFilterBase* CgwFilterGamma::clone() const
{
    auto* copy = new CgwFilterGamma(mId, mAbortFlag);
    std::shared_lock<std::shared_mutex> locker(mLock);
    copy->mGammaOut = mGammaOut;
    copy->mGammaIn = mGammaIn;
    copy->mUseBmpGamma = mUseBmpGamma;
    copy->mFrozenGammaOut = mFrozenGammaOut;
    copy->mFrozenGammaIn = mFrozenGammaIn;
    copy->mFrozenUseBmpGamma = mFrozenUseBmpGamma;
    copy->mFrozen = mFrozen;
    copy->mBitmapGamma = mBitmapGamma;
    if (mLut) {
        copy->mLut.reset(new int[mLutSteps]);
        std::memcpy(copy->mLut.get(), mLut.get(), mLutSteps * sizeof(int));
        copy->mLutSteps = mLutSteps;
    }
    return copy;
}

bool CgwFilterGamma::prepareRun(const CgwBitmapList& inBitmaps)
{
    if (!inBitmaps.isEmpty() && inBitmaps.first())
        mBitmapGamma = double(inBitmaps.first()->gamma());
    std::unique_lock<std::shared_mutex> locker(mLock);
    mFrozenGammaOut = mGammaOut;
    mFrozenGammaIn = mGammaIn;
    mFrozenUseBmpGamma = mUseBmpGamma;
    mFrozen = true;
    return true;
}

void CgwFilterGamma::frozenGammas(double& source, double& target) const
{
    std::shared_lock<std::shared_mutex> locker(mLock);
    source = mFrozenUseBmpGamma ? mBitmapGamma : mFrozenGammaIn;
    target = mFrozenGammaOut;
}

bool CgwFilterGamma::prepareExecute(const CgwBitmapList& inBitmaps, const CgwBitmapList&)
{
    double source = 0.0;
    double target = 0.0;
    frozenGammas(source, target);
    if (target == 0.0 || source == 0.0 || inBitmaps.isEmpty() || !inBitmaps.first())
        return false;
    if (mInterface)
        static_cast<CgwFilterInterfaceGamma*>(mInterface)->sendBitmapGamma(QString::asprintf("%.2f", mBitmapGamma));
    if (!differsByRatio(source, target))
        return true;
    // Float samples have no table; 2^32 entries would only waste memory.
    const int bits = inBitmaps.first()->bitDepth();
    if (bits < 1 || bits > 16) {
        gwDebugString(QStringLiteral("CgwFilterGamma::prepareExecute : Error: no gamma table for %1 bits per sample.")
                          .arg(bits));
        return false;
    }
    const quint64 steps = quint64(std::pow(2.0, bits));
    if (steps != mLutSteps) {
        mLut.reset(new int[steps]());
        mLutSteps = steps;
    }
    int* lut = mLut.get();
    fillGammaLutT(steps, target / source, false, lut, 0);
    return true;
}

bool CgwFilterGamma::finishExecute(const CgwBitmapList&, const CgwBitmapList& outBitmaps)
{
    std::shared_lock<std::shared_mutex> locker(mLock);
    if (!outBitmaps.isEmpty() && outBitmaps.first())
        outBitmaps.first()->setGamma(float(mFrozenGammaOut));
    const bool editedMeanwhile = differsByRatio(mFrozenGammaOut, mGammaOut)
                                 || differsByRatio(mFrozenGammaIn, mGammaIn) || mFrozenUseBmpGamma != mUseBmpGamma;
    mChanged.store(editedMeanwhile || abortRequested());
    return true;
}

void CgwFilterGamma::endRun()
{
    std::unique_lock<std::shared_mutex> locker(mLock);
    mFrozen = false;
}

void CgwFilterGamma::setParameters(const CgwParameterSet& params)
{
    if (!setParameterHelper(params, false))
        return;
    validateParameters();
    mChanged.store(true);
}

void CgwFilterGamma::getParameters(CgwParameterSet& params) const
{
    std::shared_lock<std::shared_mutex> locker(mLock);
    params.setDouble(GgwParam_GammaIn, double(float(mFrozen ? mFrozenGammaIn : mGammaIn)));
    params.setDouble(GgwParam_GammaOut, double(float(mFrozen ? mFrozenGammaOut : mGammaOut)));
    params.setBool(GgwParam_UseBmpGamma, mFrozen ? mFrozenUseBmpGamma : mUseBmpGamma);
}

bool CgwFilterGamma::isNeeded() const
{
    std::shared_lock<std::shared_mutex> locker(mLock);
    if (!mFrozen)
        return mUseBmpGamma || differsByRatio(mGammaIn, mGammaOut);
    return differsByRatio(mFrozenUseBmpGamma ? mBitmapGamma : mFrozenGammaIn, mFrozenGammaOut);
}

quint32 CgwFilterGamma::typeCodeFor(const CgwBitmapBase*) const
{
    return typeCode();
}

quint32 CgwFilterGamma::typeCode() const
{
    return kTypeCode;
}

CgwFilterInterfaceBase* CgwFilterGamma::filterInterface()
{
    if (!mInterface)
        mInterface = new CgwFilterInterfaceGamma(this);
    return mInterface;
}

QString CgwFilterGamma::displayName() const
{
    return QCoreApplication::translate("CgwFilterGamma", "Gamma",
                                       "For displaying the filter name in status widget while processing 1:1");
}

double CgwFilterGamma::gammaIn() const
{
    std::shared_lock<std::shared_mutex> locker(mLock);
    return mGammaIn;
}

double CgwFilterGamma::gammaOut() const
{
    std::shared_lock<std::shared_mutex> locker(mLock);
    return mGammaOut;
}

bool CgwFilterGamma::useBmpGamma() const
{
    std::shared_lock<std::shared_mutex> locker(mLock);
    return mUseBmpGamma;
}

bool CgwFilterGamma::isFrozen() const
{
    std::shared_lock<std::shared_mutex> locker(mLock);
    return mFrozen;
}
