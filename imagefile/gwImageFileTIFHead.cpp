// The head step of the TIFF reader: tags, the Exif record and what the
// suite's maker note says about a scan.

#include "diagnostics/gwDebug.h"
#include "diagnostics/gwSystem.h"
#include "files/gwFile.h"
#include "files/gwFilePathList.h"
#include "imagefile/gwImageFileTIF.h"
#include "settings/gwParamKeys.h"

#include <memory>

namespace {

// Records of the suite's maker note.
constexpr quint16 kGammaRecord = 0xC001;
constexpr quint16 kVendorRecord = 0xC002;
constexpr quint16 kHdrRecord = 0xC005;
constexpr quint16 kOpticalResolutionRecord = 0xC008;
constexpr quint16 kScannerRecord = 0xC009;

constexpr quint16 kExifSoftware = 0x0131;
constexpr quint16 kExifIccProfile = 0x8773;

void setFilm(CgwParameterSet& parameters, const QByteArray& block)
{
    const QStringList film = gwTiffFilmStrings(block);
    parameters.setString(GgwParam_FilmVendor, film[0]);
    parameters.setString(GgwParam_FilmBrand, film[1]);
    parameters.setString(GgwParam_FilmType, film[2]);
}

} // namespace

// The Exif record of the TIFF at `offset`. A damaged maker-note entry is
// looked for when any record the suite always writes is missing; the file
// itself is never repaired here.
CgwExif CgwImageFileTIF::readExifRecord(const QString& path, qint64 offset)
{
    CgwExif exif;
    std::unique_ptr<CgwFile> file(CgwFilePathList::instance().createFile(path));
    if (!file || !file->open(QIODevice::ReadOnly))
        return exif;
    file->seek(offset, 0);
    if (!exif.readFromStream(*file, 0))
        return CgwExif();
    for (quint16 record : {kHdrRecord, kGammaRecord, kOpticalResolutionRecord, kVendorRecord, kScannerRecord}) {
        bool found = false;
        exif.getGWMakerNotValueByTag(record, &found);
        if (!found) {
            file->seek(offset, 0);
            qint64 countPosition = 0, length = 0, noteOffset = 0;
            exif.recoverMakerNote(*file, &countPosition, &length, &noteOffset);
            break;
        }
    }
    return exif;
}

void CgwImageFileTIF::readPageHead(TIFF* tiff, CgwBitmapHead& head)
{
    const SgwTiffPage page = gwTiffReadPage(tiff);
    const QByteArray icc = gwTiffFieldBytes(tiff, TIFFTAG_ICCPROFILE);
    if (!icc.isEmpty())
        head.mProfile.setFromMemory(reinterpret_cast<const unsigned char*>(icc.constData()), icc.size());
    const QByteArray iptc = gwTiffFieldBytes(tiff, TIFFTAG_RICHTIFFIPTC);
    if (!iptc.isEmpty())
        head.mIptc.readBlock(iptc);
    const QByteArray film = gwTiffFieldBytes(tiff, kGwTiffTagFilm);
    if (!film.isEmpty())
        setFilm(head.mParameters, film);
    head.mBitDepth = quint8(page.bits);
    head.setColorMode(colorModeFromPhotometric(page.photometric, page.samples, page.bits));
    QPointF resolution(page.xResolution, page.yResolution);
    if (resolution.x() < 1.0 || resolution.y() < 1.0)
        resolution = QPointF(72.0, 72.0);
    head.mResolution = resolution;
    head.mSize = QSize(int(page.width), int(page.height));
    head.mScanRect = QRectF(0.0, 0.0, page.width / resolution.x(), page.height / resolution.y()); // inches
}

CgwBitmapHead CgwImageFileTIF::loadImageInformation(const QString& path, qint64 offset)
{
    CgwBitmapHead head;
    {
        const CgwTiffHandle tiff = gwTiffOpenHandle(path, 1, offset);
        if (!tiff)
            return head;
        gwTiffMergePrivateTags(tiff.get());
        readPageHead(tiff.get(), head);
    }
    head.mParameters.setLongLong(GgwParam_SupportedResolutions, qint64(head.mResolution.x()));
    head.mParameters.setValue(GgwParam_HighestResolutionMaxPixels,
                              CgwParameterSet::valueFromLongLong(head.mSize.width()).toQString()
                                  + CgwParameterSet::valueFromLongLong(head.mSize.height()).toQString());
    readMakernotes(head, path, offset, false);
    double resolution[2] = {0.0, 0.0};
    int size[2] = {0, 0};
    head.mParameters.setBool(GgwParam_ScanModeSupportsIR, irLocation(path) != 0);
    head.mParameters.setBool(GgwParam_HasHiRePX, hiRepxInfo(path, resolution, size));
    head.mScannerMode = 9;
    head.mParameters.setLongLong(GgwParam_ScannerModes, 9);
    return head;
}

namespace {

// The HDR mark counts only in a file the suite wrote: a foreign program's
// claim is removed from the record. Sets IsHDR and the creator's version.
bool takeHdrMark(CgwExif& exif, CgwParameterSet& parameters)
{
    float mark = exif.getGWMakerNotValueByTag(kHdrRecord);
    if (mark > 1.0f) {
        gwDebugString(QStringLiteral("CgwImageFileTIF::readMakernotes(): WARNING - unrecognized makernote-value."));
        mark = 0.0f;
    }
    const QString software = exif.getAscii(kExifSoftware);
    const bool ours = software.startsWith(CgwSystem::applicationName());
    if (mark == 1.0f && !ours) {
        exif.removeMakerNoteRecord(kHdrRecord);
        mark = 0.0f;
    }
    parameters.setBool(GgwParam_IsHDR, mark == 1.0f);
    if (ours)
        parameters.setString(GgwParam_General_CreatorVersion, CgwImageFileBase::creatorVersion(software));
    return mark == 1.0f;
}

// The scan's optical resolution; a HiRePX page gets it scaled to its width.
void takeOpticalResolution(double optical, CgwBitmapHead& head, const QString& path, qint64 offset, bool isHiRePX)
{
    if (optical <= 0.0)
        return;
    if (!isHiRePX) {
        head.mResolution = QPointF(optical, optical);
        head.mParameters.setLongLong(GgwParam_SupportedResolutions, qint64(optical));
        return;
    }
    const CgwTiffHandle tiff = gwTiffOpenHandle(path, 1, offset);
    const double mainWidth = tiff ? gwTiffReadPage(tiff.get()).width : 0.0;
    const double ratio = mainWidth > 0.0 ? head.mSize.width() / mainWidth : 1.0;
    if (ratio < 1.0)
        head.mResolution = QPointF(optical * ratio, optical * ratio);
}

} // namespace

void CgwImageFileTIF::readMakernotes(CgwBitmapHead& head, const QString& path, qint64 offset, bool isHiRePX)
{
    CgwExif exif = readExifRecord(path, offset);
    head.mParameters.setBool(GgwParam_IsHDR, false);
    if (exif.hasTag(CgwMakerNote::kExifTag)) {
        const bool hdr = takeHdrMark(exif, head.mParameters);
        const float gamma = exif.getGWMakerNotValueByTag(kGammaRecord);
        if (gamma > 0.0f)
            head.mGamma = gamma;
        else if (hdr)
            head.mGamma = 1.0f;
        takeOpticalResolution(exif.getGWMakerNotValueByTag(kOpticalResolutionRecord), head, path, offset, isHiRePX);
        const qint64 vendor = qint64(exif.getGWMakerNotValueByTag(kVendorRecord));
        const qint64 scanner = qint64(exif.getGWMakerNotValueByTag(kScannerRecord));
        if (vendor != 0 && scanner != 0)
            head.mParameters.setLongLong(GgwParam_VendorAndScannerID, vendor * 65536 + scanner);
    }
    const QByteArray icc = exif.getValue(kExifIccProfile).data;
    if (!head.mProfile.isValid() && icc.size() > 1)
        head.mProfile.setFromMemory(reinterpret_cast<const unsigned char*>(icc.constData()), icc.size());
    if (exif.hasTag(kGwTiffTagFilm))
        setFilm(head.mParameters, exif.getValue(kGwTiffTagFilm).data);
    head.mExif = exif;
}
