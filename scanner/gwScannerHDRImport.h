#pragma once

#include "scanner/gwScannerBase.h"

#include <QString>

class CgwImageFileBase;

// The scanner the plug-in offers: a file stands in for the frame. It claims
// the table row "HDR Atelier" only while it works, reports the file's
// properties as those of a scanner and "scans" by loading the file into the
// host's bitmap. Nothing is thrown to the host: every failure is a log line
// and a false result.
class CgwScannerHDRImport : public CgwScannerBase
{
    Q_OBJECT

public:
    explicit CgwScannerHDRImport(const CgwScannerInfo& info);
    ~CgwScannerHDRImport() override;

    void disconnectScanner() override;
    bool tryConnect() override;
    bool isConnected() override { return mScannerIndex >= 0; }
    CgwBitmapHead getScannerInformation(bool* abortFlag, int scannerMode, int activeMode) override;
    bool startScan(CgwBitmapBase* bitmap, bool* abortFlag, CgwBitmapBase* secondExposure,
                   CgwBitmapBase* irBitmap) override;
    bool supportsScanner(const CgwScannerInfo& info) override;
    bool isScannerInUse(const CgwScannerInfo& info) override;
    std::vector<CgwScannerInfo> filterSupportedScanners(std::vector<CgwScannerInfo> scanners) override;
    std::vector<CgwScannerInfo> getScannerList() override;
    bool setImageSource(const QString& path) override;
    void setPreloadedBitmap(CgwBitmapBase* bitmap) override;

    QString imageSource() const { return mImageSource; }

    // The mode the last getScannerInformation stored; scans run only for 17 and 18.
    static int activeScannerMode();

    // The picture scanned when no file is given, a resource of the plug-in.
    static const QString kStandardSource;

public Q_SLOTS:
    void slotEmitProgress(int percent) override;

private:
    // Takes table row `row` under the write lock; the row or -1.
    int connectTo(int row);
    CgwBitmapHead getScannerInformationHDRImport(int scannerMode);
    bool runScan(CgwBitmapBase* bitmap, bool* flag, CgwBitmapBase* irBitmap);
    bool scanInfrared(CgwBitmapBase* irBitmap, bool* flag);
    bool startScanHDRImport(CgwBitmapBase* bitmap, bool* abortFlag, bool isIR);
    CgwBitmapBase* loadFromSource(bool isIR, bool isHiRePX);
    static bool prepareScanBitmap(CgwBitmapBase* bitmap);
    static void applyHdrGamma(CgwBitmapBase* bitmap);

    QString mImageSource;
    CgwImageFileBase* mImageFile = nullptr;       // owned
    CgwBitmapBase* mPreloadedBitmap = nullptr;    // owned
    int mScannerIndex = -1; // -1 not connected, -2 made without a scanner
    int mRequestedIndex = -2;
};
