#include "imagefile/gwImageFileJPG.h"

#include "Sourcen/Image/gwBitmapT.h"
#include "diagnostics/gwDebug.h"
#include "diagnostics/gwLogFile.h"
#include "files/gwFilePathList.h"
#include "imagefile/gwJpegIO.h"
#include "imagefile/gwJpegMarkers.h"
#include "metadata/gwExif.h"
#include "metadata/gwIptc.h"
#include "settings/gwParamKeys.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

using Pixel = CgwPixel8x4;
using Bitmap = CgwBitmapBlinkT<Pixel>;

constexpr quint16 kGammaRecord = 0xC001;
constexpr int kMaxMarkerPayload = 65533; // a marker's 16-bit length counts its own two bytes

bool openForReading(CgwFile* file)
{
    if (!file)
        return false;
    if (file->isOpen() || file->open(QIODevice::ReadOnly))
        return true;
    gwDebugString(QStringLiteral("File could not be opened : ") + file->path());
    return false;
}

// Colour mode by libjpeg's output colour space; 0 for one it does not know.
int colorModeOf(const jpeg_decompress_struct& cinfo)
{
    switch (cinfo.out_color_space) {
    case JCS_GRAYSCALE:
        return EgwColorModeGrey;
    case JCS_RGB:
        return cinfo.out_color_components == 3 ? EgwColorModeRGB : EgwColorModeRGBA;
    case JCS_CMYK:
        return cinfo.out_color_components == 3 ? EgwColorModeCMY : EgwColorModeCMYK;
    default:
        return 0;
    }
}

// JFIF density in dots per inch; a bare aspect ratio says nothing.
double jfifDensity(const jpeg_decompress_struct& cinfo, UINT16 density)
{
    if (cinfo.density_unit == 1)
        return density;
    if (cinfo.density_unit == 2)
        return density * 2.54;
    return 0.0;
}

// libjpeg writes straight into the bitmap's four-slot rows: RGB with a
// filler byte in the fourth slot, CMYK as it comes. Grey goes through a row
// of its own, one byte a pixel, and into the first slot.
bool decodesInPlace(const jpeg_decompress_struct& cinfo)
{
    return cinfo.out_color_components == 4 || cinfo.out_color_space == JCS_EXT_RGBX;
}

// At its densest each bit of a stream paints a whole 8 x 8 block.
bool dataCanPaint(const QSize& size, qint64 bytes)
{
    const qint64 unpainted = qint64(size.width()) * size.height() - std::max<qint64>(bytes, 0) * 8 * 64;
    if (unpainted <= CgwImageFileBase::kMaxUnpaintedPixels)
        return true;
    gwDebug("CgwImageFileJPG::loadBitmap : Error: %lld bytes cannot paint %i x %i pixels.",
            static_cast<long long>(bytes), size.width(), size.height());
    return false;
}

} // namespace

CgwImageFileJPG::CgwImageFileJPG()
{
    resetState();
}

CgwImageFileJPG::~CgwImageFileJPG() = default;

void CgwImageFileJPG::resetState()
{
    mQuality = kDefaultQuality;
    mExifOffset = 0;
    mFormat = 0;
    mInitialised = true;
}

bool CgwImageFileJPG::isFormat(const QString& path, const char* header)
{
    const QByteArray bytes = headerBytes(path, header, 3);
    return bytes.size() >= 3 && quint8(bytes[0]) == 0xFF && quint8(bytes[1]) == 0xD8 && quint8(bytes[2]) == 0xFF;
}

bool CgwImageFileJPG::supportsColorMode(int mode) const
{
    return mode == 1 || mode == 3 || mode == 4 || mode == 6 || mode == 7;
}

std::vector<std::string> CgwImageFileJPG::libraryVersions() const
{
    return {gwJpegLibraryVersion().toStdString(), gwJpegLibraryNotice().toStdString()};
}

void CgwImageFileJPG::setParameter(const CgwParameterSet& parameters)
{
    CgwImageFileBase::setParameter(parameters);
    if (parameters.hasKey(GgwParam_JPEGQuality))
        mQuality = qint32(qBound<qint64>(10, parameters.longLongValue(GgwParam_JPEGQuality, mQuality), 100));
    if (parameters.hasKey(GgwParam_JPEGFormat))
        mFormat = qint32(qBound<qint64>(0, parameters.longLongValue(GgwParam_JPEGFormat, mFormat), 2));
}

void CgwImageFileJPG::getParameter(CgwParameterSet& parameters) const
{
    CgwImageFileBase::getParameter(parameters);
    parameters.setLongLong(GgwParam_JPEGQuality, mQuality);
    parameters.setLongLong(GgwParam_JPEGFormat, mFormat);
}

bool CgwImageFileJPG::readExif(CgwFile& file, CgwExif& exif)
{
    const qint64 start = file.pos();
    qint64 marker = 0;
    qint64 length = 0;
    mExifOffset = 0;
    bool read = false;
    if (gwFindJpegExif(file, marker, length)) {
        file.seek(marker + 10, 0); // behind marker, length and "Exif\0\0": the TIFF header
        read = exif.readFromStream(file);
        mExifOffset = read ? marker + 10 : 0;
    }
    // One old version recorded a gamma that must not be trusted.
    if (exif.getGWMakerNotValueByTag(kGammaRecord) != 0.0f && exif.getAscii(0x0131).startsWith(QLatin1String("Glimmerway 6")))
        exif.removeMakerNoteRecord(kGammaRecord);
    file.seek(start, 0);
    return read;
}

bool CgwImageFileJPG::readHeader(SgwJpegDecompressor& jpeg, const CgwExif& exif, CgwBitmapHead& head)
{
    jpeg_save_markers(&jpeg.cinfo, JPEG_APP0 + 2, 0xFFFF);
    jpeg_read_header(&jpeg.cinfo, TRUE);
    jpeg_calc_output_dimensions(&jpeg.cinfo); // the output components come from here
    const int mode = colorModeOf(jpeg.cinfo);
    if (mode == 0) {
        CgwLogFile::instance().reportError(9);
        return false;
    }
    double x = exif.getDouble(0x011A);
    double y = exif.getDouble(0x011B);
    if (std::fabs(x) <= 1e-12)
        x = jfifDensity(jpeg.cinfo, jpeg.cinfo.X_density);
    if (std::fabs(y) <= 1e-12)
        y = jfifDensity(jpeg.cinfo, jpeg.cinfo.Y_density);
    head.mSize = QSize(int(jpeg.cinfo.image_width), int(jpeg.cinfo.image_height));
    head.setColorMode(mode);
    head.mBitDepth = 8;
    head.mResolution = QPointF(x, y);
    head.mScannerMode = 9;
    head.mParameters.setLongLong(GgwParam_ScannerModes, 9);
    head.mExif = exif;
    const float gamma = exif.getGWMakerNotValueByTag(kGammaRecord);
    if (gamma > 0.0f)
        head.mGamma = gamma;
    const QByteArray icc = gwReadJpegIccProfile(&jpeg.cinfo);
    if (!icc.isEmpty())
        head.mProfile.setFromMemory(reinterpret_cast<const unsigned char*>(icc.constData()), icc.size());
    return true;
}

CgwBitmapHead CgwImageFileJPG::loadImageInformation(CgwFile* file, qint64 offset)
{
    CgwBitmapHead head;
    if (!openForReading(file))
        return head;
    file->seek(offset, 0);
    SgwJpegDecompressor jpeg(file->path());
    CgwExif exif;
    readExif(*file, exif);
    head.mIptc.readIPTC(file->path());
    file->seek(offset, 0);
    cgw_jpeg_source_mgr source(&jpeg.cinfo, file);
    if (!readHeader(jpeg, exif, head))
        return CgwBitmapHead();
    return head;
}

CgwBitmapHead CgwImageFileJPG::loadImageInformation(const QString& path, qint64 offset)
{
    std::unique_ptr<CgwFile> file(CgwFilePathList::instance().createFile(path));
    return loadImageInformation(file.get(), offset);
}

// Decodes the image behind the header into a new bitmap; null when the
// storage cannot be had or the load was cancelled.
CgwBitmapBase* CgwImageFileJPG::decode(SgwJpegDecompressor& jpeg, const CgwBitmapHead& head)
{
    if (!plausibleImageSize(head.mSize, "CgwImageFileJPG::loadBitmap"))
        return nullptr;
    std::unique_ptr<Bitmap> bitmap;
    try {
        bitmap = std::make_unique<Bitmap>();
    } catch (const std::bad_alloc&) {
        CgwLogFile::instance().reportError(17);
        return nullptr;
    }
    if (!bitmap->createStorage(head.mSize, head.mColorMode)) {
        CgwLogFile::instance().reportError(5);
        return nullptr;
    }
    if (jpeg.cinfo.out_color_space == JCS_RGB && jpeg.cinfo.out_color_components == 3)
        jpeg.cinfo.out_color_space = JCS_EXT_RGBX;
    jpeg_start_decompress(&jpeg.cinfo);
    const int width = int(jpeg.cinfo.output_width);
    const bool inPlace = decodesInPlace(jpeg.cinfo);
    std::vector<JSAMPLE> grey(inPlace ? 0 : size_t(width));
    while (jpeg.cinfo.output_scanline < jpeg.cinfo.output_height) {
        if (isCanceled()) {
            jpeg_abort_decompress(&jpeg.cinfo);
            return nullptr;
        }
        Pixel* target = &bitmap->line(int(jpeg.cinfo.output_scanline))[0];
        JSAMPROW rows[1] = {inPlace ? reinterpret_cast<JSAMPLE*>(target) : grey.data()};
        jpeg_read_scanlines(&jpeg.cinfo, rows, 1);
        for (size_t x = 0; x < grey.size(); ++x)
            target[x].s[0] = grey[x];
    }
    jpeg_finish_decompress(&jpeg.cinfo);
    return bitmap.release();
}

// A decoded bitmap takes the metadata its header brought, and the IPTC data.
void CgwImageFileJPG::takeMetadata(const CgwBitmapHead& head, CgwFile& file, CgwBitmapBase& bitmap)
{
    bitmap.setResolution(head.mResolution);
    if (head.mProfile.isValid())
        bitmap.setProfile(head.mProfile);
    bitmap.setExif(head.mExif);
    if (head.mGamma > 0.0f)
        bitmap.setGamma(head.mGamma);
    CgwIptc iptc;
    iptc.readIPTC(file.path());
    bitmap.setIptc(iptc);
}

CgwBitmapBase* CgwImageFileJPG::loadBitmap(CgwFile* file, qint64 offset)
{
    if (!openForReading(file))
        return finishBitmap(nullptr);
    file->seek(offset, 0);
    CgwExif exif;
    readExif(*file, exif);
    SgwJpegDecompressor jpeg(file->path());
    if (isCanceled())
        return finishBitmap(nullptr);
    cgw_jpeg_source_mgr source(&jpeg.cinfo, file);
    CgwBitmapHead head;
    if (!readHeader(jpeg, exif, head) || !dataCanPaint(head.mSize, file->size() - offset))
        return finishBitmap(nullptr);
    std::unique_ptr<CgwBitmapBase> bitmap(decode(jpeg, head));
    if (bitmap)
        takeMetadata(head, *file, *bitmap);
    file->close();
    return finishBitmap(bitmap.release());
}

CgwBitmapBase* CgwImageFileJPG::loadBitmap(const QString& path, qint64 offset)
{
    std::unique_ptr<CgwFile> file(CgwFilePathList::instance().createFile(path));
    return loadBitmap(file.get(), offset);
}

CgwBitmapBase* CgwImageFileJPG::loadPreview(CgwFile* file, qint64 offset)
{
    if (!openForReading(file))
        return nullptr;
    file->seek(offset, 0);
    CgwExif exif;
    readExif(*file, exif);
    // The thumbnail's tags stand in the second directory of the Exif block.
    if (!exif.hasTag(0x0201) && mExifOffset > 0) {
        file->seek(mExifOffset, 0);
        CgwExif thumbnail;
        if (thumbnail.readFromStream(*file, 1))
            exif = thumbnail;
    }
    if (!exif.hasTag(0x0201) || !exif.hasTag(0x0202) || exif.getInt(0x0202) <= 0)
        return nullptr;
    return loadBitmap(file, mExifOffset + exif.getInt(0x0201));
}

CgwBitmapBase* CgwImageFileJPG::loadPreview(const QString& path, qint64 offset)
{
    std::unique_ptr<CgwFile> file(CgwFilePathList::instance().createFile(path));
    return loadPreview(file.get(), offset);
}

namespace {

struct SgwJpegLayout {
    J_COLOR_SPACE space;
    int components;
};

// The JPEG colour space of a bitmap's mode, as the rows of its four-slot
// pixels give it to libjpeg: RGB and RGBA with the fourth slot skipped, so
// RGBA loses it. Grey comes from one-slot rows.
bool layoutOf(int mode, SgwJpegLayout& layout)
{
    switch (mode) {
    case EgwColorModeGrey:
        layout = {JCS_GRAYSCALE, 1};
        return true;
    case EgwColorModeRGB:
    case EgwColorModeRGBA:
        layout = {JCS_EXT_RGBX, 4};
        return true;
    case EgwColorModeCMYK:
        layout = {JCS_CMYK, 4};
        return true;
    default:
        return false;
    }
}

void writeExifMarker(j_compress_ptr cinfo, const CgwBitmapBase& bitmap)
{
    CgwExif exif = bitmap.exif();
    exif.fillFromBitmap(bitmap);
    QByteArray block("Exif\0\0", 6);
    if (!exif.writeTiffBlock(block) || block.size() <= 30)
        return;
    if (block.size() > kMaxMarkerPayload) {
        gwDebug("CgwImageFileJPG::saveBitmap : Warning: Exif block of %d bytes does not fit one marker, not written.",
                int(block.size()));
        return;
    }
    jpeg_write_marker(cinfo, JPEG_APP0 + 1, reinterpret_cast<const JOCTET*>(block.constData()), unsigned(block.size()));
}

} // namespace

// The whole stream into an open file; false when the bitmap cannot be written.
bool CgwImageFileJPG::writeJpeg(CgwFile& file, const CgwBitmapBase& bitmap)
{
    SgwJpegLayout layout;
    const int type = bitmap.pixelType();
    if (!layoutOf(bitmap.colorMode(), layout) || (type != 0 && type != 1)) {
        gwDebug("CgwImageFileJPG::saveBitmap : Error: colour mode %d of pixel type %d cannot be written as JPEG.",
                bitmap.colorMode(), type);
        return false;
    }
    SgwJpegCompressor jpeg(file.path());
    cgw_jpeg_destination_mgr destination(&jpeg.cinfo, &file);
    jpeg.cinfo.image_width = JDIMENSION(bitmap.size().width());
    jpeg.cinfo.image_height = JDIMENSION(bitmap.size().height());
    jpeg.cinfo.input_components = layout.components;
    jpeg.cinfo.in_color_space = layout.space;
    jpeg_set_defaults(&jpeg.cinfo);
    jpeg_set_quality(&jpeg.cinfo, qBound(1, int(mQuality), 100), TRUE);
    if (mFormat == 1)
        jpeg.cinfo.optimize_coding = TRUE;
    else if (mFormat == 2)
        jpeg_simple_progression(&jpeg.cinfo);
    jpeg_start_compress(&jpeg.cinfo, mFormat == 0 ? TRUE : FALSE);

    const CgwProfileBase profile = bitmap.profile();
    if (profile.isEmbeddable())
        gwWriteJpegIccProfile(&jpeg.cinfo, profile.profileBytes());
    writeExifMarker(&jpeg.cinfo, bitmap);

    // Rows whose pixels are what libjpeg takes go to it as they stand (it
    // reads and never writes them); grey in four-slot pixels is gathered.
    const int pixelBytes = type == 0 ? 4 : 1;
    std::vector<JSAMPLE> gathered(pixelBytes == layout.components ? 0 : size_t(bitmap.size().width()));
    for (int y = 0; y < bitmap.size().height(); ++y) {
        const CgwArrayT<unsigned char> line = bitmap.getLine(y);
        const unsigned char* from = &line[0];
        for (size_t x = 0; x < gathered.size(); ++x)
            gathered[x] = from[x * size_t(pixelBytes)];
        JSAMPROW rows[1] = {gathered.empty() ? const_cast<JSAMPLE*>(from) : gathered.data()};
        jpeg_write_scanlines(&jpeg.cinfo, rows, 1);
    }
    jpeg_finish_compress(&jpeg.cinfo);
    return true;
}

// Written to a temporary file, then moved onto the target. A save that
// fails before the image is complete leaves the target as it was; libjpeg's
// fatal errors end here too, since a save has nothing to hand back.
bool CgwImageFileJPG::saveBitmap(const QString& path, const CgwBitmapBase& bitmap)
{
    const QString tempPath = temporaryFilePath();
    bool written = false;
    {
        std::unique_ptr<CgwFile> file(CgwFilePathList::instance().createFile(QStringLiteral("file:") + tempPath));
        if (!file || !file->open(QIODevice::WriteOnly)) {
            CgwLogFile::instance().reportError(13);
        } else {
            try {
                written = writeJpeg(*file, bitmap);
            } catch (int) {
                written = false;
            }
            file->close();
        }
    }
    if (!written) {
        QFile::remove(tempPath);
        return false;
    }
    CgwParameterSet params = bitmap.parameters();
    if (!bitmap.iptc().applyToFile(tempPath, &params))
        gwDebugString(QStringLiteral("CgwImageFileJPG::saveBitmap() Failed to apply Iptc data. File might be corrupted."));
    return moveToTarget(tempPath, path);
}
