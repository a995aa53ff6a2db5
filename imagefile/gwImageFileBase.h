#pragma once

#include "Sourcen/Image/gwBitmapBase.h"
#include "Sourcen/Image/gwRectT.h"
#include "imagefile/gwImportProgress.h"
#include "settings/gwParameterSet.h"

#include <QString>

#include <string>
#include <vector>

class CgwFile;

// What a background load needs besides the file: who hears the progress and
// which bitmaps to fill.
struct SgwLoadThreadRequest {
    QObject* receiver = nullptr;
    CgwBitmapBase* target = nullptr;
    CgwBitmapBase* secondExposure = nullptr;
    CgwBitmapBase* irBitmap = nullptr;
    bool convertToRgb = false;
};

// The one interface through which a file becomes a bitmap and a head, and a
// bitmap a file. Short-lived: made for one operation or import.
class CgwImageFileBase
{
public:
    CgwImageFileBase();
    CgwImageFileBase(const CgwImageFileBase& other);
    CgwImageFileBase& operator=(const CgwImageFileBase&) = delete;

    // Virtual operations, in slot order.
    virtual ~CgwImageFileBase();
    virtual void resetState() = 0;
    virtual CgwBitmapBase* finishBitmap(CgwBitmapBase* bitmap);
    virtual void clearCropRect();
    virtual CgwImportProgress* progress() const { return mProgress; }
    virtual int irLocation(const QString& path);
    virtual bool hiRepxInfo(const QString& path, double resolution[2], int size[2]);
    virtual void setCropRect(const CgwRectT<int>& rect) { mCropRect = rect; }
    virtual CgwRectT<int> cropRect() const { return mCropRect; }
    virtual CgwBitmapBase* loadPreview(CgwFile* file, qint64 offset);
    virtual CgwBitmapBase* loadPreview(const QString& path, qint64 offset) = 0;
    virtual CgwBitmapHead loadImageInformation(CgwFile* file, qint64 offset);
    virtual CgwBitmapHead loadImageInformation(const QString& path, qint64 offset) = 0;
    virtual CgwBitmapBase* loadBitmap(CgwFile* file, qint64 offset);
    virtual CgwBitmapBase* loadBitmap(const QString& path, qint64 offset) = 0;
    virtual CgwBitmapBase* loadBitmapIR(CgwFile* file, qint64 offset);
    virtual CgwBitmapBase* loadBitmapIR(const QString& path, qint64 offset);
    virtual CgwBitmapBase* loadHiRePX(const QString& path, qint64 offset);
    virtual CgwBitmapBase* loadBitmapThread(CgwFile* file, qint64 offset, const SgwLoadThreadRequest& request);
    virtual CgwBitmapBase* loadBitmapThread(const QString& path, qint64 offset, const SgwLoadThreadRequest& request);
    virtual bool saveBitmap(const QString& path, const CgwBitmapBase& bitmap, const CgwBitmapBase* ir);
    virtual bool saveBitmap(const QString& path, const CgwBitmapBase& bitmap) = 0;
    virtual void setParameter(const CgwParameterSet& parameters);
    virtual void getParameter(CgwParameterSet& parameters) const;
    virtual CgwImageFileBase* clone() const = 0;
    virtual void attachScanner() {}
    virtual bool scanQuery26() { return false; }
    virtual bool scanQuery27() { return false; }
    virtual bool scanQuery28() { return false; }
    virtual bool prepareBitmaps(const QString& path, CgwBitmapBase* bitmap, CgwBitmapBase* secondExposure,
                                CgwBitmapBase* irBitmap, bool initial);
    virtual std::vector<std::string> fileExtensions() const = 0;
    // `header` is the file's first bytes, or null: then the format reads what it needs.
    virtual bool isFormat(const QString& path, const char* header) = 0;
    virtual bool checkFile(const QString& path);
    virtual bool capability33() const { return true; }
    virtual bool capability34() const { return true; }
    virtual bool capability35() const { return true; }
    virtual bool capability36() const { return false; }
    virtual bool supportsColorMode(int mode) const;
    virtual std::vector<std::string> libraryVersions() const { return {}; }

    void setCancelFlag(const bool* flag) { mCancelFlag = flag; }
    bool isCanceled() const;
    bool isInitialised() const { return mInitialised; }

    // "GW8_tmp", the process id and a counter, in the system's temporary folder.
    static QString temporaryFilePath();
    // "Product 8.2.1 r5" gives "8.2.1.r5"-like pieces: see the implementation.
    static QString creatorVersion(const QString& software);
    // Moves a finished temporary file onto the target location ("file:…").
    static bool moveToTarget(const QString& tempPath, const QString& targetUrl);
    // Whether a size read from a file may be allocated: each side 1 to 2^20
    // pixels, at most 2^32 pixels in all. Logs the refusal.
    static bool plausibleImageSize(const QSize& size, const char* reader);
    // A truncated file still gives what it holds, but data that would leave
    // more than this many of the declared pixels unpainted, even at its
    // coding's densest, is no image of that size: a few bytes must not ask
    // for gigabytes. Each reader bounds what its data can paint.
    static constexpr qint64 kMaxUnpaintedPixels = qint64(1) << 24;

protected:
    // The first bytes of `path` when the detection walk gave none.
    static QByteArray headerBytes(const QString& path, const char* header, int count);

    bool mInitialised = false;

private:
    CgwRectT<int> mCropRect;
    CgwImportProgress* mProgress;
    const bool* mCancelFlag = nullptr;
};

// Creates the image file object of one format.
class CgwImageFileFactoryBase
{
public:
    virtual ~CgwImageFileFactoryBase() = default;
    virtual CgwImageFileBase* createImageFile() = 0;
};

template <class T>
class CgwImageFileFactoryBaseT : public CgwImageFileFactoryBase
{
public:
    CgwImageFileBase* createImageFile() override { return new T; }
};
