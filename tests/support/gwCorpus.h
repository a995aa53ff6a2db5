#pragma once

#include <QMap>
#include <QString>

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
