#include "imagefile/gwImageFileScanThread.h"

#include "Sourcen/Image/gwBitmapBase.h"
#include "Sourcen/Image/gwPixelT.h"
#include "diagnostics/gwLogFile.h"
#include "scanner/gwScannerBase.h"
#include "settings/gwParamKeys.h"

#include <QCoreApplication>

namespace {
int bitsOfPixelType(int pixelType)
{
    int bits = 0;
    gwDispatchPixelType(pixelType, [&](auto pixel) { bits = gwPixelBitDepth<decltype(pixel)>(); });
    return bits;
}

void logBitmap(const CgwBitmapBase& bitmap, const char* kind)
{
    CgwLogFile& log = CgwLogFile::instance();
    const CgwQString offset = bitmap.parameters().value(GgwParam_ImageOffset);
    const QSize size = bitmap.head().mScanSize;
    log.writeMessage(QStringLiteral("Resolution of %1 in dpi: %2 x %3")
                         .arg(QLatin1String(kind))
                         .arg(bitmap.resolution().x())
                         .arg(bitmap.resolution().y()));
    log.writeMessage(QStringLiteral("Offset of %1 in pixels: %2, %3")
                         .arg(QLatin1String(kind))
                         .arg(CgwParameterSet::doubleFromValue(offset, 0))
                         .arg(CgwParameterSet::doubleFromValue(offset, 1)));
    log.writeMessage(QStringLiteral("Wanted size of %1 in pixels: %2 x %3")
                         .arg(QLatin1String(kind))
                         .arg(size.width())
                         .arg(size.height()));
    log.writeMessage(
        QStringLiteral("Bitdepth of %1: %2").arg(QLatin1String(kind)).arg(bitsOfPixelType(bitmap.pixelType())));
}
} // namespace

CgwImageFileScanThread::CgwImageFileScanThread(CgwScannerBase* scanner, CgwBitmapBase* bitmap,
                                               CgwBitmapBase* secondExposure, CgwBitmapBase* irBitmap,
                                               bool ownsScanner)
    : mScanner(scanner), mBitmap(bitmap), mSecondExposure(secondExposure), mIrBitmap(irBitmap),
      mOwnsScanner(ownsScanner)
{
}

CgwImageFileScanThread::~CgwImageFileScanThread()
{
    mAbortRequested = true;
    while (!wait(100))
        QCoreApplication::processEvents();
    if (mOwnsScanner)
        delete mScanner;
}

void CgwImageFileScanThread::slotDoExitThread()
{
    mAbortRequested = true;
}

void CgwImageFileScanThread::run()
{
    setPriority(QThread::TimeCriticalPriority);
    if (!mScanner)
        return;
    // By name: the scanner may come from a plug-in with its own copy of the class.
    connect(mScanner, SIGNAL(signalNewImageData(int, QString)), this, SIGNAL(signalNewImageData(int, QString)),
            Qt::DirectConnection);
    logStartScan();
    const bool ok = mScanner->startScan(mBitmap, &mAbortRequested, mSecondExposure, mIrBitmap);
    if (mOwnsScanner)
        delete mScanner;
    else
        disconnect(mScanner, SIGNAL(signalNewImageData(int, QString)), this,
                   SIGNAL(signalNewImageData(int, QString)));
    mScanner = nullptr;
    if (ok)
        emit signalNewImageData(mAbortRequested ? 103 : 100, QString());
}

void CgwImageFileScanThread::logStartScan() const
{
    const QString dashes(73, QLatin1Char('-'));
    CgwLogFile& log = CgwLogFile::instance();
    log.writeMessage(dashes);
    log.writeMessage(QStringLiteral("*** Log of scan ***"));
    logBitmap(*mBitmap, "normal exposure-scan");
    const CgwParameterSet parameters = mBitmap->parameters();
    double factor = parameters.doubleValue(GgwParam_MultiExposureFactor, 0.0);
    if (factor < 0.0 || factor > 4.0) {
        log.writeMessage(QStringLiteral(
            "GgwParam_Warning: CgwImageFileScanThread::logStartScan error: factorME input not valid!"));
        factor = 0.0;
    }
    if (mSecondExposure && factor > 0.0)
        logBitmap(*mSecondExposure, "high exposure-scan");
    if (mIrBitmap && parameters.boolValue(GgwParam_InfraredScan, false))
        logBitmap(*mIrBitmap, "infrared-scan");
    log.writeMessage(dashes);
}
