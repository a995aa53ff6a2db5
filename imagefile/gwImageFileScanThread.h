#pragma once

#include <QString>
#include <QThread>

class CgwBitmapBase;
class CgwScannerBase;

// Runs one scan in the background. The bitmap it fills owns it, as its
// companion; the receiver hears the progress through queued signals:
// 0 to 99 progress, 100 finished, 103 aborted, 104 failed, 105 the infrared
// pass begins.
class CgwImageFileScanThread : public QThread
{
    Q_OBJECT

public:
    CgwImageFileScanThread(CgwScannerBase* scanner, CgwBitmapBase* bitmap, CgwBitmapBase* secondExposure,
                           CgwBitmapBase* irBitmap, bool ownsScanner = false);
    // Asks the scan to stop and waits for it, serving queued signals meanwhile.
    ~CgwImageFileScanThread() override;

    bool abortRequested() const { return mAbortRequested; }

Q_SIGNALS:
    void signalNewImageData(int percent, QString text);

public Q_SLOTS:
    void slotDoExitThread();

protected:
    void run() override;

private:
    void logStartScan() const;

    CgwScannerBase* mScanner; // owned when mOwnsScanner
    CgwBitmapBase* mBitmap;
    CgwBitmapBase* mSecondExposure;
    CgwBitmapBase* mIrBitmap;
    // Written by the host's side, polled by the scanner and the loaders as a
    // plain flag, the way every abort flag of the system is.
    bool mAbortRequested = false;
    bool mOwnsScanner;
};
