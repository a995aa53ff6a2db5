#pragma once

#include "processing/gwFilterBase.h"
#include "processing/gwFilterIds.h"

#include <memory>
#include <shared_mutex>

class CgwFilterInterfaceGamma;

// Brings image data from the gamma it carries to a target gamma through one
// lookup table. The user interface edits the live values while a run works
// on the frozen copies taken when it started.
class CgwFilterGamma : public CgwFilterBase
{
    Q_OBJECT

public:
    static constexpr quint32 kTypeCode = 0x67616D30; // 'gam0'

    explicit CgwFilterGamma(const QString& id = gwGammaFilterId(), bool* abortFlag = nullptr);
    ~CgwFilterGamma() override;

    bool setParameterHelper(const CgwParameterSet& params, bool direct) override;
    void validateParameters() override;
    void setDefaults() override;
    CgwFilterBase* clone() const override;
    bool prepareRun(const CgwBitmapList& inBitmaps) override;
    bool prepareExecute(const CgwBitmapList& inBitmaps, const CgwBitmapList& outBitmaps) override;
    bool executeMain(const CgwBitmapList& inBitmaps, const CgwBitmapList& outBitmaps) override;
    bool finishExecute(const CgwBitmapList& inBitmaps, const CgwBitmapList& outBitmaps) override;
    void endRun() override;
    void setParameters(const CgwParameterSet& params) override;
    void getParameters(CgwParameterSet& params) const override;
    bool isNeeded() const override;
    quint32 typeCodeFor(const CgwBitmapBase* bitmap) const override;
    quint32 typeCode() const override;
    CgwFilterInterfaceBase* filterInterface() override;
    QString displayName() const override;

    // Fills lut[0 .. inSteps) with trunc(pow(i / (inSteps - 1), 1 / gamma)
    // * (outSteps - 1) + 0.5); outSteps 0 means inSteps. With `allocate` the
    // table is made here (new[], the caller frees it). The powers are kept
    // in a cache shared by all gamma filters, reused while step count and
    // gamma (within the ratio tolerance) agree.
    template <class T>
    static void fillGammaLutT(quint64 inSteps, double gamma, bool allocate, T*& lut, quint64 outSteps);

    // The live values, as the user interface sees them.
    double gammaIn() const;
    double gammaOut() const;
    bool useBmpGamma() const;
    bool isFrozen() const;
    quint64 lutSteps() const { return mLutSteps; }
    const int* lut() const { return mLut.get(); }

private:
    void frozenGammas(double& source, double& target) const;
    template <class Pixel>
    bool applyLutT(const CgwBitmapBase& in, CgwBitmapBase& out) const;
    bool applyLut(const CgwBitmapBase& in, CgwBitmapBase& out) const;

    double mGammaOut = 2.2;
    double mGammaIn = 1.0;
    bool mUseBmpGamma = false;
    double mFrozenGammaOut = 2.2;
    double mFrozenGammaIn = 1.0;
    bool mFrozenUseBmpGamma = false;
    // Over the six values above and mFrozen. A standard lock, so that the
    // thread checker sees it.
    mutable std::shared_mutex mLock;
    std::unique_ptr<int[]> mLut;
    quint64 mLutSteps = 0;
    double mBitmapGamma = 0.0;
    bool mFrozen = false;
};

extern template void CgwFilterGamma::fillGammaLutT<int>(quint64, double, bool, int*&, quint64);
