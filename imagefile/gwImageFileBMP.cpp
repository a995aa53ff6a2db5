#include "imagefile/gwImageFileBMP.h"

#include "Sourcen/Image/gwBitmapT.h"
#include "diagnostics/gwDebug.h"
#include "diagnostics/gwLogFile.h"
#include "files/gwFilePathList.h"
#include "settings/gwParamKeys.h"

#include <QtEndian>

#include <cstring>
#include <functional>

namespace {

using Pixel = CgwPixel8x4;
using Bitmap = CgwBitmapBlinkT<Pixel>;

// The pixel bytes behind the headers, read with a bounds check.
struct Source {
    const uchar* data;
    qint64 size;
    qint64 pos = 0;

    bool byte(quint8& value)
    {
        if (pos >= size)
            return false;
        value = data[pos++];
        return true;
    }
    bool atEnd() const { return pos >= size; }
};

int channelsOfMode(int mode)
{
    static const int channels[8] = {0, 1, 2, 3, 3, 3, 4, 4};
    return mode >= 0 && mode < 8 ? channels[mode] : 0;
}

int dotsPerInch(qint32 pixelsPerMetre)
{
    return int(pixelsPerMetre * 254.0 / 10000.0 + 0.5);
}

} // namespace

CgwImageFileBMP::CgwImageFileBMP(const CgwImageFileBMP& other)
    : CgwImageFileBase(other), mPixelOffset(other.mPixelOffset), mBitsPerPixel(other.mBitsPerPixel),
      mCompression(other.mCompression), mPalette(other.mPalette)
{
    std::memcpy(mMasks, other.mMasks, sizeof(mMasks));
}

CgwImageFileBMP::~CgwImageFileBMP()
{
    resetState();
}

void CgwImageFileBMP::resetState()
{
    mFile.reset();
    mPixelOffset = 0;
    mPalette.clear();
    mInitialised = true;
}

void CgwImageFileBMP::clearCropRect()
{
    CgwImageFileBase::clearCropRect();
    resetState();
}

bool CgwImageFileBMP::isFormat(const QString& path, const char* header)
{
    const QByteArray bytes = headerBytes(path, header, 2);
    return bytes.size() >= 2 && quint8(bytes[0]) == 0x42 && quint8(bytes[1]) == 0x4D;
}

quint16 CgwImageFileBMP::paletteWord(size_t index) const
{
    if (mPalette.empty()) {
        gwReportEmptyArrayAccess();
        return 0;
    }
    return mPalette[std::min(index, mPalette.size() - 1)];
}

void CgwImageFileBMP::readPalette(CgwFile& file, qint64 at, int headerSize, int& channels)
{
    const qint64 back = file.pos();
    file.seek(at + headerSize + 14, 0);
    // Always 2^depth entries; the count of colours used is not consulted.
    const size_t entries = size_t(1) << mBitsPerPixel;
    mPalette.assign(entries * 4, 0);
    bool grey = true;
    for (size_t i = 0; i < entries; ++i) {
        for (int k = 0; k < (headerSize > 15 ? 4 : 3); ++k)
            mPalette[4 * i + size_t(k)] = file.readUInt8();
        grey = grey && mPalette[4 * i] == mPalette[4 * i + 1] && mPalette[4 * i + 1] == mPalette[4 * i + 2];
    }
    channels = grey ? 1 : 3;
    file.seek(back, 0);
}

void CgwImageFileBMP::readOptionalFields(CgwFile& file, qint64 remaining, int& channels, QPointF& resolution)
{
    if (remaining - 8 > 0) {
        mCompression = qint32(file.readUInt32());
        file.readUInt32(); // image size
        const qint32 x = qint32(file.readUInt32());
        const qint32 y = qint32(file.readUInt32());
        resolution = QPointF(dotsPerInch(x), dotsPerInch(y));
        file.readUInt32(); // colours used
        file.readUInt32(); // colours important
    }
    if (remaining - 32 > 0) {
        for (int k = 0; k < 3; ++k)
            mMasks[k] = file.readUInt32();
    }
    if (remaining - 44 > 0) {
        mMasks[3] = file.readUInt32();
        if (file.readUInt32() == 2) // the CMYK colour space
            channels = 4;
        for (int k = 0; k < 12; ++k)
            file.readUInt32(); // endpoints and gamma
    }
}

CgwBitmapHead CgwImageFileBMP::loadImageInformation(const QString& path, qint64 offset)
{
    CgwBitmapHead head;
    std::unique_ptr<CgwFile> file(CgwFilePathList::instance().createFile(path));
    if (!file || !file->open(QIODevice::ReadOnly))
        return head;
    file->seek(offset, 0);
    file->setByteOrder("MM");
    if (file->readUInt16() != 0x424D)
        return head;
    file->setByteOrder("II");
    file->readUInt32(); // file size
    file->readUInt16();
    file->readUInt16();
    mPixelOffset = qint32(file->readUInt32());
    const qint32 headerSize = qint32(file->readUInt32());
    qint32 width = 0;
    qint32 height = 0;
    qint64 remaining = 0;
    if (headerSize > 15) {
        width = qint32(file->readUInt32());
        height = qint32(file->readUInt32());
        remaining = qint64(headerSize) - 8;
    } else {
        width = file->readUInt16();
        height = file->readUInt16();
        remaining = qint64(headerSize) - 4;
    }
    file->readUInt16(); // planes
    mBitsPerPixel = file->readUInt16();
    mCompression = 0;
    int channels = 3;
    if (mBitsPerPixel == 16) {
        mMasks[0] = 0x7C00;
        mMasks[1] = 0x03E0;
        mMasks[2] = 0x001F;
    }
    // Packed indices of 1 to 8 bits, or 16, 24 and 32 bits: a decoder of any
    // other depth would take no byte and walk every pixel of the image.
    const bool indexed = mBitsPerPixel >= 1 && mBitsPerPixel <= 8;
    if (!indexed && mBitsPerPixel != 16 && mBitsPerPixel != 24 && mBitsPerPixel != 32) {
        gwDebug("CgwImageFileBMP::loadImageInformation : Error: %i bits per pixel cannot be read.", mBitsPerPixel);
        return head;
    }
    if (indexed)
        readPalette(*file, offset, headerSize, channels);
    QPointF resolution(0.0, 0.0);
    readOptionalFields(*file, remaining, channels, resolution);
    const int mode = channels == 1 ? 1 : channels == 3 ? 3 : channels == 4 ? 6 : 0;
    if (mode == 0)
        return head;
    head.mSize = QSize(width, height);
    head.setColorMode(mode);
    head.mBitDepth = quint8(mBitsPerPixel / channels);
    if (resolution.x() < 1.0 || resolution.y() < 1.0)
        resolution = QPointF(72.0, 72.0);
    head.mResolution = resolution;
    head.mScannerMode = 9;
    head.mParameters.setLongLong(GgwParam_ScannerModes, 9);
    return head;
}

namespace {

// What the decoders need of the reader's state.
struct Decoding {
    Bitmap& bitmap;
    Source& src;
    int width;
    int height;
    int depth;
    std::function<quint16(size_t)> palette;

    // The four low bytes of a palette entry in palette order: blue lands in
    // slot 0 and red in slot 2, the other way round from the true-colour
    // paths, and kept so.
    void setFromPalette(Pixel& p, size_t index) const
    {
        for (size_t k = 0; k < 4; ++k)
            p.s[k] = static_cast<unsigned char>(palette(4 * index + k) & 0xFF);
    }
};

// Rows run bottom-up; each row is padded to a multiple of four bytes.
void decodePlain(Decoding& d)
{
    for (int row = d.height - 1; row >= 0 && !d.src.atEnd(); --row) {
        const CgwArrayT<Pixel> line = d.bitmap.line(row);
        const qint64 rowStart = d.src.pos;
        quint8 current = 0;
        int bitsLeft = 0;
        for (int x = 0; x < d.width; ++x) {
            Pixel& p = line[x];
            quint8 b[4];
            if (d.depth < 9) {
                size_t index = 0;
                for (int bit = 0; bit < d.depth; ++bit) {
                    if (bitsLeft == 0 && !d.src.byte(current))
                        return;
                    bitsLeft = bitsLeft == 0 ? 8 : bitsLeft;
                    index = (index << 1) | ((current >> (bitsLeft - 1)) & 1);
                    --bitsLeft;
                }
                d.setFromPalette(p, index);
            } else if (d.depth == 16) {
                if (!d.src.byte(b[0]) || !d.src.byte(b[1]))
                    return;
                const int v = b[0] | (b[1] << 8);
                p.s[0] = static_cast<unsigned char>((v >> 7) & 0xF8);
                p.s[1] = static_cast<unsigned char>((v >> 2) & 0xF8);
                p.s[2] = static_cast<unsigned char>((v << 3) & 0xFF);
            } else if (d.depth == 24 || d.depth == 32) {
                for (int k = 0; k < d.depth / 8; ++k)
                    if (!d.src.byte(b[k]))
                        return;
                p.s[2] = b[0];
                p.s[1] = b[1];
                p.s[0] = b[2];
                if (d.depth == 32)
                    p.s[3] = b[3];
            }
        }
        quint8 skip = 0;
        while ((d.src.pos - rowStart) % 4 != 0 && d.src.byte(skip)) {
        }
    }
}

// Run lengths of 4- or 8-bit indices, with the escapes 0 (end of line),
// 1 (end of bitmap), 2 (delta) and 3 and more (absolute runs).
void decodeRunLength(Decoding& d)
{
    const qint64 total = qint64(d.width) * d.height;
    qint64 p = 0;
    int column = 0;
    int row = d.height - 1;
    const auto place = [&] {
        column = int(p % d.width);
        row = int(d.height - p / d.width - 1);
    };
    const auto store = [&](size_t index) {
        if (p < total && p >= 0 && row >= 0 && row < d.height && column >= 0)
            d.setFromPalette(d.bitmap.line(row)[column], index);
        ++p;
        if (++column == d.width) {
            column = 0;
            --row;
        }
    };
    const auto emitFrom = [&](quint8 value, int n, int& bitsUsed) {
        for (int i = 0; i < n; ++i) {
            if (bitsUsed == 8)
                bitsUsed = 0;
            store(size_t((value >> (8 - bitsUsed - d.depth)) & ((1 << d.depth) - 1)));
            bitsUsed += d.depth;
        }
    };
    quint8 n = 0;
    quint8 e = 0;
    while (p < total && d.src.byte(n) && d.src.byte(e)) {
        if (n != 0) {
            int bitsUsed = 0;
            for (int i = 0; i < n; ++i)
                emitFrom(e, 1, bitsUsed);
        } else if (e == 0) {
            // The constant 2 is kept: a line that ended after its first pixel restarts the same row.
            p = ((d.width - 2 + p) / d.width) * d.width;
            place();
        } else if (e == 1) {
            p = total;
        } else if (e == 2) {
            quint8 dx = 0;
            quint8 dy = 0;
            if (!d.src.byte(dx) || !d.src.byte(dy))
                return;
            p += qint8(dx) + qint64(qint8(dy)) * d.width;
            place();
        } else {
            int emitted = 0;
            quint8 value = 0;
            while (emitted < e && d.src.byte(value)) {
                int bitsUsed = 0;
                const int inByte = std::min(8 / d.depth, e - emitted);
                emitFrom(value, inByte, bitsUsed);
                emitted += inByte;
            }
            const bool pad = d.depth == 8 ? (e % 2 == 1) : (e % 4 == 1 || e % 4 == 2);
            quint8 skip = 0;
            if (pad && !d.src.byte(skip))
                return;
        }
    }
}

// Bit fields: four bytes a pixel also at 16 bits, and every mask shifted
// down by 24 whatever its place, as the reader has always done.
void decodeBitFields(Decoding& d, const quint32 masks[4])
{
    for (int row = d.height - 1; row >= 0; --row) {
        const CgwArrayT<Pixel> line = d.bitmap.line(row);
        for (int x = 0; x < d.width; ++x) {
            quint8 b[4];
            for (quint8& byte : b)
                if (!d.src.byte(byte))
                    return;
            const quint32 v = quint32(b[0]) | (quint32(b[1]) << 8) | (quint32(b[2]) << 16) | (quint32(b[3]) << 24);
            for (int k = 0; k < 4; ++k)
                line[x].s[k] = static_cast<unsigned char>((v & masks[k]) >> 24);
        }
    }
}

// Pixels that pixel data of `bytes` can paint at most: packed rows for plain
// data, runs of 255 in two bytes for run lengths, four bytes a pixel for bit
// fields; none for a packing that is not decoded.
qint64 paintablePixels(qint64 bytes, qint32 compression, qint32 bits)
{
    if (bytes <= 0)
        return 0;
    if (compression == 0)
        return bytes * 8 / bits;
    if ((compression == 1 || compression == 2) && (bits == 4 || bits == 8))
        return bytes / 2 * 255;
    if (compression == 3 && (bits == 16 || bits == 32))
        return bytes / 4;
    return 0;
}

} // namespace

CgwBitmapBase* CgwImageFileBMP::loadBitmap(const QString& path, qint64 offset)
{
    const CgwBitmapHead head = loadImageInformation(path, offset);
    const QSize size = head.mSize;
    std::unique_ptr<CgwFile> file(CgwFilePathList::instance().createFile(path));
    if (qint64(size.width()) * size.height() == 0 || !file || !file->open(QIODevice::ReadOnly))
        return finishBitmap(nullptr);
    if (!plausibleImageSize(size, "CgwImageFileBMP::loadBitmap"))
        return finishBitmap(nullptr);
    const qint64 dataBytes = file->size() - offset - mPixelOffset;
    if (qint64(size.width()) * size.height() - paintablePixels(dataBytes, mCompression, mBitsPerPixel)
        > kMaxUnpaintedPixels) {
        gwDebug("CgwImageFileBMP::loadBitmap : Error: %lld bytes of pixel data cannot paint %i x %i pixels.",
                static_cast<long long>(dataBytes), size.width(), size.height());
        return finishBitmap(nullptr);
    }
    file->seek(offset + mPixelOffset, 0);

    std::unique_ptr<Bitmap> bitmap;
    QByteArray data;
    try {
        bitmap = std::make_unique<Bitmap>();
        if (!bitmap->createStorage(size, head.mColorMode)) {
            CgwLogFile::instance().reportError(5);
            return finishBitmap(nullptr);
        }
        data = file->readAll();
    } catch (const std::bad_alloc&) {
        CgwLogFile::instance().reportError(17);
        return finishBitmap(nullptr);
    }
    bitmap->setResolution(head.mResolution);

    Source src{reinterpret_cast<const uchar*>(data.constData()), data.size()};
    Decoding decoding{*bitmap, src, size.width(), size.height(), mBitsPerPixel,
                      [this](size_t index) { return paletteWord(index); }};
    if (mCompression == 0)
        decodePlain(decoding);
    else if ((mCompression == 1 || mCompression == 2) && (mBitsPerPixel == 4 || mBitsPerPixel == 8))
        decodeRunLength(decoding);
    else if (mCompression == 3 && (mBitsPerPixel == 16 || mBitsPerPixel == 32))
        decodeBitFields(decoding, mMasks);
    return finishBitmap(bitmap.release());
}

bool CgwImageFileBMP::saveBitmap(const QString& path, const CgwBitmapBase& bitmap)
{
    const int mode = bitmap.colorMode();
    if (mode != 1 && mode != 3 && mode != 6 && mode != 7)
        return false;
    const int channels = channelsOfMode(mode);
    const qint64 width = bitmap.size().width();
    const qint64 height = bitmap.size().height();
    const int paletteBytes = mode == 1 ? 1024 : 0;
    const quint32 pixelOffset = 124 + quint32(paletteBytes);
    const qint64 rowBytes = width * channels;
    const qint64 pad = (4 - rowBytes % 4) % 4;
    // As long as it always was: (pad + width) * height * channels, so a padded
    // file carries spare bytes behind its last row. Not cleared.
    const qint64 blockBytes = (pad + width) * height * channels;
    if (blockBytes <= 0 || blockBytes > (qint64(1) << 31) - 4096)
        return false;
    QByteArray block(int(blockBytes), Qt::Uninitialized);

    const int type = bitmap.pixelType();
    if (type == 0 || type == 1) {
        const int stride = type == 0 ? 4 : 1;
        qint64 at = 0;
        for (qint64 y = height - 1; y >= 0; --y) {
            const CgwArrayT<unsigned char> line = bitmap.getLine(int(y));
            const unsigned char* row = &line[0];
            for (qint64 x = 0; x < width; ++x)
                for (int c = 0; c < channels; ++c)
                    block[int(at + x * channels + c)] = char(row[x * stride + (channels - 1 - c)]);
            at += (rowBytes + 3) / 4 * 4;
        }
    }

    // A plain array: GCC's sanitizer builds cannot see the size of a
    // QByteArray's buffer and warn about every store into it.
    char headers[124] = {};
    const auto put16 = [&](int at, quint16 v) { qToLittleEndian<quint16>(v, headers + at); };
    const auto put32 = [&](int at, quint32 v) { qToLittleEndian<quint32>(v, headers + at); };
    headers[0] = 'B';
    headers[1] = 'M';
    put32(4, quint32(124 + paletteBytes + blockBytes));
    put32(12, pixelOffset);
    put32(16, 108);
    put32(20, quint32(width));
    put32(24, quint32(height));
    put16(28, 1);
    put16(30, mode == 1 ? 8 : mode == 3 ? 24 : 32);
    put32(40, quint32(int(bitmap.resolution().x() * 10000.0 / 254.0 + 0.5)));
    put32(44, quint32(int(bitmap.resolution().y() * 10000.0 / 254.0 + 0.5)));
    put32(72, mode == 6 ? 2 : 1);
    QByteArray palette;
    for (int v = 0; v < (mode == 1 ? 256 : 0); ++v)
        palette.append(char(v)).append(char(v)).append(char(v)).append('\0');

    mFile.reset(CgwFilePathList::instance().createFile(path));
    if (!mFile || !mFile->open(QIODevice::WriteOnly))
        return false;
    mFile->write(headers, sizeof(headers));
    mFile->write(palette);
    mFile->write(block);
    mFile->close();
    return true;
}
