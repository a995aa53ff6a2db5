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
