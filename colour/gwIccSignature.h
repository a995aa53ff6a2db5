#pragma once

#include <QtGlobal>

// An ICC signature: four characters read as one big-endian number, the way
// tags, types, classes and colour spaces are named in a profile.
constexpr quint32 gwIccSignature(const char (&text)[5])
{
    return (quint32(quint8(text[0])) << 24) | (quint32(quint8(text[1])) << 16) | (quint32(quint8(text[2])) << 8)
           | quint32(quint8(text[3]));
}
