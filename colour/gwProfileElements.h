#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

// The tagged elements the suite writes into profiles, built as the file
// holds them (big-endian), and the text read back from a description or
// copyright element. A builder returns an empty block for values its format
// cannot hold.
class CgwProfileElements
{
public:
    // Type 'text': the text as Latin-1, zero-ended.
    static QByteArray textBlock(const QString& text);
    // Type 'curv' with one u8Fixed8 number per value; a single value is a
    // plain gamma. Values must lie in [0, 256).
    static QByteArray toneCurveBlock(const QVector<double>& values);
    // Type 'XYZ ': three s15Fixed16 numbers.
    static QByteArray xyzBlock(double x, double y, double z);
    // Type 'mft2' for three channels whose tables and grid are all identity.
    // Grids of 2 to 255 points, tables of 2 to 4096 entries.
    static QByteArray identityLut16Block(int gridPoints, int inputEntries, int outputEntries);

    // The text of a 'desc', 'text' or 'mluc' element (the first of its
    // translations); a null string for anything else or a cut block.
    static QString textOf(const QByteArray& block);
};
