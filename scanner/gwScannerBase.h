#pragma once

#include "Sourcen/Image/gwBitmapHead.h"
#include "scanner/gwScannerInfo.h"

#include <QObject>
#include <vector>

class CgwBitmapBase;

// Defaults the host reads from a scanner; their meaning is the host's, the
// record travels unchanged.
struct CgwScannerDefaults {
    quint16 mValue0 = 0;
    quint8 mValue1 = 0;
    qint32 mValue2 = 0;
    qint32 mValue3 = 0;
    qint32 mValue4 = 0;
    qint64 mValue5 = 0;
    quint8 mValue6 = 0;
    qint32 mValue7 = 0;
    double mValue8 = 0.0;
    quint8 mValue9 = 0;
    qint32 mValue10 = 0;
    quint8 mValue11 = 0;
};

// The scanner as the host sees it. The host calls, in this order: connect the
// signals, setImageSource, getScannerInformation (whose last argument stores
// the active mode), startScan as often as wanted, delete.
class CgwScannerBase : public QObject
{
    Q_OBJECT

public:
    explicit CgwScannerBase(QObject* parent = nullptr);
    ~CgwScannerBase() override;

    // Virtual operations, in slot order behind those of QObject.
    virtual void disconnectScanner() = 0;
    virtual bool tryConnect() = 0;
    virtual bool isConnected() = 0;
    virtual CgwBitmapHead getScannerInformation(bool* abortFlag, int scannerMode, int activeMode) = 0;
    virtual bool startScan(CgwBitmapBase* bitmap, bool* abortFlag, CgwBitmapBase* secondExposure,
                           CgwBitmapBase* irBitmap) = 0;
    virtual bool supportsScanner(const CgwScannerInfo& info) = 0;
    virtual bool isScannerInUse(const CgwScannerInfo& info) = 0;
    virtual std::vector<CgwScannerInfo> filterSupportedScanners(std::vector<CgwScannerInfo> scanners) = 0;
    virtual std::vector<CgwScannerInfo> getScannerList() = 0;
    // The unnamed operations below are the host's hooks for real scanners.
    virtual bool queryFlag10();
    virtual bool queryFlag11();
    virtual bool setImageSource(const QString& path);
    virtual void setPreloadedBitmap(CgwBitmapBase* bitmap);
    virtual bool queryFlag14();
    virtual bool queryFlag15();
    virtual bool queryFlag16();
    virtual bool queryFlag17();
    virtual void operation18();
    virtual void operation19();
    virtual CgwScannerDefaults getScannerDefaults();
    virtual bool queryFlag21();
    virtual bool queryFlag22();
    virtual int queryInteger23();
    virtual bool queryFlag24();
    virtual bool queryFlag25();
    virtual bool queryFlag26();
    virtual bool queryFlag27();

Q_SIGNALS:
    void signalNewImageData(int percent, QString text);
    void signalUpdateThumbnailOverview();
    void signalConnectorWaitingStarted();
    void signalConnectorWaitingFinished(bool connected);

public Q_SLOTS:
    virtual void slotEmitProgress(int percent);

protected:
    // Waits for the connection through a CgwScannerConnector on the stack.
    bool connectWithWait(bool* abortFlag, double timeoutSeconds);
};
