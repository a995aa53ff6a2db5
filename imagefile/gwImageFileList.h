#pragma once

#include "diagnostics/gwSingleton.h"
#include "imagefile/gwImageFileBase.h"

#include <map>
#include <memory>

// Format identifiers; the gaps are kept, 0 means no format.
enum EgwImageFileType {
    EgwImageFileNone = 0,
    EgwImageFileScan = 1,
    EgwImageFileBMP = 3,
    EgwImageFilePSD = 4,
    EgwImageFileJPG2000 = 6,
    EgwImageFileLinearDNG = 18,
    EgwImageFileJPG = 20,
    EgwImageFileTIF = 21,
    EgwImageFileSocket = 23,
    EgwImageFilePDF = 24,
};

// Knows every format by its identifier, makes its objects, and recognises
// a file by asking each format in ascending order of identifiers.
class CgwImageFileList : public CgwSingleton<CgwImageFileList>
{
    friend class CgwSingleton<CgwImageFileList>;

public:
    ~CgwImageFileList() override;

    // A new object of the format, or null with one log line; the caller owns it.
    CgwImageFileBase* createImageFile(int type) const;
    // The format of the file, 0 when none fits.
    int imageFileType(CgwFile* file, qint64 offset) const;
    int imageFileType(const QString& path, qint64 offset) const;
    std::vector<int> formats() const;

private:
    CgwImageFileList();

    std::map<int, std::unique_ptr<CgwImageFileFactoryBase>> mFactories;
};
