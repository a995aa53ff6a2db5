#include "scanner/gwScannerHDRImport.h"

#include "Sourcen/Image/gwBitmapBase.h"
#include "diagnostics/gwDebug.h"
#include "imagefile/gwImageFileList.h"
#include "settings/gwParamKeys.h"

#include <QReadLocker>
#include <QWriteLocker>

#include <algorithm>
#include <cmath>
#include <limits>

const QString CgwScannerHDRImport::kStandardSource = QStringLiteral("file::/standard.jpg");

namespace {
int sActiveScannerMode = 0;
int sLastProgress = 0;

// The vendor and model word the suite reads for a file import.
constexpr qint64 kVendorAndScannerId = 5767170;
} // namespace

CgwScannerHDRImport::CgwScannerHDRImport(const CgwScannerInfo& info)
{
    gwClearScannerInUseOnce();
    if (info.mScannerId == GgwNoScannerId) {
        mScannerIndex = mRequestedIndex = -2;
    } else {
        const int row = gwScannerTableRow(info.mScannerId);
        mScannerIndex = connectTo(row);
        mRequestedIndex = row;
    }
    mImageSource = kStandardSource;
}

CgwScannerHDRImport::~CgwScannerHDRImport()
{
    delete mImageFile;
    disconnectScanner();
    delete mPreloadedBitmap;
}

int CgwScannerHDRImport::activeScannerMode()
{
    return sActiveScannerMode;
}

int CgwScannerHDRImport::connectTo(int row)
{
    QWriteLocker lock(&sScannerLock);
    if (row >= 0 && sScannerInUse.at(row))
        return -1;
    // A row the table does not hold counts as the end mark's "-1".
    const QString id = (row >= 0 && row < kGwScannerTableRows) ? sScannerTable[row].mScannerId : GgwNoScannerId;
    if (id == GgwScannerHDRId) {
        sScannerInUse.at(row) = true;
        return row;
    }
    if (id == GgwNoScannerId)
        gwDebugString(QStringLiteral("CgwScannerHDRImport::connectTo: Error: Unknown scanner ID!"));
    else
        gwDebugString(QStringLiteral("CgwScannerHDRImport::connectTo: Error: Connection establishing not "
                                     "implemented for this scanner!"));
    return -1;
}

bool CgwScannerHDRImport::tryConnect()
{
    if (isConnected())
        return true;
    if (mRequestedIndex == -2) {
        mScannerIndex = -2;
        return true;
    }
    mScannerIndex = connectTo(mRequestedIndex);
    return mScannerIndex >= 0;
}

void CgwScannerHDRImport::disconnectScanner()
{
    QWriteLocker lock(&sScannerLock);
    if (mScannerIndex >= 0) {
        sScannerInUse.at(mScannerIndex) = false;
        mScannerIndex = -1;
    }
}

bool CgwScannerHDRImport::isScannerInUse(const CgwScannerInfo& info)
{
    const int row = gwScannerTableRow(info.mScannerId);
    QReadLocker lock(&sScannerLock);
    if (row < 0) {
        gwDebugString(QStringLiteral("CgwScannerHDRImport::isScannerInUse : Error: Invalid scanner index."));
        return false;
    }
    return sScannerInUse.at(row);
}

bool CgwScannerHDRImport::supportsScanner(const CgwScannerInfo& info)
{
    return gwScannerTableRow(info.mScannerId) >= 0;
}

std::vector<CgwScannerInfo> CgwScannerHDRImport::getScannerList()
{
    return gwScannerTableRows();
}

std::vector<CgwScannerInfo> CgwScannerHDRImport::filterSupportedScanners(std::vector<CgwScannerInfo> scanners)
{
    scanners.erase(std::remove_if(scanners.begin(), scanners.end(),
                                  [this](const CgwScannerInfo& info) { return !supportsScanner(info); }),
                   scanners.end());
    return scanners;
}

bool CgwScannerHDRImport::setImageSource(const QString& path)
{
    if (path.startsWith(QLatin1String("scnr:")) || path == GgwScannerHDRId || path.isEmpty())
        mImageSource = kStandardSource;
    else
        mImageSource = path;
    return true;
}

void CgwScannerHDRImport::setPreloadedBitmap(CgwBitmapBase* bitmap)
{
    if (bitmap != mPreloadedBitmap)
        delete mPreloadedBitmap;
    mPreloadedBitmap = bitmap;
}

void CgwScannerHDRImport::slotEmitProgress(int percent)
{
    // Values of 100 and above are the host's status codes, not progress.
    if (percent >= 100 || percent == sLastProgress)
        return;
    sLastProgress = percent;
    emit signalNewImageData(percent, tr("Loading"));
}

CgwBitmapHead CgwScannerHDRImport::getScannerInformation(bool* abortFlag, int scannerMode, int activeMode)
{
    CgwBitmapHead head;
    if (!connectWithWait(abortFlag, 0.0)) {
        gwDebugString(QStringLiteral(
            "CgwScannerHDRImport::getScannerInformation: Error: No scanner connected to object!"));
        return head;
    }
    const QString id = sScannerTable[mScannerIndex].mScannerId;
    if (id == GgwScannerHDRId)
        head = getScannerInformationHDRImport(scannerMode);
    else if (id == GgwNoScannerId)
        gwDebugString(QStringLiteral("CgwScannerHDRImport::getScannerInformation: Warning: Unknown scanner ID"));
    else
        gwDebugString(QStringLiteral("CgwScannerHDRImport::getScannerInformation: Error: Invalid scanner ID"));
    if (activeMode != 0)
        sActiveScannerMode = activeMode;
    disconnectScanner();
    return head;
}

CgwBitmapHead CgwScannerHDRImport::getScannerInformationHDRImport(int)
{
    delete mImageFile;
    mImageFile = nullptr;
    CgwBitmapHead head;
    try {
        const CgwImageFileList& formats = CgwImageFileList::instance();
        const int type = formats.imageFileType(mImageSource, 0);
        if (type != 0)
            mImageFile = formats.createImageFile(type);
        if (mImageFile)
            head = mImageFile->loadImageInformation(mImageSource, 0);
    } catch (...) {
        // A reader that throws (libjpeg's error exit) leaves the head empty.
        gwDebugString(QStringLiteral("CgwScannerHDRImport::getScannerInformationHDRImport: Error: Could not "
                                     "read the image information of %1").arg(mImageSource));
        head = CgwBitmapHead();
    }

    bool resolutionKnown = true;
    if (head.mResolution.x() == 0.0 && head.mResolution.y() == 0.0) {
        resolutionKnown = false;
        head.mResolution = QPointF(72.0, 72.0);
    }
    // A file may claim any resolution; rounding and doubling stay in range.
    const double x = head.mResolution.x();
    const int resolution = std::isfinite(x) ? int(std::lround(std::clamp(x, -1e9, 1e9))) : 0;
    qint64 maxRes = 2 * qint64(resolution);
    if (maxRes < 0 || maxRes > std::numeric_limits<int>::max()) {
        gwDebugString(QStringLiteral("CgwScannerHDRImport::getScannerInformationHDRImport: CgwScannerHDRImport "
                                     "has reset maxRes."));
        maxRes = 72;
    }

    CgwParameterSet& parameters = head.mParameters;
    parameters.setLongLong(GgwParam_MaxResAllowed, maxRes);
    parameters.setString(GgwParam_InternalScannerID, GgwScannerHDRId);
    if (!resolutionKnown) {
        parameters.setLongLong(GgwParam_SupportedResolutions, resolution);
        parameters.setValue(GgwParam_HighestResolutionMaxPixels,
                            CgwParameterSet::valueFromLongLong(head.mSize.width()).toQString()
                                + CgwParameterSet::valueFromLongLong(head.mSize.height()).toQString());
    }
    if (parameters.doubleValue(GgwParam_UnitDivisor, 0.0) == 0.0)
        parameters.setLongLong(GgwParam_UnitDivisor, resolution);
    const CgwScannerInfo& row = sScannerTable[std::max(mScannerIndex, 0)];
    parameters.setString(GgwParam_InternalScannerID, row.mScannerId);
    if (parameters.longLongValue(GgwParam_VendorAndScannerID, 0) == 0)
        parameters.setLongLong(GgwParam_VendorAndScannerID, kVendorAndScannerId);
    const QStringList parts = row.mMakeAndModel.split(QLatin1Char(','));
    parameters.setString(GgwParam_InternalScannerNameMake, parts.value(0));
    parameters.setString(GgwParam_InternalScannerNameModel, parts.value(1));
    return head;
}
