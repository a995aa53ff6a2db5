#pragma once

#include "imagefile/gwImageFileBase.h"
#include "imagefile/gwTiffIO.h"

// The suite's own format. A file it wrote is a plain TIFF to any other
// reader, but may hold up to three pages (main image, a reduced HiRePX
// view, an IR channel), two private tags and the maker note that marks an
// HDR scan. libtiff is fed through client procedures over CgwFile.
class CgwImageFileTIF : public CgwImageFileBase
{
public:
    // Above this many pixels a main image may carry a HiRePX page.
    static constexpr quint32 kHiRepxThreshold = 10000000;

    CgwImageFileTIF();
    CgwImageFileTIF(const CgwImageFileTIF& other) = default;
    ~CgwImageFileTIF() override;

    void resetState() override;
    int irLocation(const QString& path) override;
    bool hiRepxInfo(const QString& path, double resolution[2], int size[2]) override;
    CgwBitmapBase* loadPreview(const QString& path, qint64 offset) override;
    CgwBitmapHead loadImageInformation(const QString& path, qint64 offset) override;
    CgwBitmapBase* loadBitmap(const QString& path, qint64 offset) override;
    CgwBitmapBase* loadBitmapIR(const QString& path, qint64 offset) override;
    CgwBitmapBase* loadHiRePX(const QString& path, qint64 offset) override;
    bool saveBitmap(const QString& path, const CgwBitmapBase& bitmap) override;
    CgwImageFileBase* clone() const override { return new CgwImageFileTIF(*this); }
    std::vector<std::string> fileExtensions() const override { return {"tif", "tiff"}; }
    bool isFormat(const QString& path, const char* header) override;

    using CgwImageFileBase::loadBitmap;
    using CgwImageFileBase::loadBitmapIR;
    using CgwImageFileBase::loadImageInformation;
    using CgwImageFileBase::loadPreview;
    using CgwImageFileBase::saveBitmap;

    virtual bool capability39() const { return false; }
    virtual int photometricFromColorMode(int mode) const;
    virtual int colorModeFromPhotometric(int photometric, int samples, int bits) const;

    // Opens `path` with its TIFF header at `offset`: mode 1 reads, 2 writes.
    static TIFF* tiffOpen(const QString& path, int mode, qint64 offset) { return gwTiffOpen(path, mode, offset); }
    static int directoryCount(const QString& path) { return gwTiffDirectoryCount(path); }

    // Reads the file's Exif record into the head and takes from its maker
    // note what a scan of the suite remembers: the HDR mark, gamma, optical
    // resolution, scanner, profile and film.
    void readMakernotes(CgwBitmapHead& head, const QString& path, qint64 offset, bool isHiRePX);
    // One page: `directory`, or a SubIFD of it.
    CgwBitmapBase* loadPage(const QString& path, qint64 offset, int directory, bool useSubIfd = false,
                            quint64 subIfdOffset = 0);
    // The older IR layout: a raw 16-bit plane behind the TIFF data at
    // `irOffset` (0: the offset the private tag gives).
    CgwBitmapBase* loadBitmapIR_GW6(const QString& path, qint64 irOffset);

    // Decodes the current directory of `tiff` with samples of `Sample`
    // (quint8 for up to 8 bits, quint16 above).
    template <class Sample>
    CgwBitmapBase* loadBitmapT(TIFF* tiff);

private:
    CgwBitmapBase* loadDirectory(TIFF* tiff, const QString& path, qint64 offset, int directory);
    void readPageHead(TIFF* tiff, CgwBitmapHead& head);
    static CgwExif readExifRecord(const QString& path, qint64 offset);

    qint32 mState = 1;
};
