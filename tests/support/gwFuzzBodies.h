#pragma once

#include <QByteArray>

// What the fuzz targets do with one input; the tests replay the inputs kept
// from earlier findings through the same code.
void gwFuzzExifStream(const QByteArray& input);
