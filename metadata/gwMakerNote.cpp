#include "metadata/gwMakerNote.h"

#include <QtEndian>

namespace {
const char kSignature[4] = {'N', 'V', 'I', '1'};
}

bool CgwMakerNote::hasSignature() const
{
    return mBlock.size() >= 6 && mBlock.startsWith(QByteArray::fromRawData(kSignature, 4));
}

int CgwMakerNote::recordCount() const
{
    if (!hasSignature())
        return 0;
    return qFromBigEndian<quint16>(mBlock.constData() + 4);
}

bool CgwMakerNote::record(int index, Record* out) const
{
    if (!hasSignature() || index < 0 || index > recordCount())
        return false;
    // Index N passes the count test and is stopped here.
    if (8 * qint64(index) + 13 >= mBlock.size())
        return false;
    const char* p = mBlock.constData() + 6 + 8 * index;
    out->tag = qFromBigEndian<quint16>(p);
    out->format = static_cast<quint8>(p[2]);
    out->third = static_cast<quint8>(p[3]);
    out->value = qFromBigEndian<qint32>(p + 4);
    return true;
}

float CgwMakerNote::valueByTag(quint16 tag, bool* found) const
{
    if (found)
        *found = false;
    const int count = recordCount();
    Record r;
    for (int i = 0; i < count && record(i, &r); ++i) {
        if (r.tag != tag)
            continue;
        if (found)
            *found = true;
        return r.format == 1 ? float(r.value / 10000.0) : float(r.value);
    }
    return 0.0f;
}
