#include "files/gwFile.h"

#include <QtEndian>

#include <cstring>

namespace {
char sDefaultByteOrder[2] = {'I', 'I'};
}

CgwFile::CgwFile()
{
    std::memcpy(mByteOrder, sDefaultByteOrder, 2);
}

CgwFile::~CgwFile() = default;

void CgwFile::reset()
{
    std::memcpy(mByteOrder, sDefaultByteOrder, 2);
    mValue1 = mValue2 = 0;
    mFlag = false;
    mPath.clear();
    mValue64 = 0;
}

qint64 CgwFile::seek(qint64 offset, int origin)
{
    QIODevice* d = device();
    if (!d)
        return 0;
    const qint64 length = d->size();
    qint64 target = offset;
    if (origin == 1)
        target = d->pos() + offset;
    else if (origin == 2)
        target = offset < 0 ? length + offset : length;
    target = qBound<qint64>(0, target, length);
    d->seek(target);
    return target;
}

bool CgwFile::open(QIODevice::OpenMode mode)
{
    return device() && device()->open(mode);
}

void CgwFile::close()
{
    if (device())
        device()->close();
}

bool CgwFile::isOpen() const
{
    return constDevice() && constDevice()->isOpen();
}

qint64 CgwFile::read(char* data, qint64 maxSize)
{
    QIODevice* d = device();
    if (!d || !d->isReadable())
        return -1;
    return d->read(data, maxSize);
}

QByteArray CgwFile::readAll()
{
    QIODevice* d = device();
    return d && d->isReadable() ? d->readAll() : QByteArray();
}

qint64 CgwFile::write(const QByteArray& data)
{
    return write(data.constData(), data.size());
}

qint64 CgwFile::write(const char* data, qint64 size)
{
    QIODevice* d = device();
    if (!d || !d->isWritable())
        return -1;
    return d->write(data, size);
}

qint64 CgwFile::pos() const
{
    return constDevice() ? constDevice()->pos() : 0;
}

qint64 CgwFile::size() const
{
    return constDevice() ? constDevice()->size() : 0;
}

bool CgwFile::flush()
{
    return true;
}

bool CgwFile::atEnd() const
{
    return !constDevice() || constDevice()->atEnd();
}

quint16 CgwFile::byteOrder() const
{
    return quint16((quint8(mByteOrder[0]) << 8) | quint8(mByteOrder[1]));
}

void CgwFile::setByteOrder(quint16 order)
{
    mByteOrder[0] = char(order >> 8);
    mByteOrder[1] = char(order & 0xFF);
}

void CgwFile::setByteOrder(const char* order)
{
    if (order && std::strlen(order) >= 2)
        std::memcpy(mByteOrder, order, 2);
}

void CgwFile::setDefaultByteOrder(const char* order)
{
    if (order && std::strlen(order) >= 2)
        std::memcpy(sDefaultByteOrder, order, 2);
}

template <typename T>
T CgwFile::readNumber(bool* ok)
{
    uchar bytes[sizeof(T)];
    const bool complete = read(reinterpret_cast<char*>(bytes), qint64(sizeof(T))) == qint64(sizeof(T));
    if (ok)
        *ok = complete;
    if (!complete)
        return T(0);
    return byteOrder() == kBigEndian ? qFromBigEndian<T>(bytes) : qFromLittleEndian<T>(bytes);
}

template <typename T>
bool CgwFile::writeNumber(T value)
{
    uchar bytes[sizeof(T)];
    if (byteOrder() == kBigEndian)
        qToBigEndian<T>(value, bytes);
    else
        qToLittleEndian<T>(value, bytes);
    return write(reinterpret_cast<const char*>(bytes), qint64(sizeof(T))) == qint64(sizeof(T));
}

quint8 CgwFile::readUInt8(bool* ok) { return readNumber<quint8>(ok); }
quint16 CgwFile::readUInt16(bool* ok) { return readNumber<quint16>(ok); }
quint32 CgwFile::readUInt32(bool* ok) { return readNumber<quint32>(ok); }
quint64 CgwFile::readUInt64(bool* ok) { return readNumber<quint64>(ok); }
bool CgwFile::writeUInt8(quint8 value) { return writeNumber(value); }
bool CgwFile::writeUInt16(quint16 value) { return writeNumber(value); }
bool CgwFile::writeUInt32(quint32 value) { return writeNumber(value); }
bool CgwFile::writeUInt64(quint64 value) { return writeNumber(value); }

CgwFileFS::CgwFileFS(const QString& path)
{
    setPath(path);
    setFileName(path);
}

CgwFileBuffer::CgwFileBuffer(const QByteArray& data)
{
    setData(data);
}

CgwFileSD::CgwFileSD(const QString& path)
{
    setPath(path);
}
