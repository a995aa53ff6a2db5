#include "gwScanHost.h"

#include "Sourcen/Image/gwBitmapT.h"
#include "Sourcen/Image/gwColorMode.h"
#include "scanner/gwScannerBase.h"
#include "scanner/gwScannerInfo.h"
#include "settings/gwParamKeys.h"

#include <QFileInfo>

namespace {
// The exported functions, looked up by their C++ names.
const char* const kSupportsSymbol = "_Z24supportsScannerHDRImportRK7QString";
const char* const kFactorySymbol = "_Z19newScannerHDRImportRK14CgwScannerInfo";
} // namespace

CgwScanHost::CgwScanHost(const QString& path)
    : mLibrary(path.isEmpty() ? QStringLiteral(GW_PLUGIN_PATH) : path)
{
}

bool CgwScanHost::load()
{
    if (!mLibrary.load()) {
        mError = QStringLiteral("cannot load the plug-in: %1").arg(mLibrary.errorString());
        return false;
    }
    mSupports = reinterpret_cast<Supports>(mLibrary.resolve(kSupportsSymbol));
    mFactory = reinterpret_cast<Factory>(mLibrary.resolve(kFactorySymbol));
    if (!mSupports || !mFactory) {
        mError = QStringLiteral("%1 is not a scanner plug-in: it lacks supportsScannerHDRImport or "
                                "newScannerHDRImport").arg(mLibrary.fileName());
        return false;
    }
    return true;
}

bool CgwScanHost::supports(const QString& id) const
{
    return mSupports && mSupports(id);
}

std::unique_ptr<CgwScannerBase> CgwScanHost::newScanner(const CgwScannerInfo& info) const
{
    return std::unique_ptr<CgwScannerBase>(mFactory ? mFactory(info) : nullptr);
}

std::unique_ptr<CgwScannerBase> CgwScanHost::newScanner() const
{
    CgwScannerInfo info;
    info.mMakeAndModel = QStringLiteral("HDR,Atelier");
    info.mScannerId = QStringLiteral("HDR Atelier");
    info.mVariant = 3;
    return newScanner(info);
}

std::unique_ptr<CgwBitmapBase> gwHostBitmapFor(const CgwBitmapHead& info)
{
    const bool wide = info.mBitDepth > 8;
    std::unique_ptr<CgwBitmapBase> bitmap;
    if (info.mColorMode == EgwColorModeGrey || info.mChannels == 1)
        bitmap.reset(wide ? static_cast<CgwBitmapBase*>(new CgwBitmapT<CgwPixelGrey16Type>())
                          : new CgwBitmapT<CgwPixelGrey8>());
    else if (info.mColorMode != 0)
        bitmap.reset(wide ? static_cast<CgwBitmapBase*>(new CgwBitmapT<CgwPixel16x4>())
                          : new CgwBitmapT<CgwPixel8x4>());
    if (!bitmap)
        return bitmap;
    // Colours arrive as RGB whatever the file holds.
    bitmap->setColorMode(bitmap->pixelType() == 1 || bitmap->pixelType() == 5 ? EgwColorModeGrey
                                                                               : EgwColorModeRGB);
    bitmap->setScanSize(info.mSize);
    bitmap->setResolution(info.mResolution);
    bitmap->setScannerMode(info.mScannerMode);
    bitmap->setParameters(info.mParameters);
    return bitmap;
}

SgwHostScan gwHostScan(CgwScannerBase& scanner, const CgwBitmapHead& info, bool* abortFlag)
{
    SgwHostScan scan;
    scan.bitmap = gwHostBitmapFor(info);
    if (!scan.bitmap)
        return scan;
    const bool infrared = info.mParameters.boolValue(GgwParam_ScanModeSupportsIR, false);
    if (infrared) {
        CgwParameterSet parameters = scan.bitmap->parameters();
        parameters.setBool(GgwParam_InfraredScan, true);
        scan.bitmap->setParameters(parameters);
        scan.ir = std::make_unique<CgwBitmapT<CgwPixelGrey16Type>>();
        scan.ir->setColorMode(EgwColorModeGrey);
        scan.ir->setScanSize(info.mSize);
        scan.ir->setScannerMode(info.mScannerMode);
    }
    scan.ok = scanner.startScan(scan.bitmap.get(), abortFlag, nullptr, scan.ir.get());
    if (scan.ir && !scan.ir->isInitialized())
        scan.ir.reset();
    return scan;
}

QString gwFileLocation(const QString& path)
{
    if (path.startsWith(QLatin1String("file:")) || path.startsWith(QLatin1String("scnr:")))
        return path;
    return QStringLiteral("file:") + QFileInfo(path).absoluteFilePath();
}

QString gwReadableValue(const QString& value)
{
    QStringList words;
    QString word;
    int start = 0, end = 0;
    for (int i = 0; CgwParameterSet::findToken(value, i, start, end); ++i)
        words << (CgwParameterSet::stringFromValue(value, i, word) ? word : value.mid(start, end - start));
    return words.join(QLatin1Char(' '));
}
