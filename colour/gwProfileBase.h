#pragma once

#include <QByteArray>
#include <QMetaType>
#include <QString>

// An ICC profile as the suite knows it: a file path or a block of bytes. A
// value, copied freely; so far it only carries the profile, the colour
// engine's handle joins it with colour management.
class CgwProfileBase
{
public:
    CgwProfileBase() = default;
    virtual ~CgwProfileBase() = default;

    static CgwProfileBase fromFile(const QString& path)
    {
        CgwProfileBase p;
        p.mPath = path;
        return p;
    }

    virtual void clear()
    {
        mPath.clear();
        mBuffer.clear();
        mHasBuffer = false;
    }
    virtual bool isFileProfile() const { return !mPath.isEmpty() && !mHasBuffer; }
    virtual bool isBufferProfile() const { return mHasBuffer; }
    const QString& path() const { return mPath; }

    // A profile block from memory: its own length field (the first four
    // bytes, big-endian) cuts it when shorter than the data.
    virtual void setFromMemory(const unsigned char* bytes, qint64 size)
    {
        clear();
        if (!bytes || size < 128)
            return;
        const quint32 own = (quint32(bytes[0]) << 24) | (quint32(bytes[1]) << 16) | (quint32(bytes[2]) << 8) | bytes[3];
        mBuffer = QByteArray(reinterpret_cast<const char*>(bytes), int(qMin<qint64>(size, own)));
        mHasBuffer = true;
    }
    // Usable: bytes with the profile signature "acsp" at 36.
    virtual bool isValid() const { return mHasBuffer && mBuffer.size() >= 128 && mBuffer.mid(36, 4) == "acsp"; }
    // A profile a file format can carry: valid, and its bytes at hand.
    bool isEmbeddable() const { return isValid(); }
    // The profile's bytes, as a file format embeds them.
    QByteArray profileBytes() const { return mBuffer; }

    bool operator==(const CgwProfileBase& o) const
    {
        return mPath == o.mPath && mHasBuffer == o.mHasBuffer && mBuffer == o.mBuffer;
    }
    bool operator!=(const CgwProfileBase& o) const { return !(*this == o); }

protected:
    bool mHasBuffer = false;
    QString mPath;
    QByteArray mBuffer;
};

Q_DECLARE_METATYPE(CgwProfileBase)
