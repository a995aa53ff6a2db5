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

} // namespace

// The version types differ in the automatic levels, the frame inset and the X-ray mode.
TEST(FilterOptions, DefaultsOfBothVersionTypes)
{
    const struct {
        const QString& key;
        double main;
        double type3;
    } cases[] = {
        {GgwParam_AutoTargetBlack, 0.02, 0.03},    {GgwParam_AutoTargetWhite, 0.98, 0.97},
        {GgwParam_AutoThresholdWhite, 0.02, 0.0},  {GgwParam_AutoFrameInset, 0.1, 0.0},
        {GgwParam_AutoFrameInsetIsActive, 1, 0},   {GgwParam_XRayModeUI, 0, 1},
        {GgwParam_DFR_MarkColor, 4278255615.0, 4278255615.0}, // above the int range
    };
    for (int type : {0, 3}) {
        options().applyDefaults(type);
        const CgwParameterSet set = filled();
        for (const auto& c : cases) {
            const CgwQString value = set.value(c.key);
            const double actual = CgwParameterSet::boolFromValue(value) ? 1.0 : CgwParameterSet::doubleFromValue(value);
            EXPECT_NEAR(actual, type == 3 ? c.type3 : c.main, 1e-6) << qPrintable(c.key) << " type " << type;
        }
    }
    options().applyDefaults(0);
    EXPECT_EQ(filled().value(GgwParam_AutoTargetBlack).toQString(), "0.02 ") << "floats written as doubles";
    // Four fifths of the physical memory, in mebibytes.
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
    }
}

TEST(FilterOptions, AnalogGainIsFixedForRGBFramesByScannerFamily)
{
    const QString* keys[] = {&GgwParam_AGBrightnessAmp, &GgwParam_AGRedAmp, &GgwParam_AGGreenAmp, &GgwParam_AGBlueAmp};
    const QVector<double> stored = {1.5, 2.5, 3.5, 4.5};
    options().setAnalogGainParams(stored[0], stored[1], stored[2], stored[3]);
    const struct {
        EgwColorMode frameType;
        int scannerId;
        double fixed; // -1: the stored values
    } cases[] = {
        {EgwColorModeRGB, 0x2d0005, 150}, {EgwColorModeRGB, 0x1a0001, 0}, {EgwColorModeRGB, 0x400000, 0},
        {EgwColorModeRGB, 0x110000, 0},   {EgwColorModeGrey, 0x2d0005, -1},
    };
    for (const auto& c : cases) {
        options().slotSetFrontFrameScanType(c.frameType);
        options().setScanner(c.scannerId, QStringLiteral("Scanner"));
        const CgwParameterSet set = filled();
        QVector<double> written;
        for (const QString* key : keys)
            written << CgwParameterSet::doubleFromValue(set.value(*key));
        EXPECT_EQ(written, c.fixed < 0 ? stored : QVector<double>(4, c.fixed)) << std::hex << c.scannerId;
    }
}

// Slashes become underscores; a configured scanner name or the picture's path replaces the scanner's.
TEST(FilterOptions, FileNamesFollowTheVersionType)
{
    const auto name = &CgwFilterOptions::composeFileName;
    EXPECT_EQ(name("Options", 1, 0, "HDR Atelier", "", "", ""), "OptionsSEHDR Atelier.xml");
    EXPECT_EQ(name("Options", 7, 3, "A/B", "", "", ""), "OptionsXA_B.xml");
    EXPECT_EQ(name("Options", 5, 0, "S", "", "", ""), "OptionsS.xml");
    EXPECT_EQ(name("Options", 1, 2, "S", "My/Scanner", "/pics", "standard.jpg"), "Options(My_Scanner).xml");
    EXPECT_EQ(name("Masks", 2, 2, "S", "Cfg", "/pics", "slide.tif"),
              "Masks(" + QCryptographicHash::hash("/pics/slide.tif", QCryptographicHash::Md5).toHex() + ").xml");
}

TEST(FilterOptions, SettersSignalChangesOnlyAndUnknownFiltersAreRefused)
{
    options().applyDefaults(0);
    QSignalSpy gamma(&options(), &CgwFilterOptions::signalGammaChanged);
    options().setGamma(2.2);
    options().setGamma(1.0);
    options().setGamma(1.0);
    EXPECT_EQ(gamma.count(), 1);

    options().setCMSInternalProfile(CgwProfileBase::fromFile(QStringLiteral("/profiles/internal.icc")));
    EXPECT_EQ(filled().stringValue(GgwParam_CMSInternalProfile, QString()), "/profiles/internal.icc");

    EXPECT_TRUE(options().setWantAutomaticPrescan100(QStringLiteral("USM"), true));
    EXPECT_TRUE(options().boolOption(GgwParam_WantAutomaticPrescan100_USM));
    EXPECT_FALSE(options().setWantAutomaticPrescan100(QStringLiteral("SCC"), true));
    EXPECT_EQ(gwLastLogLine(), "gwDebug: CgwFilterOptions::setWantAutomaticPrescan100: Error: got unknown filter SCC");

    // A key missing from an applied set keeps its value.
    options().setOption(GgwParam_JPEGQuality, 55);
    CgwParameterSet onlyGamma;
    onlyGamma.setDouble(GgwParam_Gamma, 1.8);
    options().applyParameterSet(onlyGamma);
    EXPECT_DOUBLE_EQ(options().gamma(), 1.8);
    EXPECT_EQ(options().intOption(GgwParam_JPEGQuality), 55);
}

TEST(FilterOptions, SavedPreferencesLoadBackAndBrokenFilesKeepDefaults)
{
    const QString prefsFolder = gwTestRoot() + "/home/.local/share/Norvane Imaging/Glimmerway 8 HDR/Prefs";
    options().applyDefaults(0);
    options().setScanner(0x2d0005, QStringLiteral("HDR Atelier"));
    options().setGamma(1.6);
    options().setIsScanDraft(true);
    options().setTextOption(GgwParam_SelectedTempPath, QStringLiteral("/scratch/with blank"));
    CgwParameterSet usm;
    usm.setDouble(GgwParam_Strength, 1.25);
    options().setFilterSettings(EgwStoredUSM, usm);
    options().slotSavePrefs();
    // Every settings file by its name; no presets file while the list is empty.
    EXPECT_EQ(QDir(prefsFolder).entryList(QDir::Files, QDir::Name),
              (QStringList{"ACOXSettings.xml", "DFRXSettings.xml", "DescreeningSettings.xml", "GCCSettings.xml",
                           "GNRXSettings.xml", "GradSettings.xml", "HistSettings.xml", "IPTCSettings.xml",
                           "ISDFRSettings.xml", "NegaTuneSettings.xml", "OptionsHDR Atelier.xml", "SC2GSettings.xml",
                           "SCCSettings.xml", "USMSettings.xml"}));
    const CgwParameterSet saved = CgwXmlParameterSet::readFile(prefsFolder + "/OptionsHDR Atelier.xml");
    EXPECT_EQ(saved.longLongValue("OptionsID", 0), 0x2d0005);
    EXPECT_EQ(saved.stringValue("OptionsName", QString()), "OptionsHDR Atelier");

    options().applyDefaults(0);
    options().setFilterSettings(EgwStoredUSM, CgwParameterSet());
    options().loadPrefs();
    EXPECT_DOUBLE_EQ(options().gamma(), 1.6);
    EXPECT_TRUE(options().boolOption(GgwParam_IsScanDraft));
    EXPECT_EQ(options().selectedTempPath(), "/scratch/with blank");
    EXPECT_EQ(options().filterSettings(EgwStoredUSM), usm);

    // A file cut short by a crash while it was written.
    QFile file(prefsFolder + "/" + options().optionsFileName(0));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.resize(file.size() / 2);
    file.close();
    options().applyDefaults(0);
    options().loadPrefs();
    EXPECT_DOUBLE_EQ(options().gamma(), 2.2);
    EXPECT_TRUE(gwLastLogLine().contains("CgwXmlParameterSet::read : Error: "));

    SgwSelectiveColorPreset preset;
    preset.name = QStringLiteral("Sky");
    options().setSelectiveColorPresets({preset});
    options().slotSavePrefs();
    EXPECT_TRUE(CgwXmlParameterSet::readFile(prefsFolder + "/SCCPresets.xml").hasKey("SCCPresets"));
}
