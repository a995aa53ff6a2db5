// Known tags, typed values, and writing TIFF-shaped Exif blocks.

#include "Sourcen/Image/gwBitmapBase.h"
#include "diagnostics/gwDebug.h"
#include "diagnostics/gwSystem.h"
#include "metadata/gwExif.h"
#include "settings/gwFilterOptions.h"
#include "settings/gwParamKeys.h"

#include <QDateTime>
#include <QHash>
#include <QtEndian>

#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>

namespace {

struct KnownTag {
    quint16 tag;
    int type;
};

const KnownTag kKnownTags[] = {
#include "metadata/gwExifKnownTags.inc"
};

// Built on first use, before any worker reads files.
const QHash<quint16, int>& knownTags()
{
    static const QHash<quint16, int> sTable = [] {
        QHash<quint16, int> table;
        for (const KnownTag& known : kKnownTags)
            table.insert(known.tag, known.type);
        return table;
    }();
    return sTable;
}

void appendRange(std::vector<quint16>& list, quint16 first, quint16 last)
{
    for (int tag = first; tag <= last; ++tag)
        list.push_back(quint16(tag));
}

const std::vector<quint16>& exifOnlyTags()
{
    static const std::vector<quint16> sTags = [] {
        std::vector<quint16> t = {0x829A, 0x829D, 0x8822, 0x8824, 0x8827, 0x8828, 0x9000, 0x9003, 0x9004, 0x9101, 0x9102};
        appendRange(t, 0x9201, 0x920A);
        for (quint16 tag : {0x9214, 0x927C, 0x9286})
            t.push_back(tag);
        appendRange(t, 0x9290, 0x9292);
        appendRange(t, 0xA000, 0xA004);
        for (quint16 tag : {0xA20B, 0xA20C})
            t.push_back(tag);
        appendRange(t, 0xA20E, 0xA210);
        for (quint16 tag : {0xA214, 0xA215, 0xA217})
            t.push_back(tag);
        appendRange(t, 0xA300, 0xA302);
        appendRange(t, 0xA401, 0xA40C);
        t.push_back(0xA420);
        return t;
    }();
    return sTags;
}

// Items in host order, written in the block's order.
void appendItems(QByteArray& out, const CgwExifValue& value, bool bigEndian)
{
    const int size = gwExifTypeSize(value.type);
    const char* in = value.data.constData();
    for (quint32 i = 0; i < value.count && qint64(i + 1) * size <= value.data.size(); ++i, in += size) {
        char bytes[8];
        if (size == 1) {
            bytes[0] = in[0];
        } else if (size == 2 || size == 4 || value.type == 12) {
            std::memcpy(bytes, in, size_t(size));
            if (bigEndian != (Q_BYTE_ORDER == Q_BIG_ENDIAN))
                std::reverse(bytes, bytes + size);
        } else { // two 32-bit words
            for (int w = 0; w < 2; ++w) {
                std::memcpy(bytes + 4 * w, in + 4 * w, 4);
                if (bigEndian != (Q_BYTE_ORDER == Q_BIG_ENDIAN))
                    std::reverse(bytes + 4 * w, bytes + 4 * w + 4);
            }
        }
        out.append(bytes, size);
    }
}

void appendNumber(QByteArray& out, quint32 value, int bytes, bool bigEndian)
{
    char b[4];
    if (bigEndian)
        qToBigEndian(value, b);
    else
        qToLittleEndian(value, b);
    out.append(bigEndian ? b + 4 - bytes : b, bytes);
}

// A file's float as an integer, held to the range instead of undefined.
qint64 heldToInt64(double value)
{
    if (!(value == value))
        return 0;
    if (value >= 9.2e18)
        return std::numeric_limits<qint64>::max();
    if (value <= -9.2e18)
        return std::numeric_limits<qint64>::min();
    return qint64(value);
}

} // namespace

int gwExifKnownTagType(quint16 tag)
{
    return knownTags().value(tag, 0);
}

bool CgwExif::setIntValue(quint16 tag, qint64 value)
{
    const int type = gwExifKnownTagType(tag);
    CgwExifValue v{type, 1, QByteArray()};
    switch (type) {
    case 1: case 6: case 7: { const quint8 x = quint8(value); v.data = QByteArray(reinterpret_cast<const char*>(&x), 1); break; }
    case 3: case 8: { const quint16 x = quint16(value); v.data = QByteArray(reinterpret_cast<const char*>(&x), 2); break; }
    case 4: case 9: case 13: { const quint32 x = quint32(value); v.data = QByteArray(reinterpret_cast<const char*>(&x), 4); break; }
    case 5: case 10: return setRationalValue(tag, double(value));
    default: return false;
    }
    mValues.insert(tag, v);
    return true;
}

bool CgwExif::setRationalValue(quint16 tag, double value)
{
    const int type = gwExifKnownTagType(tag);
    if ((type != 5 && type != 10) || !std::isfinite(value) || std::fabs(value) > 2.0e5)
        return false; // four decimals must fit the 32-bit numerator
    // Four decimals are kept; the fraction is reduced.
    qint64 numerator = std::llround(value * 10000.0);
    qint64 denominator = 10000;
    const qint64 divisor = std::gcd(numerator < 0 ? -numerator : numerator, denominator);
    if (divisor > 1) {
        numerator /= divisor;
        denominator /= divisor;
    }
    const qint32 words[2] = {qint32(numerator), qint32(denominator)};
    mValues.insert(tag, CgwExifValue{type, 1, QByteArray(reinterpret_cast<const char*>(words), 8)});
    return true;
}

bool CgwExif::setTextValue(quint16 tag, const QString& text)
{
    const int type = gwExifKnownTagType(tag);
    if (type != 2 && type != 7 && type != 1)
        return false;
    QByteArray bytes = text.toUtf8();
    if (type == 2)
        bytes.append('\0');
    mValues.insert(tag, CgwExifValue{type, quint32(bytes.size()), bytes});
    return true;
}

qint64 CgwExif::getInt(quint16 tag, int index) const
{
    const CgwExifValue v = getValue(tag);
    const int size = gwExifTypeSize(v.type);
    if (index < 0 || quint32(index) >= v.count || size <= 0 || (index + 1) * size > v.data.size())
        return 0;
    const char* p = v.data.constData() + index * size;
    switch (v.type) {
    case 1: case 7: return quint8(p[0]);
    case 6: return qint8(p[0]);
    case 3: { quint16 x; std::memcpy(&x, p, 2); return x; }
    case 8: { qint16 x; std::memcpy(&x, p, 2); return x; }
    case 4: case 13: { quint32 x; std::memcpy(&x, p, 4); return x; }
    case 9: { qint32 x; std::memcpy(&x, p, 4); return x; }
    case 5: case 10: case 11: case 12: return heldToInt64(getDouble(tag, index));
    default: return 0; // text and undefined bytes are no number
    }
}

bool CgwExif::getRational(quint16 tag, int index, qint32* numerator, qint32* denominator) const
{
    const CgwExifValue v = getValue(tag);
    if ((v.type != 5 && v.type != 10) || index < 0 || quint32(index) >= v.count || (index + 1) * 8 > v.data.size())
        return false;
    qint32 words[2];
    std::memcpy(words, v.data.constData() + 8 * index, 8);
    *numerator = words[0];
    *denominator = words[1];
    return true;
}

double CgwExif::getDouble(quint16 tag, int index) const
{
    const CgwExifValue v = getValue(tag);
    qint32 n = 0;
    qint32 d = 0;
    if (getRational(tag, index, &n, &d)) {
        if (d == 0)
            return 0.0;
        return v.type == 5 ? double(quint32(n)) / double(quint32(d)) : double(n) / double(d);
    }
    if ((v.type == 11 || v.type == 12) && index >= 0 && quint32(index) < v.count) {
        const int size = gwExifTypeSize(v.type);
        if ((index + 1) * size > v.data.size())
            return 0.0;
        if (v.type == 11) {
            float f;
            std::memcpy(&f, v.data.constData() + 4 * index, 4);
            return f;
        }
        double x;
        std::memcpy(&x, v.data.constData() + 8 * index, 8);
        return x;
    }
    switch (v.type) {
    case 1: case 3: case 4: case 6: case 8: case 9: case 13: return double(getInt(tag, index));
    default: return 0.0;
    }
}

void CgwExif::selectWritableTags()
{
    mTagList = {0x0100, 0x0101, 0x0112, 0x011A, 0x011B, 0x0128, 0x0201, 0x0202, 0x013E, 0x013F, 0x0214, 0x0132,
                0x010E, 0x010F, 0x0110, 0x0131, 0x89AB, 0x89AC, 0x013B, 0x8298, 0x8769, 0x8825, 0x83BB};
    const std::vector<quint16>& exif = exifOnlyTags();
    mTagList.insert(mTagList.end(), exif.begin(), exif.end());
    appendRange(mTagList, 0x000B, 0x001E);
    appendRange(mTagList, 0xFF10, 0xFF15);
}

void CgwExif::selectExifTagsOnly()
{
    mTagList = exifOnlyTags();
}

bool CgwExif::writeTiffBlock(QByteArray& block)
{
    const bool big = mByteOrder == kBigEndian;
    block.append(big ? "MM" : "II", 2);
    appendNumber(block, 42, 2, big);
    appendNumber(block, 8, 4, big);
    selectWritableTags();
    return writeIfd(block, 0, 8);
}

bool CgwExif::writeIfd(QByteArray& block, int level, quint32 offset)
{
    return writeIfdAt(block, level, offset, 0);
}

bool CgwExif::writeIfdAt(QByteArray& block, int level, quint32 offset, int depth)
{
    const bool big = mByteOrder == kBigEndian;
    const auto listed = [this](quint16 tag) {
        return std::find(mTagList.begin(), mTagList.end(), tag) != mTagList.end();
    };
    // The entries that will be written, decided first, so that the count and
    // every offset agree with what follows.
    std::vector<std::pair<quint16, QByteArray>> subBlocks;
    std::vector<quint16> entries;
    for (auto it = mValues.constBegin(); it != mValues.constEnd(); ++it) {
        const quint16 tag = it.key();
        if (!gwExifKnownTagType(tag) || !listed(tag) || it->count == 0 || it->type >= 13 || it->type < 1)
            continue;
        entries.push_back(tag);
    }
    if (entries.empty()) {
        gwDebugString(QStringLiteral("Warning: No valid tags found."));
        return false;
    }
    // Sub-IFDs are laid out once the entry count is known; a pointer whose
    // sub-block holds nothing is dropped, and the layout made again.
    for (;;) {
        quint32 extra = offset + quint32(12 * entries.size() + 6);
        QByteArray table;
        QByteArray overflow;
        appendNumber(table, quint32(entries.size()), 2, big);
        std::vector<quint16> kept;
        for (quint16 tag : entries) {
            const CgwExifValue& value = mValues[tag];
            QByteArray data;
            const bool pointer = tag == 0x8769 || tag == 0x8825;
            if (pointer) {
                const int subLevel = tag == 0x8769 ? 1 : 2;
                if (level == subLevel || depth >= 2 || !writeIfdAt(data, subLevel, extra, depth + 1) || data.size() <= 4)
                    continue;
            } else {
                appendItems(data, value, big);
            }
            kept.push_back(tag);
            appendNumber(table, tag, 2, big);
            appendNumber(table, quint32(value.type), 2, big);
            appendNumber(table, value.count, 4, big);
            if (!pointer && data.size() <= 4) {
                table.append(data).append(QByteArray(4 - data.size(), '\0'));
            } else {
                appendNumber(table, extra, 4, big);
                overflow.append(data);
                extra += quint32(data.size());
            }
        }
        if (kept.size() == entries.size()) {
            appendNumber(table, 0, 4, big);
            block.append(table).append(overflow);
            return true;
        }
        entries = kept;
        if (entries.empty()) {
            gwDebugString(QStringLiteral("Warning: No valid tags found."));
            return false;
        }
    }
}

void CgwExif::fillFromBitmap(const CgwBitmapBase& bitmap)
{
    const QSize size = bitmap.size();
    if (size.width() <= 0 || size.height() <= 0)
        return;
    setIntValue(0x0100, size.width());
    setIntValue(0x0101, size.height());
    setIntValue(0x0112, 1);
    setRationalValue(0x011A, bitmap.resolution().x());
    setRationalValue(0x011B, bitmap.resolution().y());
    setIntValue(0x0128, 2);

    // A transfer function of the bitmap's gamma, one entry for each sample value.
    const int bits = std::min(16, std::max(1, int(bitmap.head().mBitDepth)));
    const int n = 1 << bits;
    const float gamma = bitmap.gamma();
    QByteArray table(n * 2, '\0');
    for (int i = 1; i < n; ++i) {
        const quint16 entry = quint16(std::floor(std::pow(float(i) / float(n - 1), gamma) * 65535.0f + 0.5f));
        std::memcpy(table.data() + 2 * i, &entry, 2);
    }
    mValues.insert(0x012D, CgwExifValue{3, quint32(n), table});

    for (quint16 tag : {0x013E, 0x0201, 0x0202, 0x013F, 0x0214, 0xA001})
        mValues.remove(tag);
    const QDateTime now = QDateTime::currentDateTime();
    setTextValue(0x0132, QString::asprintf("%04d.%02d.%02d %02d:%02d:%02d", now.date().year(), now.date().month(),
                                           now.date().day(), now.time().hour(), now.time().minute(),
                                           now.time().second()));
    // The configured scanner: its first word is the make, the next two the model.
    const QStringList words = CgwFilterOptions::instance()
                                  .textOption(GgwParam_PrefsScannerName)
                                  .split(QLatin1Char(' '), Qt::SkipEmptyParts);
    const QString make = words.value(0);
    const QString model = words.mid(1, 2).join(QLatin1Char(' '));
    if (!make.isEmpty() && !model.isEmpty()) {
        setTextValue(0x010F, make);
        setTextValue(0x0110, model);
    }
    setTextValue(0x0131, CgwSystem::applicationName() + QLatin1Char(' ') + CgwSystem::applicationVersion(true));
    setIntValue(0xA002, size.width());
    setIntValue(0xA003, size.height());
}
