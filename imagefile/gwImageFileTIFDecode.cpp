// The pixel step of the TIFF reader: one page, stripe by stripe, into a
// bitmap of four 8-bit or four 16-bit slots.

#include "Sourcen/Image/gwBitmapBlink.h"
#include "diagnostics/gwDebug.h"
#include "imagefile/gwImageFileTIF.h"
#include "imagefile/gwTiffStripes.h"

#include <algorithm>
#include <array>
#include <limits>
#include <cstring>
#include <memory>

namespace {

template <class Sample>
struct SgwTiffPixel;
template <>
struct SgwTiffPixel<quint8> {
    using Type = CgwPixel8x4;
};
template <>
struct SgwTiffPixel<quint16> {
    using Type = CgwPixel16x4;
};

enum class EgwTiffUnpack {
    Table,  // up to 8 bits, one sample: through the lookup table
    Invert, // separated and white-is-zero: maximum minus sample
    Lab,    // signed a and b to the stored form
    Copy,
};

// How the samples of one plane's rows become pixels.
struct SgwTiffLayout {
    EgwTiffUnpack unpack = EgwTiffUnpack::Copy;
    int samples = 1; // in a row of the stripe, a pixel
    int plane = -1;  // the slot a separate plane fills; -1 when contiguous
    int bits = 8;
    std::array<std::array<quint8, 4>, 256> table{};
};

// The table for samples of up to 8 bits: grey into the first slot, palette
// colours as RGB. Grey of 2 to 7 bits is not scaled to the full range.
bool fillTable(TIFF* tiff, int photometric, int bits, SgwTiffLayout& layout)
{
    const int entries = 1 << bits;
    if (photometric == PHOTOMETRIC_PALETTE) {
        quint16 *red = nullptr, *green = nullptr, *blue = nullptr;
        if (!TIFFGetField(tiff, TIFFTAG_COLORMAP, &red, &green, &blue) || !red || !green || !blue)
            return false;
        const bool wide = std::any_of(red, red + entries, [](quint16 w) { return w > 255; })
                          || std::any_of(green, green + entries, [](quint16 w) { return w > 255; })
                          || std::any_of(blue, blue + entries, [](quint16 w) { return w > 255; });
        const auto narrow = [wide](quint16 w) { return quint8(wide ? float(w) * 255.0 / 65535.0 : w & 0xFF); };
        for (int i = 0; i < entries; ++i)
            layout.table[size_t(i)] = {narrow(red[i]), narrow(green[i]), narrow(blue[i]), 255};
        return true;
    }
    const bool inverted = photometric == PHOTOMETRIC_MINISWHITE;
    for (int i = 0; i < entries; ++i) {
        int value = inverted ? entries - 1 - i : i;
        if (bits == 1)
            value = value ? 255 : 0;
        layout.table[size_t(i)] = {quint8(value), 0, 0, 0};
    }
    return true;
}

template <class Sample>
void unpackRow(const uchar* source, typename SgwTiffPixel<Sample>::Type* pixels, quint32 width,
               const SgwTiffLayout& layout)
{
    constexpr Sample kMax = std::numeric_limits<Sample>::max();
    constexpr Sample kHalf = Sample(kMax / 2 + 1);
    const Sample* samples = reinterpret_cast<const Sample*>(source);
    const int step = layout.samples;
    const int count = std::min(step, 4);
    switch (layout.unpack) {
    case EgwTiffUnpack::Table: {
        const int mask = (1 << layout.bits) - 1;
        quint32 bit = 0;
        for (quint32 x = 0; x < width; ++x, bit += quint32(layout.bits)) {
            const int index = (source[bit >> 3] >> (8 - layout.bits - int(bit & 7))) & mask;
            std::memcpy(pixels[x].s, layout.table[size_t(index)].data(), 4);
        }
        break;
    }
    case EgwTiffUnpack::Invert:
        for (quint32 x = 0; x < width; ++x) {
            for (int c = 0; c < count; ++c)
                pixels[x].s[layout.plane < 0 ? c : layout.plane] = Sample(kMax - samples[size_t(x) * step + c]);
        }
        break;
    case EgwTiffUnpack::Lab:
        for (quint32 x = 0; x < width; ++x) {
            for (int c = 0; c < count; ++c) {
                const int slot = layout.plane < 0 ? c : layout.plane;
                const Sample value = samples[size_t(x) * step + c];
                pixels[x].s[slot] = slot == 0 ? value : Sample(value + kHalf);
            }
        }
        break;
    case EgwTiffUnpack::Copy:
        for (quint32 x = 0; x < width; ++x) {
            for (int c = 0; c < count; ++c)
                pixels[x].s[layout.plane < 0 ? c : layout.plane] = samples[size_t(x) * step + c];
        }
        break;
    }
}

void refuse(const char* what, int value)
{
    gwDebug("CgwImageFileTIF::loadBitmapT<> : Error: %s %d cannot be read.", what, value);
}

// Decides how the page is unpacked; false, with a log line, for a page
// this reader cannot hold.
template <class Sample>
bool planLayout(TIFF* tiff, const SgwTiffPage& page, int photometric, bool ycbcr, SgwTiffLayout& layout)
{
    quint16 format = SAMPLEFORMAT_UINT;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLEFORMAT, &format);
    const int bits = page.bits;
    const bool narrow = sizeof(Sample) == 1;
    if (format == SAMPLEFORMAT_IEEEFP || format == SAMPLEFORMAT_COMPLEXIEEEFP)
        return refuse("sample format", format), false;
    if (page.samples == 0 || (narrow ? bits < 1 || bits > 8 : bits != 16))
        return refuse("bits per sample", bits), false;
    const bool separate = page.planar == PLANARCONFIG_SEPARATE && page.samples > 1;
    if (ycbcr && (bits != 8 || separate))
        return refuse("YCbCr with bits per sample", bits), false;
    layout.bits = bits;
    layout.samples = ycbcr ? 3 : separate ? 1 : page.samples;
    const bool grey = photometric == PHOTOMETRIC_MINISBLACK || photometric == PHOTOMETRIC_MINISWHITE;
    if (narrow && page.samples == 1 && (grey || photometric == PHOTOMETRIC_PALETTE)) {
        layout.unpack = EgwTiffUnpack::Table;
        if (!fillTable(tiff, photometric, bits, layout))
            return refuse("palette without colour map, photometric", photometric), false;
        return true;
    }
    if (bits != 8 * int(sizeof(Sample)) || photometric == PHOTOMETRIC_PALETTE)
        return refuse("bits per sample", bits), false;
    if (photometric == PHOTOMETRIC_SEPARATED || photometric == PHOTOMETRIC_MINISWHITE)
        layout.unpack = EgwTiffUnpack::Invert;
    else if (photometric == PHOTOMETRIC_CIELAB || photometric == PHOTOMETRIC_ITULAB)
        layout.unpack = EgwTiffUnpack::Lab; // ICC Lab stores a and b offset already
    return true;
}

// Bytes of samples that one byte of encoded data gives at most; 0 for a
// codec without such a bound here.
double expansionOf(quint16 compression)
{
    switch (compression) {
    case COMPRESSION_NONE: return 1.0;
    case COMPRESSION_PACKBITS: return 64.0;  // two bytes give 128
    case COMPRESSION_LZW: return 2731.0;     // a 12-bit code gives 4096 bytes
    case COMPRESSION_ADOBE_DEFLATE:
    case COMPRESSION_DEFLATE: return 1032.0; // deflate's own limit
    case COMPRESSION_OJPEG:
    case COMPRESSION_JPEG: return 512.0;     // a bit for each block of 64 samples
    default: return 0.0;
    }
}

// The encoded bytes of the page, as much of them as the file holds.
quint64 encodedBytes(TIFF* tiff)
{
    const bool tiled = TIFFIsTiled(tiff);
    const quint32 units = tiled ? TIFFNumberOfTiles(tiff) : TIFFNumberOfStrips(tiff);
    uint64_t* counts = nullptr;
    const quint64 fileSize = quint64(TIFFGetSizeProc(tiff)(TIFFClientdata(tiff)));
    if (!TIFFGetField(tiff, tiled ? TIFFTAG_TILEBYTECOUNTS : TIFFTAG_STRIPBYTECOUNTS, &counts) || !counts)
        return fileSize;
    quint64 bytes = 0;
    for (quint32 i = 0; i < units && bytes < fileSize; ++i)
        bytes += std::min<quint64>(counts[i], fileSize - bytes);
    return bytes;
}

// Whether the page's data can paint all but kMaxUnpaintedPixels of `size`.
// The fax codings need a bit a row at the least.
bool dataCanPaint(TIFF* tiff, const SgwTiffPage& page, const QSize& size)
{
    // A coding this libtiff cannot decode paints nothing: refused before any
    // buffer is sized for it.
    if (!TIFFIsCODECConfigured(page.compression)) {
        gwDebug("CgwImageFileTIF::loadBitmapT<> : Error: compression %d cannot be decoded.", page.compression);
        return false;
    }
    const double bytes = double(encodedBytes(tiff));
    double paintable = 0.0;
    if (page.compression == COMPRESSION_CCITTRLE || page.compression == COMPRESSION_CCITTRLEW
        || page.compression == COMPRESSION_CCITTFAX3 || page.compression == COMPRESSION_CCITTFAX4)
        paintable = bytes * 8.0 * size.width();
    else if (expansionOf(page.compression) > 0.0)
        paintable = bytes * expansionOf(page.compression) * 8.0 / std::max(1, page.bits * page.samples);
    else
        return true;
    if (double(size.width()) * size.height() - paintable <= double(CgwImageFileTIF::kMaxUnpaintedPixels))
        return true;
    gwDebug("CgwImageFileTIF::loadBitmapT<> : Error: %.0f bytes of compression %d cannot paint %i x %i pixels.",
            bytes, page.compression, size.width(), size.height());
    return false;
}

} // namespace

template <class Sample>
CgwBitmapBase* CgwImageFileTIF::loadBitmapT(TIFF* tiff)
{
    using Pixel = typename SgwTiffPixel<Sample>::Type;
    const SgwTiffPage page = gwTiffReadPage(tiff);
    int photometric = page.photometric;
    // Old-style JPEG always decodes to YCbCr, whatever the tag claims.
    if (page.compression == COMPRESSION_OJPEG && page.samples >= 3)
        photometric = PHOTOMETRIC_YCBCR;
    bool ycbcrRaw = photometric == PHOTOMETRIC_YCBCR;
    if (ycbcrRaw && page.compression == COMPRESSION_JPEG)
        ycbcrRaw = !TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB); // libjpeg converts
    const int mode = colorModeFromPhotometric(photometric, page.samples, page.bits);
    if (mode == EgwColorModeUnknown)
        return refuse("photometric interpretation", photometric), nullptr;
    SgwTiffLayout layout;
    if (!planLayout<Sample>(tiff, page, photometric, photometric == PHOTOMETRIC_YCBCR, layout))
        return nullptr;

    // Only rows are cropped here; the columns are left to finishBitmap.
    CgwRectT<int> crop = cropRect();
    if (crop.isEmpty())
        crop = CgwRectT<int>(0, 0, int(page.width), int(page.height));
    const int top = qBound(0, crop.top, int(page.height));
    const int bottom = qBound(top, crop.bottom, int(page.height));
    const QSize size(int(page.width), bottom - top);
    if (!plausibleImageSize(size, "CgwImageFileTIF::loadBitmapT<>") || !dataCanPaint(tiff, page, size))
        return nullptr;
    auto bitmap = std::make_unique<CgwBitmapBlinkT<Pixel>>();
    if (!bitmap->createStorage(size, mode))
        return nullptr;
    CgwBitmapHead head;
    readPageHead(tiff, head);
    bitmap->setIptc(head.mIptc);
    bitmap->setProfile(head.mProfile);
    bitmap->setResolution(head.mResolution);
    bitmap->setParameters(head.mParameters);

    const bool separate = page.planar == PLANARCONFIG_SEPARATE && page.samples > 1 && !ycbcrRaw;
    CgwTiffStripeReader reader;
    if (!reader.init(tiff, page, layout.samples, ycbcrRaw))
        return nullptr;
    const quint32 stripe = reader.rowsPerStripe();
    const int planes = separate ? std::min<int>(page.samples, 4) : 1;
    for (int plane = 0; plane < planes && !isCanceled(); ++plane) {
        layout.plane = separate ? plane : -1;
        for (quint32 row = quint32(top) / stripe * stripe; row < quint32(bottom); row += stripe) {
            if (isCanceled())
                return bitmap.release();
            progress()->signalNewImageData(int(qMax<qint64>(0, qint64(row) - top) * 100 / qMax(1, bottom - top)));
            quint32 rows = 0;
            const CgwTiffStripeReader::Result result = reader.read(row, quint16(plane), &rows);
            if (result == CgwTiffStripeReader::Result::Empty)
                gwDebugString(QStringLiteral(
                    "CgwImageFileTIF::loadBitmapT<> : Error: Zero bytes written to buffer (unhandled)!"));
            else if (result == CgwTiffStripeReader::Result::Failed)
                gwDebugString(QStringLiteral("CgwImageFileTIF::loadBitmapT<> : Error: An error occured (unhandled)!"));
            for (quint32 r = 0; r < rows; ++r) {
                const int y = int(row + r);
                if (y < top || y >= bottom)
                    continue;
                if (isCanceled())
                    return bitmap.release();
                const CgwArrayT<Pixel> line = bitmap->line(y - top);
                unpackRow<Sample>(reader.row(r), &line[0], page.width, layout);
            }
        }
    }
    return bitmap.release();
}

template CgwBitmapBase* CgwImageFileTIF::loadBitmapT<quint8>(TIFF*);
template CgwBitmapBase* CgwImageFileTIF::loadBitmapT<quint16>(TIFF*);
