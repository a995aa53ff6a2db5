#pragma once

// The chief header of the bitmaps: the typed bitmap and its blink member.

#include "Sourcen/Image/gwBitmapBase.h"
#include "Sourcen/Image/gwBitmapMM.h"
#include "Sourcen/Image/gwColorMode.h"

#include <QList>
#include <QPair>

template <class Pixel>
class CgwBitmapBlinkT;

#include <functional>

// Row ranges for the worker pool: one range for each ideal thread, the last
// one shorter.
QList<QPair<int, int>> gwSplitRows(int first, int end);

// Runs `work(first, end)` over the row ranges of [first, end) on the worker
// pool and returns when all are done. Every range is worked by one thread.
void gwRunOverRows(int first, int end, const std::function<void(int, int)>& work);

// A bitmap of one pixel type. Rows are addressed in image coordinates,
// -kBorder <= y < height + kBorder.
template <class Pixel>
class CgwBitmapT : public CgwBitmapBase
{
    friend class CgwBitmapBlinkT<Pixel>;

public:
    using PixelType = Pixel;
    using Sample = typename Pixel::SampleType;

    CgwBitmapT();
    ~CgwBitmapT() override;

    // Copies head and every row with its border; size and filter radius must agree.
    CgwBitmapT& operator=(const CgwBitmapT& other);

    bool isConstantGrey() const override;
    void reset(bool freeAll) override;
    bool createBitmap(const QSize& size, int colorMode, unsigned filterRadius) override;
    bool createBitmapFrom(CgwBitmapBase& source, bool reuse) override;
    bool createGradient(int n) override;
    bool getRows(int firstRow, int rowCount, void* buffer, qint64 bufferBytes) const override;
    bool getRow(int y, void* buffer, int firstX, int count) const override;
    QByteArray getData() const override;
    bool setBlock(int row, const void* samples, int pixelCount) override;
    bool setBlock(int firstRow, int rowCount, const void* samples, qint64 byteCount) override;
    bool setBlock(const QByteArray& data) override;
    bool setBlock(const QPoint& leftTop, const CgwBitmapBase& source) override;
    CgwBitmapBase* getBlock(const CgwRectT<int>& rect, int filterRadius) const override;
    CgwBitmapBase* getBlockBlink(const CgwRectT<int>& rect) const override;
    CgwBitmapBase* createEmptyCopy() const override;
    CgwBitmapBase* clone() const override;
    CgwBitmapBase* getThumbnail(int maxSize) const override;
    bool transform(bool flipH, bool flipV, int rotate) override;
    void mirror() override;
    void flip() override;
    void convertColorMode(int colorMode) override;
    bool getPixel(int x, int y, CgwPixel8x4& pixel) const override { return readPixel(x, y, pixel); }
    bool getPixel(int x, int y, CgwPixelGrey8& pixel) const override { return readPixel(x, y, pixel); }
    bool getPixel(int x, int y, CgwPixel16x4& pixel) const override { return readPixel(x, y, pixel); }
    bool getPixel(int x, int y, CgwPixel16x3& pixel) const override { return readPixel(x, y, pixel); }
    bool getPixel(int x, int y, CgwPixelGrey16Type& pixel) const override { return readPixel(x, y, pixel); }
    bool getPixel(int x, int y, CgwPixelFloat4& pixel) const override { return readPixel(x, y, pixel); }
    bool getPixel(int x, int y, CgwPixelGreyFloat& pixel) const override { return readPixel(x, y, pixel); }
    bool getPixel(int x, int y, CgwPixel8x2& pixel) const override { return readPixel(x, y, pixel); }
    bool getPixel(int x, int y, CgwPixel16x2& pixel) const override { return readPixel(x, y, pixel); }
    bool getMean(const CgwRectT<int>& r, CgwPixel8x4& pixel) const override { return readMean(r, pixel); }
    bool getMean(const CgwRectT<int>& r, CgwPixelGrey8& pixel) const override { return readMean(r, pixel); }
    bool getMean(const CgwRectT<int>& r, CgwPixel16x4& pixel) const override { return readMean(r, pixel); }
    bool getMean(const CgwRectT<int>& r, CgwPixel16x3& pixel) const override { return readMean(r, pixel); }
    bool getMean(const CgwRectT<int>& r, CgwPixelGrey16Type& pixel) const override { return readMean(r, pixel); }
    bool getMean(const CgwRectT<int>& r, CgwPixelFloat4& pixel) const override { return readMean(r, pixel); }
    bool getMean(const CgwRectT<int>& r, CgwPixelGreyFloat& pixel) const override { return readMean(r, pixel); }
    bool getMean(const CgwRectT<int>& r, CgwPixel8x2& pixel) const override { return readMean(r, pixel); }
    bool getMean(const CgwRectT<int>& r, CgwPixel16x2& pixel) const override { return readMean(r, pixel); }
    QImage toQImage(double angle = 0.0) override;
    CgwArrayT<unsigned char> getLine(int y) const override;

    // Typed row access; empty outside the bordered area.
    virtual CgwArrayT<Pixel> line(int y) const;
    CgwSmartPixelPointer<Pixel> getPixelRef(int x, int y) const;

    // The region a block transfer touches.
    struct SgwBlockGeometry {
        int srcX = 0, srcY = 0, dstX = 0, dstY = 0, width = 0, height = 0;
        int sourceMode = 0, targetMode = 0;
    };

    // Reached from setBlock when the pixel types differ.
    bool setBlockFromOtherTypeBmp(const SgwBlockGeometry& g, const CgwBitmapBase& source);
    // The row worker of every transfer: rows [first, second) of the region.
    template <class Src>
    bool setThreadedBlockFromOtherTypeBmpT(QPair<int, int> rows, const SgwBlockGeometry& g,
                                           const CgwBitmapT<Src>& source);

protected:
    CgwBitmapMM_Base<Pixel>* storage() const { return static_cast<CgwBitmapMM_Base<Pixel>*>(mStorage.get()); }

private:
    template <class Out>
    bool readPixel(int x, int y, Out& out) const;
    template <class Out>
    bool readMean(const CgwRectT<int>& rect, Out& out) const;
    bool blockGeometry(const QPoint& leftTop, const CgwBitmapBase& source, SgwBlockGeometry& g) const;
    template <class Src>
    bool runTransfer(const SgwBlockGeometry& g, const CgwBitmapT<Src>& source);
    template <class Src>
    bool createFromType(const CgwBitmapT<Src>& source, bool reuse);
    bool rotateQuarter(int quarters);

};

// A band of a larger image: its rows come from the storage of the bitmap it
// was cut from, and rows past its band from the next member of the chain.
template <class Pixel>
class CgwBitmapBlinkT : public CgwBitmapT<Pixel>
{
public:
    CgwBitmapBlinkT() = default;
    CgwBitmapBlinkT(const CgwBitmapT<Pixel>& source, int firstRow, int endRow);
    ~CgwBitmapBlinkT() override;

    bool isBlink() const override { return true; }
    void reset(bool freeAll) override;
    bool createBitmap(const QSize&, int, unsigned) override { return false; }
    bool createGradient(int) override { return false; }
    // A band of its own: storage for the whole size, as the format readers make it.
    bool createStorage(const QSize& size, int colorMode);
    CgwArrayT<unsigned char> getLine(int y) const override { return CgwBitmapT<Pixel>::getLine(y); }
    CgwArrayT<Pixel> line(int y) const override;

    void setNext(CgwBitmapBase* next) { this->mNext = next; }
    int firstRow() const { return mFirstRow; }
    int endRow() const { return mEndRow; }

private:
    int mFirstRow = 0; // rows of the source, end exclusive
    int mEndRow = 0;
};

// The bitmaps are instantiated once, in gwBitmapT_8bit/16bit/float.cpp;
// every other file uses those instances.
#define GW_EXTERN_BITMAP(Pixel)                \
    extern template class CgwBitmapT<Pixel>;   \
    extern template class CgwBitmapBlinkT<Pixel>;
GW_EXTERN_BITMAP(CgwPixel8x4)
GW_EXTERN_BITMAP(CgwPixelGrey8)
GW_EXTERN_BITMAP(CgwPixelLineArt)
GW_EXTERN_BITMAP(CgwPixel8x2)
GW_EXTERN_BITMAP(CgwPixel16x4)
GW_EXTERN_BITMAP(CgwPixel16x3)
GW_EXTERN_BITMAP(CgwPixelGrey16Type)
GW_EXTERN_BITMAP(CgwPixel16x2)
GW_EXTERN_BITMAP(CgwPixelFloat4)
GW_EXTERN_BITMAP(CgwPixelGreyFloat)
GW_EXTERN_BITMAP(CgwPixelFloat1x255)
GW_EXTERN_BITMAP(CgwPixelFloat1x65535)
GW_EXTERN_BITMAP(CgwPixelFloat2x255)
GW_EXTERN_BITMAP(CgwPixelFloat2x65535)
GW_EXTERN_BITMAP(CgwPixelFloat3x65535)
GW_EXTERN_BITMAP(CgwPixelFloat4x255)
GW_EXTERN_BITMAP(CgwPixelFloat4x65535)
#undef GW_EXTERN_BITMAP
