#include "diagnostics/gwSystem.h"

#include "diagnostics/gwCpuRegistry.h"
#include "gwBuildInfo.h"

#include <QDir>
#include <QStandardPaths>
#include <QSysInfo>

namespace CgwSystem {

const char* const suiteFolder = "/Norvane Imaging/Glimmerway 8";
const char* const productFolder = "/Norvane Imaging/Glimmerway 8 HDR";
const char* const colorServerFolder = "/Norvane Imaging/Glimmerway 8 ColorServer";
const char* const xRayFolder = "/Norvane Imaging/Glimmerway 8 X-Ray";
const char* const autoScanFolder = "/Norvane Imaging/Glimmerway 8 AutoScan";

QString applicationName()
{
    return QStringLiteral("Glimmerway");
}

QString applicationVersion(bool detailed)
{
    const QString numbers = QStringLiteral("%1.%2.%3")
                                .arg(GW_VERSION_MAJOR)
                                .arg(GW_VERSION_MINOR)
                                .arg(GW_VERSION_PATCH);
    if (!detailed)
        return numbers + QStringLiteral("r%1").arg(GW_VERSION_REVISION);
    return numbers + QStringLiteral(" r%1 (").arg(GW_VERSION_REVISION) + QStringLiteral(__DATE__)
           + QStringLiteral(")") + QStringLiteral(GW_BUILD_STAMP);
}

QString osName()
{
    return QStringLiteral("%1 (%2 %3, %4)")
        .arg(QSysInfo::prettyProductName(), QSysInfo::kernelType(), QSysInfo::kernelVersion(),
             QSysInfo::currentCpuArchitecture());
}

QStringList cpuInfo()
{
    CPURegistry registry;
    if (!registry.read())
        return {QStringLiteral("Unknown CPU"), QStringLiteral("Unknown CPU speed"),
                QStringLiteral("Unknown vendor name")};
    return {QString::fromStdString(registry.processorName()),
            CPURegistry::speedText(registry.speedHz()),
            QString::fromStdString(registry.vendorName())};
}

namespace {

enum class Platform { None, Desktop, Pictures, CommonData, UserData, Temp, Documents };

struct FolderRow {
    Platform platform;
    const char* base; // one of the product path constants, or null
    const char* tail;
    bool create;
};

FolderRow folderRow(EgwSystemFolder folder)
{
    switch (folder) {
    case EgwFolderDesktop: return {Platform::Desktop, nullptr, "", false};
    case EgwFolderPictures: return {Platform::Pictures, nullptr, "", false};
    case EgwFolderIT8References: return {Platform::CommonData, suiteFolder, "/IT8 Reference Files", true};
    case EgwFolderNegaTune: return {Platform::CommonData, suiteFolder, "/NegaTune", true};
    case EgwFolderCommonData: return {Platform::CommonData, nullptr, "", false};
    case EgwFolderUserPrefs: return {Platform::UserData, productFolder, "/Prefs", true};
    case EgwFolderPreviews: return {Platform::UserData, productFolder, "/Previews", true};
    case EgwFolderUserProfiles: return {Platform::UserData, productFolder, "/Profiles", true};
    case EgwFolderMachinePrefs: return {Platform::CommonData, suiteFolder, "/Prefs", true};
    case EgwFolderDatabase: return {Platform::CommonData, suiteFolder, "/Database", true};
    case EgwFolderTemp: return {Platform::Temp, nullptr, "/Norvane Imaging", true};
    case EgwFolderMovies: return {Platform::CommonData, suiteFolder, "/Movies", true};
    case EgwFolderDocumentation: return {Platform::CommonData, suiteFolder, "/Documentation", true};
    case EgwFolderExamples: return {Platform::CommonData, suiteFolder, "/Examples", true};
    case EgwFolderImages: return {Platform::CommonData, suiteFolder, "/Images", true};
    case EgwFolderLog: return {Platform::UserData, productFolder, "", true};
    case EgwFolderLicenses: return {Platform::CommonData, suiteFolder, "/3rdLicenses", true};
    case EgwFolderJobs: return {Platform::UserData, productFolder, "/Prefs/Jobs", true};
    case EgwFolderDialogPresets:
        return {Platform::UserData, productFolder, "/Prefs/PersistentDialogPresets", true};
    case EgwFolderPrefs: return {Platform::UserData, productFolder, "/Prefs", true};
    case EgwFolderHotFolders: return {Platform::UserData, colorServerFolder, "/Prefs/HotFolders", true};
    case EgwFolderFilterSettings:
        return {Platform::UserData, colorServerFolder, "/Prefs/FilterSettings", true};
    default: return {Platform::Documents, nullptr, "", false};
    }
}

// The platform folders of Linux. The machine-wide and the per-user data
// folder are both the user's data folder: a desktop user cannot write the
// machine-wide ones, and the files kept there are the user's own.
QString platformFolder(Platform platform)
{
    QString path;
    switch (platform) {
    case Platform::Desktop: path = QStandardPaths::writableLocation(QStandardPaths::DesktopLocation); break;
    case Platform::Pictures: path = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation); break;
    case Platform::CommonData:
    case Platform::UserData:
        path = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
        break;
    case Platform::Documents:
        // Not created, as the shell's value it stands for was only read.
        return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    case Platform::Temp: {
        path = qEnvironmentVariable("TEMP");
        if (path.isEmpty()) {
            const QStringList temps = QStandardPaths::standardLocations(QStandardPaths::TempLocation);
            path = temps.isEmpty() ? QString() : temps.first();
        }
        return path;
    }
    case Platform::None: return QString();
    }
    // The platform call is made with its create flag: the folder exists afterwards.
    if (!path.isEmpty())
        QDir().mkpath(path);
    return path;
}

} // namespace

QString folderPath(EgwSystemFolder folder)
{
    const FolderRow row = folderRow(folder);
    QString path = platformFolder(row.platform);
    if (!path.isEmpty()) {
        if (row.base)
            path += QLatin1String(row.base);
        path += QLatin1String(row.tail);
        if (row.create && !QDir(path).exists())
            QDir().mkpath(path);
    }
    path.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return QStringLiteral("file:") + path;
}

QString picturesFolder() { return folderPath(EgwFolderPictures); }
QString negaTuneFolder() { return folderPath(EgwFolderNegaTune); }
QString prefsFolder() { return folderPath(EgwFolderUserPrefs); }
QString databaseFolder() { return folderPath(EgwFolderDatabase); }
QString moviesFolder() { return folderPath(EgwFolderMovies); }
QString documentationFolder() { return folderPath(EgwFolderDocumentation); }
QString logFolder() { return folderPath(EgwFolderLog); }

} // namespace CgwSystem
