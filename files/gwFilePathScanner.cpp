#include "files/gwFilePathScanner.h"

QString CgwFilePathScanner::displayName() const
{
    //: Alle Scanner
    return tr("All scanners");
}

CgwFile* CgwFilePathScanner::createFile(const QString& path, bool)
{
    if (path.left(5) != scheme())
        return nullptr;
    return new CgwFileSD(path);
}

CgwFilePathFSThread* CgwFilePathScanner::newWorker(const QString& path, bool wantFiles)
{
    return new CgwFilePathScannerThread(path, wantFiles);
}
