#pragma once

#include <QMap>
#include <QString>

#include <array>

class CgwBitmapBase;

// One decoded image of the shared corpus, as REFERENCE.tsv gives it.
struct SgwCorpusReference {
    QString status; // only "confirmed" rows are safe for exact assertions
    int width = 0;
    int height = 0;
    int channels = 0;
    QByteArray sha256;      // interleaved samples, hex
    QByteArray sha256Rgba8; // the same as 8-bit RGBA, hex; grey, palette and RGB(A) only
};

// The folder of the shared corpus of real images made by other programs.
QString gwCorpusDir();

// The first-frame rows of one corpus folder ("bmp", "jpeg", ...), by file name.
QMap<QString, SgwCorpusReference> gwCorpusReferences(const QString& folder);

// A decoded bitmap of integer samples hashed as the corpus
// hashes samples: interleaved, `channels` a pixel, 16 bits little-endian.
// `invert` turns every sample into maximum minus sample.
QByteArray gwSampleHash(const CgwBitmapBase& bitmap, int channels, bool invert = false);
// The samples themselves, in that layout.
QByteArray gwSampleBytes(const CgwBitmapBase& bitmap, int channels, bool invert = false);

// The same bitmap as 8-bit RGBA with opaque alpha, red, green and blue
// taken from `order` ({0, 0, 0} for grey).
QByteArray gwRgba8Hash(const CgwBitmapBase& bitmap, const std::array<int, 3>& order = {0, 1, 2});
