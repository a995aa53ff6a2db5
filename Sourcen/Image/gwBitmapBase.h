#pragma once

#include "Sourcen/Image/gwArrayT.h"
#include "Sourcen/Image/gwBitmapHead.h"
#include "Sourcen/Image/gwPixelT.h"

#include <QByteArray>
#include <QImage>
#include <QObject>
#include <QPixmap>
#include <QPoint>

#include <atomic>
#include <memory>

// Every image of the system: a head of metadata and a storage object, with
// typed access in CgwBitmapT<Pixel>. The pixel area has a fixed border of
// kBorder pixels on all four sides, so filters can read across the edge.
class CgwBitmapBase
{
public:
    static constexpr int kBorder = 23;

    // Virtual operations, in slot order.
    virtual bool isConstantGrey() const = 0;
    virtual int chainIndex() const;
    virtual void setChainIndex(int index);
    virtual int totalChainIndex() const;
    virtual ~CgwBitmapBase();
    virtual void reset(bool freeAll) = 0;
    virtual bool isBlink() const;
    virtual void setColorMode(int colorMode);
    virtual int pixelType() const;
    virtual bool isLegalPosition(const QPoint& position) const;
    virtual bool isInitialized() const;
    virtual void setFilterRadius(int radius);
    virtual bool createBitmap(const QSize& size, int colorMode, unsigned filterRadius) = 0;
    virtual bool createBitmapFrom(CgwBitmapBase& source, bool reuse) = 0;
    virtual bool createGradient(int n) = 0;
    // Readers for the image-file writers: rows without border into packed samples.
    virtual bool getRows(int firstRow, int rowCount, void* buffer, qint64 bufferBytes) const = 0;
    virtual bool getRow(int y, void* buffer, int firstX, int count) const = 0;
    virtual QByteArray getData() const = 0; // at most 2^31 - 1 pixels
    // Writers for the image-file readers: packed samples into rows without border.
    virtual bool setBlock(int row, const void* samples, int pixelCount) = 0;
    virtual bool setBlock(int firstRow, int rowCount, const void* samples, qint64 byteCount) = 0;
    virtual bool setBlock(const QByteArray& data) = 0;
    virtual bool setBlock(const QPoint& leftTop, const CgwBitmapBase& source) = 0;
    virtual CgwBitmapBase* getBlock(const CgwRectT<int>& rect, int filterRadius) const = 0;
    virtual CgwBitmapBase* getBlockBlink(const CgwRectT<int>& rect) const = 0;
    virtual CgwBitmapBase* createEmptyCopy() const = 0;
    virtual CgwBitmapBase* clone() const = 0;
    virtual CgwBitmapBase* getThumbnail(int maxSize) const = 0;
    virtual bool transform(bool flipH, bool flipV, int rotate) = 0;
    virtual void mirror() = 0;
    virtual void flip() = 0;
    virtual void convertColorMode(int colorMode) = 0;
    virtual void swap(CgwBitmapBase& other);
    // Takes over the pixels of `source` when it has this bitmap's pixel type
    // and size and neither is part of a chain, giving it this bitmap's
    // pixels in exchange; heads stay where they are. False, with nothing
    // changed, for any other source.
    bool exchangePixels(CgwBitmapBase& source);
    virtual bool getPixel(int x, int y, CgwPixel8x4& pixel) const = 0;
    virtual bool getPixel(int x, int y, CgwPixelGrey8& pixel) const = 0;
    virtual bool getPixel(int x, int y, CgwPixel16x4& pixel) const = 0;
    virtual bool getPixel(int x, int y, CgwPixel16x3& pixel) const = 0;
    virtual bool getPixel(int x, int y, CgwPixelGrey16Type& pixel) const = 0;
    virtual bool getPixel(int x, int y, CgwPixelFloat4& pixel) const = 0;
    virtual bool getPixel(int x, int y, CgwPixelGreyFloat& pixel) const = 0;
    virtual bool getPixel(int x, int y, CgwPixel8x2& pixel) const = 0;
    virtual bool getPixel(int x, int y, CgwPixel16x2& pixel) const = 0;
    virtual bool getMean(const CgwRectT<int>& rect, CgwPixel8x4& pixel) const = 0;
    virtual bool getMean(const CgwRectT<int>& rect, CgwPixelGrey8& pixel) const = 0;
    virtual bool getMean(const CgwRectT<int>& rect, CgwPixel16x4& pixel) const = 0;
    virtual bool getMean(const CgwRectT<int>& rect, CgwPixel16x3& pixel) const = 0;
    virtual bool getMean(const CgwRectT<int>& rect, CgwPixelGrey16Type& pixel) const = 0;
    virtual bool getMean(const CgwRectT<int>& rect, CgwPixelFloat4& pixel) const = 0;
    virtual bool getMean(const CgwRectT<int>& rect, CgwPixelGreyFloat& pixel) const = 0;
    virtual bool getMean(const CgwRectT<int>& rect, CgwPixel8x2& pixel) const = 0;
    virtual bool getMean(const CgwRectT<int>& rect, CgwPixel16x2& pixel) const = 0;
    virtual QPixmap toQPixmap();
    virtual QImage toQImage(double angle = 0.0) = 0;
    virtual bool hasSameStorage(const CgwBitmapBase& other) const;
    // A row with its border, as bytes; offset() is the byte index of x = 0.
    virtual CgwArrayT<unsigned char> getLine(int y) const = 0;

    // Accessors.
    CgwBitmapHead head() const { return mHead; }
    QSize size() const { return mHead.mSize; }
    int colorMode() const { return mHead.mColorMode; }
    int bitDepth() const { return mHead.mBitDepth; }
    int filterRadius() const { return mFilterRadius; }
    QPointF resolution() const { return mHead.mResolution; }
    void setResolution(const QPointF& resolution) { mHead.mResolution = resolution; }
    void setResolution(double x, double y) { mHead.mResolution = QPointF(x, y); }
    float gamma() const { return mHead.mGamma; }
    void setGamma(float gamma);
    int scannerMode() const { return mHead.mScannerMode; }
    void setScannerMode(int mode) { mHead.mScannerMode = mode; }
    CgwExif exif() const { return mHead.mExif; }
    void setExif(const CgwExif& exif) { mHead.mExif = exif; }
    CgwIptc iptc() const { return mHead.mIptc; }
    void setIptc(const CgwIptc& iptc) { mHead.mIptc = iptc; }
    CgwProfileBase profile() const { return mHead.mProfile; }
    void setProfile(const CgwProfileBase& profile) { mHead.mProfile = profile; }
    CgwMakerNote makerNote() const { return mHead.mMakerNote; }
    void setMakerNote(const CgwMakerNote& note) { mHead.mMakerNote = note; }
    CgwParameterSet parameters() const { return mHead.mParameters; }
    void setParameters(const CgwParameterSet& parameters) { mHead.mParameters = parameters; }
    void setLegalRectBottom(int rows);
    int getLegalRectBottom() const;
    void setScanSize(const QSize& size) { mHead.mScanSize = size; }

    // The object that travels with the bitmap, in practice the thread that fills it.
    QObject* companion() const { return mCompanion.get(); }
    QObject* takeCompanion() { return mCompanion.release(); }
    void setCompanion(QObject* companion) { mCompanion.reset(companion); }

    CgwBitmapBase* next() const { return mNext; }

    CgwBitmapBase(const CgwBitmapBase&) = delete;
    CgwBitmapBase& operator=(const CgwBitmapBase&) = delete;

protected:
    explicit CgwBitmapBase(int pixelType);

    CgwBitmapHead mHead;
    int mFilterRadius = 0;
    bool mBaseFlag = false;
    std::unique_ptr<QObject> mCompanion;
    int mChainIndex = 0;
    CgwBitmapBase* mNext = nullptr; // next member of a blink chain, not owned
    std::shared_ptr<void> mStorage;  // a CgwBitmapMM_Base<Pixel> of the pixel type
    int mPixelType = -1;

private:
    const CgwBitmapBase* chainEnd() const;

    mutable std::atomic<int> mLastLegalBottom{-1};
};
