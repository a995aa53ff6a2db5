#pragma once

#include "metadata/gwMemBufferT.h"

#include <QByteArray>
#include <QMetaType>
#include <QString>

#include <memory>

class CgwEngineProfile;

// An ICC profile as the suite knows it: a file path or a block of bytes,
// plus a handle of the colour engine that is opened on demand. A value,
// copied freely; copies share one open handle and the last one closes it.
//
// Everything outside the colour folder keeps profiles as plain values of
// this class (options, the bitmap head, queued signals), so the base carries
// all a reader of a profile needs: the handle holder and the facts taken
// from the header live here rather than in the engine binding, and a copy
// sliced off a CgwProfileICM2 loses nothing. The subclass only adds the
// building of new profiles in memory.
class CgwProfileBase
{
public:
    CgwProfileBase();
    CgwProfileBase(const CgwProfileBase& other);
    CgwProfileBase& operator=(const CgwProfileBase& other);
    virtual ~CgwProfileBase();

    // A profile named by its file, as the options keep it. The path stays
    // even when the file is not on this machine; the profile is then not
    // valid, and nothing is logged.
    static CgwProfileBase fromFile(const QString& path);

    virtual void clear();
    virtual bool isValid() const;
    virtual bool isFileProfile() const;
    virtual bool isBufferProfile() const;
    virtual qint64 bufferSize() const;
    // Checks a valid profile with the engine and takes its header facts and
    // name; a profile the engine refuses, or that is neither a source nor a
    // destination of a known colour space, is no longer valid.
    virtual void updateInfo();
    // Both descriptions are the same text; false for null.
    virtual bool isSameProfile(const CgwProfileBase* other) const;
    virtual void setFromBuffer(const CgwMemBufferT<unsigned char>& buffer);
    // Takes the block up to its own length field (the first four bytes,
    // big-endian) when that is shorter than `size`.
    virtual void setFromMemory(const unsigned char* bytes, qint64 size);
    // Errors 13 (cannot open), 14 (empty), 17 (out of memory) leave the
    // profile empty.
    virtual void setFromFile(const QString& path, bool loadIntoMemory);
    // The path as given, possibly with the scheme "file:".
    virtual const QString& path() const;
    // The path without the scheme, as the file system takes it.
    virtual QString filePath() const;
    virtual QString fileName() const;
    virtual QString baseName() const;
    // The text of the 'desc' element (true); else the file's base name, else
    // "Unnamed (maybe broken)" (false).
    virtual bool getDescription(QString& text) const;
    // Colour mode and roles from the open handle's header; the mode.
    virtual int readHeaderInfo();
    virtual bool canBeSource() const;
    virtual bool canBeDestination() const;
    // Error 15 without a valid profile.
    virtual bool openEngineProfile();
    virtual void closeEngineProfile();
    // Reads the file into the buffer, unless the bytes are there already.
    virtual bool loadBuffer();
    virtual const unsigned char* bufferData() const;
    virtual quint32 bufferLength() const;
    // Writes the bytes to `path` ("file:" optional) and becomes that file's
    // profile; true when it is.
    virtual bool bufferToFile(const QString& path);
    // Held free for a later operation, so that the table of virtual
    // operations keeps its order for subclasses.
    virtual void spare();

    // Valid, and its bytes can be had: from the buffer or the file.
    bool isEmbeddable() const;
    // The bytes a file format embeds: the buffer, or the file's contents.
    QByteArray profileBytes() const;
    // 0 unknown, 1 grey, 3 RGB, 4 CMY, 5 Lab, 6 CMYK.
    int colorMode() const { return mColorMode; }
    // The description found by the last updateInfo.
    const QString& name() const { return mName; }
    // The shared open handle; null while closed.
    std::shared_ptr<CgwEngineProfile> engineProfile() const { return mHandle; }

    bool operator==(const CgwProfileBase& other) const;
    bool operator!=(const CgwProfileBase& other) const { return !(*this == other); }

protected:
    // Copies the bytes as the profile's buffer, then checks the profile.
    void adoptBytes(const unsigned char* bytes, qint64 count);

    bool mValid = false;
    bool mHasBuffer = false;
    QString mPath;
    CgwMemBufferT<unsigned char> mBuffer;
    qint32 mColorMode = 0;
    bool mCanBeSource = false;
    bool mCanBeDestination = false;
    QString mName;
    std::shared_ptr<CgwEngineProfile> mHandle;

private:
    std::shared_ptr<CgwEngineProfile> openHandle(QString* error) const;
    QString displayPath() const;
};

Q_DECLARE_METATYPE(CgwProfileBase)
