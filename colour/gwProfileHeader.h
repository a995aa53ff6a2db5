#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QtGlobal>

// The 128-byte header of an ICC profile, the fields a caller may read or set.
// Numbers are kept as the file has them: signatures as big-endian words, the
// illuminant as raw s15Fixed16 values.
struct SgwProfileHeader {
    static constexpr int kLength = 128;

    quint32 size = 0;
    quint32 cmmType = 0;
    quint32 version = 0;
    quint32 deviceClass = 0;
    quint32 colorSpace = 0;
    quint32 pcs = 0;
    quint16 year = 0;
    quint16 month = 0;
    quint16 day = 0;
    quint16 hour = 0;
    quint16 minute = 0;
    quint16 second = 0;
    quint32 signature = 0;
    quint32 platform = 0;
    quint32 flags = 0;
    quint32 manufacturer = 0;
    quint32 model = 0;
    quint64 attributes = 0;
    quint32 renderingIntent = 0;
    qint32 illuminantX = 0;
    qint32 illuminantY = 0;
    qint32 illuminantZ = 0;

    // False when fewer than 128 bytes are given.
    static bool read(const QByteArray& bytes, SgwProfileHeader& header);
    // Overwrites the fields above at the start of `bytes`, which must hold a
    // whole header; the creator, the profile id and the reserved bytes stay.
    bool writeInto(QByteArray& bytes) const;

    void setDateTime(const QDateTime& time);
};
