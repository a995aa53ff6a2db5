#pragma once

#include <QByteArray>

// What the fuzz targets do with one input; the tests replay the inputs kept
// from earlier findings through the same code.
void gwFuzzExifStream(const QByteArray& input);
// The image readers open their files by location: the input goes to a
// temporary file of this process first.
void gwFuzzBmp(const QByteArray& input);
void gwFuzzJpeg(const QByteArray& input);
void gwFuzzTiff(const QByteArray& input);
// A parameter document, every token of every value decoded, and the set
// written and read again; a set that does not come back aborts.
void gwFuzzParameterXml(const QByteArray& input);

// The kept inputs of one target (tests/data/fuzz/TARGET) through its body;
// false when the folder holds none.
bool gwReplayFuzzFindings(const char* target, void (*body)(const QByteArray&));
