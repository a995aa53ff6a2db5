#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QDateTime>
#include <QFile>
#include <QString>

// What readers and writers work on: a real file, a buffer, a database blob
// or a scanner source, handed out by a location for a path with a scheme.
// Numbers are read and written in the byte order set on the file.
class CgwFile
{
public:
    static constexpr quint16 kLittleEndian = 0x4949; // "II"
    static constexpr quint16 kBigEndian = 0x4D4D;    // "MM"

    CgwFile();
    virtual ~CgwFile();

    virtual void reset();
    virtual QIODevice* device() = 0;
    // Origin 0 start, 1 current, 2 end; the position is held to 0 and the size.
    virtual qint64 seek(qint64 offset, int origin);
    virtual bool open(QIODevice::OpenMode mode);
    virtual void close();
    virtual bool isOpen() const;
    virtual qint64 read(char* data, qint64 maxSize);
    virtual QByteArray readAll();
    virtual qint64 write(const QByteArray& data);
    virtual qint64 write(const char* data, qint64 size);
    virtual qint64 pos() const;
    virtual qint64 size() const;
    virtual bool flush();
    virtual bool atEnd() const;

    qint64 tell() const { return pos(); }
    const QString& path() const { return mPath; }
    void setPath(const QString& path) { mPath = path; }

    quint16 byteOrder() const;
    void setByteOrder(quint16 order);
    void setByteOrder(const char* order); // "II" or "MM"
    static void setDefaultByteOrder(const char* order);

    // A short read leaves `ok` false and the value 0.
    quint8 readUInt8(bool* ok = nullptr);
    quint16 readUInt16(bool* ok = nullptr);
    quint32 readUInt32(bool* ok = nullptr);
    quint64 readUInt64(bool* ok = nullptr);
    bool writeUInt8(quint8 value);
    bool writeUInt16(quint16 value);
    bool writeUInt32(quint32 value);
    bool writeUInt64(quint64 value);

protected:
    const QIODevice* constDevice() const { return const_cast<CgwFile*>(this)->device(); }

private:
    template <typename T>
    T readNumber(bool* ok);
    template <typename T>
    bool writeNumber(T value);

    char mByteOrder[2];
    int mValue1 = 0;
    int mValue2 = 0;
    bool mFlag = false;
    QString mPath;
    qint64 mValue64 = 0;
};

// A CgwFile that is also the Qt device it names.
template <class Device>
class CgwFileT : public CgwFile, public Device
{
public:
    CgwFileT() = default;

    QIODevice* device() override { return this; }
    bool open(QIODevice::OpenMode mode) override { return Device::open(mode); }
    void close() override { Device::close(); }
    bool isOpen() const override { return Device::isOpen(); }
    qint64 pos() const override { return Device::pos(); }
    qint64 size() const override { return Device::size(); }
    bool atEnd() const override { return Device::atEnd(); }
    // Only the disk file flushes.
    bool flush() override { return true; }
    using CgwFile::read;
    using CgwFile::readAll;
    using CgwFile::seek;
    using CgwFile::write;
};

// A file on disk.
class CgwFileFS : public CgwFileT<QFile>
{
public:
    explicit CgwFileFS(const QString& path);
    bool flush() override { return QFile::flush(); }
};

// A file in memory.
class CgwFileBuffer : public CgwFileT<QBuffer>
{
public:
    explicit CgwFileBuffer(const QByteArray& data = QByteArray());
};

// The null file of the scanner location: it holds its path and opens nothing.
class CgwFileSD : public CgwFile
{
public:
    explicit CgwFileSD(const QString& path);
    QIODevice* device() override { return nullptr; }
    qint64 seek(qint64, int) override { return 0; }
    bool open(QIODevice::OpenMode) override { return false; }
    void close() override {}
    bool isOpen() const override { return false; }
    qint64 read(char*, qint64) override { return -1; }
    QByteArray readAll() override { return QByteArray(); }
    qint64 write(const QByteArray&) override { return -1; }
    qint64 write(const char*, qint64) override { return -1; }
    qint64 pos() const override { return 0; }
    qint64 size() const override { return 0; }
    bool flush() override { return false; }
    bool atEnd() const override { return true; }
};

// One entry of a location.
struct SgwFileInfo {
    QString name;
    bool isFolder = false;
    QDateTime date;
    qint64 size = 0;
    bool flag1 = false;
    bool flag2 = false;
};
