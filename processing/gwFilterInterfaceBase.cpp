#include "processing/gwFilterInterfaceBase.h"

#include "settings/gwParamKeys.h"

CgwFilterInterfaceBase::CgwFilterInterfaceBase(CgwFilterBase* filter) : mFilter(filter)
{
    static const int sParamsType = qRegisterMetaType<CgwParameterSet>("CgwParameterSet");
    Q_UNUSED(sParamsType);
}

CgwFilterInterfaceBase::~CgwFilterInterfaceBase() = default;

void CgwFilterInterfaceBase::slotAllowUserInteraction(bool allowUserInteraction)
{
    mAllowUserInteraction = allowUserInteraction;
}

void CgwFilterInterfaceBase::slotPrescanStateChanged(bool isPrescanRunning)
{
    mPrescanRunning = isPrescanRunning;
    updateFromFilter();
}

void CgwFilterInterfaceBase::setDefaultsAndUpdate()
{
    mFilter->setDefaults();
    updateFromFilter();
}

void CgwFilterInterfaceBase::getFilterParameters(CgwParameterSet& params) const
{
    mFilter->getParameters(params);
}

void CgwFilterInterfaceBase::slotToggleExpert(int expertLevel)
{
    emit signalExpertToggled(expertLevel);
}

void CgwFilterInterfaceBase::slotColorModeChanged(EgwColorMode) {}

void CgwFilterInterfaceBase::operation7() {}

void CgwFilterInterfaceBase::slotPerformAction(const QString&, const SgwFilterActionRequest&)
{
    gwLogFilterNotImplemented("CgwFilterInterfaceBase::slotPerformAction", mFilter->id());
}

void CgwFilterInterfaceBase::slotSetParams(const QString& filterId, const CgwParameterSet& inParamSetRef)
{
    if (filterId != mFilter->id())
        return;
    const bool single = inParamSetRef.count() == 1;
    if (mFilter->setParameterHelper(inParamSetRef, true)) {
        mFilter->setChanged(true);
        // A lone change of a key that needs no new image is not sent on;
        // the others make the owner fetch the filter's whole set again.
        if (!(single && isSizeIndependentParameter(inParamSetRef.firstKey()))) {
            mFilter->getParameters(mParams);
            emit signalFilterParameterChanged(mParams);
        }
        if (!(single && inParamSetRef.hasKey(GgwParam_FilterCopyOnly))) {
            updateFromFilter();
            emit signalUpdate();
        }
    } else if (inParamSetRef.hasKey(GgwParam_IsAutoMode) || inParamSetRef.hasKey(GgwParam_IsNeutralizeMode)) {
        updateFromFilter();
    }
}

void CgwFilterInterfaceBase::operation10() {}

void CgwFilterInterfaceBase::updateFromFilter()
{
    gwLogFilterNotImplemented("CgwFilterInterfaceBase::updateFromFilter", mFilter->id());
}

void CgwFilterInterfaceBase::operation12() {}

void CgwFilterInterfaceBase::operation13() {}

bool CgwFilterInterfaceBase::isSizeIndependentParameter(const QString& key) const
{
    return key != GgwParam_FilterNewSizeFull && key != GgwParam_FilterNewColorMode
           && key != GgwParam_FilterNewPixelType;
}

void CgwFilterInterfaceBase::slotUpdateUIAndImageFromFilter(const CgwParameterSet& paramSet)
{
    slotSetParams(mFilter->id(), paramSet);
}

void CgwFilterInterfaceBase::slotUpdateParameterInSaveMenu(CgwParameterSet& params)
{
    getFilterParameters(params);
}

void CgwFilterInterfaceBase::slotSetAuto100pPreview(bool) {}

void CgwFilterInterfaceBase::slotSetMaskID(qint32 maskId)
{
    mFilter->setMaskId(maskId);
}

void CgwFilterInterfaceBase::slotEditStarted()
{
    emit signalPrepareUndoFilter();
}

void CgwFilterInterfaceBase::slotEditEnded()
{
    emit signalSendParamForUndoFilter();
}

void CgwFilterInterfaceBase::slotSendParamAtStartEdit()
{
    getFilterParameters(mParams);
    emit signalSendParamForUndoFilter();
}
