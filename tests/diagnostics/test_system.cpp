// Folders, the version and the processor facts of the session header.

#include "diagnostics/gwCpuRegistry.h"
#include "diagnostics/gwSystem.h"
#include "support/gwTestEnv.h"

#include <QDir>
#include <QRegularExpression>

#include <gtest/gtest.h>

// Where the suite keeps its files; all but the user's own folders are made on demand.
TEST(System, FolderTableMapsToTheUsersFolders)
{
    const QString home = gwTestRoot() + "/home";
    const QString data = home + "/.local/share";
    const QString suite = data + "/Norvane Imaging/Glimmerway 8";
    const QString product = suite + " HDR";
    const QString colorServer = suite + " ColorServer";
    const std::pair<int, QString> cases[] = {
        {1, home + "/Desktop"}, {2, home + "/Pictures"}, {0, home + "/Documents"}, {23, home + "/Documents"},
        {3, suite + "/IT8 Reference Files"}, {4, suite + "/NegaTune"}, {5, data}, {6, product + "/Prefs"},
        {7, product + "/Previews"}, {8, product + "/Profiles"}, {9, suite + "/Prefs"}, {10, suite + "/Database"},
        {11, gwTestRoot() + "/temp/Norvane Imaging"}, {12, suite + "/Movies"}, {13, suite + "/Documentation"},
        {14, suite + "/Examples"}, {15, suite + "/Images"}, {16, product}, {17, suite + "/3rdLicenses"},
        {18, product + "/Prefs/Jobs"}, {19, product + "/Prefs/PersistentDialogPresets"}, {20, product + "/Prefs"},
        {21, colorServer + "/Prefs/HotFolders"}, {22, colorServer + "/Prefs/FilterSettings"},
    };
    for (const auto& [folder, path] : cases) {
        EXPECT_EQ(CgwSystem::folderPath(folder), "file:" + path) << folder;
        EXPECT_TRUE(QDir(path).exists() || folder <= 2 || folder == 23) << folder;
    }
    EXPECT_FALSE(QDir(home + "/Documents").exists()) << "the user's own folders are only named";

    // Without TEMP the temporary folder moves below the system's.
    qunsetenv("TEMP");
    EXPECT_EQ(CgwSystem::folderPath(EgwFolderTemp), "file:" + gwTestRoot() + "/tmp/Norvane Imaging");
    EXPECT_TRUE(QDir(gwTestRoot() + "/tmp/Norvane Imaging").exists());
}

TEST(System, VersionForms)
{
    EXPECT_EQ(CgwSystem::applicationVersion(false), "8.8.0r17") << "no blank in the short form";
    const QString detailed = CgwSystem::applicationVersion(true);
    const QRegularExpression form(R"(^8\.8\.0 r17 \([A-Z][a-z]{2} [ 0-9]\d \d{4}\) \S+ \d\d\.\d\d\. $)");
    EXPECT_TRUE(form.match(detailed).hasMatch()) << qPrintable(detailed);
}

TEST(System, SpeedTextPicksTheLargestUnitWithSixDigits)
{
    const std::pair<quint64, const char*> cases[] = {{1000000000ull, "1 GHz"}, {3123456789ull, "3.12346 GHz"},
                                                     {999999000ull, "999.999 MHz"}, {1000ull, "1 KHz"}, {999ull, ""}};
    for (const auto& [hz, text] : cases)
        EXPECT_EQ(CPURegistry::speedText(hz), QString::fromLatin1(text)) << hz;
}

TEST(System, CpuinfoOfTheFirstProcessorIsRead)
{
    const QString cpuinfo = QStringLiteral(
        "processor\t: 0\nvendor_id\t: GenuineIntel\ncpu family\t: 6\nmodel\t\t: 85\n"
        "model name\t: Intel(R) Xeon(R) CPU @ 2.50GHz\nstepping\t: 7\ncpu MHz\t\t: 2499.998\n\n"
        "processor\t: 1\nvendor_id\t: OtherVendor\nmodel name\t: Other\ncpu MHz\t\t: 100.0\n");
    CPURegistry registry;
    ASSERT_TRUE(registry.readFrom(cpuinfo));
    EXPECT_EQ(registry.processorName(), "Intel(R) Xeon(R) CPU @ 2.50GHz");
    EXPECT_EQ(registry.vendorName(), "GenuineIntel");
    EXPECT_EQ(registry.speedHz(), 2499998000ull);
    EXPECT_EQ((QList<int>{registry.family(), registry.model(), registry.stepping()}), (QList<int>{6, 85, 7}));
    // Without a model name there is nothing to show.
    EXPECT_FALSE(CPURegistry().readFrom(QStringLiteral("processor\t: 0\ncpu MHz\t: 1000\n")));
}
