// Folders, versions and the machine facts of the session header.

#include "diagnostics/gwCpuRegistry.h"
#include "diagnostics/gwSystem.h"
#include "support/gwTestEnv.h"

#include <QDir>
#include <QRegularExpression>
#include <QSysInfo>

#include <gtest/gtest.h>

TEST(System, FolderTableMapsToTheUsersFolders)
{
    const QString data = gwTestRoot() + "/home/.local/share";
    const QString suite = data + "/Norvane Imaging/Glimmerway 8";
    const QString product = data + "/Norvane Imaging/Glimmerway 8 HDR";
    const QString colorServer = data + "/Norvane Imaging/Glimmerway 8 ColorServer";
    const struct {
        int folder;
        QString path;
        bool created;
    } cases[] = {
        {1, gwTestRoot() + "/home/Desktop", false},
        {2, gwTestRoot() + "/home/Pictures", false},
        {3, suite + "/IT8 Reference Files", true},
        {4, suite + "/NegaTune", true},
        {5, data, true},
        {6, product + "/Prefs", true},
        {7, product + "/Previews", true},
        {8, product + "/Profiles", true},
        {9, suite + "/Prefs", true},
        {10, suite + "/Database", true},
        {11, gwTestRoot() + "/temp/Norvane Imaging", true},
        {12, suite + "/Movies", true},
        {13, suite + "/Documentation", true},
        {14, suite + "/Examples", true},
        {15, suite + "/Images", true},
        {16, product, true},
        {17, suite + "/3rdLicenses", true},
        {18, product + "/Prefs/Jobs", true},
        {19, product + "/Prefs/PersistentDialogPresets", true},
        {20, product + "/Prefs", true},
        {21, colorServer + "/Prefs/HotFolders", true},
        {22, colorServer + "/Prefs/FilterSettings", true},
        {0, gwTestRoot() + "/home/Documents", false},
        {23, gwTestRoot() + "/home/Documents", false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(CgwSystem::folderPath(c.folder), "file:" + c.path) << c.folder;
        if (c.created) {
            EXPECT_TRUE(QDir(c.path).exists()) << c.folder;
        }
    }
    EXPECT_FALSE(QDir(gwTestRoot() + "/home/Documents").exists()) << "the documents folder is only named";
    EXPECT_EQ(CgwSystem::logFolder(), "file:" + product);
    EXPECT_EQ(CgwSystem::databaseFolder(), "file:" + suite + "/Database");
}

TEST(System, TemporaryFolderFallsBackWhenTempIsUnset)
{
    qunsetenv("TEMP");
    EXPECT_EQ(CgwSystem::folderPath(EgwFolderTemp), "file:" + gwTestRoot() + "/tmp/Norvane Imaging");
    EXPECT_TRUE(QDir(gwTestRoot() + "/tmp/Norvane Imaging").exists());
}

TEST(System, ApplicationNameAndVersionForms)
{
    EXPECT_EQ(CgwSystem::applicationName(), "Glimmerway");
    EXPECT_EQ(CgwSystem::applicationVersion(false), "8.8.0r17");
    const QString detailed = CgwSystem::applicationVersion(true);
    EXPECT_TRUE(QRegularExpression(R"(^8\.8\.0 r17 \([A-Z][a-z]{2} [ 0-9]\d \d{4}\) \S+ \d\d\.\d\d\. $)")
                    .match(detailed)
                    .hasMatch())
        << qPrintable(detailed);
}

TEST(System, OsNameTellsTheLinuxTruth)
{
    const QString name = CgwSystem::osName();
    EXPECT_TRUE(name.contains(QSysInfo::kernelType())) << qPrintable(name);
    EXPECT_TRUE(name.contains(QSysInfo::kernelVersion())) << qPrintable(name);
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
    EXPECT_EQ(registry.family(), 6);
    EXPECT_EQ(registry.model(), 85);
    EXPECT_EQ(registry.stepping(), 7);

    EXPECT_FALSE(CPURegistry().readFrom(QStringLiteral("processor\t: 0\ncpu MHz\t: 1000\n")));
}

TEST(System, CpuInfoGivesThreeTexts)
{
    const QStringList info = CgwSystem::cpuInfo();
    ASSERT_EQ(info.size(), 3);
    for (const QString& text : info)
        EXPECT_FALSE(text.isEmpty());
}
