#pragma once

#include "Sourcen/Image/gwColorMode.h"
#include "colour/gwProfileBase.h"
#include "diagnostics/gwSingleton.h"
#include "settings/gwParameterSet.h"

#include <QMap>
#include <QObject>

#include <cstddef>

// Host-side enumerations: this library needs no value but their default 0.
enum EgwUnitDimension : int {};
enum EgwDisplayPrecision : int {};
enum EgwCMSInputMatch : int {};
enum EgwCMSMonitorMatch : int {};
enum EgwCMMIntent : int {};
enum EgwActionCMode : int {};
enum EgwActionPosNeg : int {};
struct SgwProcessParameters;

// The filters whose settings the options keep, each in a file of its own.
enum EgwStoredFilter {
    EgwStoredSCC, EgwStoredSC2G, EgwStoredUSM, EgwStoredGrad, EgwStoredHist, EgwStoredGCC, EgwStoredACOX,
    EgwStoredDescreening, EgwStoredGNRX, EgwStoredDFRX, EgwStoredISDFR, EgwStoredNegaTune, EgwStoredIPTC,
    EgwStoredFilterCount
};

// Layout of the docked widgets; the host's business.
class CgwDockWidgetStates
{
public:
    virtual ~CgwDockWidgetStates() = default;
    virtual void reset() {}
};

// Every application-wide setting of the suite, with one change signal for
// each setter, read and written as a parameter set.
class CgwFilterOptions : public QObject, public CgwSingleton<CgwFilterOptions>
{
    Q_OBJECT
    friend class CgwSingleton<CgwFilterOptions>;

public:
    // The gamma values the application accepts, both ends included.
    static constexpr double kMinimumGamma = 0.2;
    static constexpr double kMaximumGamma = 5.0;

    ~CgwFilterOptions() override;

    // The defaults of the licence's version type.
    void setDefaults();
    void applyDefaults(int versionType);

    void fillParameterSet(CgwParameterSet& parameters, bool includeUserData) const;
    // Takes every option the set holds; the others keep their values.
    void applyParameterSet(const CgwParameterSet& parameters);

    // Reads back what slotSavePrefs wrote; a missing or broken file leaves
    // the values as they are (a broken one with a log line).
    void loadPrefs();

    QString optionsFileName(int versionKind) const;
    QString masksFileName() const;
    QString scanDimensionsFileName() const;
    // The naming rule behind the three: prefix, kind suffix, scanner label.
    static QString composeFileName(const QString& prefix, int versionKind, int versionType,
                                   const QString& scannerName, const QString& configuredScannerName,
                                   const QString& imageFolder, const QString& imageFileName);

    // Options by key, for those without an accessor of their own.
    bool boolOption(const QString& key) const { return mNumbers.value(key) != 0.0; }
    qint64 intOption(const QString& key) const { return qint64(mNumbers.value(key)); }
    double doubleOption(const QString& key) const { return mNumbers.value(key); }
    QString textOption(const QString& key) const { return mTexts.value(key); }
    void setOption(const QString& key, double value);
    void setTextOption(const QString& key, const QString& value);

    double gamma() const;
    double defaultGammaIn() const;
    int mmfRamLimit() const;
    QString selectedTempPath() const;
    QString defaultSaveFolder() const { return mDefaultSaveFolder; }
    QString archiveName() const { return mArchiveName; }
    QString archiveFolder() const { return mArchiveFolder; }

    void setUnitDimension(EgwUnitDimension unit);
    void setGamma(double gamma);
    void setMaximumISDFROffset(int offset);
    void setDefaultGammaIn(double gamma);
    void setDensitometerRadius(int radius);
    void setDisplayPrecision(EgwDisplayPrecision precision);
    void setCMSInputMatch(EgwCMSInputMatch match, const CgwProfileBase& profile, EgwCMMIntent intent);
    void setCMSMonitorMatch(EgwCMSMonitorMatch match);
    void setCMSOutputMatch(int match);
    void setCMSInputReflectiveProfile(const CgwProfileBase& profile);
    void setCMSInputTransmissiveProfile(const CgwProfileBase& profile);
    void setCMSInputKodachromeProfile(const CgwProfileBase& profile);
    void setCMSInputFileProfile(const CgwProfileBase& profile);
    void setCMSInternalProfile(const CgwProfileBase& profile);
    void setCMSGrayProfile(const CgwProfileBase& profile);
    void setCMSOutputProfile(const CgwProfileBase& profile);
    void setCMSRenderingIntent(int intent);
    void setAutoFrameInset(double inset);
    void setAutoFrameInsetIsActive(bool active);
    void setAutoMidtoneFactors(float toLight, float toShadow);
    void setMidPipUseFixedDestination(bool fixed);
    void setIsPrescanDraft(bool draft);
    void setIsScanDraft(bool draft);
    void setFrontFrameIsHDRMode(bool hdr);
    void setAnalogGainParams(double brightness, double red, double green, double blue);
    void setVLTScrollSpeed(int speed);
    void setVLTWatchNewDeletedFiles(bool watch);
    void setVLTWatchThirdPartyFiles(bool watch);
    void setSACPosNegMode(int mode);
    void setSACScanMode(int mode);
    // filter: "GNRX", "USM", "DESCREEN", "ISDFR" or "DFR".
    bool setWantAutomaticPrescan100(const QString& filter, bool want);

    CgwProfileBase cmsInputReflectiveProfile() const { return mCMSInputReflectiveProfile; }
    CgwProfileBase cmsInternalProfile() const { return mCMSInternalProfile; }
    CgwProfileBase cmsOutputProfile() const { return mCMSOutputProfile; }

    QList<SgwSelectiveColorPreset> selectiveColorPresets() const { return mPresets; }
    void setSelectiveColorPresets(const QList<SgwSelectiveColorPreset>& presets) { mPresets = presets; }
    CgwParameterSet filterSettings(EgwStoredFilter filter) const { return mFilterSettings[filter]; }
    void setFilterSettings(EgwStoredFilter filter, const CgwParameterSet& settings) { mFilterSettings[filter] = settings; }
    static QString filterSettingsFileName(EgwStoredFilter filter);

    // The connected scanner and the image it shows, which name the option files.
    void setScanner(int scannerId, const QString& scannerName);
    void setCurrentImage(const QString& folder, const QString& fileName);
    void setVersionKind(int kind) { mVersionKind = kind; }
    void setSaveUserData(bool save) { mSaveUserData = save; }
    int scannerId() const { return mScannerId; }
    int frontFrameScanType() const { return mFrontFrameScanType; }

Q_SIGNALS:
    void movieRequested(QString movieKey);
    void signalUnitDimensionChanged(EgwUnitDimension unit);
    void signalGammaChanged();
    void signalMaximumISDFROffsetChanged();
    void signalDefaultGammaInChanged();
    void signalDensitometerRadiusChanged();
    void signalDisplayPrecisionChanged(EgwDisplayPrecision precision);
    void signalCMSInputMatchChanged(EgwCMSInputMatch match, CgwProfileBase profile, EgwCMMIntent intent);
    void signalCMSMonitorMatchChanged(EgwCMSMonitorMatch match);
    void signalCMSOutputMatchChanged();
    void signalCMSInputReflectiveProfileChanged();
    void signalCMSInputTransmissiveProfileChanged();
    void signalCMSInputKodachromeProfileChanged();
    void signalCMSInputFileProfileChanged();
    void signalCMSInternalProfileChanged(CgwProfileBase profile);
    void signalCMSGrayProfileChanged();
    void signalCMSOutputProfileChanged(CgwProfileBase profile);
    void signalCMSRenderingIntentChanged();
    void signalCMSInputProfileChanged();
    void signalAutoFrameInsetChanged();
    void signalAutoFrameInsetIsActiveChanged();
    void signalAutoMidtoneFactorChanged();
    void signalMidPipUseFixedDestinationChanged();
    void signalIsPrescanDraftChanged();
    void signalIsScanDraftChanged();
    void signalFrontFrameIsHDRModeChanged();
    void signalAnalogGainParamsChanged();
    void signalCurrentDialogListNeeded();
    void signalCurrentDialogPresetChanged();
    void signalRequestProcessParams(size_t address);
    void signalProcessParamsReady(SgwProcessParameters* address);
    void signalResetOrigHistoPBN();
    void signalUpdateAllThumbnails();
    void signalVLTScrollSpeedChanged();
    void signalVLTWatchNewDeletedFilesChanged();
    void signalVLTWatchThirdPartyFilesChanged();
    void signalJobManagerQuadraticThumbnailsChanged();
    void signalHDRiRAWAllowedChanged();
    void signalXRayModeUIChanged();
    void signalPrefsOnSoftProofToggleClosed();
    void signalUpdateSACScanFrameParameter();
    void signalHandleErrorMessage(QString title, QString text, QString detailedText);
    void signalCheckSACFilterSettings(EgwActionCMode cMode, CgwParameterSet frameSettings,
                                      EgwActionPosNeg posNegMode, bool* ret1, bool* ret2);
    void signalCalculateSACFileSizePerRun(double* fileSize);
    void signalCheckSACMaxScanResolution(bool* maxScanResolutionExceeded);
    void signalSACPosNegModeChanged();
    void signalSACScanModeChanged();

public Q_SLOTS:
    void slotSetChangedInternalProfile(CgwProfileBase profile);
    void slotSetChangedOutputProfile(CgwProfileBase profile);
    void slotSetLastSelectedLevel(int level);
    void slotOptGenMovieButtonClicked();
    void slotOptAutMovieButtonClicked();
    void slotOptCMSMovieButtonClicked();
    void slotOptSpecMovieButtonClicked();
    void slotOptWFPMovieButtonClicked();
    void slotOptVLTMovieButtonClicked();
    void slotOptSACMovieButtonClicked();
    void slotSetFrontFrameScanType(EgwColorMode mode);
    void slotSetIncludeHiRepx(bool include);
    void slotSetJobManagerQuadraticThumbnails(bool quadratic);
    void slotSetHDRiRAWAllowed(bool saveInsideFile);
    void slotSetXRayModeUI(bool enableXRayMode);
    void slotSetCutNumberAllowed(bool allowed);
    void slotSetPrinterCalibration_Printer(const QString& printer);
    void slotSetPrinterCalibration_Ink(const QString& ink);
    void slotSetPrinterCalibration_Paper(const QString& paper);
    void slotSetPrinterCalibration_Settings(const QString& settings);
    void slotSetPrinterCalibration_PrintStatusSheet(bool print);
    void slotSetPrinterCalibration_ShowCMSExplanation(bool show);
    void slotSavePrefs();

private:
    CgwFilterOptions();

    // Stores a number and emits `changed` when it differs from the old one.
    void changeNumber(const QString& key, double value, void (CgwFilterOptions::*changed)());
    void changeProfile(CgwProfileBase& member, const CgwProfileBase& profile, void (CgwFilterOptions::*changed)());
    QString scannerLabelFileName(const QString& prefix, int versionKind) const;
    double writtenFrameInset() const;
    bool analogGainIsFixed(double* value) const;

    QMap<QString, double> mNumbers; // bools, integers, floats and doubles by key
    QMap<QString, QString> mTexts;  // paths and names by key
    CgwProfileBase mCMSInputReflectiveProfile;
    CgwProfileBase mCMSInputTransmissiveProfile;
    CgwProfileBase mCMSInputKodachromeProfile;
    CgwProfileBase mCMSInputFileProfile;
    CgwProfileBase mCMSInternalProfile;
    CgwProfileBase mCMSGrayProfile;
    CgwProfileBase mCMSOutputProfile;
    CgwDockWidgetStates mDockWidgetStates;
    QList<SgwSelectiveColorPreset> mPresets;
    CgwParameterSet mFilterSettings[EgwStoredFilterCount];
    QString mDefaultSaveFolder;
    QString mArchiveName;
    QString mArchiveFolder;
    int mScannerId = 0;
    QString mScannerName;
    QString mImageFolder;
    QString mImageFileName;
    int mFrontFrameScanType = 0;
    int mVersionKind = 0;
    bool mSaveUserData = false;
};
