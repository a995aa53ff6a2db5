#include "files/gwFilePathFS.h"

#include <QFile>

const char* const GgwThumbnailDatabaseName = ".GWX_Thumbs.db";

QString CgwFilePathFS::displayName() const
{
    //: Arbeitsplatz
    return tr("MyComputer");
}

CgwFile* CgwFilePathFS::createFile(const QString& path, bool)
{
    // Whatever the scheme, the first five characters are the scheme's. The
    // file keeps the whole location string as its path.
    auto* file = new CgwFileFS(path.mid(5));
    file->setPath(path);
    return file;
}

bool CgwFilePathFS::removeFile(const QString& path)
{
    return QFile::remove(path.mid(5));
}

CgwFilePathFSThread* CgwFilePathFS::newWorker(const QString& path, bool wantFiles)
{
    return new CgwFilePathFSThread(path, wantFiles);
}
