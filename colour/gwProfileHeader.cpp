#include "colour/gwProfileHeader.h"

#include <QBuffer>
#include <QDataStream>

namespace {

// One field list for both directions, so that reading and writing cannot
// drift apart.
template <typename Header, typename Visit>
void forEachField(Header& h, Visit visit)
{
    visit(h.size);
    visit(h.cmmType);
    visit(h.version);
    visit(h.deviceClass);
    visit(h.colorSpace);
    visit(h.pcs);
    visit(h.year);
    visit(h.month);
    visit(h.day);
    visit(h.hour);
    visit(h.minute);
    visit(h.second);
    visit(h.signature);
    visit(h.platform);
    visit(h.flags);
    visit(h.manufacturer);
    visit(h.model);
    visit(h.attributes);
    visit(h.renderingIntent);
    visit(h.illuminantX);
    visit(h.illuminantY);
    visit(h.illuminantZ);
}

} // namespace

bool SgwProfileHeader::read(const QByteArray& bytes, SgwProfileHeader& header)
{
    if (bytes.size() < kLength)
        return false;
    QDataStream stream(bytes);
    stream.setByteOrder(QDataStream::BigEndian);
    forEachField(header, [&stream](auto& value) { stream >> value; });
    return stream.status() == QDataStream::Ok;
}

bool SgwProfileHeader::writeInto(QByteArray& bytes) const
{
    QBuffer buffer(&bytes);
    if (bytes.size() < kLength || !buffer.open(QIODevice::ReadWrite))
        return false;
    QDataStream stream(&buffer);
    stream.setByteOrder(QDataStream::BigEndian);
    forEachField(*this, [&stream](const auto& value) { stream << value; });
    return stream.status() == QDataStream::Ok;
}

void SgwProfileHeader::setDateTime(const QDateTime& time)
{
    const QDate date = time.date();
    const QTime clock = time.time();
    year = quint16(date.year());
    month = quint16(date.month());
    day = quint16(date.day());
    hour = quint16(clock.hour());
    minute = quint16(clock.minute());
    second = quint16(clock.second());
}
