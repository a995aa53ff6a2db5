#pragma once

#include "imagefile/gwImageFileBase.h"

class CgwScannerBase;

// A scanner seen as an image file format (identifier 1, paths "scnr:..."),
// so that the code which loads images needs no special road for a scan.
// setParameter collects the request for the next scan; loadBitmapThread
// returns the bitmap at once and fills it from a CgwImageFileScanThread.
class CgwImageFileScan : public CgwImageFileBase
{
public:
    CgwImageFileScan() = default;
    explicit CgwImageFileScan(CgwScannerBase* scanner) : mScanner(scanner) {}
    ~CgwImageFileScan() override;

    void resetState() override { mInitialised = true; }
    void clearCropRect() override;
    CgwBitmapBase* loadPreview(const QString& path, qint64) override { return loadBitmap(path, 0); }
    CgwBitmapHead loadImageInformation(const QString& path, qint64 offset) override;
    CgwBitmapBase* loadBitmap(const QString& path, qint64 offset) override;
    CgwBitmapBase* loadBitmapThread(const QString& path, qint64 offset,
                                    const SgwLoadThreadRequest& request) override;
    bool saveBitmap(const QString& path, const CgwBitmapBase& bitmap) override;
    void setParameter(const CgwParameterSet& parameters) override;
    void getParameter(CgwParameterSet& parameters) const override;
    CgwImageFileBase* clone() const override;
    void attachScanner() override;
    bool scanQuery26() override;
    bool scanQuery27() override;
    bool scanQuery28() override;
    bool prepareBitmaps(const QString& path, CgwBitmapBase* bitmap, CgwBitmapBase* secondExposure,
                        CgwBitmapBase* irBitmap, bool initial) override;
    std::vector<std::string> fileExtensions() const override { return {""}; }
    bool isFormat(const QString& path, const char*) override { return path.startsWith(QLatin1String("scnr:")); }
    bool capability34() const override { return false; }
    bool capability35() const override { return false; }
    bool capability36() const override { return true; }
    bool supportsColorMode(int mode) const override { return mode == 3; }
    virtual bool newConnectedScanner();

    using CgwImageFileBase::loadBitmap;
    using CgwImageFileBase::loadBitmapThread;
    using CgwImageFileBase::loadImageInformation;
    using CgwImageFileBase::loadPreview;

    CgwScannerBase* scanner() const { return mScanner; }
    const CgwBitmapHead& request() const { return mBitmapInfo; }
    int activeScannerMode() const { return mActiveScannerMode; }

private:
    // The request, or the scanner's information when nothing was requested.
    CgwBitmapHead scanHead(const QString& path);
    // The head of the next scan; false when it has no area or no scanner will make it.
    bool scanReady(const QString& path, CgwBitmapHead& head);
    bool prepareWith(const CgwBitmapHead& head, CgwBitmapBase* bitmap, CgwBitmapBase* secondExposure,
                     CgwBitmapBase* irBitmap, bool initial);
    void mergeParameters(CgwBitmapBase* bitmap, double exposureFactor) const;
    static void warnNoScanner();

    CgwScannerBase* mScanner = nullptr; // not owned
    CgwBitmapHead mBitmapInfo;
    qint32 mActiveScannerMode = 0;
    CgwParameterSet mParameters;
};
