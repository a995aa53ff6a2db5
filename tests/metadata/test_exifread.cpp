// Reading Exif blocks built here byte by byte, in both byte orders.

#include "files/gwFile.h"
#include "metadata/gwExif.h"
#include "metadata/gwMakerNote.h"

#include <QtEndian>

#include <cstring>

#include <gtest/gtest.h>

namespace {

// Builds a TIFF-shaped block: header, IFDs of 12-byte entries, data behind.
class Block
{
public:
    explicit Block(bool bigEndian) : mBig(bigEndian)
    {
        mBytes.append(bigEndian ? "MM" : "II");
        put16(42);
        put32(8);
    }
    void put16(quint16 v)
    {
        char b[2];
        mBig ? qToBigEndian(v, b) : qToLittleEndian(v, b);
        mBytes.append(b, 2);
    }
    void put32(quint32 v)
    {
        char b[4];
        mBig ? qToBigEndian(v, b) : qToLittleEndian(v, b);
        mBytes.append(b, 4);
    }
    void entry(quint16 tag, quint16 type, quint32 count, quint32 field)
    {
        put16(tag);
        put16(type);
        put32(count);
        put32(field);
    }
    // A short value sits left-aligned in the four bytes of its field.
    void shortEntry(quint16 tag, quint16 value)
    {
        put16(tag);
        put16(3);
        put32(1);
        put16(value);
        put16(0);
    }
    int size() const { return mBytes.size(); }
    void append(const QByteArray& raw) { mBytes.append(raw); }
    QByteArray bytes() const { return mBytes; }

private:
    bool mBig;
    QByteArray mBytes;
};

quint32 u32(const CgwExifValue& v, int index = 0)
{
    quint32 x = 0;
    std::memcpy(&x, v.data.constData() + 4 * index, 4);
    return x;
}

quint16 u16(const CgwExifValue& v)
{
    quint16 x = 0;
    std::memcpy(&x, v.data.constData(), 2);
    return x;
}

CgwExif read(const QByteArray& bytes, int page = 0, bool* ok = nullptr)
{
    CgwFileBuffer file(bytes);
    file.open(QIODevice::ReadOnly);
    CgwExif exif;
    const bool result = exif.readFromStream(file, page);
    if (ok)
        *ok = result;
    return exif;
}

// IFD0: width, make, x resolution, Exif pointer; Exif IFD: date, maker note.
QByteArray sampleBlock(bool big)
{
    const QByteArray note = [] {
        CgwMakerNote n;
        n.setRecord(0xC005, 0, 1);
        n.setRecord(0xC001, 1, 22000);
        return n.block();
    }();
    Block b(big);
    const quint32 ifd0 = 8, ifd0Size = 2 + 4 * 12 + 4;
    const quint32 make = ifd0 + ifd0Size, res = make + 8, exif = res + 8;
    const quint32 exifSize = 2 + 2 * 12 + 4, date = exif + exifSize, noteAt = date + 20;
    b.put16(4);
    b.shortEntry(0x0100, 640);
    b.entry(0x010F, 2, 8, make);
    b.entry(0x011A, 5, 1, res);
    b.entry(0x8769, 4, 1, exif);
    b.put32(0);
    b.append(QByteArray("Norvane\0", 8));
    b.put32(300);
    b.put32(1);
    b.put16(2);
    b.entry(0x9003, 2, 20, date);
    b.entry(0x927C, 7, quint32(note.size()), noteAt);
    b.put32(0);
    b.append(QByteArray("2026:11:21 10:00:00\0", 20));
    b.append(note);
    return b.bytes();
}

} // namespace

TEST(ExifRead, BothByteOrdersGiveTheSameValues)
{
    for (bool big : {false, true}) {
        SCOPED_TRACE(big ? "MM" : "II");
        bool ok = false;
        const CgwExif exif = read(sampleBlock(big), 0, &ok);
        ASSERT_TRUE(ok);
        EXPECT_EQ(exif.byteOrder(), big ? CgwExif::kBigEndian : CgwExif::kLittleEndian);
        EXPECT_EQ(u16(exif.getValue(0x0100)), 640);
        EXPECT_EQ(exif.getValue(0x010F).data, QByteArray("Norvane\0", 8));
        EXPECT_EQ(u32(exif.getValue(0x011A), 0), 300u) << "numerator first";
        EXPECT_EQ(u32(exif.getValue(0x011A), 1), 1u);
        EXPECT_EQ(exif.getValue(0x9003).count, 20u);
        EXPECT_FALSE(exif.hasTag(0x8769)) << "the pointer itself is not kept";
        EXPECT_TRUE(exif.hasHDRFlag()) << "the suite's note is stored raw and read as itself";
        EXPECT_FLOAT_EQ(exif.getGWMakerNotValueByTag(0xC001), 2.2f);
    }
}

TEST(ExifRead, BadEntriesEndOrSkipWithoutLosingWhatCameBefore)
{
    Block b(false);
    b.put16(4);
    b.shortEntry(0x0101, 480);
    b.entry(0x0102, 3, 0x80000001u, 100); // 2^32 + 2 bytes: skipped
    b.entry(0x0103, 14, 1, 0);            // type 14 ends the IFD
    b.shortEntry(0x0106, 2);
    b.put32(0);
    const CgwExif exif = read(b.bytes());
    EXPECT_EQ(u16(exif.getValue(0x0101)), 480);
    EXPECT_FALSE(exif.hasTag(0x0102));
    EXPECT_FALSE(exif.hasTag(0x0106));

    bool ok = true;
    read(QByteArray("XX\x2a\0\x08\0\0\0", 8), 0, &ok);
    EXPECT_FALSE(ok) << "no byte order";
    read(QByteArray("II\x2a\0\x04\0\0\0", 8), 0, &ok);
    EXPECT_FALSE(ok) << "first IFD before 8";
}

TEST(ExifRead, ChainsKeepTheFirstValueAndLoopsEnd)
{
    // IFD0 at 8 and IFD1 behind it, each with a width; IFD1 points back to IFD0.
    Block b(true);
    b.put16(2);
    b.shortEntry(0x0100, 640);
    b.entry(0x0100 + 0, 7, 4, 0x41424344); // type 7 width: kept apart
    b.put32(8 + 30);
    b.put16(1);
    b.shortEntry(0x0100, 320);
    b.put32(8);
    const CgwExif first = read(b.bytes());
    EXPECT_EQ(u16(first.getValue(0x0100)), 640) << "the chain cannot overwrite the first IFD";
    EXPECT_EQ(first.getValue(0xFF07).data, QByteArray("ABCD"));

    bool ok = false;
    const CgwExif second = read(b.bytes(), 1, &ok);
    ASSERT_TRUE(ok);
    EXPECT_EQ(u16(second.getValue(0x0100)), 320);
    read(b.bytes(), 2, &ok);
    EXPECT_FALSE(ok) << "back at the first IFD: no third page";

    CgwFileBuffer file(b.bytes());
    file.open(QIODevice::ReadOnly);
    EXPECT_EQ(CgwExif::readAllPages(file).size(), 2u);
}

TEST(ExifRead, ForeignMakerNotesAreParsedAsIfds)
{
    // An unknown maker note that is an IFD at its first byte.
    Block b(false);
    const quint32 noteAt = 8 + 2 + 12 + 4;
    b.put16(1);
    b.entry(0x927C, 7, 18, noteAt);
    b.put32(0);
    b.put16(1);
    b.shortEntry(0x0001, 77);
    b.put32(0);
    const CgwExif exif = read(b.bytes());
    EXPECT_EQ(u16(exif.getValue(0x0001)), 77);
    EXPECT_EQ(exif.getValue(0x927C).count, 18u) << "the raw block is kept too";
}
