#include "imagefile/gwTiffStripes.h"

#include "diagnostics/gwDebug.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace {

// Buffers sized from a file: checked in 64 bits, refused above 4 GiB (no
// stripe of a real image comes near), and left uninitialised so that a
// file that lies about its size costs address space, not memory.
std::unique_ptr<uchar[]> allocate(qint64 bytes)
{
    if (bytes <= 0 || bytes > (qint64(1) << 32))
        return nullptr;
    return std::unique_ptr<uchar[]>(new (std::nothrow) uchar[size_t(bytes)]);
}

qint64 packedBytes(quint32 pixels, int bitsPerPixel)
{
    return (qint64(pixels) * bitsPerPixel + 7) / 8;
}

} // namespace

bool CgwTiffYCbCrConverter::init(TIFF* tiff)
{
    // TIFFYCbCrToRGBInit keeps its clamping and lookup tables right behind
    // the structure, as libtiff's own RGBA reader lays them out.
    const size_t head = (sizeof(TIFFYCbCrToRGB) + sizeof(long) - 1) / sizeof(long) * sizeof(long);
    const size_t bytes = head + 4 * 256 * sizeof(TIFFRGBValue) + 2 * 256 * sizeof(int) + 3 * 256 * sizeof(int32_t);
    mStorage.assign((bytes + sizeof(quint64) - 1) / sizeof(quint64), 0);
    float* coefficients = nullptr;
    float* referenceBlackWhite = nullptr;
    if (!TIFFGetFieldDefaulted(tiff, TIFFTAG_YCBCRCOEFFICIENTS, &coefficients)
        || !TIFFGetFieldDefaulted(tiff, TIFFTAG_REFERENCEBLACKWHITE, &referenceBlackWhite))
        return false;
    return TIFFYCbCrToRGBInit(reinterpret_cast<TIFFYCbCrToRGB*>(mStorage.data()), coefficients,
                              referenceBlackWhite)
           >= 0;
}

void CgwTiffYCbCrConverter::toRgb(quint32 y, qint32 cb, qint32 cr, uchar* rgb) const
{
    uint32_t r = 0, g = 0, b = 0;
    TIFFYCbCrtoRGB(reinterpret_cast<TIFFYCbCrToRGB*>(const_cast<quint64*>(mStorage.data())), y, cb, cr, &r, &g, &b);
    rgb[0] = uchar(r);
    rgb[1] = uchar(g);
    rgb[2] = uchar(b);
}

bool CgwTiffStripeReader::init(TIFF* tiff, const SgwTiffPage& page, int samples, bool ycbcrRaw)
{
    mTiff = tiff;
    mWidth = page.width;
    mHeight = page.height;
    mYCbCrRaw = ycbcrRaw;
    mBitsPerPixel = ycbcrRaw ? 24 : samples * page.bits;
    mRowBytes = packedBytes(mWidth, mBitsPerPixel);
    if (ycbcrRaw) {
        TIFFGetFieldDefaulted(tiff, TIFFTAG_YCBCRSUBSAMPLING, &mSubsampling[0], &mSubsampling[1]);
        const auto valid = [](quint16 s) { return s == 1 || s == 2 || s == 4; };
        if (!valid(mSubsampling[0]) || !valid(mSubsampling[1]) || !mConverter.init(tiff)) {
            gwDebugString(QStringLiteral("CgwImageFileTIF::loadBitmapT<> : Error: YCbCr layout not readable."));
            return false;
        }
    }
    if (TIFFIsTiled(tiff)) {
        quint32 tileLength = 0;
        TIFFGetField(tiff, TIFFTAG_TILEWIDTH, &mTileWidth);
        TIFFGetField(tiff, TIFFTAG_TILELENGTH, &tileLength);
        mRowsPerStripe = tileLength;
        mUnitBytes = qint64(TIFFTileSize64(tiff));
        if (ycbcrRaw)
            mRgbUnit = allocate(qint64(mTileWidth) * 3 * tileLength);
    } else {
        mRowsPerStripe = std::min(page.rowsPerStrip, mHeight);
        mUnitBytes = ycbcrRaw ? qint64(TIFFStripSize64(tiff)) : 0;
    }
    // Tiles are multiples of 16 pixels wide, so every tile starts on a byte.
    const bool tilesFit = !TIFFIsTiled(tiff) || (mTileWidth > 0 && mTileWidth % 16 == 0);
    const bool ok = tilesFit && mRowsPerStripe > 0 && (mStripe = allocate(mRowBytes * mRowsPerStripe))
                    && (mUnitBytes == 0 || (mUnit = allocate(mUnitBytes))) && (!ycbcrRaw || !mTileWidth || mRgbUnit);
    if (!ok)
        gwDebug("CgwImageFileTIF::loadBitmapT<> : Error: no buffer for stripes of %u rows of %lld bytes.",
                mRowsPerStripe, static_cast<long long>(mRowBytes));
    return ok;
}

CgwTiffStripeReader::Result CgwTiffStripeReader::read(quint32 row, quint16 plane, quint32* rowsRead)
{
    const quint32 rows = std::min(mRowsPerStripe, mHeight - row);
    *rowsRead = 0;
    if (mTileWidth == 0)
        return readStrip(row, plane, rows, rowsRead);
    const Result result = readTiles(row, plane, rows);
    *rowsRead = rows;
    return result;
}

CgwTiffStripeReader::Result CgwTiffStripeReader::readStrip(quint32 row, quint16 plane, quint32 rows,
                                                           quint32* rowsRead)
{
    const uint32_t strip = TIFFComputeStrip(mTiff, row, plane);
    if (!mYCbCrRaw) {
        const tmsize_t got = TIFFReadEncodedStrip(mTiff, strip, mStripe.get(), tmsize_t(mRowBytes * rows));
        if (got > 0)
            *rowsRead = quint32(std::min<qint64>(rows, got / mRowBytes));
        return got > 0 ? Result::Ok : got == 0 ? Result::Empty : Result::Failed;
    }
    const tmsize_t got = TIFFReadEncodedStrip(mTiff, strip, mUnit.get(), tmsize_t(mUnitBytes));
    if (got <= 0)
        return got == 0 ? Result::Empty : Result::Failed;
    unitToRgb(mUnit.get(), got, mWidth, rows, mStripe.get());
    *rowsRead = rows;
    return Result::Ok;
}

CgwTiffStripeReader::Result CgwTiffStripeReader::readTiles(quint32 row, quint16 plane, quint32 rows)
{
    Result result = Result::Ok;
    const qint64 tileRowBytes = packedBytes(mTileWidth, mBitsPerPixel);
    for (quint32 x = 0; x < mWidth; x += mTileWidth) {
        const qint64 at = packedBytes(x, mBitsPerPixel);
        const qint64 bytes = packedBytes(std::min(mTileWidth, mWidth - x), mBitsPerPixel);
        const tmsize_t got = TIFFReadTile(mTiff, mUnit.get(), x, row, 0, plane);
        if (got <= 0) {
            // A lost tile stays black rather than showing the stripe before.
            for (quint32 r = 0; r < rows; ++r)
                std::memset(mStripe.get() + r * mRowBytes + at, 0, size_t(bytes));
            result = got == 0 ? Result::Empty : Result::Failed;
            continue;
        }
        const uchar* tile = mUnit.get();
        if (mYCbCrRaw) {
            unitToRgb(mUnit.get(), got, mTileWidth, mRowsPerStripe, mRgbUnit.get());
            tile = mRgbUnit.get();
        } else if (got < tileRowBytes * rows) {
            std::memset(mUnit.get() + got, 0, size_t(mUnitBytes - got));
        }
        for (quint32 r = 0; r < rows; ++r)
            std::memcpy(mStripe.get() + r * mRowBytes + at, tile + r * tileRowBytes, size_t(bytes));
    }
    return result;
}

// Raw YCbCr comes in blocks of h x v luma samples followed by one Cb and
// one Cr; blocks run left to right, then top to bottom.
void CgwTiffStripeReader::unitToRgb(const uchar* unit, qint64 unitBytes, quint32 unitWidth, quint32 unitRows,
                                    uchar* rgb) const
{
    const quint32 h = mSubsampling[0], v = mSubsampling[1];
    const quint32 across = (unitWidth + h - 1) / h;
    const quint32 down = (unitRows + v - 1) / v;
    const qint64 blockBytes = qint64(h) * v + 2;
    std::memset(rgb, 0, size_t(qint64(unitWidth) * 3 * unitRows));
    for (quint32 by = 0; by < down; ++by) {
        for (quint32 bx = 0; bx < across; ++bx) {
            const qint64 start = (qint64(by) * across + bx) * blockBytes;
            if (start + blockBytes > unitBytes)
                return;
            const uchar* block = unit + start;
            const qint32 cb = block[h * v], cr = block[h * v + 1];
            for (quint32 j = 0; j < v && by * v + j < unitRows; ++j) {
                for (quint32 i = 0; i < h && bx * h + i < unitWidth; ++i) {
                    uchar* out = rgb + (qint64(by * v + j) * unitWidth + bx * h + i) * 3;
                    mConverter.toRgb(block[j * h + i], cb, cr, out);
                }
            }
        }
    }
}
