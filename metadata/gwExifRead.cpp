// Reading TIFF-shaped Exif blocks: IFD chains, the Exif and GPS pointers,
// and the maker notes of other makers, parsed as IFDs where they are ones.

#include "files/gwFile.h"
#include "metadata/gwExif.h"

#include <cstring>

namespace {

constexpr int kMaxIfdDepth = 32;
thread_local int tIfdDepth = 0;

// Counts nesting so that a crafted file cannot recurse without end.
struct DepthGuard {
    bool ok;
    DepthGuard() : ok(++tIfdDepth <= kMaxIfdDepth) {}
    ~DepthGuard() { --tIfdDepth; }
};

bool startsWith(const char* block, const char* text, size_t n)
{
    return std::memcmp(block, text, n) == 0;
}

constexpr int kMaxPages = 256;

// The first SubIFD that the IFD at `ifd` names itself, or 0.
qint64 subIfdOf(CgwFile& stream, qint64 base, qint64 ifd)
{
    stream.seek(base + ifd, 0);
    const quint16 n = stream.readUInt16();
    for (quint16 i = 0; i < n; ++i) {
        bool ok = true;
        const quint16 tag = stream.readUInt16(&ok);
        const quint16 type = stream.readUInt16(&ok);
        const quint32 count = stream.readUInt32(&ok);
        const quint32 value = stream.readUInt32(&ok);
        if (!ok)
            return 0;
        if (tag == 0x014A && (type == 4 || type == 13) && count > 0) {
            if (count == 1)
                return value;
            stream.seek(base + value, 0);
            return stream.readUInt32();
        }
    }
    return 0;
}

// The IFDs of the pages in order, at most `pages`: the chain from the
// first, then the first SubIFD a page of the chain names, and so on. The
// walk is done once for all pages and ends at a page seen before, so that
// neither a loop nor a long chain costs more than its length.
std::vector<qint64> pageIfds(CgwFile& stream, qint64 base, qint64 first, int pages)
{
    std::vector<qint64> ifds{first};
    QSet<qint64> seen{first};
    qint64 subIfd = 0;
    while (int(ifds.size()) < pages) {
        const qint64 ifd = ifds.back();
        if (subIfd == 0)
            subIfd = subIfdOf(stream, base, ifd);
        stream.seek(base + ifd, 0);
        const quint16 n = stream.readUInt16();
        stream.seek(12 * qint64(n), 1);
        qint64 next = stream.readUInt32();
        if (next == 0 || next >= stream.size() || seen.contains(next)) {
            next = subIfd;
            subIfd = 0;
        }
        if (next == 0 || seen.contains(next))
            break;
        seen.insert(next);
        ifds.push_back(next);
    }
    return ifds;
}

} // namespace

bool CgwExif::readItems(CgwFile& stream, const CgwExifValue& shape, QByteArray& data)
{
    const int size = gwExifTypeSize(shape.type);
    if (size <= 0) { // type 0 has no items to read
        data.clear();
        return size == 0;
    }
    data.resize(int(qint64(size) * shape.count));
    char* out = data.data();
    for (quint32 i = 0; i < shape.count; ++i, out += size) {
        bool ok = true;
        if (size == 1) {
            const quint8 v = stream.readUInt8(&ok);
            std::memcpy(out, &v, 1);
        } else if (size == 2) {
            const quint16 v = stream.readUInt16(&ok);
            std::memcpy(out, &v, 2);
        } else if (size == 4) {
            const quint32 v = stream.readUInt32(&ok);
            std::memcpy(out, &v, 4);
        } else if (shape.type == 12) {
            const quint64 v = stream.readUInt64(&ok);
            std::memcpy(out, &v, 8);
        } else {
            const quint32 words[2] = {stream.readUInt32(&ok), ok ? stream.readUInt32(&ok) : 0};
            std::memcpy(out, words, 8);
        }
        if (!ok)
            return false;
    }
    return true;
}

void CgwExif::readMakerNote(CgwFile& stream, quint16 tag, qint64 offset)
{
    const quint16 savedOrder = stream.byteOrder();
    const qint64 savedBase = mBaseOffset;
    stream.seek(mBaseOffset + offset, 0);
    char head[10] = {};
    if (stream.read(head, 10) != 10)
        return;
    bool parse = true;
    if (startsWith(head, "KDK", 4) || startsWith(head, "VER", 4) || startsWith(head, "IIII", 5)
        || startsWith(head, "MMMM", 5) || startsWith(head, "KC", 3) || startsWith(head, "MLY", 4)
        || startsWith(head, "NVI1", 5)) {
        parse = false; // not IFDs, or the suite's own note
    } else if (startsWith(head, "Nikon", 6)) {
        mBaseOffset = stream.pos();
        stream.setByteOrder(stream.readUInt16());
        if (stream.readUInt16() != 0x2A)
            parse = false;
        else
            stream.seek(qint64(stream.readUInt32()) - 8, 1);
    } else if (startsWith(head, "OLYMPUS", 8)) {
        mBaseOffset = stream.pos() - 10;
        stream.seek(-2, 1);
        stream.setByteOrder(stream.readUInt16());
        stream.readUInt16();
    } else if (startsWith(head, "FUJIFILM", 8) || startsWith(head, "SONY", 4) || startsWith(head, "Panasonic", 10)) {
        stream.setByteOrder(CgwFile::kLittleEndian);
        stream.seek(2, 1);
    } else if (startsWith(head, "OLYMP", 6) || startsWith(head, "LEICA", 6) || startsWith(head, "Ricoh", 6)
               || startsWith(head, "EPSON", 6)) {
        stream.seek(-2, 1);
    } else if (startsWith(head, "AOC", 4) || startsWith(head, "QVC", 4)) {
        stream.seek(-4, 1);
    } else {
        stream.seek(-10, 1);
    }
    if (parse)
        readIfd(stream, true, tag == 0x2040);
    mBaseOffset = savedBase;
    stream.setByteOrder(savedOrder);
}

void CgwExif::readIfd(CgwFile& stream, bool parseMakerNotes, bool highNibble)
{
    DepthGuard depth;
    const qint64 at = stream.pos();
    if (!depth.ok || mVisited.contains(at))
        return;
    mVisited.insert(at);
    const qint64 size = stream.size();
    const qint64 remaining = size - at;
    const quint16 n = stream.readUInt16();
    if (qint64(n) * 12 + 6 > remaining)
        return;
    for (quint16 i = 0; i < n; ++i) {
        quint16 tag = stream.readUInt16();
        CgwExifValue value;
        value.type = stream.readUInt16();
        value.count = stream.readUInt32();
        const qint64 field = stream.pos();
        const qint64 next = field + 4;
        if (value.type > 13)
            return; // no next IFD is followed either
        const qint64 length = qint64(gwExifTypeSize(value.type)) * value.count;
        if (length > 0xFFFFFFFFLL || length > remaining) {
            stream.seek(next, 0);
            continue;
        }
        if (highNibble)
            tag |= 0xF000;
        if (tag == 0x8769 || tag == 0x8825) {
            const qint64 offset = stream.readUInt32();
            if (offset > size - length)
                return;
            stream.seek(mBaseOffset + offset, 0);
            readIfd(stream, true, false);
        } else if (tag == 0x0190 || tag == 0xA005) {
            // interoperability: not kept
        } else {
            if (tag == 0x927C || tag == 0x2040) {
                const qint64 offset = stream.readUInt32();
                if (offset > size - length)
                    return;
                if (parseMakerNotes)
                    readMakerNote(stream, tag, offset);
                stream.seek(field, 0);
            }
            if (tag == 0x0100 && value.type == 7)
                tag = 0xFF07; // a foreign tag that must not pass for the width
            if (!mValues.contains(tag)) {
                if (length > 4) {
                    const qint64 offset = stream.readUInt32();
                    if (size - length < offset) {
                        stream.seek(next, 0);
                        continue;
                    }
                    stream.seek(mBaseOffset + offset, 0);
                }
                if (readItems(stream, value, value.data))
                    mValues.insert(tag, value);
            }
        }
        stream.seek(next, 0);
    }
    const qint64 nextIfd = stream.readUInt32();
    if (nextIfd != 0 && nextIfd < size) {
        stream.seek(mBaseOffset + nextIfd, 0);
        readIfd(stream, false, false);
    }
}

bool CgwExif::readHeader(CgwFile& stream, qint64& firstIfd)
{
    mBaseOffset = stream.pos();
    mVisited.clear();
    char order[2] = {0, 0};
    if (stream.read(order, 2) != 2)
        return false;
    const quint16 word = quint16((quint8(order[0]) << 8) | quint8(order[1]));
    if (word != kLittleEndian && word != kBigEndian)
        return false;
    stream.setByteOrder(word);
    mByteOrder = word;
    stream.readUInt16(); // the magic is not tested
    firstIfd = stream.readUInt32();
    return firstIfd >= 8;
}

void CgwExif::readPage(CgwFile& stream, qint64 ifd)
{
    stream.seek(mBaseOffset + ifd, 0);
    readIfd(stream, true, false);
    stream.seek(mBaseOffset, 0);
}

bool CgwExif::readFromStream(CgwFile& stream, int page)
{
    qint64 first = 0;
    if (!readHeader(stream, first))
        return false;
    const std::vector<qint64> ifds = pageIfds(stream, mBaseOffset, first, page + 1);
    if (int(ifds.size()) <= page)
        return false;
    if (page > 0)
        mValues.clear();
    readPage(stream, ifds[size_t(page)]);
    return true;
}

std::vector<CgwExif> CgwExif::readAllPages(CgwFile& stream)
{
    std::vector<CgwExif> pages;
    const qint64 start = stream.pos();
    CgwExif page;
    qint64 first = 0;
    if (page.readHeader(stream, first)) {
        const CgwExif fresh = page;
        for (const qint64 ifd : pageIfds(stream, start, first, kMaxPages)) {
            page = fresh;
            stream.setByteOrder(page.mByteOrder);
            page.readPage(stream, ifd);
            pages.push_back(page);
        }
    }
    stream.seek(start, 0);
    return pages;
}
