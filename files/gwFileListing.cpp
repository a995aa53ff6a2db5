#include "files/gwFileListing.h"

#include <QDir>
#include <QStorageInfo>

namespace {

// Mounted volumes stand where Windows had drive letters; a volume that gives
// no information is passed over.
CgwFileInfoList listVolumes(const QString& scheme, bool describe)
{
    CgwFileInfoList entries;
    for (const QStorageInfo& volume : QStorageInfo::mountedVolumes()) {
        if (!volume.isValid() || !volume.isReady())
            continue;
        SgwFileInfo info;
        if (describe) {
            info.name = volume.rootPath() + QStringLiteral(" - ") + volume.displayName();
            info.isFolder = true;
        }
        entries.emplace_back(scheme + volume.rootPath(), info);
    }
    return entries;
}

} // namespace

QDateTime gwCreationTime(const QFileInfo& info)
{
    const QDateTime born = info.birthTime();
    return born.isValid() ? born : info.lastModified();
}

CgwFileInfoList gwListLocation(const QString& scheme, const QString& path, bool wantFiles, bool describeVolumes)
{
    if (path.left(5) != scheme)
        return CgwFileInfoList();
    if (path == scheme)
        return listVolumes(scheme, describeVolumes);

    const QDir dir(path.mid(5));
    const QDir::Filters filter = wantFiles ? QDir::Files | QDir::NoDotAndDotDot
                                           : QDir::AllDirs | QDir::Drives | QDir::NoDotAndDotDot;
    CgwFileInfoList entries;
    const QStringList names = dir.entryList(filter, QDir::Unsorted);
    for (const QString& name : names) {
        QFileInfo info(dir, name);
        // Follow a chain of links to its end; a cycle ends after a bounded walk.
        for (int hops = 0; info.isSymLink() && hops < 40; ++hops)
            info.setFile(info.symLinkTarget());
        if (!(info.isDir() ? !wantFiles : (info.isFile() && wantFiles)))
            continue;
        SgwFileInfo entry;
        entry.name = name;
        entry.isFolder = info.isDir();
        entry.size = info.size();
        entry.date = gwCreationTime(info);
        entries.emplace_back(scheme + info.absoluteFilePath(), entry);
    }
    return entries;
}
