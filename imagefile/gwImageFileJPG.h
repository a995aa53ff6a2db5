#pragma once

#include "imagefile/gwImageFileBase.h"

#include <memory>
#include <vector>

class CgwExif;
struct SgwJpegDecompressor;

// JPEG files, baseline, optimised and progressive, through libjpeg over
// CgwFile; the ICC profile in APP2, Exif in APP1, IPTC through Exiv2. The
// preview is the Exif thumbnail. A corrupt stream makes libjpeg's error
// manager throw the integer 1 out of the load functions.
class CgwImageFileJPG : public CgwImageFileBase
{
public:
    static constexpr int kDefaultQuality = 80;

    CgwImageFileJPG();
    CgwImageFileJPG(const CgwImageFileJPG& other) = default;
    ~CgwImageFileJPG() override;

    void resetState() override;
    CgwBitmapBase* loadPreview(CgwFile* file, qint64 offset) override;
    CgwBitmapBase* loadPreview(const QString& path, qint64 offset) override;
    CgwBitmapHead loadImageInformation(CgwFile* file, qint64 offset) override;
    CgwBitmapHead loadImageInformation(const QString& path, qint64 offset) override;
    CgwBitmapBase* loadBitmap(CgwFile* file, qint64 offset) override;
    CgwBitmapBase* loadBitmap(const QString& path, qint64 offset) override;
    bool saveBitmap(const QString& path, const CgwBitmapBase& bitmap) override;
    void setParameter(const CgwParameterSet& parameters) override;
    void getParameter(CgwParameterSet& parameters) const override;
    CgwImageFileBase* clone() const override { return new CgwImageFileJPG(*this); }
    std::vector<std::string> fileExtensions() const override { return {"jpg", "jpeg"}; }
    bool isFormat(const QString& path, const char* header) override;
    bool capability35() const override { return false; }
    bool supportsColorMode(int mode) const override;
    std::vector<std::string> libraryVersions() const override;

    using CgwImageFileBase::saveBitmap;

    int quality() const { return mQuality; }
    int format() const { return mFormat; }
    qint64 exifOffset() const { return mExifOffset; }

    // Finds the Exif block from the file's position and reads it; an old
    // version's gamma record is dropped. The file is left where it was.
    bool readExif(CgwFile& file, CgwExif& exif);

private:
    bool readHeader(SgwJpegDecompressor& jpeg, const CgwExif& exif, CgwBitmapHead& head);
    CgwBitmapBase* decode(SgwJpegDecompressor& jpeg, const CgwBitmapHead& head);
    void takeMetadata(const CgwBitmapHead& head, CgwFile& file, CgwBitmapBase& bitmap);
    bool writeJpeg(CgwFile& file, const CgwBitmapBase& bitmap);

    qint32 mQuality = kDefaultQuality;
    qint64 mExifOffset = 0;
    qint32 mFormat = 0; // 0 baseline, 1 optimised Huffman tables, 2 progressive
};
