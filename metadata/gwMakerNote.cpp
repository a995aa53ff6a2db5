#include "metadata/gwMakerNote.h"

#include <QtEndian>

#include "metadata/gwMemBufferT.h"

#include <cmath>

namespace {
const char kSignature[4] = {'N', 'V', 'I', '1'};
const char kEndMark[4] = {'N', 'O', 'R', 'D'};
} // namespace

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

QByteArray CgwMakerNote::emptyBlock()
{
    return QByteArray(kSignature, 4) + QByteArray(2, '\0') + QByteArray(kEndMark, 4);
}

bool CgwMakerNote::removeRecord(quint16 tag)
{
    if (!hasSignature())
        return false;
    CgwMemBufferT<unsigned char> buffer;
    buffer.append(reinterpret_cast<const unsigned char*>(mBlock.constData()), size_t(mBlock.size()));
    int count = recordCount();
    bool found = false;
    for (int i = 0; i < count;) {
        const size_t at = 6 + 8 * size_t(i);
        if (at + 8 > buffer.size())
            break;
        if (qFromBigEndian<quint16>(buffer.data() + at) == tag) {
            buffer.removeRange(at, at + 8);
            --count;
            found = true;
        } else {
            ++i;
        }
    }
    qToBigEndian<quint16>(quint16(count), buffer.data() + 4);
    mBlock = QByteArray(reinterpret_cast<const char*>(buffer.data()), int(buffer.size()));
    return found;
}

bool CgwMakerNote::setRecord(quint16 tag, quint8 format, qint32 value)
{
    if (format > 1)
        return false;
    if (!hasSignature())
        reset();
    removeRecord(tag);
    uchar record[8];
    qToBigEndian<quint16>(tag, record);
    record[2] = format;
    record[3] = 1;
    qToBigEndian<qint32>(value, record + 4);
    const int count = recordCount() + 1;
    mBlock.insert(mBlock.size() - 4, reinterpret_cast<const char*>(record), 8); // just before "NORD"
    qToBigEndian<quint16>(quint16(count), mBlock.data() + 4);
    return true;
}

bool CgwMakerNote::setFloatRecord(quint16 tag, quint8 format, float value)
{
    if (format > 1)
        return false;
    const float stored = format == 1 ? std::trunc(value * 10000.0f + 0.5f) : std::trunc(value);
    return setRecord(tag, format, qint32(stored));
}
