// The application options: defaults, the computed groups written on the way
// out, file names, and saving into the preferences folder.

#include "settings/gwFilterOptions.h"
#include "settings/gwParamKeys.h"
#include "settings/gwXmlParameterSet.h"
#include "support/gwTestEnv.h"

#include <QCryptographicHash>
#include <QDir>
#include <QSignalSpy>

#include <unistd.h>

#include <gtest/gtest.h>

namespace {

CgwFilterOptions& options()
{
    return CgwFilterOptions::instance();
}

CgwParameterSet filled()
{
    CgwParameterSet set;
    options().fillParameterSet(set, false);
    return set;
}

QString prefsFolder()
{
    return gwTestRoot() + "/home/.local/share/Norvane Imaging/Glimmerway 8 HDR/Prefs";
}

} // namespace

TEST(FilterOptions, DefaultsOfBothVersionTypes)
{
    const struct {
        const QString& key;
        double main;
        double type3;
    } cases[] = {
        {GgwParam_Gamma, 2.2, 2.2},
        {GgwParam_AutoTargetBlack, 0.02, 0.03},
        {GgwParam_AutoTargetWhite, 0.98, 0.97},
        {GgwParam_AutoThresholdWhite, 0.02, 0.0},
        {GgwParam_AutoFrameInset, 0.1, 0.0},
        {GgwParam_AutoFrameInsetIsActive, 1, 0},
        {GgwParam_XRayModeUI, 0, 1},
        {GgwParam_SACImageFormat, 21, 21},
        {GgwParam_SACCMode, 3, 3},
        {GgwParam_DFR_MarkColor, 4278255615.0, 4278255615.0},
        {GgwParam_JPEG2000LossySize, 3000, 3000},
    };
    for (int type : {0, 3}) {
        options().applyDefaults(type);
        const CgwParameterSet set = filled();
        for (const auto& c : cases) {
            const double expected = type == 3 ? c.type3 : c.main;
            const CgwQString value = set.value(c.key);
            const double actual = CgwParameterSet::boolFromValue(value) ? 1.0 : CgwParameterSet::doubleFromValue(value);
            EXPECT_NEAR(actual, expected, 1e-6)
                << qPrintable(c.key) << " type " << type;
        }
    }
    options().applyDefaults(0);
    EXPECT_EQ(options().selectedTempPath(), QDir::tempPath());
    EXPECT_EQ(filled().value(GgwParam_IsPrescanDraft).toQString(), "TRUE ");
    EXPECT_EQ(filled().value(GgwParam_AutoTargetBlack).toQString(), "0.02 ") << "floats written as doubles";
    EXPECT_EQ(options().archiveFolder(), options().defaultSaveFolder() + "/Archive");

    const quint64 physical = quint64(sysconf(_SC_PHYS_PAGES)) * quint64(sysconf(_SC_PAGESIZE));
    EXPECT_EQ(options().mmfRamLimit(), int(double(physical >> 20) * 0.8 + 0.5));
}

TEST(FilterOptions, FrameInsetIsWrittenOnlyWhenActiveAndAtMostPointEight)
{
    const struct {
        bool active;
        double stored;
        const char* written;
    } cases[] = {{true, 0.25, "0.25 "}, {false, 0.25, "0 "}, {true, 0.9, "0.8 "}, {true, -0.1, "0 "}};
    for (const auto& c : cases) {
        options().setAutoFrameInsetIsActive(c.active);
        options().setAutoFrameInset(c.stored);
        EXPECT_EQ(filled().value(GgwParam_AutoFrameInset).toQString(), c.written) << c.stored;
        EXPECT_DOUBLE_EQ(options().doubleOption(GgwParam_AutoFrameInset), c.stored) << "the stored value stays";
    }
}

TEST(FilterOptions, AnalogGainIsFixedForRGBFramesByScannerFamily)
{
    options().setAnalogGainParams(1.5, 2.5, 3.5, 4.5);
    const struct {
        EgwColorMode frameType;
        int scannerId;
        double expected; // -1: the stored values
    } cases[] = {
        {EgwColorModeRGB, 0x2d0005, 150}, {EgwColorModeRGB, 0x1a0001, 0}, {EgwColorModeRGB, 0x400000, 0},
        {EgwColorModeRGB, 0x110000, 0},   {EgwColorModeGrey, 0x2d0005, -1},
    };
    for (const auto& c : cases) {
        options().slotSetFrontFrameScanType(c.frameType);
        options().setScanner(c.scannerId, QStringLiteral("Scanner"));
        const CgwParameterSet set = filled();
        const QString* keys[] = {&GgwParam_AGBrightnessAmp, &GgwParam_AGRedAmp, &GgwParam_AGGreenAmp, &GgwParam_AGBlueAmp};
        const double stored[] = {1.5, 2.5, 3.5, 4.5};
        for (int i = 0; i < 4; ++i) {
            EXPECT_DOUBLE_EQ(CgwParameterSet::doubleFromValue(set.value(*keys[i])),
                             c.expected < 0 ? stored[i] : c.expected)
                << std::hex << c.scannerId << " " << qPrintable(*keys[i]);
        }
    }
}

TEST(FilterOptions, FileNamesFollowTheVersionType)
{
    const struct {
        const char* prefix;
        int kind;
        int type;
        const char* scanner;
        const char* configured;
        const char* folder;
        const char* file;
        QString expected;
    } cases[] = {
        {"Options", 1, 0, "HDR Atelier", "", "", "", "OptionsSEHDR Atelier.xml"},
        {"Options", 7, 3, "A/B", "", "", "", "OptionsXA_B.xml"},
        {"Options", 5, 0, "S", "", "", "", "OptionsS.xml"},
        {"Options", 1, 2, "S", "My/Scanner", "/pics", "standard.jpg", "Options(My_Scanner).xml"},
        {"Masks", 2, 2, "S", "Cfg", "/pics", "slide.tif", "Masks("
             + QString::fromLatin1(QCryptographicHash::hash("/pics/slide.tif", QCryptographicHash::Md5).toHex())
             + ").xml"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(CgwFilterOptions::composeFileName(c.prefix, c.kind, c.type, c.scanner, c.configured, c.folder, c.file),
                  c.expected);
    }
}

TEST(FilterOptions, SavingWritesEveryFileIntoThePreferencesFolder)
{
    options().applyDefaults(0);
    options().setScanner(0x2d0005, QStringLiteral("HDR Atelier"));
    CgwParameterSet usm;
    usm.setDouble(GgwParam_Strength, 1.25);
    options().setFilterSettings(EgwStoredUSM, usm);
    options().slotSavePrefs();

    QStringList expected = {"OptionsHDR Atelier.xml", "SC2GSettings.xml", "USMSettings.xml", "GradSettings.xml",
                            "HistSettings.xml", "GCCSettings.xml", "ACOXSettings.xml", "DescreeningSettings.xml",
                            "GNRXSettings.xml", "DFRXSettings.xml", "ISDFRSettings.xml", "NegaTuneSettings.xml",
                            "IPTCSettings.xml", "SCCSettings.xml"};
    QStringList files = QDir(prefsFolder()).entryList(QDir::Files);
    expected.sort();
    files.sort();
    EXPECT_EQ(files, expected) << "no presets file while the list is empty";

    const CgwParameterSet saved = CgwXmlParameterSet::readFile(prefsFolder() + "/OptionsHDR Atelier.xml");
    EXPECT_EQ(saved.longLongValue("OptionsID", 0), 0x2d0005);
    EXPECT_EQ(saved.stringValue("OptionsName", QString()), "OptionsHDR Atelier");
    EXPECT_DOUBLE_EQ(saved.doubleValue(GgwParam_Gamma, 0), 2.2);
    EXPECT_EQ(CgwXmlParameterSet::readFile(prefsFolder() + "/USMSettings.xml"), usm);

    SgwSelectiveColorPreset preset;
    preset.name = QStringLiteral("Sky");
    options().setSelectiveColorPresets({preset});
    options().slotSavePrefs();
    EXPECT_TRUE(CgwXmlParameterSet::readFile(prefsFolder() + "/SCCPresets.xml").hasKey("SCCPresets"));
}

TEST(FilterOptions, SavedOptionsLoadBackKeyByKey)
{
    options().applyDefaults(0);
    options().setGamma(1.8);
    options().setIsScanDraft(true);
    options().setTextOption(GgwParam_SelectedTempPath, QStringLiteral("/scratch/with blank"));
    CgwParameterSet set;
    options().fillParameterSet(set, false);

    options().applyDefaults(0);
    set.remove(GgwParam_JPEGQuality);
    options().setOption(GgwParam_JPEGQuality, 55);
    options().applyParameterSet(set);
    EXPECT_DOUBLE_EQ(options().gamma(), 1.8);
    EXPECT_TRUE(options().boolOption(GgwParam_IsScanDraft));
    EXPECT_EQ(options().selectedTempPath(), "/scratch/with blank");
    EXPECT_EQ(options().intOption(GgwParam_JPEGQuality), 55) << "a missing key keeps the value";
}

TEST(FilterOptions, SettersSignalChangesOnlyAndProfilesArriveThroughTheirSlots)
{
    options().applyDefaults(0);
    QSignalSpy gamma(&options(), &CgwFilterOptions::signalGammaChanged);
    options().setGamma(2.2);
    options().setGamma(1.0);
    options().setGamma(1.0);
    EXPECT_EQ(gamma.count(), 1);

    const CgwProfileBase profile = CgwProfileBase::fromFile(QStringLiteral("/profiles/internal.icc"));
    options().setCMSInternalProfile(profile);
    EXPECT_EQ(options().cmsInternalProfile(), profile);
    EXPECT_EQ(filled().stringValue(GgwParam_CMSInternalProfile, QString()), "/profiles/internal.icc");

    QSignalSpy movies(&options(), &CgwFilterOptions::movieRequested);
    options().slotOptCMSMovieButtonClicked();
    options().slotOptSACMovieButtonClicked();
    ASSERT_EQ(movies.count(), 2);
    EXPECT_EQ(movies.at(0).at(0).toString(), "MovieOptionCMS");
    EXPECT_EQ(movies.at(1).at(0).toString(), "MovieOptionSAC");

    EXPECT_TRUE(options().setWantAutomaticPrescan100(QStringLiteral("USM"), true));
    EXPECT_TRUE(options().boolOption(GgwParam_WantAutomaticPrescan100_USM));
    EXPECT_FALSE(options().setWantAutomaticPrescan100(QStringLiteral("SCC"), true));
    EXPECT_TRUE(gwReadFile(gwTestLogPath()).contains(
        "gwDebug: CgwFilterOptions::setWantAutomaticPrescan100: Error: got unknown filte"));
}

TEST(FilterOptions, LoadingSavedFilesRestoresAndBrokenFilesKeepDefaults)
{
    options().applyDefaults(0);
    options().setScanner(7, QStringLiteral("Atelier"));
    options().setGamma(1.6);
    CgwParameterSet grad;
    grad.setBool(GgwParam_IsGradActive, true);
    options().setFilterSettings(EgwStoredGrad, grad);
    options().slotSavePrefs();

    options().applyDefaults(0);
    options().setFilterSettings(EgwStoredGrad, CgwParameterSet());
    options().loadPrefs();
    EXPECT_DOUBLE_EQ(options().gamma(), 1.6);
    EXPECT_EQ(options().filterSettings(EgwStoredGrad), grad);

    // A file cut short by a crash while it was written.
    const QString path = prefsFolder() + "/" + options().optionsFileName(0);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.resize(file.size() / 2);
    file.close();
    options().applyDefaults(0);
    const int logSize = gwReadFile(gwTestLogPath()).size();
    options().loadPrefs();
    EXPECT_DOUBLE_EQ(options().gamma(), 2.2);
    EXPECT_TRUE(gwReadFile(gwTestLogPath()).mid(logSize).contains("CgwXmlParameterSet::read : Error: "));
}
