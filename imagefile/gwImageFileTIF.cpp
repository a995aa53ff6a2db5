#include "imagefile/gwImageFileTIF.h"

#include "Sourcen/Image/gwBitmapT.h"
#include "diagnostics/gwDebug.h"

#include <QFile>
#include <QtEndian>

#include <memory>

namespace {


// NewSubfileType of the suite's extra pages.
constexpr quint32 kSubfileReduced = 1;
constexpr quint32 kSubfileIR = 4;

// What a loaded page learns from the maker note goes onto the bitmap.
void applyHead(CgwBitmapBase& bitmap, const CgwBitmapHead& head)
{
    bitmap.setExif(head.mExif);
    bitmap.setResolution(head.mResolution);
    bitmap.setParameters(head.mParameters);
    if (head.mGamma > 0.0f)
        bitmap.setGamma(head.mGamma);
    if (head.mProfile.isValid())
        bitmap.setProfile(head.mProfile);
}

quint64 hdriValue(const QString& path)
{
    const CgwTiffHandle tiff = gwTiffOpenHandle(path, 1, 0);
    if (!tiff)
        return 0;
    gwTiffMergePrivateTags(tiff.get());
    return gwTiffHdriValue(tiff.get());
}

int irLocationByLayout(quint64 hdri, int directories, bool hiRepx)
{
    if (hdri != 0) {
        if (directories == 1)
            return hiRepx ? 0 : -1;
        if (directories == 2)
            return hiRepx ? -1 : 2;
    } else if (directories == 2) {
        return hiRepx ? 0 : 2;
    }
    if (directories == 3)
        return hiRepx ? 3 : 0;
    return 0;
}

} // namespace

CgwImageFileTIF::CgwImageFileTIF() = default;
CgwImageFileTIF::~CgwImageFileTIF() = default;

void CgwImageFileTIF::resetState()
{
    gwTiffInstallHandlers();
    mState = 1;
    mInitialised = true;
}

bool CgwImageFileTIF::isFormat(const QString& path, const char* header)
{
    if (path.endsWith(QLatin1String(".dng"), Qt::CaseInsensitive))
        return false;
    const QByteArray bytes = headerBytes(path, header, 4);
    if (bytes.size() < 4)
        return false;
    const uchar* b = reinterpret_cast<const uchar*>(bytes.constData());
    if (bytes.startsWith("II"))
        return qFromLittleEndian<quint16>(b + 2) == 42;
    if (bytes.startsWith("MM"))
        return qFromBigEndian<quint16>(b + 2) == 42;
    return false;
}

int CgwImageFileTIF::photometricFromColorMode(int mode) const
{
    switch (mode) {
    case EgwColorModeGrey: return PHOTOMETRIC_MINISBLACK;
    case EgwColorModeRGB:
    case EgwColorModeRGBA: return PHOTOMETRIC_RGB;
    case EgwColorModeCMY:
    case EgwColorModeCMYK: return PHOTOMETRIC_SEPARATED;
    case EgwColorModeLab: return PHOTOMETRIC_CIELAB;
    default: return 0xFFFF;
    }
}

int CgwImageFileTIF::colorModeFromPhotometric(int photometric, int samples, int bits) const
{
    switch (photometric) {
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_MINISBLACK: return EgwColorModeGrey;
    case PHOTOMETRIC_RGB:
    case PHOTOMETRIC_PALETTE:
    case PHOTOMETRIC_YCBCR: return EgwColorModeRGB;
    case PHOTOMETRIC_SEPARATED: return samples == 4 ? EgwColorModeCMYK : EgwColorModeCMY;
    case PHOTOMETRIC_CIELAB:
    case PHOTOMETRIC_ICCLAB:
    case PHOTOMETRIC_ITULAB: return EgwColorModeLab;
    case PHOTOMETRIC_LOGL:
    case PHOTOMETRIC_LOGLUV: return bits == 8 ? EgwColorModeRGB : EgwColorModeUnknown;
    default: return EgwColorModeUnknown; // the transparency mask (4) and anything unknown
    }
}

bool CgwImageFileTIF::hiRepxInfo(const QString& path, double resolution[2], int size[2])
{
    const CgwTiffHandle tiff = gwTiffOpenHandle(path, 1, 0);
    if (!tiff)
        return false;
    const SgwTiffPage main = gwTiffReadPage(tiff.get());
    // The product wraps as the 32-bit product always did.
    if (quint32(main.width * main.height) <= kHiRepxThreshold || directoryCount(path) <= 1)
        return false;
    if (!TIFFReadDirectory(tiff.get()))
        return false;
    const SgwTiffPage page = gwTiffReadPage(tiff.get());
    size[0] = int(page.width);
    size[1] = int(page.height);
    resolution[0] = page.xResolution;
    resolution[1] = page.yResolution;
    return page.subfileType == kSubfileReduced;
}

int CgwImageFileTIF::irLocation(const QString& path)
{
    double resolution[2] = {0.0, 0.0};
    int size[2] = {0, 0};
    const int location = irLocationByLayout(hdriValue(path), directoryCount(path), hiRepxInfo(path, resolution, size));
    // Only a file with the HDR mark has an IR channel at all: three plain
    // pages from another program are no IR file.
    if (location == 0 || !readExifRecord(path, 0).hasHDRFlag())
        return 0;
    return location;
}

CgwBitmapBase* CgwImageFileTIF::loadDirectory(TIFF* tiff, const QString& path, qint64 offset, int directory)
{
    const SgwTiffPage page = gwTiffReadPage(tiff);
    const bool reduced = page.subfileType == kSubfileReduced;
    // A second page that is neither the reduced view nor the IR channel is
    // not one of ours: the main image stands in for it.
    if (directory != 0 && !reduced && page.subfileType != kSubfileIR && gwTiffHdriValue(tiff) == 0
        && directoryCount(path) == 2) {
        if (!TIFFSetDirectory(tiff, 0))
            return nullptr;
    }
    const bool wide = gwTiffReadPage(tiff).bits > 8;
    CgwBitmapBase* bitmap = wide ? loadBitmapT<quint16>(tiff) : loadBitmapT<quint8>(tiff);
    if (!bitmap)
        return nullptr;
    CgwBitmapHead head = bitmap->head();
    readMakernotes(head, path, offset, reduced);
    applyHead(*bitmap, head);
    return bitmap;
}

CgwBitmapBase* CgwImageFileTIF::loadPage(const QString& path, qint64 offset, int directory, bool useSubIfd,
                                         quint64 subIfdOffset)
{
    if (isCanceled())
        return nullptr;
    const CgwTiffHandle tiff = gwTiffOpenHandle(path, 1, offset);
    if (!tiff || !TIFFSetDirectory(tiff.get(), tdir_t(directory)) || isCanceled())
        return nullptr;
    gwTiffMergePrivateTags(tiff.get());
    if (useSubIfd) {
        if (subIfdOffset == 0) {
            quint16 count = 0;
            const quint64* offsets = nullptr;
            if (TIFFGetField(tiff.get(), TIFFTAG_SUBIFD, &count, &offsets) && count > 0 && offsets)
                subIfdOffset = offsets[0];
        }
        if (subIfdOffset != 0 && !TIFFSetSubDirectory(tiff.get(), subIfdOffset))
            return nullptr;
    }
    // The rows are cropped while decoding; the columns are left to
    // finishBitmap, which sees the rectangle moved to the bitmap's top.
    const CgwRectT<int> crop = cropRect();
    CgwBitmapBase* bitmap = loadDirectory(tiff.get(), path, offset, directory);
    if (bitmap && crop != CgwRectT<int>())
        setCropRect(CgwRectT<int>(crop.left, 0, crop.right, crop.bottom - crop.top));
    bitmap = finishBitmap(bitmap);
    setCropRect(crop);
    return bitmap;
}

CgwBitmapBase* CgwImageFileTIF::loadBitmap(const QString& path, qint64 offset)
{
    return loadPage(path, offset, 0);
}

CgwBitmapBase* CgwImageFileTIF::loadPreview(const QString& path, qint64 offset)
{
    if (!gwTiffOpenHandle(path, 1, offset))
        return nullptr;
    const int location = irLocation(path);
    const int directory = directoryCount(path) > 1 && (location == 0 || location == 3) ? 1 : 0;
    return loadPage(path, offset, directory);
}

CgwBitmapBase* CgwImageFileTIF::loadHiRePX(const QString& path, qint64 offset)
{
    double resolution[2] = {0.0, 0.0};
    int size[2] = {0, 0};
    hiRepxInfo(path, resolution, size);
    return loadPage(path, offset, 1);
}

CgwBitmapBase* CgwImageFileTIF::loadBitmapIR(const QString& path, qint64 offset)
{
    switch (irLocation(path)) {
    case 2: return loadPage(path, offset, 1);
    case 3: return loadPage(path, offset, 2);
    case -1: return loadBitmapIR_GW6(path, 0);
    default: return nullptr;
    }
}

bool CgwImageFileTIF::saveBitmap(const QString& path, const CgwBitmapBase&)
{
    gwDebugString(QStringLiteral("CgwImageFileTIF::saveBitmap : Error: this build cannot write TIFF files yet: ")
                  + path);
    return false;
}

CgwBitmapBase* CgwImageFileTIF::loadBitmapIR_GW6(const QString& path, qint64 irOffset)
{
    SgwTiffPage page;
    bool swapped = false;
    {
        const CgwTiffHandle tiff = gwTiffOpenHandle(path, 1, 0);
        if (!tiff)
            return nullptr;
        gwTiffMergePrivateTags(tiff.get());
        if (irOffset == 0)
            irOffset = qint64(gwTiffHdriValue(tiff.get()));
        page = gwTiffReadPage(tiff.get());
        swapped = TIFFIsByteSwapped(tiff.get());
    }
    QFile file(path.startsWith(QLatin1String("file:")) ? path.mid(5) : path);
    if (!file.open(QIODevice::ReadOnly)) {
        gwDebugString(QStringLiteral("CgwImageFileTIF: Error: Could not open ") + path);
        return nullptr;
    }
    if (irOffset < 0 || !file.seek(irOffset)) {
        gwDebug("CgwImageFileTIF: Error: Could not seek to %lld", static_cast<long long>(irOffset));
        return nullptr;
    }
    const QSize size(int(page.width), int(page.height));
    if (!plausibleImageSize(size, "CgwImageFileTIF::loadBitmapIR_GW6"))
        return nullptr;
    // The plane is raw, two bytes a pixel.
    if (qint64(size.width()) * size.height() - (file.size() - irOffset) / 2 > kMaxUnpaintedPixels) {
        gwDebug("CgwImageFileTIF::loadBitmapIR_GW6 : Error: %lld bytes cannot hold %i x %i pixels.",
                static_cast<long long>(file.size() - irOffset), size.width(), size.height());
        return nullptr;
    }
    auto bitmap = std::make_unique<CgwBitmapT<CgwPixelGrey16Type>>();
    if (!bitmap->createBitmap(size, EgwColorModeGrey, 0))
        return nullptr;
    bitmap->setResolution(page.xResolution, page.yResolution);
    const qint64 rowBytes = qint64(size.width()) * 2;
    for (int y = 0; y < size.height(); ++y) {
        const CgwArrayT<CgwPixelGrey16Type> row = bitmap->line(y);
        const qint64 got = file.read(reinterpret_cast<char*>(&row[0]), rowBytes);
        if (got < 0) {
            gwDebugString(QStringLiteral("Error: loadBitmapIR_GW6: Could not read data"));
            break;
        }
        if (got == 0) {
            gwDebugString(QStringLiteral("Error: loadBitmapIR_GW6: No more data available"));
            break;
        }
        if (swapped) {
            for (int x = 0; x < size.width(); ++x)
                row[x].s[0] = qbswap(row[x].s[0]);
        }
    }
    CgwBitmapHead head = bitmap->head();
    readMakernotes(head, path, 0, false);
    applyHead(*bitmap, head);
    return finishBitmap(bitmap.release());
}
