#include "Sourcen/Image/gwBitmapMM_MMF.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>

CgwBitmapMM_MMF_Region::CgwBitmapMM_MMF_Region(int fd, const QString& fileName, qint64 bytes)
{
    void* address = mmap(nullptr, size_t(bytes), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    if (address == MAP_FAILED) {
        gwDebugString(QString::fromLocal8Bit(std::strerror(errno)));
        gwDebug("CgwBitmapMM_MMF_Mapping: Failed to allocate mapping for %s at offset %lu with size %lu.",
                qPrintable(fileName), 0ul, (unsigned long)bytes);
        throw kGwStorageAllocationFailed;
    }
    mStart = static_cast<uchar*>(address);
    mLength = size_t(bytes);
}

CgwBitmapMM_MMF_Region::~CgwBitmapMM_MMF_Region()
{
    munmap(mStart, mLength);
}

bool gwAllocateFileBlocks(int fd, qint64 bytes, QString* error)
{
    int result;
    do
        result = fallocate(fd, 0, 0, off_t(bytes));
    while (result != 0 && errno == EINTR);
    if (result == 0 || errno == EOPNOTSUPP)
        return true;
    *error = QString::fromLocal8Bit(std::strerror(errno));
    return false;
}
