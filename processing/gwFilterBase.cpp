#include "processing/gwFilterBase.h"

#include "Sourcen/Image/gwAbortFlag.h"
#include "Sourcen/Image/gwBitmapBase.h"
#include "diagnostics/gwDebug.h"
#include "processing/gwFilterInterfaceBase.h"

#include <cmath>

void gwLogFilterNotImplemented(const char* where, const QString& id)
{
    gwDebugString(QStringLiteral("%1 : Warning: Method is not implemented in sub class for filter with ID \"%2\".")
                      .arg(QLatin1String(where), id));
}

CgwFilterBase::CgwFilterBase(const QString& id, bool* abortFlag, qint32 maskId)
    : mMaskId(maskId), mId(id), mAbortFlag(abortFlag)
{
    static const int sRequestType = qRegisterMetaType<SgwFilterActionRequest>("SgwFilterActionRequest");
    Q_UNUSED(sRequestType);
}

CgwFilterBase::~CgwFilterBase()
{
    delete mInterface;
}

bool CgwFilterBase::setParameterHelper(const CgwParameterSet&, bool)
{
    gwLogFilterNotImplemented("CgwFilterBase::setParameterHelper", mId);
    return false;
}

void CgwFilterBase::validateParameters()
{
    gwLogFilterNotImplemented("CgwFilterBase::setParameterHelper", mId);
}

bool CgwFilterBase::prepareRun(const CgwBitmapList&)
{
    return true;
}

bool CgwFilterBase::operation8(const CgwBitmapList&, const CgwBitmapList&)
{
    return true;
}

bool CgwFilterBase::finishExecute(const CgwBitmapList&, const CgwBitmapList&)
{
    mChanged.store(abortRequested());
    return true;
}

void CgwFilterBase::endRun() {}

void CgwFilterBase::operation13() {}

bool CgwFilterBase::isNeededForBitmap(const CgwBitmapBase*) const
{
    return isNeeded();
}

bool CgwFilterBase::isNotNeeded() const
{
    return !isNeeded();
}

int CgwFilterBase::filterKind() const
{
    return -1;
}

CgwFilterInterfaceBase* CgwFilterBase::filterInterface()
{
    return nullptr;
}

bool CgwFilterBase::hasDialog(bool& hasOwnDialog) const
{
    hasOwnDialog = false;
    return true;
}

QString CgwFilterBase::displayName() const
{
    return mId;
}

QPair<int, int> CgwFilterBase::supportedBitmapRange() const
{
    return {};
}

bool CgwFilterBase::run(const CgwBitmapList& inBitmaps, const CgwBitmapList& outBitmaps)
{
    if (!prepareRun(inBitmaps)) {
        endRun();
        return false;
    }
    const bool done = prepareExecute(inBitmaps, outBitmaps) && executeMain(inBitmaps, outBitmaps)
                      && finishExecute(inBitmaps, outBitmaps);
    endRun();
    return done;
}

bool CgwFilterBase::differsByRatio(double oldValue, double newValue)
{
    if (newValue == 0.0)
        return oldValue != 0.0;
    return std::fabs(1.0 - oldValue / newValue) > kRatioTolerance;
}

void CgwFilterBase::slotAlgorithmProgress(int progressUpdate)
{
    emit signalFilterProgressUpdate(progressUpdate);
}

bool CgwFilterBase::abortRequested() const
{
    return gwAbortRequested(mAbortFlag);
}
