#pragma once

#include <QByteArray>
#include <QtGlobal>

// Bytes of one item of each TIFF field type 0 to 13; -1 for an invalid type.
int gwExifTypeSize(int type);

// One tag's value: TIFF type, item count, and the items as owned bytes.
struct CgwExifValue {
    qint32 type = 0;
    quint32 count = 0;
    QByteArray data;

    bool operator==(const CgwExifValue& other) const
    {
        return type == other.type && count == other.count && data == other.data;
    }
    bool operator!=(const CgwExifValue& other) const { return !(*this == other); }
};
