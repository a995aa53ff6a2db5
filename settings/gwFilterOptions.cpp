#include "settings/gwFilterOptions.h"

#include "diagnostics/gwDebug.h"
#include "diagnostics/gwSystem.h"
#include "settings/gwParamKeys.h"
#include "settings/gwSerialDatabase.h"

#include <QCryptographicHash>
#include <QDir>

#include <unistd.h>

namespace {

enum class Kind { Bool, Int, Float, Double };

struct OptionRow {
    const QString& key;
    Kind kind;
    double main;  // the default
    double type3; // the default under version type 3
};

// 80 % of physical memory in MiB on a 64-bit system, else 1024.
double defaultRamLimit()
{
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long pageSize = sysconf(_SC_PAGESIZE);
    if (sizeof(void*) < 8 || pages <= 0 || pageSize <= 0)
        return 1024;
    const quint64 bytes = quint64(pages) * quint64(pageSize);
    return double(qint64(double(bytes >> 20) * 0.8 + 0.5));
}

// Every numeric option with its defaults. Options whose default nobody
// settled start at zero.
const OptionRow kOptions[] = {
    {GgwParam_Gamma, Kind::Double, 2.2, 2.2},
    {GgwParam_DefaultGammaIn, Kind::Double, 2.2, 2.2},
    {GgwParam_DensitometerRadius, Kind::Int, 2, 2},
    {GgwParam_UnitDimension, Kind::Int, 0, 0},
    {GgwParam_DisplayPrecision, Kind::Int, 0, 0},
    {GgwParam_LastSelectedLevel, Kind::Int, 0, 0},
    {GgwParam_ScanMode, Kind::Int, 0, 0},
    {GgwParam_IsColorModelCMY, Kind::Bool, 0, 0},
    {GgwParam_LogIT8, Kind::Bool, 0, 0},
    {GgwParam_IT8UseCustomName, Kind::Bool, 0, 0},
    {GgwParam_IT8UseFindFrame, Kind::Bool, 1, 1},
    {GgwParam_AutoUSMActivation, Kind::Bool, 1, 1},
    {GgwParam_ShowAfterScan, Kind::Bool, 0, 0},
    {GgwParam_ThreeLineScan, Kind::Bool, 0, 0},
    {GgwParam_AutoFrameADF, Kind::Bool, 0, 0},
    {GgwParam_MMFRamLimit, Kind::Int, -1, -1}, // from physical memory
    {GgwParam_AutoToleranceHighlight, Kind::Double, 0.00016, 0.00016},
    {GgwParam_AutoTargetBlack, Kind::Float, 0.02, 0.03},
    {GgwParam_AutoTargetWhite, Kind::Float, 0.98, 0.97},
    {GgwParam_AutoRangeBlack, Kind::Float, 0.0, 0.0},
    {GgwParam_AutoRangeWhite, Kind::Float, 1.0, 1.0},
    {GgwParam_AutoThresholdBlack, Kind::Float, 0.0, 0.0},
    {GgwParam_AutoThresholdWhite, Kind::Float, 0.02, 0.0},
    {GgwParam_AutoThresholdBlackUseLevels, Kind::Bool, 0, 0},
    {GgwParam_AutoThresholdWhiteUseLevels, Kind::Bool, 0, 0},
    {GgwParam_AutoUseAutoContrastRefl, Kind::Bool, 0, 0},
    {GgwParam_AutoUseAutoContrastTran, Kind::Bool, 0, 0},
    {GgwParam_AutoUseAutoContrastFile, Kind::Bool, 0, 0},
    {GgwParam_AutoColorCastRemoval, Kind::Float, 1.0, 1.0},
    {GgwParam_AutoColorCastRemovalIsActive, Kind::Bool, 1, 1},
    {GgwParam_AutoFrameInset, Kind::Double, 0.1, 0.0},
    {GgwParam_AutoFrameInsetIsActive, Kind::Bool, 1, 0},
    {GgwParam_VisualiseAutoFrameInset, Kind::Bool, 0, 0},
    {GgwParam_AutoMidtoneFactorToLight, Kind::Float, 0.0, 0.0},
    {GgwParam_AutoMidtoneFactorToShadow, Kind::Float, 0.0, 0.0},
    {GgwParam_MidPipUseFixedDestination, Kind::Bool, 0, 0},
    {GgwParam_MidPipFixedDestination, Kind::Float, 0.5, 0.5},
    {GgwParam_General_DefaultImageAutomaticsType, Kind::Int, 0, 0},
    {GgwParam_AutoLoadLastJob, Kind::Bool, 0, 0},
    {GgwParam_AutoSaveCurrentJob, Kind::Bool, 1, 1},
    {GgwParam_AutoStartOverviewPrescan, Kind::Bool, 1, 1},
    {GgwParam_WantAutomaticColorbalance, Kind::Bool, 0, 0},
    {GgwParam_WantFilterGradSC2G, Kind::Bool, 0, 0},
    {GgwParam_IsPrescanDraft, Kind::Bool, 1, 1},
    {GgwParam_IsScanDraft, Kind::Bool, 0, 0},
    {GgwParam_HiResDataForHistograms, Kind::Bool, 0, 0},
    {GgwParam_MultiExposurePreview, Kind::Bool, 0, 0},
    {GgwParam_PrescanAllAdf, Kind::Bool, 0, 0},
    {GgwParam_HiResPrescanFactor, Kind::Int, 1, 1},
    {GgwParam_NumberBatchScans, Kind::Int, 1, 1},
    {GgwParam_UseHolderFocusPreset, Kind::Bool, 0, 0},
    {GgwParam_IncludeHiRePX, Kind::Bool, 1, 1},
    {GgwParam_HDRiRAWAllowed, Kind::Bool, 1, 1},
    {GgwParam_ShowWarningHDRiRAWSettings, Kind::Bool, 1, 1},
    {GgwParam_CutNumberAllowed, Kind::Bool, 0, 0},
    {GgwParam_XRayModeUI, Kind::Bool, 0, 1},
    {GgwParam_CMSInputMatch, Kind::Int, 0, 0},
    {GgwParam_CMSMonitorMatch, Kind::Int, 0, 0},
    {GgwParam_CMSOutputMatch, Kind::Int, 0, 0},
    {GgwParam_CMSRenderingIntent, Kind::Int, 0, 0},
    {GgwParam_DFR_MarkColor, Kind::Int, double(0xff00ffffu), double(0xff00ffffu)},
    {GgwParam_PrinterCalibration_PrintStatusSheet, Kind::Bool, 0, 0},
    {GgwParam_PrinterCalibration_ShowCMSExplanation, Kind::Bool, 1, 1},
    {GgwParam_JPEG2000IsLossless, Kind::Bool, 1, 1},
    {GgwParam_JPEG2000LossyQuality, Kind::Int, 80, 80},
    {GgwParam_JPEG2000LossyRatio, Kind::Int, 10, 10},
    {GgwParam_JPEG2000LossySize, Kind::Int, 3000, 3000},
    {GgwParam_JPEGQuality, Kind::Int, 80, 80},
    {GgwParam_SACImageFormat, Kind::Int, 21, 21},
    {GgwParam_SACResValue, Kind::Double, 0.0, 0.0},
    {GgwParam_SACOutputSizeConstraintValue, Kind::Double, 0.0, 0.0},
    {GgwParam_SACScale, Kind::Double, 1.0, 1.0},
    {GgwParam_SACOutputSizeConstraint, Kind::Int, 0, 0},
    {GgwParam_SACOutputSizeUnitDimension, Kind::Int, 0, 0},
    {GgwParam_SACUnitResolution, Kind::Int, 0, 0},
    {GgwParam_SACFFMode, Kind::Int, 0, 0},
    {GgwParam_SACJPEG2000IsLossless, Kind::Bool, 1, 1},
    {GgwParam_SACJPEG2000LossyQuality, Kind::Int, 80, 80},
    {GgwParam_SACJPEG2000LossyRatio, Kind::Int, 10, 10},
    {GgwParam_SACJPEG2000LossySize, Kind::Int, 3000, 3000},
    {GgwParam_SACJPEGQuality, Kind::Int, 80, 80},
    {GgwParam_SACPosNegMode, Kind::Int, 1, 1},
    {GgwParam_SACCMode, Kind::Int, 3, 3},
    {GgwParam_SACHiResPrescanFactor, Kind::Int, 1, 1},
    {GgwParam_SACDataBaseDeleteDuration, Kind::Int, 30, 30},
    {GgwParam_iDFR_MaximumOffset, Kind::Int, 0, 0},
    {GgwParam_General_HdrMode, Kind::Bool, 0, 0},
    {GgwParam_AGBrightnessAmp, Kind::Double, 0.0, 0.0},
    {GgwParam_AGRedAmp, Kind::Double, 0.0, 0.0},
    {GgwParam_AGGreenAmp, Kind::Double, 0.0, 0.0},
    {GgwParam_AGBlueAmp, Kind::Double, 0.0, 0.0},
    {GgwParam_VLTScrollSpeed, Kind::Int, 0, 0},
    {GgwParam_VLTWatchNewDeletedFiles, Kind::Bool, 0, 0},
    {GgwParam_VLTWatchThirdPartyChangedFiles, Kind::Bool, 0, 0},
    {GgwParam_JobManagerQuadraticThumbnails, Kind::Bool, 0, 0},
    {GgwParam_WantIRWithPrescan100, Kind::Bool, 0, 0},
    {GgwParam_WantAutomaticPrescan100_GNRX, Kind::Bool, 0, 0},
    {GgwParam_WantAutomaticPrescan100_USM, Kind::Bool, 0, 0},
    {GgwParam_WantAutomaticPrescan100_DESCREEN, Kind::Bool, 0, 0},
    {GgwParam_WantAutomaticPrescan100_ISDFR, Kind::Bool, 0, 0},
    {GgwParam_WantAutomaticPrescan100_DFR, Kind::Bool, 0, 0},
};

// Texts and their defaults; the paths are computed in applyDefaults.
const QString* const kTextKeys[] = {
    &GgwParam_AppDirectory, &GgwParam_AppName, &GgwParam_SelectedTempPath, &GgwParam_PrinterCalibration_Printer,
    &GgwParam_PrinterCalibration_Inks, &GgwParam_PrinterCalibration_Paper, &GgwParam_PrinterCalibration_Settings,
    &GgwParam_PrefsScannerName,
};

// What is personal to the user's work rather than a preference.
const QString* const kUserDataKeys[] = {&GgwParam_PrefsScannerName};

struct ProfileRow {
    const QString& key;
    CgwProfileBase CgwFilterOptions::*member;
};

} // namespace

CgwFilterOptions::CgwFilterOptions()
{
    qRegisterMetaType<CgwProfileBase>();
    setDefaults();
    connect(this, &CgwFilterOptions::signalCMSInternalProfileChanged, this,
            &CgwFilterOptions::slotSetChangedInternalProfile);
    connect(this, &CgwFilterOptions::signalCMSOutputProfileChanged, this,
            &CgwFilterOptions::slotSetChangedOutputProfile);
}

CgwFilterOptions::~CgwFilterOptions() = default;

void CgwFilterOptions::setDefaults()
{
    applyDefaults(CgwSerialDatabase::instance().versionType());
}

void CgwFilterOptions::applyDefaults(int versionType)
{
    for (const OptionRow& row : kOptions)
        mNumbers[row.key] = versionType == 3 ? row.type3 : row.main;
    mNumbers[GgwParam_MMFRamLimit] = defaultRamLimit();
    for (const QString* key : kTextKeys)
        mTexts[*key] = QString();
    mTexts[GgwParam_AppDirectory] = QDir::rootPath();
    mTexts[GgwParam_SelectedTempPath] = QDir::tempPath();
    mDefaultSaveFolder = CgwSystem::picturesFolder();
    //: Archiv
    mArchiveName = tr("Archive");
    mArchiveFolder = mDefaultSaveFolder + QLatin1Char('/') + mArchiveName;
}

double CgwFilterOptions::writtenFrameInset() const
{
    const double inset = boolOption(GgwParam_AutoFrameInsetIsActive) ? doubleOption(GgwParam_AutoFrameInset) : 0.0;
    return qBound(0.0, inset, 0.8);
}

bool CgwFilterOptions::analogGainIsFixed(double* value) const
{
    if (mFrontFrameScanType != 3)
        return false;
    *value = (quint32(mScannerId) & 0xFFFF0000u) == 0x2d0000u ? 150.0 : 0.0;
    return true;
}

void CgwFilterOptions::fillParameterSet(CgwParameterSet& parameters, bool includeUserData) const
{
    for (const OptionRow& row : kOptions) {
        const double v = mNumbers.value(row.key);
        switch (row.kind) {
        case Kind::Bool: parameters.setBool(row.key, v != 0.0); break;
        case Kind::Int: parameters.setLongLong(row.key, qint64(v)); break;
        case Kind::Float: parameters.setDouble(row.key, double(float(v))); break;
        case Kind::Double: parameters.setDouble(row.key, v); break;
        }
    }
    parameters.setDouble(GgwParam_AutoFrameInset, writtenFrameInset());
    double gain = 0.0;
    if (analogGainIsFixed(&gain)) {
        for (const QString* key : {&GgwParam_AGBrightnessAmp, &GgwParam_AGRedAmp, &GgwParam_AGGreenAmp, &GgwParam_AGBlueAmp})
            parameters.setDouble(*key, gain);
    }
    for (const QString* key : kTextKeys)
        parameters.setString(*key, mTexts.value(*key));
    if (!includeUserData) {
        for (const QString* key : kUserDataKeys)
            parameters.remove(*key);
    }
    const ProfileRow profiles[] = {
        {GgwParam_CMSInputReflectiveProfile, &CgwFilterOptions::mCMSInputReflectiveProfile},
        {GgwParam_CMSInputTransmissiveProfile, &CgwFilterOptions::mCMSInputTransmissiveProfile},
        {GgwParam_CMSInputKodachromeProfile, &CgwFilterOptions::mCMSInputKodachromeProfile},
        {GgwParam_CMSInputFileProfile, &CgwFilterOptions::mCMSInputFileProfile},
        {GgwParam_CMSInternalProfile, &CgwFilterOptions::mCMSInternalProfile},
        {GgwParam_CMSGrayProfile, &CgwFilterOptions::mCMSGrayProfile},
        {GgwParam_CMSOutputProfile, &CgwFilterOptions::mCMSOutputProfile},
    };
    for (const ProfileRow& row : profiles)
        parameters.setString(row.key, (this->*row.member).path());
}

void CgwFilterOptions::applyParameterSet(const CgwParameterSet& parameters)
{
    for (const OptionRow& row : kOptions) {
        CgwQString value;
        if (!parameters.getValue(row.key, value))
            continue;
        switch (row.kind) {
        case Kind::Bool: mNumbers[row.key] = CgwParameterSet::boolFromValue(value) ? 1.0 : 0.0; break;
        case Kind::Int: mNumbers[row.key] = double(CgwParameterSet::longLongFromValue(value)); break;
        case Kind::Float: mNumbers[row.key] = double(float(CgwParameterSet::doubleFromValue(value))); break;
        case Kind::Double: mNumbers[row.key] = CgwParameterSet::doubleFromValue(value); break;
        }
    }
    for (const QString* key : kTextKeys)
        mTexts[*key] = parameters.stringValue(*key, mTexts.value(*key));
}

void CgwFilterOptions::setOption(const QString& key, double value)
{
    mNumbers[key] = value;
}

void CgwFilterOptions::setTextOption(const QString& key, const QString& value)
{
    mTexts[key] = value;
}

double CgwFilterOptions::gamma() const { return doubleOption(GgwParam_Gamma); }
double CgwFilterOptions::defaultGammaIn() const { return doubleOption(GgwParam_DefaultGammaIn); }
int CgwFilterOptions::mmfRamLimit() const { return int(intOption(GgwParam_MMFRamLimit)); }
QString CgwFilterOptions::selectedTempPath() const { return textOption(GgwParam_SelectedTempPath); }

QString CgwFilterOptions::composeFileName(const QString& prefix, int versionKind, int versionType,
                                          const QString& scannerName, const QString& configuredScannerName,
                                          const QString& imageFolder, const QString& imageFileName)
{
    QString name = prefix;
    if (versionType != 2) {
        switch (versionKind) {
        case 1: name += QLatin1String("SE"); break;
        case 2: name += QLatin1String("SP"); break;
        case 3: name += QLatin1String("Ai"); break;
        case 4: name += QLatin1String("St"); break;
        case 7: name += QLatin1String("X"); break;
        default: break;
        }
        name += QString(scannerName).replace(QLatin1Char('/'), QLatin1Char('_'));
    } else {
        QString label = configuredScannerName;
        if (imageFileName != QLatin1String("standard.jpg")) {
            const QByteArray source = (imageFolder + QLatin1Char('/') + imageFileName).toUtf8();
            label = QString::fromLatin1(QCryptographicHash::hash(source, QCryptographicHash::Md5).toHex());
        }
        name += QLatin1Char('(') + label.replace(QLatin1Char('/'), QLatin1Char('_')) + QLatin1Char(')');
    }
    return name + QStringLiteral(".xml");
}

QString CgwFilterOptions::scannerLabelFileName(const QString& prefix, int versionKind) const
{
    return composeFileName(prefix, versionKind, CgwSerialDatabase::instance().versionType(), mScannerName,
                           textOption(GgwParam_PrefsScannerName), mImageFolder, mImageFileName);
}

QString CgwFilterOptions::optionsFileName(int versionKind) const
{
    return scannerLabelFileName(QStringLiteral("Options"), versionKind);
}

QString CgwFilterOptions::masksFileName() const
{
    return scannerLabelFileName(QStringLiteral("Masks"), mVersionKind);
}

QString CgwFilterOptions::scanDimensionsFileName() const
{
    return scannerLabelFileName(QStringLiteral("ScanDimensionsSettings"), mVersionKind);
}

void CgwFilterOptions::setScanner(int scannerId, const QString& scannerName)
{
    mScannerId = scannerId;
    mScannerName = scannerName;
}

void CgwFilterOptions::setCurrentImage(const QString& folder, const QString& fileName)
{
    mImageFolder = folder;
    mImageFileName = fileName;
}
