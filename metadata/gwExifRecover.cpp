// Finding the suite's maker note in a file whose entry for it is damaged.

#include "files/gwFile.h"
#include "metadata/gwExif.h"

#include <cstring>

namespace {

// Steps forward byte by byte, at most `tries` times, until the ten bytes read
// start with `mark` and a zero; leaves the stream at the mark.
bool findMark(CgwFile& stream, const char* mark, int tries)
{
    for (int i = 0; i < tries; ++i) {
        stream.seek(1, 1);
        char bytes[10] = {};
        if (stream.read(bytes, 10) < 5)
            return false;
        if (std::memcmp(bytes, mark, 4) == 0 && bytes[4] == 0) {
            stream.seek(-10, 1);
            return true;
        }
        stream.seek(-10, 1);
    }
    return false;
}

} // namespace

bool CgwExif::recoverFrom(CgwFile& stream, qint64 ifdOffset, qint64* countPosition, qint64* length, qint64* offset)
{
    if (ifdOffset < 8)
        return false;
    const qint64 size = stream.size();
    stream.seek(mBaseOffset + ifdOffset, 0);
    const qint64 remaining = size - stream.pos();
    const quint16 n = stream.readUInt16();
    if (qint64(n) * 12 + 6 > remaining)
        return false;
    for (quint16 i = 0; i < n; ++i) {
        const quint16 tag = stream.readUInt16();
        const quint16 type = stream.readUInt16();
        const quint32 count = stream.readUInt32();
        const qint64 next = stream.pos() + 4;
        if (type > 13)
            return false;
        const qint64 bytes = qint64(gwExifTypeSize(type)) * count;
        if (bytes > 0xFFFFFFFFLL || bytes > remaining || (tag != 0x8769 && tag != 0x8825)) {
            stream.seek(next, 0);
            continue;
        }
        stream.seek(mBaseOffset + stream.readUInt32(), 0);
        stream.readUInt16(); // entries of the sub-IFD
        const quint16 firstTag = stream.readUInt16();
        const quint16 firstType = stream.readUInt16();
        const qint64 countAt = stream.pos();
        stream.readUInt32();
        if (firstTag == 0x927C && firstType <= 13 && gwExifTypeSize(firstType) > 0) {
            if (!findMark(stream, "NVI1", 40))
                return false;
            const qint64 start = stream.pos();
            if (start == 0 || !findMark(stream, "NORD", 300))
                return false;
            const qint64 noteLength = stream.pos() - start + 4;
            stream.seek(start, 0);
            CgwExifValue value{firstType, quint32(noteLength / gwExifTypeSize(firstType)), QByteArray()};
            if (!readItems(stream, value, value.data))
                return false;
            mValues.insert(0x927C, value);
            *length = noteLength;
            *offset = start - mBaseOffset;
            *countPosition = countAt;
            return true;
        }
        stream.seek(next, 0);
    }
    return false;
}

bool CgwExif::recoverMakerNote(CgwFile& stream, qint64* countPosition, qint64* length, qint64* offset,
                               qint64 ifdOffset)
{
    resetMakerNote();
    const qint64 restore = stream.pos();
    mBaseOffset = restore;
    char order[2] = {0, 0};
    bool found = false;
    if (stream.read(order, 2) == 2) {
        const quint16 word = quint16((quint8(order[0]) << 8) | quint8(order[1]));
        if (word == kLittleEndian || word == kBigEndian) {
            stream.setByteOrder(word);
            stream.readUInt16(); // magic
            bool headerOffsetOdd = false;
            if (ifdOffset == -1) {
                ifdOffset = stream.readUInt32();
                headerOffsetOdd = ifdOffset != 8;
            }
            qint64 countAt = 0, noteLength = 0, noteOffset = 0;
            found = recoverFrom(stream, ifdOffset, &countAt, &noteLength, &noteOffset)
                    || (headerOffsetOdd && recoverFrom(stream, 8, &countAt, &noteLength, &noteOffset));
            if (found) {
                if (countPosition)
                    *countPosition = countAt;
                if (length)
                    *length = noteLength;
                if (offset)
                    *offset = noteOffset;
            }
        }
    }
    stream.seek(restore, 0);
    return found;
}
