// Folders, versions and the machine facts of the session header.

#include "diagnostics/gwCpuRegistry.h"
#include "diagnostics/gwSystem.h"
#include "support/gwTestEnv.h"

#include <QDir>
#include <QRegularExpression>
#include <QSysInfo>

#include <gtest/gtest.h>

// Where the suite keeps its files; all but the user's own folders are made on demand.
TEST(System, FolderTableMapsToTheUsersFolders)
{
    const QString home = gwTestRoot() + "/home";
    const QString data = home + "/.local/share";
    const QString suite = data + "/Norvane Imaging/Glimmerway 8";
    const QString product = suite + " HDR";
    const QString colorServer = suite + " ColorServer";
    const struct {
        int folder;
        QString path;
    } cases[] = {
        {1, home + "/Desktop"}, {2, home + "/Pictures"}, {0, home + "/Documents"}, {23, home + "/Documents"},
        {3, suite + "/IT8 Reference Files"}, {4, suite + "/NegaTune"}, {5, data}, {6, product + "/Prefs"},
        {7, product + "/Previews"}, {8, product + "/Profiles"}, {9, suite + "/Prefs"}, {10, suite + "/Database"},
        {11, gwTestRoot() + "/temp/Norvane Imaging"}, {12, suite + "/Movies"}, {13, suite + "/Documentation"},
        {14, suite + "/Examples"}, {15, suite + "/Images"}, {16, product}, {17, suite + "/3rdLicenses"},
        {18, product + "/Prefs/Jobs"}, {19, product + "/Prefs/PersistentDialogPresets"}, {20, product + "/Prefs"},
        {21, colorServer + "/Prefs/HotFolders"}, {22, colorServer + "/Prefs/FilterSettings"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(CgwSystem::folderPath(c.folder), "file:" + c.path) << c.folder;
        if (c.folder > 2 && c.folder != 23) { // the user's own folders are only named
            EXPECT_TRUE(QDir(c.path).exists()) << c.folder;
        }
    }
    EXPECT_FALSE(QDir(home + "/Documents").exists());
    EXPECT_EQ(CgwSystem::logFolder(), "file:" + product);
    EXPECT_EQ(CgwSystem::databaseFolder(), "file:" + suite + "/Database");

    // Without TEMP the temporary folder moves below the system's.
    qunsetenv("TEMP");
    EXPECT_EQ(CgwSystem::folderPath(EgwFolderTemp), "file:" + gwTestRoot() + "/tmp/Norvane Imaging");
    EXPECT_TRUE(QDir(gwTestRoot() + "/tmp/Norvane Imaging").exists());
}

TEST(System, VersionFormsAndOsName)
{
    EXPECT_EQ(CgwSystem::applicationVersion(false), "8.8.0r17") << "no blank in the short form";
    const QString detailed = CgwSystem::applicationVersion(true);
    EXPECT_TRUE(QRegularExpression(R"(^8\.8\.0 r17 \([A-Z][a-z]{2} [ 0-9]\d \d{4}\) \S+ \d\d\.\d\d\. $)")
                    .match(detailed)
                    .hasMatch())
        << qPrintable(detailed);
    const QString os = CgwSystem::osName();
    EXPECT_TRUE(os.contains(QSysInfo::kernelType()) && os.contains(QSysInfo::kernelVersion())) << qPrintable(os);
}

TEST(System, SpeedTextPicksTheLargestUnitWithSixDigits)
{
    const struct {
        quint64 hz;
        const char* text;
    } cases[] = {
        {2495998000ull, "2.496 GHz"}, {1000000000ull, "1 GHz"}, {3123456789ull, "3.12346 GHz"},
        {999999000ull, "999.999 MHz"}, {1500000ull, "1.5 MHz"},  {1500ull, "1.5 KHz"},
        {1000ull, "1 KHz"},           {999ull, ""},              {0ull, ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(CPURegistry::speedText(c.hz), QString::fromLatin1(c.text)) << c.hz;
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
    EXPECT_EQ(registry.speedMHz(), 2500ull);
    EXPECT_EQ((QList<int>{registry.family(), registry.model(), registry.stepping()}), (QList<int>{6, 85, 7}));
    // Without a model name there is nothing to show.
    EXPECT_FALSE(CPURegistry().readFrom(QStringLiteral("processor\t: 0\ncpu MHz\t: 1000\n")));
}
