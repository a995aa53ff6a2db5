// The application options: defaults, computed values as written, file names, saving the preferences.

#include "settings/gwFilterOptions.h"
#include "settings/gwParamKeys.h"
#include "settings/gwXmlParameterSet.h"
#include "support/gwTestEnv.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QSignalSpy>

#include <tuple>

#include <unistd.h>

#include <gtest/gtest.h>

namespace {

CgwFilterOptions& options() { return CgwFilterOptions::instance(); }

CgwParameterSet filled()
{
    CgwParameterSet set;
    options().fillParameterSet(set, false);
    return set;
}

} // namespace

// Version type 3 has defaults of its own; floats are written as doubles, colours above the int range.
TEST(FilterOptions, DefaultsOfBothVersionTypesAsWritten)
{
    const std::tuple<int, const char*, const char*> cases[] = {{3, "0.03 ", "TRUE "}, {0, "0.02 ", "FALSE "}};
    for (const auto& [type, black, xray] : cases) {
        options().applyDefaults(type);
        const CgwParameterSet set = filled();
        EXPECT_EQ(set.value(GgwParam_AutoTargetBlack).toQString(), black) << type;
        EXPECT_EQ(set.value(GgwParam_XRayModeUI).toQString(), xray) << type;
    }
    EXPECT_EQ(filled().value(GgwParam_DFR_MarkColor).toQString(), "4278255615 ");
    // Four fifths of the physical memory, in mebibytes.
    const quint64 physical = quint64(sysconf(_SC_PHYS_PAGES)) * quint64(sysconf(_SC_PAGESIZE));
    EXPECT_EQ(options().mmfRamLimit(), int(double(physical >> 20) * 0.8 + 0.5));
}

TEST(FilterOptions, FrameInsetIsWrittenOnlyWhenActiveAndAtMostPointEight)
{
    const std::tuple<bool, double, const char*> cases[] = {
        {true, 0.25, "0.25 "}, {false, 0.25, "0 "}, {true, 0.9, "0.8 "}, {true, -0.1, "0 "}};
    for (const auto& [active, stored, written] : cases) {
        options().setAutoFrameInsetIsActive(active);
        options().setAutoFrameInset(stored);
        EXPECT_EQ(filled().value(GgwParam_AutoFrameInset).toQString(), written) << stored;
    }
}

TEST(FilterOptions, AnalogGainIsFixedForRGBFramesByScannerFamily)
{
    const QString* keys[] = {&GgwParam_AGBrightnessAmp, &GgwParam_AGRedAmp, &GgwParam_AGGreenAmp, &GgwParam_AGBlueAmp};
    const QVector<double> stored = {1.5, 2.5, 3.5, 4.5};
    options().setAnalogGainParams(stored[0], stored[1], stored[2], stored[3]);
    // A fixed gain of -1 stands for the stored values.
    const std::tuple<EgwColorMode, int, double> cases[] = {
        {EgwColorModeRGB, 0x2d0005, 150}, {EgwColorModeRGB, 0x2c0005, 0}, {EgwColorModeGrey, 0x2d0005, -1}};
    for (const auto& [frameType, scannerId, fixed] : cases) {
        options().slotSetFrontFrameScanType(frameType);
        options().setScanner(scannerId, QStringLiteral("Scanner"));
        const CgwParameterSet set = filled();
        QVector<double> written;
        for (const QString* key : keys)
            written << CgwParameterSet::doubleFromValue(set.value(*key));
        EXPECT_EQ(written, fixed < 0 ? stored : QVector<double>(4, fixed)) << std::hex << scannerId;
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
    const QString optionsFile = prefsFolder + "/OptionsHDR Atelier.xml";
    options().applyDefaults(0);
    options().setScanner(0x2d0005, QStringLiteral("HDR Atelier"));
    options().setGamma(1.6);
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
    EXPECT_EQ(CgwXmlParameterSet::readFile(optionsFile).longLongValue("OptionsID", 0), 0x2d0005);

    options().applyDefaults(0);
    options().setFilterSettings(EgwStoredUSM, CgwParameterSet());
    options().loadPrefs();
    EXPECT_DOUBLE_EQ(options().gamma(), 1.6);
    EXPECT_EQ(options().selectedTempPath(), "/scratch/with blank");
    EXPECT_EQ(options().filterSettings(EgwStoredUSM), usm);

    // A file cut short by a crash while it was written.
    ASSERT_TRUE(QFile::resize(optionsFile, QFileInfo(optionsFile).size() / 2));
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
