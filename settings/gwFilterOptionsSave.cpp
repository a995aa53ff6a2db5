// Saving the options: the option file, the selective-colour presets and one
// file per stored filter, all into the preferences folder.

#include "settings/gwFilterOptions.h"

#include "diagnostics/gwSystem.h"
#include "settings/gwSerialDatabase.h"
#include "settings/gwXmlParameterSet.h"

#include <QFile>
#include <QFileInfo>

namespace {

// A file that cannot be opened is passed over: saving never reports.
void writeSet(const QString& path, const CgwParameterSet& parameters)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text))
        return;
    parameters.writeTo(file);
}

} // namespace

QString CgwFilterOptions::filterSettingsFileName(EgwStoredFilter filter)
{
    static const char* const names[EgwStoredFilterCount] = {
        "SCCSettings.xml",  "SC2GSettings.xml", "USMSettings.xml",         "GradSettings.xml",
        "HistSettings.xml", "GCCSettings.xml",  "ACOXSettings.xml",        "DescreeningSettings.xml",
        "GNRXSettings.xml", "DFRXSettings.xml", "ISDFRSettings.xml",       "NegaTuneSettings.xml",
        "IPTCSettings.xml",
    };
    return QString::fromLatin1(names[filter]);
}

namespace {
QString prefsFolderPath()
{
    return CgwSystem::prefsFolder().mid(5) + QLatin1Char('/');
}
} // namespace

void CgwFilterOptions::loadPrefs()
{
    const QString folder = prefsFolderPath();
    applyParameterSet(CgwXmlParameterSet::readFile(folder + optionsFileName(mVersionKind)));
    for (int filter = 0; filter < EgwStoredFilterCount; ++filter) {
        const QString path = folder + filterSettingsFileName(EgwStoredFilter(filter));
        if (QFile::exists(path))
            mFilterSettings[filter] = CgwXmlParameterSet::readFile(path);
    }
}

void CgwFilterOptions::slotSavePrefs()
{
    const QString folder = prefsFolderPath();
    const bool versionTwo = CgwSerialDatabase::instance().versionType() == 2;

    const QString optionsName = optionsFileName(mVersionKind);
    CgwParameterSet options;
    fillParameterSet(options, mSaveUserData && versionTwo);
    options.setLongLong(QStringLiteral("OptionsID"), mScannerId);
    options.setString(QStringLiteral("OptionsName"), QFileInfo(optionsName).completeBaseName());
    writeSet(folder + optionsName, options);

    if (!mPresets.isEmpty()) {
        CgwParameterSet presets;
        presets.setPresetList(QStringLiteral("SCCPresets"), mPresets);
        writeSet(folder + QStringLiteral("SCCPresets.xml"), presets);
    }
    for (int filter = 0; filter < EgwStoredFilterCount; ++filter)
        writeSet(folder + filterSettingsFileName(EgwStoredFilter(filter)), mFilterSettings[filter]);
}
