#pragma once

#include "Sourcen/Image/gwBitmapMM.h"
#include "Sourcen/Image/gwBitmapMM_InMem.h"
#include "diagnostics/gwDebug.h"

#include <QCache>
#include <QHash>
#include <QTemporaryFile>

#include <cerrno>
#include <cstring>
#include <sys/mman.h>
#include <unistd.h>

// One view of a bitmap's temporary file. It stays mapped while a row view
// holds it, also after the cache has let it go.
template <class Pixel>
class CgwBitmapMM_MMF_Mapping
{
public:
    CgwBitmapMM_MMF_Mapping(int fd, const QString& fileName, qint64 offset, qint64 size)
        : mFileName(fileName), mOffset(offset), mSize(size)
    {
        // mmap wants a page-aligned offset; the view starts inside the first page.
        const qint64 page = sysconf(_SC_PAGESIZE);
        const qint64 aligned = offset / page * page;
        mMapLength = size_t(size + (offset - aligned));
        void* address = mmap(nullptr, mMapLength, PROT_READ | PROT_WRITE, MAP_SHARED, fd, off_t(aligned));
        if (address == MAP_FAILED) {
            gwDebugString(QString::fromLocal8Bit(std::strerror(errno)));
            gwDebug("CgwBitmapMM_MMF_Mapping: Failed to allocate mapping for %s at offset %lu with size %lu.",
                    qPrintable(fileName), (unsigned long)offset, (unsigned long)size);
            throw kGwStorageAllocationFailed;
        }
        mMapStart = static_cast<uchar*>(address);
        mBase = mMapStart + (offset - aligned);
    }

    ~CgwBitmapMM_MMF_Mapping()
    {
        if (!mBase)
            gwDebug("CgwBitmapMM_MMF_Mapping: There was no mapping to free in file %s at offset %lu size %lu.",
                    qPrintable(mFileName), (unsigned long)mOffset, (unsigned long)mSize);
        else
            munmap(mMapStart, mMapLength);
    }

    bool contains(qint64 offset) const { return offset >= mOffset && offset < mOffset + mSize; }
    uchar* base() const { return mBase; }
    qint64 offset() const { return mOffset; }

    CgwBitmapMM_MMF_Mapping(const CgwBitmapMM_MMF_Mapping&) = delete;
    CgwBitmapMM_MMF_Mapping& operator=(const CgwBitmapMM_MMF_Mapping&) = delete;

private:
    QString mFileName;
    qint64 mOffset;
    qint64 mSize;
    uchar* mMapStart = nullptr;
    size_t mMapLength = 0;
    uchar* mBase = nullptr;
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
        if (!mFile->open() || !mFile->resize(this->totalBytes())) {
            gwDebug("CgwBitmapMM_MMF: Error: could not create the temporary file %s of %lld bytes: %s",
                    qPrintable(mFile->fileTemplate()), (long long)this->totalBytes(), qPrintable(mFile->errorString()));
            throw kGwStorageAllocationFailed;
        }
        // Qt keeps a temporary file nameless until its name is asked for;
        // the storage file is to be seen in the temporary folder.
        mFile->fileName();
    }

    ~CgwBitmapMM_MMF() override
    {
        mCache.clear();
        bool held = false;
        for (const auto& weak : qAsConst(mLiveMappings))
            held = held || !weak.expired();
        // A view still held keeps its pages; the file's name goes in any case.
        if (!held)
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
        auto mapping = std::make_shared<Mapping>(int(mFile->handle()), mFile->fileName(), start, size);
        mCache.insert(start, new std::shared_ptr<Mapping>(mapping), 1);
        return mapping;
    }

    std::unique_ptr<QTemporaryFile> mFile;
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
