// The setters and slots of the options: each stores its value and emits its
// change signal when the value differs.

#include "settings/gwFilterOptions.h"

#include "diagnostics/gwDebug.h"
#include "settings/gwParamKeys.h"

void CgwFilterOptions::changeNumber(const QString& key, double value, void (CgwFilterOptions::*changed)())
{
    const bool differs = !mNumbers.contains(key) || mNumbers.value(key) != value;
    mNumbers[key] = value;
    if (differs && changed)
        (this->*changed)();
}

void CgwFilterOptions::changeProfile(CgwProfileBase& member, const CgwProfileBase& profile,
                                     void (CgwFilterOptions::*changed)())
{
    if (member == profile)
        return;
    member = profile;
    (this->*changed)();
    Q_EMIT signalCMSInputProfileChanged();
}

void CgwFilterOptions::setUnitDimension(EgwUnitDimension unit)
{
    if (intOption(GgwParam_UnitDimension) == unit)
        return;
    mNumbers[GgwParam_UnitDimension] = unit;
    Q_EMIT signalUnitDimensionChanged(unit);
}

void CgwFilterOptions::setGamma(double gamma)
{
    changeNumber(GgwParam_Gamma, gamma, &CgwFilterOptions::signalGammaChanged);
}

void CgwFilterOptions::setMaximumISDFROffset(int offset)
{
    changeNumber(GgwParam_iDFR_MaximumOffset, offset, &CgwFilterOptions::signalMaximumISDFROffsetChanged);
}

void CgwFilterOptions::setDefaultGammaIn(double gamma)
{
    changeNumber(GgwParam_DefaultGammaIn, gamma, &CgwFilterOptions::signalDefaultGammaInChanged);
}

void CgwFilterOptions::setDensitometerRadius(int radius)
{
    changeNumber(GgwParam_DensitometerRadius, radius, &CgwFilterOptions::signalDensitometerRadiusChanged);
}

void CgwFilterOptions::setDisplayPrecision(EgwDisplayPrecision precision)
{
    if (intOption(GgwParam_DisplayPrecision) == precision)
        return;
    mNumbers[GgwParam_DisplayPrecision] = precision;
    Q_EMIT signalDisplayPrecisionChanged(precision);
}

void CgwFilterOptions::setCMSInputMatch(EgwCMSInputMatch match, const CgwProfileBase& profile, EgwCMMIntent intent)
{
    mNumbers[GgwParam_CMSInputMatch] = match;
    Q_EMIT signalCMSInputMatchChanged(match, profile, intent);
}

void CgwFilterOptions::setCMSMonitorMatch(EgwCMSMonitorMatch match)
{
    if (intOption(GgwParam_CMSMonitorMatch) == match)
        return;
    mNumbers[GgwParam_CMSMonitorMatch] = match;
    Q_EMIT signalCMSMonitorMatchChanged(match);
}

void CgwFilterOptions::setCMSOutputMatch(int match)
{
    changeNumber(GgwParam_CMSOutputMatch, match, &CgwFilterOptions::signalCMSOutputMatchChanged);
}

void CgwFilterOptions::setCMSInputReflectiveProfile(const CgwProfileBase& profile)
{
    changeProfile(mCMSInputReflectiveProfile, profile, &CgwFilterOptions::signalCMSInputReflectiveProfileChanged);
}

void CgwFilterOptions::setCMSInputTransmissiveProfile(const CgwProfileBase& profile)
{
    changeProfile(mCMSInputTransmissiveProfile, profile, &CgwFilterOptions::signalCMSInputTransmissiveProfileChanged);
}

void CgwFilterOptions::setCMSInputKodachromeProfile(const CgwProfileBase& profile)
{
    changeProfile(mCMSInputKodachromeProfile, profile, &CgwFilterOptions::signalCMSInputKodachromeProfileChanged);
}

void CgwFilterOptions::setCMSInputFileProfile(const CgwProfileBase& profile)
{
    changeProfile(mCMSInputFileProfile, profile, &CgwFilterOptions::signalCMSInputFileProfileChanged);
}

// Internal and output profile are stored by the slots that their signals reach.
void CgwFilterOptions::setCMSInternalProfile(const CgwProfileBase& profile)
{
    Q_EMIT signalCMSInternalProfileChanged(profile);
}

void CgwFilterOptions::setCMSGrayProfile(const CgwProfileBase& profile)
{
    if (mCMSGrayProfile == profile)
        return;
    mCMSGrayProfile = profile;
    Q_EMIT signalCMSGrayProfileChanged();
}

void CgwFilterOptions::setCMSOutputProfile(const CgwProfileBase& profile)
{
    Q_EMIT signalCMSOutputProfileChanged(profile);
}

void CgwFilterOptions::setCMSRenderingIntent(int intent)
{
    changeNumber(GgwParam_CMSRenderingIntent, intent, &CgwFilterOptions::signalCMSRenderingIntentChanged);
}

void CgwFilterOptions::setAutoFrameInset(double inset)
{
    changeNumber(GgwParam_AutoFrameInset, inset, &CgwFilterOptions::signalAutoFrameInsetChanged);
}

void CgwFilterOptions::setAutoFrameInsetIsActive(bool active)
{
    changeNumber(GgwParam_AutoFrameInsetIsActive, active, &CgwFilterOptions::signalAutoFrameInsetIsActiveChanged);
}

void CgwFilterOptions::setAutoMidtoneFactors(float toLight, float toShadow)
{
    mNumbers[GgwParam_AutoMidtoneFactorToLight] = toLight;
    mNumbers[GgwParam_AutoMidtoneFactorToShadow] = toShadow;
    Q_EMIT signalAutoMidtoneFactorChanged();
}

void CgwFilterOptions::setMidPipUseFixedDestination(bool fixed)
{
    changeNumber(GgwParam_MidPipUseFixedDestination, fixed, &CgwFilterOptions::signalMidPipUseFixedDestinationChanged);
}

void CgwFilterOptions::setIsPrescanDraft(bool draft)
{
    changeNumber(GgwParam_IsPrescanDraft, draft, &CgwFilterOptions::signalIsPrescanDraftChanged);
}

void CgwFilterOptions::setIsScanDraft(bool draft)
{
    changeNumber(GgwParam_IsScanDraft, draft, &CgwFilterOptions::signalIsScanDraftChanged);
}

void CgwFilterOptions::setFrontFrameIsHDRMode(bool hdr)
{
    changeNumber(GgwParam_General_HdrMode, hdr, &CgwFilterOptions::signalFrontFrameIsHDRModeChanged);
}

void CgwFilterOptions::setAnalogGainParams(double brightness, double red, double green, double blue)
{
    mNumbers[GgwParam_AGBrightnessAmp] = brightness;
    mNumbers[GgwParam_AGRedAmp] = red;
    mNumbers[GgwParam_AGGreenAmp] = green;
    mNumbers[GgwParam_AGBlueAmp] = blue;
    Q_EMIT signalAnalogGainParamsChanged();
}

void CgwFilterOptions::setVLTScrollSpeed(int speed)
{
    changeNumber(GgwParam_VLTScrollSpeed, speed, &CgwFilterOptions::signalVLTScrollSpeedChanged);
}

void CgwFilterOptions::setVLTWatchNewDeletedFiles(bool watch)
{
    changeNumber(GgwParam_VLTWatchNewDeletedFiles, watch, &CgwFilterOptions::signalVLTWatchNewDeletedFilesChanged);
}

void CgwFilterOptions::setVLTWatchThirdPartyFiles(bool watch)
{
    changeNumber(GgwParam_VLTWatchThirdPartyChangedFiles, watch,
                 &CgwFilterOptions::signalVLTWatchThirdPartyFilesChanged);
}

void CgwFilterOptions::setSACPosNegMode(int mode)
{
    changeNumber(GgwParam_SACPosNegMode, mode, &CgwFilterOptions::signalSACPosNegModeChanged);
}

void CgwFilterOptions::setSACScanMode(int mode)
{
    changeNumber(GgwParam_SACCMode, mode, &CgwFilterOptions::signalSACScanModeChanged);
}

bool CgwFilterOptions::setWantAutomaticPrescan100(const QString& filter, bool want)
{
    const QString key = QStringLiteral("WantAutomaticPrescan100_") + filter;
    const QString known[] = {GgwParam_WantAutomaticPrescan100_GNRX, GgwParam_WantAutomaticPrescan100_USM,
                             GgwParam_WantAutomaticPrescan100_DESCREEN, GgwParam_WantAutomaticPrescan100_ISDFR,
                             GgwParam_WantAutomaticPrescan100_DFR};
    if (std::find(std::begin(known), std::end(known), key) == std::end(known)) {
        gwDebugString(QStringLiteral("CgwFilterOptions::setWantAutomaticPrescan100: Error: got unknown filter ") + filter);
        return false;
    }
    mNumbers[key] = want;
    return true;
}

void CgwFilterOptions::slotSetChangedInternalProfile(CgwProfileBase profile)
{
    mCMSInternalProfile = profile;
}

void CgwFilterOptions::slotSetChangedOutputProfile(CgwProfileBase profile)
{
    mCMSOutputProfile = profile;
}

void CgwFilterOptions::slotSetLastSelectedLevel(int level)
{
    mNumbers[GgwParam_LastSelectedLevel] = level;
}

void CgwFilterOptions::slotOptGenMovieButtonClicked() { Q_EMIT movieRequested(QStringLiteral("MovieOptionGeneral")); }
void CgwFilterOptions::slotOptAutMovieButtonClicked() { Q_EMIT movieRequested(QStringLiteral("MovieOptionAuto")); }
void CgwFilterOptions::slotOptCMSMovieButtonClicked() { Q_EMIT movieRequested(QStringLiteral("MovieOptionCMS")); }
void CgwFilterOptions::slotOptSpecMovieButtonClicked() { Q_EMIT movieRequested(QStringLiteral("MovieOptionWFPSpecial")); }
void CgwFilterOptions::slotOptWFPMovieButtonClicked() { Q_EMIT movieRequested(QStringLiteral("MovieOptionWFPPrefs")); }
void CgwFilterOptions::slotOptVLTMovieButtonClicked() { Q_EMIT movieRequested(QStringLiteral("MovieOptionVLT")); }
void CgwFilterOptions::slotOptSACMovieButtonClicked() { Q_EMIT movieRequested(QStringLiteral("MovieOptionSAC")); }

void CgwFilterOptions::slotSetFrontFrameScanType(EgwColorMode mode)
{
    mFrontFrameScanType = mode;
}

void CgwFilterOptions::slotSetIncludeHiRepx(bool include)
{
    mNumbers[GgwParam_IncludeHiRePX] = include;
}

void CgwFilterOptions::slotSetJobManagerQuadraticThumbnails(bool quadratic)
{
    changeNumber(GgwParam_JobManagerQuadraticThumbnails, quadratic,
                 &CgwFilterOptions::signalJobManagerQuadraticThumbnailsChanged);
}

void CgwFilterOptions::slotSetHDRiRAWAllowed(bool saveInsideFile)
{
    changeNumber(GgwParam_HDRiRAWAllowed, saveInsideFile, &CgwFilterOptions::signalHDRiRAWAllowedChanged);
}

void CgwFilterOptions::slotSetXRayModeUI(bool enableXRayMode)
{
    changeNumber(GgwParam_XRayModeUI, enableXRayMode, &CgwFilterOptions::signalXRayModeUIChanged);
}

void CgwFilterOptions::slotSetCutNumberAllowed(bool allowed)
{
    mNumbers[GgwParam_CutNumberAllowed] = allowed;
}

void CgwFilterOptions::slotSetPrinterCalibration_Printer(const QString& printer)
{
    mTexts[GgwParam_PrinterCalibration_Printer] = printer;
}

void CgwFilterOptions::slotSetPrinterCalibration_Ink(const QString& ink)
{
    mTexts[GgwParam_PrinterCalibration_Inks] = ink;
}

void CgwFilterOptions::slotSetPrinterCalibration_Paper(const QString& paper)
{
    mTexts[GgwParam_PrinterCalibration_Paper] = paper;
}

void CgwFilterOptions::slotSetPrinterCalibration_Settings(const QString& settings)
{
    mTexts[GgwParam_PrinterCalibration_Settings] = settings;
}

void CgwFilterOptions::slotSetPrinterCalibration_PrintStatusSheet(bool print)
{
    mNumbers[GgwParam_PrinterCalibration_PrintStatusSheet] = print;
}

void CgwFilterOptions::slotSetPrinterCalibration_ShowCMSExplanation(bool show)
{
    mNumbers[GgwParam_PrinterCalibration_ShowCMSExplanation] = show;
}
