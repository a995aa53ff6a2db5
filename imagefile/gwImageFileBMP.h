#pragma once

#include "files/gwFile.h"
#include "imagefile/gwImageFileBase.h"

#include <memory>
#include <vector>

// BMP files of 1 to 32 bits a pixel, plain, run-length packed or with bit
// fields, read into four 8-bit slots; written as 8-bit grey, RGB or four
// channels with a version 4 header.
class CgwImageFileBMP : public CgwImageFileBase
{
public:
    CgwImageFileBMP() = default;
    CgwImageFileBMP(const CgwImageFileBMP& other);
    ~CgwImageFileBMP() override;

    void resetState() override;
    void clearCropRect() override;
    CgwBitmapBase* loadPreview(const QString& path, qint64 offset) override { return loadBitmap(path, offset); }
    CgwBitmapHead loadImageInformation(const QString& path, qint64 offset) override;
    CgwBitmapBase* loadBitmap(const QString& path, qint64 offset) override;
    bool saveBitmap(const QString& path, const CgwBitmapBase& bitmap) override;
    CgwImageFileBase* clone() const override { return new CgwImageFileBMP(*this); }
    std::vector<std::string> fileExtensions() const override { return {"bmp"}; }
    bool isFormat(const QString& path, const char* header) override;
    bool capability35() const override { return false; }
    bool supportsColorMode(int mode) const override { return mode == 1 || mode == 3 || mode == 7; }

    using CgwImageFileBase::loadBitmap;
    using CgwImageFileBase::loadImageInformation;
    using CgwImageFileBase::loadPreview;
    using CgwImageFileBase::saveBitmap;

private:
    // A palette word; past the end the last one, as the reader has always done.
    quint16 paletteWord(size_t index) const;
    void readPalette(CgwFile& file, qint64 at, int headerSize, int& channels);
    void readOptionalFields(CgwFile& file, qint64 remaining, int& channels, QPointF& resolution);

    std::unique_ptr<CgwFile> mFile;
    qint32 mPixelOffset = 0;
    qint32 mBitsPerPixel = 0;
    qint32 mCompression = 0;
    std::vector<quint16> mPalette;
    quint32 mMasks[4] = {0, 0, 0, 0};
};
