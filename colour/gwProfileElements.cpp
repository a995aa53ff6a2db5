#include "colour/gwProfileElements.h"

#include "colour/gwIccSignature.h"

#include <QDataStream>
#include <QtEndian>

#include <cmath>
#include <limits>

namespace {

constexpr int kHeadLength = 8; // type signature and four reserved bytes

// A writer for one element: big-endian numbers after the type's head.
class ElementWriter
{
public:
    explicit ElementWriter(quint32 type) : mStream(&mBlock, QIODevice::WriteOnly)
    {
        mStream.setByteOrder(QDataStream::BigEndian);
        mStream << type << quint32(0);
    }
    QDataStream& stream() { return mStream; }
    // The block, zero-padded to `length` when that is longer.
    QByteArray finish(int length = 0)
    {
        if (mStream.status() != QDataStream::Ok)
            return QByteArray();
        if (mBlock.size() < length)
            mBlock.append(QByteArray(length - mBlock.size(), '\0'));
        return mBlock;
    }

private:
    QByteArray mBlock;
    QDataStream mStream;
};

// trunc(v * scale + 0.5) when that fits [low, high].
bool fixedPoint(double v, double scale, double low, double high, qint64& out)
{
    const double scaled = std::trunc(v * scale + 0.5);
    if (!(scaled >= low && scaled <= high))
        return false;
    out = qint64(scaled);
    return true;
}

// Entry i of a straight table of n entries over 0..65535, in float as the
// tables have always been computed.
quint16 lineEntry(int i, int n)
{
    const float step = 65535.0f / float(n - 1);
    return quint16(std::trunc(float(i) * step + 0.5f));
}

void writeLine(QDataStream& stream, int n)
{
    for (int i = 0; i < n; ++i)
        stream << lineEntry(i, n);
}

// An element with an empty text still has a text: never a null string.
QString nonNull(const QString& text)
{
    return text.isNull() ? QString(QLatin1String("")) : text;
}

QString latin1UpToZero(const QByteArray& bytes)
{
    const int end = bytes.indexOf('\0');
    return nonNull(QString::fromLatin1(end < 0 ? bytes : bytes.left(end)));
}

QString textOfMluc(const QByteArray& block)
{
    QDataStream in(block);
    in.setByteOrder(QDataStream::BigEndian);
    in.skipRawData(kHeadLength);
    quint32 records = 0, recordSize = 0, length = 0, offset = 0;
    quint16 language = 0, country = 0;
    in >> records >> recordSize >> language >> country >> length >> offset;
    if (in.status() != QDataStream::Ok || records == 0 || quint64(offset) + length > quint64(block.size()))
        return QString();
    QString text;
    const auto* units = reinterpret_cast<const uchar*>(block.constData() + offset);
    for (quint32 i = 0; i + 1 < length; i += 2)
        text.append(QChar(qFromBigEndian<quint16>(units + i)));
    return nonNull(text);
}

} // namespace

QByteArray CgwProfileElements::textBlock(const QString& text)
{
    ElementWriter writer(gwIccSignature("text"));
    const QByteArray latin1 = text.toLatin1();
    writer.stream().writeRawData(latin1.constData(), latin1.size());
    writer.stream() << quint8(0);
    return writer.finish();
}

QByteArray CgwProfileElements::toneCurveBlock(const QVector<double>& values)
{
    ElementWriter writer(gwIccSignature("curv"));
    writer.stream() << quint32(values.size());
    for (double v : values) {
        qint64 number = 0;
        if (!fixedPoint(v, 256.0, 0.0, 65535.0, number))
            return QByteArray();
        writer.stream() << quint16(number);
    }
    return writer.finish(16 + 2 * qMax(values.size() - 1, 0));
}

QByteArray CgwProfileElements::xyzBlock(double x, double y, double z)
{
    ElementWriter writer(gwIccSignature("XYZ "));
    for (double v : {x, y, z}) {
        qint64 number = 0;
        if (!fixedPoint(v, 65536.0, std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max(), number))
            return QByteArray();
        writer.stream() << qint32(number);
    }
    return writer.finish();
}

QByteArray CgwProfileElements::identityLut16Block(int gridPoints, int inputEntries, int outputEntries)
{
    constexpr int kChannels = 3;
    if (gridPoints < 2 || gridPoints >= 256 || inputEntries < 2 || inputEntries > 4096 || outputEntries < 2
        || outputEntries > 4096)
        return QByteArray();
    const qint64 nodes = qint64(gridPoints) * gridPoints * gridPoints;
    const qint64 length = (kChannels * nodes + qint64(inputEntries + outputEntries) * kChannels) * 2 + 52;
    ElementWriter writer(gwIccSignature("mft2"));
    QDataStream& out = writer.stream();
    out << quint8(kChannels) << quint8(kChannels) << quint8(gridPoints) << quint8(0);
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            out << qint32(row == column ? 0x10000 : 0);
    out << quint16(inputEntries) << quint16(outputEntries);
    for (int c = 0; c < kChannels; ++c)
        writeLine(out, inputEntries);
    // The first channel varies slowest; each node holds its own coordinates.
    for (int a = 0; a < gridPoints; ++a)
        for (int b = 0; b < gridPoints; ++b)
            for (int c = 0; c < gridPoints; ++c)
                out << lineEntry(a, gridPoints) << lineEntry(b, gridPoints) << lineEntry(c, gridPoints);
    for (int c = 0; c < kChannels; ++c)
        writeLine(out, outputEntries);
    const QByteArray block = writer.finish();
    return block.size() == length ? block : QByteArray();
}

QString CgwProfileElements::textOf(const QByteArray& block)
{
    if (block.size() < kHeadLength)
        return QString();
    const quint32 type = qFromBigEndian<quint32>(block.constData());
    if (type == gwIccSignature("text"))
        return latin1UpToZero(block.mid(kHeadLength));
    if (type == gwIccSignature("mluc"))
        return textOfMluc(block);
    if (type != gwIccSignature("desc") || block.size() < 12)
        return QString();
    const quint32 count = qFromBigEndian<quint32>(block.constData() + kHeadLength);
    return latin1UpToZero(block.mid(12, int(qMin<quint64>(count, quint64(block.size() - 12)))));
}
