#include "imagefile/gwImageFileScan.h"

#include "Sourcen/Image/gwBitmapT.h"
#include "Sourcen/Image/gwColorMode.h"
#include "diagnostics/gwDebug.h"
#include "diagnostics/gwLogFile.h"
#include "imagefile/gwImageFileScanThread.h"
#include "scanner/gwScannerBase.h"
#include "settings/gwParamKeys.h"

#include <memory>

namespace {
CgwBitmapBase* newBitmapOfType(int pixelType)
{
    CgwBitmapBase* bitmap = nullptr;
    gwDispatchPixelType(pixelType, [&](auto pixel) { bitmap = new CgwBitmapT<decltype(pixel)>(); });
    return bitmap;
}

// The pixel type a scan into a new bitmap gets; -1 when none fits.
int pixelTypeForScan(int colorMode, int bitDepth, bool eightBitColour)
{
    if (colorMode == EgwColorModeGrey) {
        if (bitDepth == 1 || bitDepth == 8)
            return 1;
        return bitDepth == 16 ? 5 : -1;
    }
    if (colorMode == EgwColorModeRGB)
        return eightBitColour && bitDepth == 8 ? 0 : 4;
    return -1;
}
} // namespace

CgwImageFileScan::~CgwImageFileScan()
{
    resetState();
}

void CgwImageFileScan::warnNoScanner()
{
    gwDebugString(QStringLiteral("CgwImageFileScan::newConnectedScanner : Warning: Obsolete method. Please use "
                                 "'tryToSetScanner' instead."));
}

void CgwImageFileScan::clearCropRect()
{
    CgwImageFileBase::clearCropRect();
    if (mScanner)
        mScanner->disconnectScanner();
    mScanner = nullptr;
    mBitmapInfo = CgwBitmapHead();
    mBitmapInfo.setLegalBottom(-1);
}

CgwBitmapHead CgwImageFileScan::loadImageInformation(const QString&, qint64 offset)
{
    // The offset stands where the scanner takes the mode to keep active.
    if (!mScanner)
        return CgwBitmapHead();
    return mScanner->getScannerInformation(nullptr, mActiveScannerMode, int(offset));
}

CgwBitmapHead CgwImageFileScan::scanHead(const QString& path)
{
    return mBitmapInfo.isEmpty() ? loadImageInformation(path, 0) : mBitmapInfo;
}

bool CgwImageFileScan::scanReady(const QString& path, CgwBitmapHead& head)
{
    head = scanHead(path);
    if (head.mSize.isEmpty())
        return false;
    if (!mScanner)
        warnNoScanner();
    return mScanner != nullptr;
}

CgwBitmapBase* CgwImageFileScan::loadBitmap(const QString& path, qint64)
{
    CgwBitmapHead head;
    if (!scanReady(path, head))
        return nullptr;
    const int mode = head.mChannels == 1 ? int(EgwColorModeGrey) : head.mColorMode;
    const int type = pixelTypeForScan(mode, head.mBitDepth, false);
    std::unique_ptr<CgwBitmapBase> bitmap(newBitmapOfType(type));
    if (!bitmap || !prepareWith(head, bitmap.get(), nullptr, nullptr, true)
        || !mScanner->startScan(bitmap.get(), nullptr, nullptr, nullptr)) {
        CgwLogFile::instance().reportError(5);
        return nullptr;
    }
    return bitmap.release();
}

CgwBitmapBase* CgwImageFileScan::loadBitmapThread(const QString& path, qint64, const SgwLoadThreadRequest& request)
{
    CgwBitmapHead head;
    if (!scanReady(path, head))
        return nullptr;
    std::unique_ptr<CgwBitmapBase> created;
    CgwBitmapBase* bitmap = request.target;
    if (!bitmap) {
        const int mode = request.convertToRgb ? int(EgwColorModeRGB) : head.mColorMode;
        // The histogram of the original wants the full depth whatever the file has.
        const bool histogram = request.receiver
                               && qstrcmp(request.receiver->metaObject()->className(),
                                          "CgwProcessOriginalHistogramData") == 0;
        created.reset(newBitmapOfType(pixelTypeForScan(mode, head.mBitDepth, !histogram)));
        bitmap = created.get();
        if (!bitmap)
            return nullptr;
    }
    if (!prepareWith(head, bitmap, request.secondExposure, request.irBitmap, true))
        return nullptr;

    auto* thread = new CgwImageFileScanThread(mScanner, bitmap, request.secondExposure, request.irBitmap);
    if (request.receiver) {
        if (request.receiver->thread() != thread->thread())
            thread->moveToThread(request.receiver->thread());
        const bool connected =
            QObject::connect(thread, SIGNAL(signalNewImageData(int, QString)), request.receiver,
                             SLOT(slotNewImageData(int, QString)), Qt::QueuedConnection)
            && QObject::connect(request.receiver, SIGNAL(signalStopBitmapLoadingThreads()), thread,
                                SLOT(slotDoExitThread()), Qt::DirectConnection);
        if (!connected) {
            delete thread;
            CgwLogFile::instance().reportError(26);
            return nullptr;
        }
    }
    // The bitmap owns the thread, so the thread lives as long as the pixels it fills.
    bitmap->setCompanion(thread);
    thread->start(QThread::InheritPriority);
    created.release();
    return bitmap;
}

bool CgwImageFileScan::saveBitmap(const QString&, const CgwBitmapBase&)
{
    gwDebugString(QStringLiteral("CgwImageFileScan::saveBitmap : Error: A scanner cannot store images."));
    return false;
}

bool CgwImageFileScan::prepareBitmaps(const QString& path, CgwBitmapBase* bitmap, CgwBitmapBase* secondExposure,
                                      CgwBitmapBase* irBitmap, bool initial)
{
    return prepareWith(scanHead(path), bitmap, secondExposure, irBitmap, initial);
}

void CgwImageFileScan::mergeParameters(CgwBitmapBase* bitmap, double exposureFactor) const
{
    CgwParameterSet parameters = bitmap->parameters();
    for (auto it = mParameters.begin(); it != mParameters.end(); ++it)
        parameters.setValue(it.key().toQString(), it.value());
    if (exposureFactor >= 0.0)
        parameters.setDouble(GgwParam_MultiExposureFactor, exposureFactor);
    bitmap->setParameters(parameters);
}

bool CgwImageFileScan::prepareWith(const CgwBitmapHead& head, CgwBitmapBase* bitmap, CgwBitmapBase* secondExposure,
                                   CgwBitmapBase* irBitmap, bool initial)
{
    if (!bitmap)
        return false;
    bitmap->setScanSize(head.mSize);
    bitmap->setColorMode(head.mColorMode);
    bitmap->setScannerMode(head.mScannerMode);
    if (initial) {
        bitmap->setLegalRectBottom(0);
        bitmap->setResolution(head.mResolution);
    }
    if ((mParameters.doubleValue(GgwParam_MultiExposureFactor, 0.0) > 0.0 && !secondExposure)
        || (mParameters.boolValue(GgwParam_InfraredScan, false) && !irBitmap))
        return false;
    mergeParameters(bitmap, -1.0);
    if (secondExposure) {
        mergeParameters(secondExposure, -1.0);
        secondExposure->setGamma(head.mGamma);
        secondExposure->setLegalRectBottom(0);
        secondExposure->setResolution(head.mResolution);
        secondExposure->setScannerMode(head.mScannerMode);
        secondExposure->setColorMode(head.mColorMode);
        secondExposure->setScanSize(head.mSize);
    }
    if (irBitmap) {
        mergeParameters(irBitmap, 1.0);
        irBitmap->setGamma(head.mGamma);
        if (initial) {
            irBitmap->setLegalRectBottom(0);
            irBitmap->setResolution(head.mResolution);
        }
        irBitmap->setScannerMode(head.mScannerMode);
        irBitmap->setColorMode(EgwColorModeGrey);
        irBitmap->setScanSize(head.mSize);
    }
    return true;
}
