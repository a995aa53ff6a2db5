#include "imagefile/gwImageFileList.h"

#include "diagnostics/gwDebug.h"
#include "files/gwFilePathList.h"
#include "imagefile/gwImageFileBMP.h"
#include "imagefile/gwImageFileJPG.h"
#include "imagefile/gwImageFileScan.h"
#include "imagefile/gwImageFileTIF.h"

#include <vector>

CgwImageFileList::CgwImageFileList()
{
    // Each format joins here when it exists.
    mFactories[EgwImageFileScan] = std::make_unique<CgwImageFileFactoryBaseT<CgwImageFileScan>>();
    mFactories[EgwImageFileBMP] = std::make_unique<CgwImageFileFactoryBaseT<CgwImageFileBMP>>();
    mFactories[EgwImageFileJPG] = std::make_unique<CgwImageFileFactoryBaseT<CgwImageFileJPG>>();
    mFactories[EgwImageFileTIF] = std::make_unique<CgwImageFileFactoryBaseT<CgwImageFileTIF>>();
}

CgwImageFileList::~CgwImageFileList() = default;

CgwImageFileBase* CgwImageFileList::createImageFile(int type) const
{
    const auto it = mFactories.find(type);
    if (it == mFactories.end()) {
        gwDebugString(QStringLiteral("CgwImageFileList::createImageFile not available %1").arg(type));
        return nullptr;
    }
    return it->second->createImageFile();
}

int CgwImageFileList::imageFileType(CgwFile* file, qint64 offset) const
{
    if (!file)
        return 0;
    // The first 4096 bytes, zero behind what the file has; null when it will not open.
    std::vector<char> header;
    if (file->open(QIODevice::ReadOnly)) {
        header.assign(4096, '\0');
        file->seek(offset, 0);
        if (file->read(header.data(), 4096) < 1)
            return 0; // an empty file: no format is asked
        file->close();
    }
    for (const auto& entry : mFactories) {
        std::unique_ptr<CgwImageFileBase> format(entry.second->createImageFile());
        if (format && format->isFormat(file->path(), header.empty() ? nullptr : header.data()))
            return entry.first;
    }
    return 0;
}

int CgwImageFileList::imageFileType(const QString& path, qint64 offset) const
{
    std::unique_ptr<CgwFile> file(CgwFilePathList::instance().createFile(path));
    return file ? imageFileType(file.get(), offset) : 0;
}

std::vector<int> CgwImageFileList::formats() const
{
    std::vector<int> ids;
    for (const auto& entry : mFactories)
        ids.push_back(entry.first);
    return ids;
}
