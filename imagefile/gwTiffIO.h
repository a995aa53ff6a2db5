#pragma once

// libtiff over CgwFile: the client procedures, the handle's owner, the
// suite's two private tags and the process-wide message handlers.

#include <QString>
#include <QStringList>

#include <memory>
#include <tiffio.h>

struct SgwTiffCloser {
    void operator()(TIFF* tiff) const
    {
        if (tiff)
            TIFFClose(tiff);
    }
};
using CgwTiffHandle = std::unique_ptr<TIFF, SgwTiffCloser>;

// Private tags of the suite's files.
constexpr ttag_t kGwTiffTagHDRi = 35243; // 8 bytes: IR present, or the GW6 IR plane's offset
constexpr ttag_t kGwTiffTagFilm = 35244; // film vendor, brand and type at 0, 96 and 192

// Opens `path` (a location) for reading (mode 1) or writing (mode 2) with the
// TIFF header at `offset`; every offset libtiff uses counts from there. The
// file belongs to the handle and closes with it. Null, without a message,
// when the file or the TIFF cannot be opened, or when a directory holds more
// than 1024 entries.
TIFF* gwTiffOpen(const QString& path, int mode, qint64 offset);
inline CgwTiffHandle gwTiffOpenHandle(const QString& path, int mode, qint64 offset)
{
    return CgwTiffHandle(gwTiffOpen(path, mode, offset));
}

// Makes the two private tags known to the handle.
void gwTiffMergePrivateTags(TIFF* tiff);

// Installs the error and warning handlers once: every message is entered
// in a process-wide list and dropped when already there; errors reach no
// log, warnings reach it once unless they are the private tags' noise.
void gwTiffInstallHandlers();
// The messages seen so far, in order.
QStringList gwTiffSeenMessages();

// The tags a page is read by, with the values a missing tag stands for.
struct SgwTiffPage {
    quint16 bits = 1;
    quint32 width = 0;
    quint32 height = 0;
    quint16 samples = 1;
    quint16 compression = 1;
    quint32 rowsPerStrip = 0xFFFFFFFF;
    quint16 photometric = 0;
    quint16 orientation = 1;
    quint16 planar = 1;
    quint32 subfileType = 0;
    double xResolution = 0.0; // 0 when the tag is missing
    double yResolution = 0.0;
};
SgwTiffPage gwTiffReadPage(TIFF* tiff);

// The bytes of a counted field (ICC profile, IPTC block, the private tags);
// empty when the current directory does not have it.
QByteArray gwTiffFieldBytes(TIFF* tiff, ttag_t tag);

// The private tag 35243 as a number in the host's order; 0 when missing.
quint64 gwTiffHdriValue(TIFF* tiff);

// Film vendor, brand and type from the private film block: three texts at
// 0, 96 and 192, each ending at its first NUL or at the block's end.
QStringList gwTiffFilmStrings(const QByteArray& block);

// How many directories the file holds, 1 to 100; 0 with a log line when it
// cannot be opened.
int gwTiffDirectoryCount(const QString& path);
