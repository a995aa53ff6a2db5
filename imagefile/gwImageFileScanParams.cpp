// The request of a scan: what the host asks for through parameters, and
// the scanner's own queries passed through.

#include "imagefile/gwImageFileScan.h"

#include "Sourcen/Image/gwColorMode.h"
#include "diagnostics/gwDebug.h"
#include "scanner/gwScannerBase.h"
#include "settings/gwParamKeys.h"

namespace {
// What passes from the request to the scanned bitmaps. Switches default to
// false, numbers to 0, the image index to 1.
struct SgwPassKey {
    const QString& key;
    const char* fallback;
};
const SgwPassKey kPassKeys[] = {
    {GgwParam_MultiExposureFactor, "0"}, {GgwParam_InfraredScan, "false"},
    {GgwParam_wantToSkipExpOne, "false"}, {GgwParam_IsHiRePX, "false"},
    {GgwParam_ThreeLineScan, "false"}, {GgwParam_IsSpeedDraft, "false"},
    {GgwParam_MultiImageIndex, "1"}, {GgwParam_UnitDivisor, "0"},
    {GgwParam_HighestResolutionMaxPixels, "0"}, {GgwParam_DoAutoFocus, "false"},
    {GgwParam_AutoFocusX, "0"}, {GgwParam_AutoFocusY, "0"},
    {GgwParam_DoFixedFocus, "false"}, {GgwParam_FixedFocusVal, "0"},
    {GgwParam_AGBrightnessAmp, "0"}, {GgwParam_AGRedAmp, "0"},
    {GgwParam_AGGreenAmp, "0"}, {GgwParam_AGBlueAmp, "0"},
    {GgwParam_AdfPrescan, "false"}, {GgwParam_IsHDR, "false"},
    {GgwParam_IsFinalScan, "false"}, {GgwParam_IsIT8CalibrationScan, "false"},
    {GgwParam_IT8MinimumCalibrationZoomScanResolution, "0"},
};

CgwQString fallbackValue(const char* text)
{
    if (qstrcmp(text, "false") == 0)
        return CgwParameterSet::valueFromBool(false);
    return CgwParameterSet::valueFromLongLong(QByteArray(text).toLongLong());
}

CgwQString pairValue(double a, double b)
{
    return CgwQString(CgwParameterSet::valueFromDouble(a).toQString()
                      + CgwParameterSet::valueFromDouble(b).toQString());
}

// All colour scans are done as RGB.
int requestedColorMode(const CgwParameterSet& parameters, int current)
{
    const qint64 mode = parameters.longLongValue(GgwParam_ImageColorMode, 0);
    if (mode == 0)
        return current;
    if (mode == EgwColorModeGrey || (mode >= EgwColorModeRGB && mode <= EgwColorModeCMYK))
        return mode == EgwColorModeGrey ? int(EgwColorModeGrey) : int(EgwColorModeRGB);
    if (mode == EgwColorModeRGBA)
        gwDebugString(QStringLiteral("CgwImageFileScan::setParameter : Warning: Dismissing alpha channel!"));
    else
        gwDebugString(QStringLiteral("CgwImageFileScan::setParameter : Error: Unsupported color mode!"));
    return EgwColorModeRGB;
}
} // namespace

void CgwImageFileScan::setParameter(const CgwParameterSet& parameters)
{
    CgwImageFileBase::setParameter(parameters);
    const CgwQString size = parameters.value(GgwParam_ImageSize);
    mBitmapInfo.mSize =
        QSize(int(CgwParameterSet::doubleFromValue(size, 0)), int(CgwParameterSet::doubleFromValue(size, 1)));
    const CgwQString resolution = parameters.value(GgwParam_ImageResolution);
    mBitmapInfo.mResolution = QPointF(CgwParameterSet::doubleFromValue(resolution, 0),
                                      CgwParameterSet::doubleFromValue(resolution, 1));
    if (mBitmapInfo.mResolution.x() < 1.0 || mBitmapInfo.mResolution.y() < 1.0) {
        if (parameters.hasKey(GgwParam_ImageResolution))
            gwDebugString(QStringLiteral(
                "CgwImageFileScan::setParameter() this->mBitmapInfo.mResolution had to be reset to 72.0."));
        mBitmapInfo.mResolution = QPointF(72.0, 72.0);
    }
    mBitmapInfo.setColorMode(requestedColorMode(parameters, mBitmapInfo.mColorMode));

    const CgwQString offset = parameters.value(GgwParam_ImageOffset);
    mParameters.setValue(GgwParam_ImageOffset, pairValue(CgwParameterSet::doubleFromValue(offset, 0),
                                                         CgwParameterSet::doubleFromValue(offset, 1)));
    mBitmapInfo.mBitDepth = quint8(parameters.longLongValue(GgwParam_ImageBitDepth, mBitmapInfo.mBitDepth));
    mBitmapInfo.mChannels = quint8(parameters.longLongValue(GgwParam_ImagePlanes, mBitmapInfo.mChannels));
    mActiveScannerMode = qint32(parameters.longLongValue(GgwParam_ActiveScannerMode, mActiveScannerMode));
    for (const SgwPassKey& pass : kPassKeys)
        mParameters.setValue(pass.key, parameters.hasKey(pass.key) ? parameters.value(pass.key)
                                                                   : fallbackValue(pass.fallback));
}

void CgwImageFileScan::getParameter(CgwParameterSet& parameters) const
{
    CgwImageFileBase::getParameter(parameters);
    parameters.setValue(GgwParam_ImageSize, pairValue(mBitmapInfo.mSize.width(), mBitmapInfo.mSize.height()));
    parameters.setValue(GgwParam_ImageResolution, pairValue(mBitmapInfo.mResolution.x(), mBitmapInfo.mResolution.y()));
    parameters.setLongLong(GgwParam_ImageColorMode, mBitmapInfo.mColorMode);
    parameters.setLongLong(GgwParam_ImageBitDepth, mBitmapInfo.mBitDepth);
    parameters.setLongLong(GgwParam_ImagePlanes, mBitmapInfo.mChannels);
    parameters.setLongLong(GgwParam_ActiveScannerMode, mActiveScannerMode);
    for (auto it = mParameters.begin(); it != mParameters.end(); ++it)
        parameters.setValue(it.key().toQString(), it.value());
}

CgwImageFileBase* CgwImageFileScan::clone() const
{
    auto* copy = new CgwImageFileScan(mScanner);
    CgwParameterSet parameters;
    getParameter(parameters);
    copy->setParameter(parameters);
    return copy;
}

void CgwImageFileScan::attachScanner()
{
    if (mScanner)
        mScanner->disconnectScanner();
}

bool CgwImageFileScan::scanQuery26()
{
    return mScanner && mScanner->queryFlag25();
}

bool CgwImageFileScan::scanQuery27()
{
    return mScanner && mScanner->queryFlag26();
}

bool CgwImageFileScan::scanQuery28()
{
    return mScanner && mScanner->queryFlag27();
}

bool CgwImageFileScan::newConnectedScanner()
{
    if (mScanner)
        return mScanner->queryFlag11();
    warnNoScanner();
    return false;
}
