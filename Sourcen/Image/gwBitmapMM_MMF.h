#pragma once

#include "Sourcen/Image/gwBitmapMM.h"
#include "Sourcen/Image/gwBitmapMM_InMem.h"
#include "diagnostics/gwDebug.h"

#include <QCache>
#include <QHash>
#include <QTemporaryFile>

// The whole temporary file, mapped once for the life of its storage and of
// any view still held. A page mapped anew costs a fault at its first touch
// (about a microsecond); views mapped and unmapped as they pass through the
// cache paid that for every page on every pass, seven times the cost of a
// pass in memory. Address space is no concern on a 64-bit system, and the
// kernel writes back and drops the file's pages under memory pressure just
// the same.
class CgwBitmapMM_MMF_Region
{
public:
    // Throws 4711 with the mapping's log lines when the file cannot be mapped.
    CgwBitmapMM_MMF_Region(int fd, const QString& fileName, qint64 bytes);
    ~CgwBitmapMM_MMF_Region();
    uchar* start() const { return mStart; }

    CgwBitmapMM_MMF_Region(const CgwBitmapMM_MMF_Region&) = delete;
    CgwBitmapMM_MMF_Region& operator=(const CgwBitmapMM_MMF_Region&) = delete;

private:
    uchar* mStart = nullptr;
    size_t mLength = 0;
};

// Gives a new temporary file its disk blocks. A sparse file on a full disk
// would end the process with SIGBUS at the first write of a page; this way
// the bitmap is refused when it is made. Writing into allocated blocks is
// also faster. True as well where the file system cannot preallocate.
bool gwAllocateFileBlocks(int fd, qint64 bytes, QString* error);

// One view of a bitmap's temporary file, a window of its region. It stays
// valid while a row view holds it, also after the cache has let it go.
template <class Pixel>
class CgwBitmapMM_MMF_Mapping
{
public:
    CgwBitmapMM_MMF_Mapping(std::shared_ptr<CgwBitmapMM_MMF_Region> region, qint64 offset, qint64 size)
        : mRegion(std::move(region)), mOffset(offset), mSize(size), mBase(mRegion->start() + offset)
    {
    }

    bool contains(qint64 offset) const { return offset >= mOffset && offset < mOffset + mSize; }
    uchar* base() const { return mBase; }
    qint64 offset() const { return mOffset; }

private:
    std::shared_ptr<CgwBitmapMM_MMF_Region> mRegion;
    qint64 mOffset;
    qint64 mSize;
    uchar* mBase;
};

// Pixels in a temporary file, seen through views of at least 8 MiB; the two
// most recent views are cached, any number may be held by row views.
template <class Pixel>
class CgwBitmapMM_MMF : public CgwBitmapMM_Base<Pixel>
{
    using Mapping = CgwBitmapMM_MMF_Mapping<Pixel>;

public:
    explicit CgwBitmapMM_MMF(const QSize& size) : CgwBitmapMM_Base<Pixel>(size)
    {
        mRowsPerMapping = int(8388608 / this->rowBytes() + 1);
        mFile = std::make_unique<QTemporaryFile>(gwBitmapTempFolder() + QStringLiteral("/hdr8_XXXXXX.tmp"));
        QString error;
        if (!mFile->open() || !mFile->resize(this->totalBytes())) {
            error = mFile->errorString();
        } else if (gwAllocateFileBlocks(int(mFile->handle()), this->totalBytes(), &error)) {
            // Asking for the name also makes Qt give the file one: the
            // storage file is to be seen in the temporary folder.
            mRegion = std::make_shared<CgwBitmapMM_MMF_Region>(int(mFile->handle()), mFile->fileName(),
                                                               this->totalBytes());
            return;
        }
        gwDebug("CgwBitmapMM_MMF: Error: could not create the temporary file %s of %lld bytes: %s",
                qPrintable(mFile->fileTemplate()), (long long)this->totalBytes(), qPrintable(error));
        throw kGwStorageAllocationFailed;
    }

    ~CgwBitmapMM_MMF() override
    {
        mCache.clear();
        const std::weak_ptr<CgwBitmapMM_MMF_Region> region = mRegion;
        mRegion.reset();
        // A view still held keeps its pages; the file's name goes in any case.
        if (region.expired())
            mFile->resize(0);
        mFile->close();
        mFile.reset();
        mLiveMappings.clear();
    }

    CgwArrayT<Pixel> getLine(int y) override
    {
        if (y < 0 || y >= this->mSize.height())
            return CgwArrayT<Pixel>();
        QMutexLocker lock(&this->mMutex);
        const qint64 offset = this->rowBytes() * y;
        const qint64 span = this->rowBytes() * mRowsPerMapping;
        const qint64 start = offset / span * span;
        std::shared_ptr<Mapping> mapping = mLiveMappings.value(start).lock();
        if (!mapping || !mapping->contains(offset)) {
            std::shared_ptr<Mapping>* cached = mCache.object(start);
            mapping = cached ? *cached : mapNew(start, span);
        }
        mLiveMappings.insert(start, mapping);
        auto* row = reinterpret_cast<Pixel*>(mapping->base() + (offset - start));
        return CgwArrayT<Pixel>(mapping, row, kBorderPixels, this->mSize.width());
    }

    int rowsPerMapping() const { return mRowsPerMapping; }
    QString fileName() const { return mFile ? mFile->fileName() : QString(); }

private:
    static constexpr int kBorderPixels = 23;

    std::shared_ptr<Mapping> mapNew(qint64 start, qint64 span)
    {
        const qint64 fileSize = this->totalBytes();
        start = qBound<qint64>(0, start, fileSize);
        const qint64 size = std::min(span, fileSize - start); // the last view is shorter
        auto mapping = std::make_shared<Mapping>(mRegion, start, size);
        mCache.insert(start, new std::shared_ptr<Mapping>(mapping), 1);
        return mapping;
    }

    std::unique_ptr<QTemporaryFile> mFile;
    std::shared_ptr<CgwBitmapMM_MMF_Region> mRegion;
    QHash<qint64, std::weak_ptr<Mapping>> mLiveMappings;
    QCache<qint64, std::shared_ptr<Mapping>> mCache{2};
    int mRowsPerMapping = 1;
};

template <class Pixel>
std::shared_ptr<CgwBitmapMM_Base<Pixel>> CgwBitmapMM_Base<Pixel>::create(const QSize& borderedSize)
{
    const quint64 bytes = quint64(borderedSize.width()) * quint64(borderedSize.height()) * sizeof(Pixel);
    const bool alwaysInMemory = borderedSize == QSize(47, 47) || borderedSize == QSize(302, 302);
    if (alwaysInMemory)
        gwAccountBitmapBytes(qint64(bytes));
    else if (!gwReserveBitmapBytes(bytes))
        return std::make_shared<CgwBitmapMM_MMF<Pixel>>(borderedSize);

    try {
        // Memory storage gives its bytes back to the account when it goes.
        return std::shared_ptr<CgwBitmapMM_Base<Pixel>>(new CgwBitmapMM_InMem<Pixel>(borderedSize),
                                                          [bytes](CgwBitmapMM_Base<Pixel>* storage) {
                                                              gwAccountBitmapBytes(-qint64(bytes));
                                                              delete storage;
                                                          });
    } catch (...) {
        gwAccountBitmapBytes(-qint64(bytes));
        throw;
    }
}
