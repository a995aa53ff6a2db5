// The scan of the HDR import scanner: the host's bitmap is prepared from its
// own head, the file is loaded whole and copied across, and an HDR file's
// gamma is taken back to 1.0.

#include "scanner/gwScannerHDRImport.h"

#include "Sourcen/Image/gwBitmapBase.h"
#include "Sourcen/Image/gwColorMode.h"
#include "diagnostics/gwDebug.h"
#include "imagefile/gwImageFileBase.h"
#include "processing/gwFilterGamma.h"
#include "settings/gwParamKeys.h"

#include <QFileInfo>

#include <exception>
#include <memory>

namespace {
void logLine(const char* text)
{
    gwDebugString(QString::fromLatin1(text));
}
} // namespace

bool CgwScannerHDRImport::startScan(CgwBitmapBase* bitmap, bool* abortFlag, CgwBitmapBase* secondExposure,
                                    CgwBitmapBase* irBitmap)
{
    if (secondExposure)
        logLine("CgwScannerHDRImport::startScan : Warning: Multi-exposure not supported.");
    bool result = false;
    if (connectWithWait(abortFlag, 0.0)) {
        bool ownFlag = false;
        bool* flag = abortFlag ? abortFlag : &ownFlag;
        // The host must never see an exception: a reader's, the storage's
        // 4710/4711 or a failed allocation all end as a failed scan.
        try {
            result = runScan(bitmap, flag, irBitmap);
        } catch (const std::exception& e) {
            gwDebugString(
                QStringLiteral("CgwScannerHDRImport::startScan: Error: %1").arg(QString::fromLocal8Bit(e.what())));
        } catch (...) {
            logLine("CgwScannerHDRImport::startScan: Error: The scan was ended by an exception!");
        }
    } else {
        if (abortFlag && *abortFlag)
            return true;
        logLine("CgwScannerHDRImport::startScan: Error: Connection attempt failed!");
    }
    disconnectScanner();
    if (!result && abortFlag && !*abortFlag)
        emit signalNewImageData(104, QStringLiteral("Error from image loader"));
    return result;
}

bool CgwScannerHDRImport::runScan(CgwBitmapBase* bitmap, bool* flag, CgwBitmapBase* irBitmap)
{
    if (*flag)
        return true;
    if (!bitmap) {
        logLine("CgwScannerHDRImport::startScan: Error: No bitmap given!");
        return false;
    }
    if (bitmap->isInitialized()) {
        logLine("CgwScannerHDRImport::startScan: Error: Given bitmap is already initialized!");
        return false;
    }
    const bool infrared = bitmap->parameters().boolValue(GgwParam_InfraredScan, false);
    if (!prepareScanBitmap(bitmap))
        return false;
    if (!startScanHDRImport(bitmap, flag, false)) {
        logLine("CgwScannerHDRImport::startScan: Error: Exposure One Scan failed!");
        return false;
    }
    if (!infrared || *flag)
        return true;
    return scanInfrared(irBitmap, flag);
}

bool CgwScannerHDRImport::scanInfrared(CgwBitmapBase* irBitmap, bool* flag)
{
    emit signalNewImageData(105, QString());
    if (!irBitmap || irBitmap->pixelType() != 5) {
        logLine("CgwScannerHDRImport::startScan: Error: IR Scan Bitmap is not of Type CgwPixelGrey16Type!");
        return false;
    }
    if (irBitmap->isInitialized()) {
        logLine("CgwScannerHDRImport::startScan: Error: inOutBmpIrPtr already initialized!");
        return false;
    }
    if (!prepareScanBitmap(irBitmap))
        return false;
    if (!startScanHDRImport(irBitmap, flag, true)) {
        logLine("CgwScannerHDRImport::startScan: Error: IR Scan failed!");
        return false;
    }
    return true;
}

// Gives the host's empty bitmap pixels of the size and mode its head asks for,
// keeping its type, its companion and its metadata.
bool CgwScannerHDRImport::prepareScanBitmap(CgwBitmapBase* bitmap)
{
    const CgwBitmapHead head = bitmap->head();
    std::unique_ptr<CgwBitmapBase> temp(bitmap->createEmptyCopy());
    if (!temp->createBitmap(head.mScanSize, head.mColorMode, 0)) {
        logLine("CgwScannerHDRImport::startScan: Error: Could not create bitmap!");
        return false;
    }
    temp->setLegalRectBottom(0);
    temp->setResolution(head.mResolution);
    temp->setCompanion(bitmap->takeCompanion());
    temp->setScannerMode(head.mScannerMode);
    bitmap->swap(*temp);
    bitmap->setScanSize(QSize(0, 0));
    return true;
}

bool CgwScannerHDRImport::startScanHDRImport(CgwBitmapBase* bitmap, bool* abortFlag, bool isIR)
{
    if (!QFileInfo(mImageSource.mid(5)).exists()) {
        gwDebug("L%i Error: Filename does not exist", 659);
        return false;
    }
    const CgwParameterSet parameters = bitmap->parameters();
    const int active = int(activeScannerMode() * 0.5 + 0.5);
    const bool isHiRePX = parameters.boolValue(GgwParam_IsHiRePX, false);
    if (bitmap->scannerMode() != 9 || active != 9) {
        logLine("CgwScannerHDRImport::startScanHDRImport : Error: Unsupported scanner mode!");
        return false;
    }
    getScannerInformationHDRImport(0);
    if (!mImageFile)
        return true; // no format knows the file: the bitmap stays as prepared

    const CgwQString offset = parameters.value(GgwParam_ImageOffset);
    const int x = int(CgwParameterSet::doubleFromValue(offset, 0));
    const int y = int(CgwParameterSet::doubleFromValue(offset, 1));
    const QSize size = bitmap->size();
    mImageFile->setCropRect(CgwRectT<int>(x, y, x + size.width(), y + size.height()).normalized());
    mImageFile->setCancelFlag(abortFlag);
    // Direct: the loader runs on the scanning thread, and so must the signal.
    connect(mImageFile->progress(), &CgwImportProgress::signalNewImageData, this,
            &CgwScannerHDRImport::slotEmitProgress, Qt::ConnectionType(Qt::DirectConnection | Qt::UniqueConnection));

    std::unique_ptr<CgwBitmapBase> loaded(loadFromSource(isIR, isHiRePX));
    if (!loaded) {
        logLine("CgwScannerHDRImport::startScanHDRImport: Error: Could not load image!");
        return false;
    }
    bitmap->setMakerNote(loaded->makerNote());
    bitmap->setExif(loaded->exif());
    bitmap->setIptc(loaded->iptc());
    if (loaded->gamma() != 0.0f)
        bitmap->setGamma(loaded->gamma());
    bitmap->setResolution(loaded->resolution());
    bitmap->setParameters(loaded->parameters());
    // The loaded bitmap goes away next: where it matches, its pixels move
    // across instead of being copied, which halves the scan's peak memory.
    if (!bitmap->exchangePixels(*loaded))
        bitmap->setBlock(QPoint(0, 0), *loaded);
    bitmap->setLegalRectBottom(bitmap->size().height());
    loaded.reset();
    applyHdrGamma(bitmap);
    return true;
}

CgwBitmapBase* CgwScannerHDRImport::loadFromSource(bool isIR, bool isHiRePX)
{
    try {
        if (isIR)
            return mImageFile->loadBitmapIR(mImageSource, 0);
        if (isHiRePX)
            return mImageFile->loadHiRePX(mImageSource, 0);
        CgwBitmapBase* loaded = mPreloadedBitmap;
        mPreloadedBitmap = nullptr;
        if (!loaded)
            loaded = mImageFile->loadBitmap(mImageSource, 0);
        const int mode = loaded ? loaded->colorMode() : 0;
        if (mode == EgwColorModeCMY || mode == EgwColorModeLab || mode == EgwColorModeCMYK) {
            const char* name = mode == EgwColorModeCMY ? "CMY" : mode == EgwColorModeLab ? "Lab" : "CMYK";
            gwDebugString(QStringLiteral("CgwScannerHDRImport::startScanHDRImport converting loaded image from %1 "
                                         "to RGB.").arg(QLatin1String(name)));
            loaded->convertColorMode(EgwColorModeRGB);
        }
        return loaded;
    } catch (int) {
        // libjpeg's error exit: the reader has logged the cause.
        return nullptr;
    }
}

void CgwScannerHDRImport::applyHdrGamma(CgwBitmapBase* bitmap)
{
    const CgwBitmapHead head = bitmap->head();
    if (head.scanKind() != 3 || !head.mParameters.boolValue(GgwParam_IsHDR, false))
        return;
    const float gamma = head.mExif.getGWMakerNotValueByTag(0xC001);
    if (gamma == 1.0f)
        return;
    CgwParameterSet set;
    set.setDouble(GgwParam_GammaIn, gamma);
    set.setDouble(GgwParam_GammaOut, 1.0);
    CgwFilterGamma filter(QStringLiteral("mGammaFilter"));
    filter.setParameters(set);
    filter.run({bitmap}, {bitmap});
    bitmap->setGamma(1.0f);
}
