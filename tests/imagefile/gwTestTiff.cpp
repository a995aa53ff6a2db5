#include "gwTestTiff.h"

#include "imagefile/gwTiffIO.h"
#include "metadata/gwExif.h"
#include "support/gwTestEnv.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

constexpr quint16 kExifIfdTag = 0x8769;

void setFirstPageTags(TIFF* tiff, const SgwTestTiff& layout)
{
    if (!layout.software.isEmpty())
        TIFFSetField(tiff, TIFFTAG_SOFTWARE, layout.software.toLatin1().constData());
    if (!layout.hdri.isEmpty())
        TIFFSetField(tiff, kGwTiffTagHDRi, quint16(layout.hdri.size()), layout.hdri.constData());
    if (!layout.film.isEmpty())
        TIFFSetField(tiff, kGwTiffTagFilm, quint16(layout.film.size()), layout.film.constData());
    if (!layout.iptc.isEmpty())
        TIFFSetField(tiff, TIFFTAG_RICHTIFFIPTC, quint32(layout.iptc.size()), layout.iptc.constData());
    if (!layout.icc.isEmpty())
        TIFFSetField(tiff, TIFFTAG_ICCPROFILE, quint32(layout.icc.size()), layout.icc.constData());
    if (layout.makerNote)
        TIFFSetField(tiff, TIFFTAG_EXIFIFD, quint64(1)); // patched once the Exif IFD's place is known
}

bool writePage(TIFF* tiff, const SgwTestPage& page)
{
    const int width = page.size.width(), height = page.size.height();
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, quint32(width));
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, quint32(height));
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, quint16(page.bits));
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, quint16(page.samples));
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, page.samples == 1 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_SUBFILETYPE, page.subfileType);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, quint32(page.pixels ? 5 : height));
    if (page.resolution > 0.0) {
        TIFFSetField(tiff, TIFFTAG_XRESOLUTION, float(page.resolution));
        TIFFSetField(tiff, TIFFTAG_YRESOLUTION, float(page.resolution));
        TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    }
    if (!page.pixels) {
        char byte = 0;
        return TIFFWriteRawStrip(tiff, 0, &byte, 1) == 1 && TIFFWriteDirectory(tiff);
    }
    const qint64 rowBytes = (qint64(width) * page.samples * page.bits + 7) / 8;
    std::vector<uchar> row(static_cast<size_t>(rowBytes));
    for (int y = 0; y < height; ++y) {
        std::fill(row.begin(), row.end(), 0);
        for (int x = 0; x < width; ++x) {
            for (int c = 0; c < page.samples; ++c) {
                const quint16 v = gwTestSample(page, x, y, c);
                const int i = x * page.samples + c;
                if (page.bits == 1)
                    row[size_t(i / 8)] |= uchar(v << (7 - i % 8));
                else if (page.bits == 8)
                    row[size_t(i)] = uchar(v);
                else
                    std::memcpy(&row[size_t(2 * i)], &v, 2);
            }
        }
        if (TIFFWriteScanline(tiff, row.data(), quint32(y), 0) < 0)
            return false;
    }
    return TIFFWriteDirectory(tiff);
}

CgwExif makerNoteRecord(const SgwTestTiff& layout)
{
    CgwExif exif;
    exif.setByteOrder(layout.bigEndian ? CgwExif::kBigEndian : CgwExif::kLittleEndian);
    exif.setMakerNoteInt(0xC005, 0, layout.hdrMark);
    exif.setMakerNoteInt(0xC001, 1, layout.gamma);
    exif.setMakerNoteInt(0xC008, 0, layout.optical);
    exif.setMakerNoteInt(0xC002, 0, layout.vendor);
    exif.setMakerNoteInt(0xC009, 0, layout.scanner);
    if (layout.hdrKind)
        exif.setMakerNoteInt(0xC00F, 0, layout.hdrKind);
    exif.selectExifTagsOnly();
    return exif;
}

// Appends the Exif IFD and points the first directory's placeholder at it.
bool appendExif(const QString& path, const SgwTestTiff& layout)
{
    QByteArray file = gwReadFile(path);
    const auto number = [&](int at, int bytes) -> quint32 {
        const uchar* p = reinterpret_cast<const uchar*>(file.constData()) + at;
        if (bytes == 2)
            return layout.bigEndian ? qFromBigEndian<quint16>(p) : qFromLittleEndian<quint16>(p);
        return layout.bigEndian ? qFromBigEndian<quint32>(p) : qFromLittleEndian<quint32>(p);
    };
    const int ifd = int(number(4, 4));
    const int entries = int(number(ifd, 2));
    int valueAt = -1;
    for (int i = 0; i < entries; ++i) {
        if (number(ifd + 2 + 12 * i, 2) == kExifIfdTag)
            valueAt = ifd + 2 + 12 * i + 8;
    }
    if (valueAt < 0)
        return false;
    const quint32 exifAt = quint32(file.size());
    uchar bytes[4];
    layout.bigEndian ? qToBigEndian(exifAt, bytes) : qToLittleEndian(exifAt, bytes);
    file.replace(valueAt, 4, reinterpret_cast<const char*>(bytes), 4);
    CgwExif exif = makerNoteRecord(layout);
    QByteArray block;
    if (!exif.writeIfd(block, 1, exifAt))
        return false;
    return !gwWriteTestFile(path.mid(path.lastIndexOf('/') + 1), file + block).isEmpty();
}

} // namespace

quint16 gwTestSample(const SgwTestPage& page, int x, int y, int c)
{
    const quint32 v = quint32(x * 37 + y * 101 + c * 53 + page.seed * 17);
    if (page.bits == 1)
        return (x + y + page.seed) % 3 == 0 ? 1 : 0;
    return page.bits == 8 ? quint16(v & 0xFF) : quint16((v * 263) & 0xFFFF);
}

QByteArray gwHdriBytes(quint64 offset, bool bigEndian)
{
    uchar bytes[8];
    bigEndian ? qToBigEndian(offset, bytes) : qToLittleEndian(offset, bytes);
    return QByteArray(reinterpret_cast<const char*>(bytes), 8);
}

namespace {

QString writeTiff(const QString& path, const SgwTestTiff& layout)
{
    TIFF* tiff = TIFFOpen(QFile::encodeName(path).constData(), layout.bigEndian ? "wb" : "wl");
    if (!tiff)
        return QString();
    gwTiffMergePrivateTags(tiff);
    bool ok = true;
    for (size_t i = 0; i < layout.pages.size() && ok; ++i) {
        if (i == 0)
            setFirstPageTags(tiff, layout);
        ok = writePage(tiff, layout.pages[i]);
    }
    TIFFClose(tiff);
    return ok && (!layout.makerNote || appendExif(path, layout)) ? path : QString();
}

} // namespace

QString gwWriteTestTiff(const QString& name, const SgwTestTiff& layout)
{
    const QString path = gwTestRoot() + "/" + name;
    if (layout.behind.isEmpty())
        return writeTiff(path, layout).isEmpty() ? QString() : "file:" + path;
    // The tag's size does not change with its value: a first writing tells
    // where the plane will start.
    SgwTestTiff pointed = layout;
    pointed.hdri = gwHdriBytes(1, layout.bigEndian);
    if (writeTiff(path, pointed).isEmpty())
        return QString();
    pointed.hdri = gwHdriBytes(quint64(QFileInfo(path).size()), layout.bigEndian);
    QFile file(writeTiff(path, pointed));
    if (!file.open(QIODevice::Append) || file.write(layout.behind) != layout.behind.size())
        return QString();
    return "file:" + path;
}
