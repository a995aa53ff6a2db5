#pragma once

#include <QString>
#include <QStringList>

// The well-known folders in which the system keeps its files.
enum EgwSystemFolder {
    EgwFolderDocuments = 0, // any value outside 1 to 22 means the documents folder
    EgwFolderDesktop = 1,
    EgwFolderPictures = 2,
    EgwFolderIT8References = 3,
    EgwFolderNegaTune = 4,
    EgwFolderCommonData = 5,
    EgwFolderUserPrefs = 6,
    EgwFolderPreviews = 7,
    EgwFolderUserProfiles = 8,
    EgwFolderMachinePrefs = 9,
    EgwFolderDatabase = 10,
    EgwFolderTemp = 11,
    EgwFolderMovies = 12,
    EgwFolderDocumentation = 13,
    EgwFolderExamples = 14,
    EgwFolderImages = 15,
    EgwFolderLog = 16,
    EgwFolderLicenses = 17,
    EgwFolderJobs = 18,
    EgwFolderDialogPresets = 19,
    EgwFolderPrefs = 20,
    EgwFolderHotFolders = 21,
    EgwFolderFilterSettings = 22,
};

namespace CgwSystem {

extern const char* const suiteFolder;
extern const char* const productFolder;
extern const char* const colorServerFolder;
extern const char* const xRayFolder;
extern const char* const autoScanFolder;

QString applicationName();
QString applicationVersion(bool detailed);
QString osName();
// Processor name, speed text and vendor, in that order.
QStringList cpuInfo();

// A location string: "file:" and the folder, with forward slashes.
QString folderPath(EgwSystemFolder folder);
inline QString folderPath(int folder) { return folderPath(static_cast<EgwSystemFolder>(folder)); }

QString picturesFolder();
QString negaTuneFolder();
QString prefsFolder();
QString databaseFolder();
QString moviesFolder();
QString documentationFolder();
QString logFolder();

} // namespace CgwSystem
