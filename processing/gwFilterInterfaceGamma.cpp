#include "processing/gwFilterInterfaceGamma.h"

#include "processing/gwFilterGamma.h"
#include "settings/gwParamKeys.h"

CgwFilterInterfaceGamma::CgwFilterInterfaceGamma(CgwFilterGamma* filter) : CgwFilterInterfaceBase(filter) {}

CgwFilterInterfaceGamma::~CgwFilterInterfaceGamma() = default;

CgwFilterGamma* CgwFilterInterfaceGamma::gammaFilter() const
{
    return static_cast<CgwFilterGamma*>(mFilter);
}

void CgwFilterInterfaceGamma::updateFromFilter()
{
    emit signalSetGammaIn(gammaFilter()->gammaIn());
    emit signalSetGammaOut(gammaFilter()->gammaOut());
    emit signalUseInBmpGamma(gammaFilter()->useBmpGamma());
}

void CgwFilterInterfaceGamma::sendBitmapGamma(const QString& text)
{
    emit signalInBmpGammaToGUI(text);
}

void CgwFilterInterfaceGamma::slotSetDefaultValues()
{
    setDefaultsAndUpdate();
}

void CgwFilterInterfaceGamma::slotShowSettings(bool show)
{
    if (show)
        emit signalShowSettings();
    else
        emit signalHideSettings();
}

void CgwFilterInterfaceGamma::sendOne(const QString& key, const CgwQString& value)
{
    CgwParameterSet params;
    params.setValue(key, value);
    slotSetParams(mFilter->id(), params);
}

void CgwFilterInterfaceGamma::slotChooseBmpGamma(bool use)
{
    sendOne(GgwParam_UseBmpGamma, CgwParameterSet::valueFromBool(use));
}

void CgwFilterInterfaceGamma::slotGammaInChanged(double gamma)
{
    sendOne(GgwParam_GammaIn, CgwParameterSet::valueFromDouble(gamma));
}

void CgwFilterInterfaceGamma::slotGammaOutChanged(double gamma)
{
    sendOne(GgwParam_GammaOut, CgwParameterSet::valueFromDouble(gamma));
}
