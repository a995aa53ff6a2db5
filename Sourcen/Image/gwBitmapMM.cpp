#include "Sourcen/Image/gwBitmapMM.h"

#include "settings/gwFilterOptions.h"

#include <QDir>
#include <QMutex>

#include <sys/mman.h>

namespace {
QMutex sAccountMutex;
quint64 sAccountedBytes = 0;
} // namespace

quint64 gwAccountedBitmapBytes()
{
    QMutexLocker lock(&sAccountMutex);
    return sAccountedBytes;
}

void gwAccountBitmapBytes(qint64 delta)
{
    QMutexLocker lock(&sAccountMutex);
    sAccountedBytes = quint64(qint64(sAccountedBytes) + delta);
}

bool gwReserveBitmapBytes(quint64 bytes)
{
    const quint64 limit = quint64(qMax(0, CgwFilterOptions::instance().mmfRamLimit())) << 20;
    QMutexLocker lock(&sAccountMutex);
    if (limit < sAccountedBytes + bytes)
        return false;
    sAccountedBytes += bytes;
    return true;
}

QString gwBitmapTempFolder()
{
    const QString folder = CgwFilterOptions::instance().selectedTempPath();
    return QDir(folder).exists() && !folder.isEmpty() ? folder : QDir::rootPath();
}

void gwAdviseHugePages(void* block, size_t bytes)
{
    constexpr uintptr_t kHugePage = uintptr_t(2) << 20;
    const uintptr_t start = (reinterpret_cast<uintptr_t>(block) + kHugePage - 1) & ~(kHugePage - 1);
    const uintptr_t end = (reinterpret_cast<uintptr_t>(block) + bytes) & ~(kHugePage - 1);
    if (end > start)
        madvise(reinterpret_cast<void*>(start), end - start, MADV_HUGEPAGE);
}
