#pragma once

// Reading a TIFF page by stripes of rows, strips and tiles alike, so that
// the only whole-image buffer is the bitmap itself.

#include "imagefile/gwTiffIO.h"

#include <QString>

#include <memory>
#include <vector>

// libtiff's YCbCr to RGB converter with the tables it keeps behind itself.
class CgwTiffYCbCrConverter
{
public:
    // Coefficients and reference black and white from the page's tags.
    bool init(TIFF* tiff);
    void toRgb(quint32 y, qint32 cb, qint32 cr, uchar* rgb) const;

private:
    std::vector<quint64> mStorage; // the converter and its tables, aligned
};

// One stripe of decoded rows of one plane. Rows are packed as the file has
// them, `rowBytes` apart; raw YCbCr (not JPEG-compressed) arrives as 8-bit
// RGB, three samples a pixel.
class CgwTiffStripeReader
{
public:
    enum class Result { Ok, Empty, Failed };

    // `samples` is the count in one plane. False, with a log line, when the
    // page cannot be read this way or its buffers cannot be had.
    bool init(TIFF* tiff, const SgwTiffPage& page, int samples, bool ycbcrRaw);

    quint32 rowsPerStripe() const { return mRowsPerStripe; }
    qint64 rowBytes() const { return mRowBytes; }
    // The stripe that begins at `row` (a multiple of rowsPerStripe).
    // `rowsRead` tells how many of its rows arrived whole.
    Result read(quint32 row, quint16 plane, quint32* rowsRead);
    const uchar* row(quint32 index) const { return mStripe.get() + qint64(index) * mRowBytes; }

private:
    Result readStrip(quint32 row, quint16 plane, quint32 rows, quint32* rowsRead);
    Result readTiles(quint32 row, quint16 plane, quint32 rows);
    void unitToRgb(const uchar* unit, qint64 unitBytes, quint32 unitWidth, quint32 unitRows, uchar* rgb) const;

    TIFF* mTiff = nullptr;
    quint32 mWidth = 0;
    quint32 mHeight = 0;
    quint32 mRowsPerStripe = 0;
    quint32 mTileWidth = 0; // 0 for a striped page
    int mBitsPerPixel = 0;  // in one plane
    qint64 mRowBytes = 0;
    bool mYCbCrRaw = false;
    quint16 mSubsampling[2] = {1, 1};
    CgwTiffYCbCrConverter mConverter;
    std::unique_ptr<uchar[]> mStripe;
    std::unique_ptr<uchar[]> mUnit; // one strip or tile as libtiff decodes it
    qint64 mUnitBytes = 0;
    std::unique_ptr<uchar[]> mRgbUnit; // one tile after YCbCr conversion
};
