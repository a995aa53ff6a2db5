#pragma once

// Files of the suite's TIFF layout, written with libtiff directly: pages
// with their subfile types, the private tags, and an Exif IFD holding the
// maker note, appended behind everything as the suite's writer does.

#include <QByteArray>
#include <QSize>
#include <QString>

#include <vector>

struct SgwTestPage {
    QSize size{13, 7};
    int bits = 8;    // 1, 8 or 16
    int samples = 3; // 1 grey, 3 RGB
    quint32 subfileType = 0;
    double resolution = 0.0; // 0: no resolution tags
    int seed = 0;            // varies the pattern
    bool pixels = true;      // false: the tags alone, over a one-byte strip
};

struct SgwTestTiff {
    std::vector<SgwTestPage> pages{SgwTestPage()};
    bool bigEndian = false;
    QByteArray hdri;    // the private IR tag's 8 bytes, on the first page
    QByteArray film;    // the private film block
    QByteArray iptc;    // an IPTC block for tag 0x83BB
    QByteArray icc;     // an ICC profile
    QString software;   // the Software tag
    bool makerNote = false;
    int hdrMark = 0;    // record 0xC005
    int gamma = 0;      // record 0xC001, in ten-thousandths
    int optical = 0;    // record 0xC008
    int vendor = 0;     // record 0xC002
    int scanner = 0;    // record 0xC009
    int hdrKind = 0;    // record 0xC00F, written when not 0
    QByteArray behind;  // a raw IR plane after the TIFF; the private IR tag points at it
};

// The sample of the test pattern at x, y, channel c of a page.
quint16 gwTestSample(const SgwTestPage& page, int x, int y, int c);

// Writes the file into the test's folder; its location ("file:..."), empty
// when libtiff failed.
QString gwWriteTestTiff(const QString& name, const SgwTestTiff& layout);

// The 8 bytes of the private IR tag for an offset, in the file's order.
QByteArray gwHdriBytes(quint64 offset, bool bigEndian);
