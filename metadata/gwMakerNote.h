#pragma once

#include <QByteArray>
#include <QtGlobal>

// The suite's private maker note, the value of Exif tag 0x927C: "NVI1", a
// big-endian record count, eight-byte records, "NORD". Big-endian inside
// whatever the byte order of the enclosing TIFF.
class CgwMakerNote
{
public:
    static constexpr quint16 kExifTag = 0x927C;

    struct Record {
        quint16 tag = 0;
        quint8 format = 0; // 0 plain integer, 1 fixed point with four decimals
        quint8 third = 0;
        qint32 value = 0;
    };

    CgwMakerNote() = default;
    explicit CgwMakerNote(const QByteArray& block) : mBlock(block) {}

    const QByteArray& block() const { return mBlock; }
    bool isEmpty() const { return mBlock.isEmpty(); }
    bool operator==(const CgwMakerNote& other) const { return mBlock == other.mBlock; }
    bool operator!=(const CgwMakerNote& other) const { return !(*this == other); }

    // True when the block starts with the signature.
    bool hasSignature() const;
    // The count field; 0 without a signature.
    int recordCount() const;
    // Record number `index`; false past the records or the block's end.
    bool record(int index, Record* out) const;
    // The first record of `tag`, as a float: divided by 10000 for format 1.
    float valueByTag(quint16 tag, bool* found) const;

    // "NVI1", no records, "NORD".
    static QByteArray emptyBlock();
    void reset() { mBlock = emptyBlock(); }
    // Adds a record behind all others, after removing every record of the
    // same tag. A block without the signature (a foreign note) is replaced by
    // an empty one first. False for formats other than 0 and 1.
    bool setRecord(quint16 tag, quint8 format, qint32 value);
    // In single precision: value * 10000 rounded for format 1, truncated for format 0.
    bool setFloatRecord(quint16 tag, quint8 format, float value);
    // True when a record of the tag was there.
    bool removeRecord(quint16 tag);

private:
    QByteArray mBlock;
};
