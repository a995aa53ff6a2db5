#pragma once

// Creation, rows, copies and pixel reads of CgwBitmapT. Included by the
// files that instantiate the bitmaps, not by users of them.

#include "Sourcen/Image/gwBitmapMM_MMF.h"
#include "Sourcen/Image/gwBitmapT.h"
#include "Sourcen/Image/gwColorMode.h"
#include "Sourcen/Image/gwSampleConvert.h"
#include "diagnostics/gwAssert.h"

#include <cstring>

template <class Pixel>
CgwBitmapT<Pixel>::CgwBitmapT() : CgwBitmapBase(gwPixelTypeId<Pixel>())
{
}

// The companion (the thread filling the pixels) ends first, while the
// bitmap is still whole.
template <class Pixel>
CgwBitmapT<Pixel>::~CgwBitmapT()
{
    this->mCompanion.reset();
}

template <class Pixel>
void CgwBitmapT<Pixel>::reset(bool freeAll)
{
    mStorage.reset();
    mHead.mSize = QSize(0, 0);
    mHead.mBitDepth = 0;
    mHead.setColorMode(0);
    mHead.setLegalBottom(-1);
    mFilterRadius = 0;
    if (freeAll)
        setCompanion(nullptr);
}

template <class Pixel>
bool CgwBitmapT<Pixel>::createBitmap(const QSize& size, int colorMode, unsigned filterRadius)
{
    if (isInitialized() && size == mHead.mSize && colorMode == mHead.mColorMode) {
        mHead.setLegalBottom(0);
        if (filterRadius < 24) {
            mFilterRadius = int(filterRadius);
            return true;
        }
        reset(true);
        return false;
    }
    reset(true);
    if (size.width() <= 0 || size.height() <= 0 || filterRadius >= 24)
        return false;
    const QSize bordered(size.width() + 2 * kBorder, size.height() + 2 * kBorder);
    try {
        mStorage = CgwBitmapMM_Base<Pixel>::create(bordered);
    } catch (...) {
        const qint64 megabytes = (qint64(bordered.width()) * bordered.height() * qint64(sizeof(Pixel))) >> 20;
        gwDebug("CgwBitmapT<>::createBitmap : Error: Could not allocate enough memory (%i MB)!", int(megabytes));
        reset(true);
        return false;
    }
    mHead.mSize = size;
    mFilterRadius = int(filterRadius);
    mHead.setColorMode(colorMode);
    mHead.mBitDepth = quint8(gwPixelBitDepth<Pixel>());
    return true;
}

template <class Pixel>
CgwArrayT<Pixel> CgwBitmapT<Pixel>::line(int y) const
{
    if (!mStorage || y < -kBorder || y >= mHead.mSize.height() + kBorder)
        return CgwArrayT<Pixel>();
    return storage()->getLine(y + kBorder);
}

template <class Pixel>
CgwArrayT<unsigned char> CgwBitmapT<Pixel>::getLine(int y) const
{
    const CgwArrayT<Pixel> row = line(y);
    if (row.isEmpty())
        return CgwArrayT<unsigned char>();
    return CgwArrayT<unsigned char>(row.owner(), reinterpret_cast<unsigned char*>(row.data()),
                                    row.offset() * int(sizeof(Pixel)), row.count() * int(sizeof(Pixel)));
}

template <class Pixel>
CgwSmartPixelPointer<Pixel> CgwBitmapT<Pixel>::getPixelRef(int x, int y) const
{
    if (!isLegalPosition(QPoint(x, y))) {
        GW_REPORT_PIXEL_NOT_FOUND(x, y);
        return CgwSmartPixelPointer<Pixel>();
    }
    const CgwArrayT<Pixel> row = line(y);
    return CgwSmartPixelPointer<Pixel>(row.owner(), &row[x]);
}

template <class Pixel>
CgwBitmapT<Pixel>& CgwBitmapT<Pixel>::operator=(const CgwBitmapT& other)
{
    if (this == &other)
        return *this;
    if (other.size() != size() || other.mFilterRadius != mFilterRadius) {
        gwDebugString(QStringLiteral(
            "CgwBitmapT::operator= : Error: Did not copy data: Size and/or max. filter radius did not match!"));
        return *this;
    }
    if (!other.isInitialized()) {
        gwDebugString(QStringLiteral("CgwBitmapT::operator= : Error: Could not copy data, source bitmap is not legal!"));
        return *this;
    }
    if (!isInitialized()) {
        gwDebugString(
            QStringLiteral("CgwBitmapT::operator= : Error: Could not copy data, destination bitmap is not legal!"));
        return *this;
    }
    mHead = other.mHead;
    const size_t bytes = size_t(size().width() + 2 * kBorder) * sizeof(Pixel);
    for (int y = -kBorder; y < size().height() + kBorder; ++y) {
        const CgwArrayT<Pixel> from = other.line(y);
        const CgwArrayT<Pixel> to = line(y);
        std::memcpy(to.data(), from.data(), bytes);
    }
    return *this;
}

template <class Pixel>
CgwBitmapBase* CgwBitmapT<Pixel>::createEmptyCopy() const
{
    auto* copy = new CgwBitmapT<Pixel>();
    copy->mHead.mMakerNote = mHead.mMakerNote;
    copy->mHead.mExif = mHead.mExif;
    copy->mHead.mIptc = mHead.mIptc;
    copy->mHead.mGamma = mHead.mGamma;
    copy->mHead.mResolution = mHead.mResolution;
    copy->mHead.mBounds = mHead.mBounds;
    copy->mHead.mParameters = mHead.mParameters;
    return copy;
}

template <class Pixel>
CgwBitmapBase* CgwBitmapT<Pixel>::clone() const
{
    auto* copy = static_cast<CgwBitmapT<Pixel>*>(createEmptyCopy());
    if (isInitialized()) {
        copy->createBitmap(size(), colorMode(), unsigned(mFilterRadius));
        if (!copy->isInitialized()) {
            delete copy;
            return nullptr;
        }
        *copy = *this;
    }
    return copy;
}

template <class Pixel>
bool CgwBitmapT<Pixel>::isConstantGrey() const
{
    if (!isInitialized() || mHead.mChannels < 3 || Pixel::kChannels < 3)
        return true;
    for (int y = 0; y < size().height(); ++y) {
        const CgwArrayT<Pixel> row = line(y);
        for (int x = 0; x < size().width(); ++x) {
            const Pixel& p = row[x];
            if constexpr (Pixel::kChannels >= 3) {
                if (p.s[0] != p.s[1] || p.s[1] != p.s[2])
                    return false;
            }
        }
    }
    return true;
}

template <class Pixel>
template <class Out>
bool CgwBitmapT<Pixel>::readPixel(int x, int y, Out& out) const
{
    if (!isLegalPosition(QPoint(x, y)))
        return false;
    const Pixel& p = line(y)[x];
    out = Out{};
    if (colorMode() == EgwColorModeGrey && Out::kChannels >= 3)
        gwConvertGreyPixel<Pixel, Out>(p, out, false);
    else
        gwConvertPixel<Pixel, Out>(p, out);
    return true;
}

template <class Pixel>
template <class Out>
bool CgwBitmapT<Pixel>::readMean(const CgwRectT<int>& rect, Out& out) const
{
    CgwRectT<int> r = rect.normalized();
    r.left = std::max(r.left, 0);
    r.top = std::max(r.top, 0);
    r.right = std::min(r.right, size().width());
    r.bottom = std::min(r.bottom, size().height());
    if (!isInitialized() || r.isEmpty())
        return false;
    double sums[Pixel::kChannels] = {};
    for (int y = r.top; y < r.bottom; ++y) {
        const CgwArrayT<Pixel> row = line(y);
        for (int x = r.left; x < r.right; ++x)
            for (int c = 0; c < Pixel::kChannels; ++c)
                sums[c] += double(row[x].s[c]);
    }
    const double count = double(r.width()) * double(r.height());
    out = Out{};
    const bool grey = colorMode() == EgwColorModeGrey && Out::kChannels >= 3;
    for (int c = 0; c < Out::kChannels && (grey || c < Pixel::kChannels); ++c) {
        const double mean = sums[grey ? 0 : c] / count;
        const double scaled = mean * double(Out::kMax) / double(Pixel::kMax);
        if constexpr (std::is_floating_point_v<typename Out::SampleType>)
            out.s[c] = typename Out::SampleType(scaled);
        else
            out.s[c] = typename Out::SampleType(std::min(double(Out::kMax), std::floor(scaled + 0.5)));
        if (grey && c == 2)
            break;
    }
    return true;
}

template <class Pixel>
bool CgwBitmapT<Pixel>::getRows(int firstRow, int rowCount, void* buffer, qint64 bufferBytes) const
{
    const qint64 rowBytes = qint64(size().width()) * qint64(sizeof(Pixel));
    if (!isInitialized() || !buffer || firstRow < 0 || rowCount < 0 || firstRow + rowCount > size().height()
        || bufferBytes < rowBytes * rowCount)
        return false;
    auto* out = static_cast<unsigned char*>(buffer);
    for (int y = 0; y < rowCount; ++y)
        std::memcpy(out + rowBytes * y, &line(firstRow + y)[0], size_t(rowBytes));
    return true;
}

template <class Pixel>
bool CgwBitmapT<Pixel>::getRow(int y, void* buffer, int firstX, int count) const
{
    if (!isInitialized() || !buffer || y < 0 || y >= size().height() || firstX < 0 || count < 0
        || firstX + count > size().width())
        return false;
    std::memcpy(buffer, &line(y)[firstX], size_t(count) * sizeof(Pixel));
    return true;
}

template <class Pixel>
QByteArray CgwBitmapT<Pixel>::getData() const
{
    const qint64 pixels = qint64(size().width()) * size().height();
    const qint64 bytes = pixels * qint64(sizeof(Pixel));
    if (!isInitialized() || pixels > 2147483647LL || bytes > qint64(std::numeric_limits<int>::max()) - 64) {
        gwDebugString(QStringLiteral("CgwBitmapT::getData : Error: the image is too large for one array"));
        return QByteArray();
    }
    QByteArray data(int(bytes), Qt::Uninitialized);
    getRows(0, size().height(), data.data(), bytes);
    return data;
}

template <class Pixel>
bool CgwBitmapT<Pixel>::setBlock(int row, const void* samples, int pixelCount)
{
    if (!isInitialized() || !samples || row < 0 || row >= size().height() || pixelCount < 0)
        return false;
    const int count = std::min(pixelCount, size().width());
    std::memcpy(&line(row)[0], samples, size_t(count) * sizeof(Pixel));
    return count == pixelCount;
}

template <class Pixel>
bool CgwBitmapT<Pixel>::setBlock(int firstRow, int rowCount, const void* samples, qint64 byteCount)
{
    const qint64 rowBytes = qint64(size().width()) * qint64(sizeof(Pixel));
    if (!isInitialized() || !samples || firstRow < 0 || rowCount < 0 || firstRow + rowCount > size().height()
        || byteCount < rowBytes * rowCount)
        return false;
    const auto* in = static_cast<const unsigned char*>(samples);
    for (int y = 0; y < rowCount; ++y)
        std::memcpy(&line(firstRow + y)[0], in + rowBytes * y, size_t(rowBytes));
    return true;
}

template <class Pixel>
bool CgwBitmapT<Pixel>::setBlock(const QByteArray& data)
{
    return setBlock(0, size().height(), data.constData(), data.size());
}

template <class Pixel>
bool CgwBitmapT<Pixel>::createGradient(int n)
{
    if (n < 1 || Pixel::kChannels < 3)
        return false;
    const int side = n * 256 - 1;
    if (!createBitmap(QSize(side, side), EgwColorModeRGB, 0))
        return false;
    const double scale = double(Pixel::kMax) / double(side - 1);
    for (int y = 0; y < side; ++y) {
        const CgwArrayT<Pixel> row = line(y);
        for (int x = 0; x < side; ++x) {
            Pixel& p = row[x];
            p.s[0] = Sample(x * scale);
            p.s[1] = Sample(y * scale);
            p.s[2] = Sample((side - 1 - x) * scale);
        }
    }
    mHead.setLegalBottom(-1);
    return true;
}

template <class Pixel>
void CgwBitmapT<Pixel>::mirror()
{
    const int w = size().width() + 2 * kBorder;
    for (int y = -kBorder; y < size().height() + kBorder; ++y) {
        Pixel* p = line(y).data();
        if (p)
            std::reverse(p, p + w);
    }
}

template <class Pixel>
void CgwBitmapT<Pixel>::flip()
{
    const size_t bytes = size_t(size().width() + 2 * kBorder) * sizeof(Pixel);
    std::vector<unsigned char> scratch(bytes);
    for (int top = -kBorder, bottom = size().height() + kBorder - 1; top < bottom; ++top, --bottom) {
        Pixel* a = line(top).data();
        Pixel* b = line(bottom).data();
        if (!a || !b)
            return;
        std::memcpy(scratch.data(), a, bytes);
        std::memcpy(a, b, bytes);
        std::memcpy(b, scratch.data(), bytes);
    }
}

template <class Pixel>
bool CgwBitmapT<Pixel>::rotateQuarter(int quarters)
{
    const int w = size().width();
    const int h = size().height();
    const QSize turned = quarters % 2 ? QSize(h, w) : QSize(w, h);
    CgwBitmapT<Pixel> target;
    if (!target.createBitmap(turned, colorMode(), unsigned(mFilterRadius)))
        return false;
    for (int y = -kBorder; y < turned.height() + kBorder; ++y) {
        const CgwArrayT<Pixel> out = target.line(y);
        for (int x = -kBorder; x < turned.width() + kBorder; ++x) {
            // Where the pixel came from, turning clockwise.
            int sx = 0;
            int sy = 0;
            switch (quarters) {
            case 1: sx = y; sy = h - 1 - x; break;
            case 2: sx = w - 1 - x; sy = h - 1 - y; break;
            default: sx = w - 1 - y; sy = x; break;
            }
            out[x] = line(sy)[sx];
        }
    }
    std::swap(mStorage, target.mStorage);
    mHead.mSize = turned;
    return true;
}

template <class Pixel>
bool CgwBitmapT<Pixel>::transform(bool flipH, bool flipV, int rotate)
{
    if (!isInitialized())
        return false;
    if (flipH)
        mirror();
    if (flipV)
        flip();
    const int quarters = ((rotate % 4) + 4) % 4;
    return quarters == 0 || rotateQuarter(quarters);
}
