#pragma once

#include "Sourcen/Image/gwArrayT.h"

#include <QRecursiveMutex>
#include <QSize>

#include <memory>

// Exceptions of the storage, caught by createBitmap.
constexpr int kGwRowTableAllocationFailed = 4710;
constexpr int kGwStorageAllocationFailed = 4711;

// Bytes of memory storage in use by all bitmaps of the process, and the
// limit above which new bitmaps go to mapped temporary files.
quint64 gwAccountedBitmapBytes();
void gwAccountBitmapBytes(qint64 delta);

// Asks the system to back the whole 2 MiB pages within a large block with
// huge pages: a new bitmap then costs one page fault per 2 MiB instead of
// one per 4 KiB when it is first written. A hint; nothing fails without it.
void gwAdviseHugePages(void* block, size_t bytes);
// Adds `bytes` when they fit under the MMFRamLimit of the options; false when
// the bitmap must go to a file instead.
bool gwReserveBitmapBytes(quint64 bytes);
// The folder for mapped temporary files: the options' temporary folder, or
// the root when that is no existing folder.
QString gwBitmapTempFolder();

// Where the pixels of one bitmap live. The size includes the border.
template <class Pixel>
class CgwBitmapMM_Base
{
public:
    explicit CgwBitmapMM_Base(const QSize& size) : mSize(size) {}
    virtual ~CgwBitmapMM_Base() = default;
    // Row y of the storage, 0 to height - 1; the view indexes from x = 0 of
    // the image, so offset() is the border.
    virtual CgwArrayT<Pixel> getLine(int y) = 0;

    const QSize& size() const { return mSize; }
    qint64 rowBytes() const { return qint64(mSize.width()) * qint64(sizeof(Pixel)); }
    qint64 totalBytes() const { return rowBytes() * mSize.height(); }

    // Memory while the accounted total stays under the limit, else a mapped
    // temporary file. A 1 x 1 image and the 256 x 256 thumbnail always stay
    // in memory. Throws the storage exceptions.
    static std::shared_ptr<CgwBitmapMM_Base<Pixel>> create(const QSize& borderedSize);

protected:
    QRecursiveMutex mMutex;
    QSize mSize;
};
