// Reading Exif blocks built here byte by byte, in both byte orders, and
// recovering the suite's maker note when its entry is damaged.

#include "files/gwFile.h"
#include "metadata/gwExif.h"
#include "metadata/gwMakerNote.h"

#include <QtEndian>

#include <gtest/gtest.h>

namespace {

// Builds a TIFF-shaped block: header, IFDs of 12-byte entries, data behind.
struct Block {
    struct Entry {
        quint16 tag, type;
        quint32 count, field;
    };
    // The header: byte order, 42, the first IFD at 8.
    explicit Block(bool bigEndian) : big(bigEndian), bytes(bigEndian ? "MM\0*\0\0\0\x08" : "II*\0\x08\0\0\0", 8) {}
    template <typename T>
    void put(T v)
    {
        char b[sizeof v];
        big ? qToBigEndian(v, b) : qToLittleEndian(v, b);
        bytes.append(b, int(sizeof v));
    }
    void put16(quint16 v) { put(v); }
    void put32(quint32 v) { put(v); }
    // An IFD of the entries and the offset of the next.
    void ifd(std::initializer_list<Entry> entries, quint32 next = 0)
    {
        put16(quint16(entries.size()));
        for (const Entry& e : entries) {
            put16(e.tag);
            put16(e.type);
            put32(e.count);
            put32(e.field);
        }
        put32(next);
    }
    // A short value sits left-aligned in the four bytes of its field.
    Entry shortEntry(quint16 tag, quint16 value) const { return {tag, 3, 1, big ? quint32(value) << 16 : value}; }

    bool big;
    QByteArray bytes;
};

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

// The suite's note: the HDR flag and a gamma in fixed point.
QByteArray suiteNote(qint32 gamma)
{
    CgwMakerNote note;
    note.setRecord(0xC005, 0, 1);
    note.setRecord(0xC001, 1, gamma);
    return note.block();
}

// IFD0: width, make, x resolution, Exif pointer; Exif IFD: date, maker note.
QByteArray sampleBlock(bool big)
{
    const QByteArray note = suiteNote(22000);
    Block b(big);
    const quint32 make = 8 + 2 + 4 * 12 + 4, res = make + 8, exif = res + 8, date = exif + 2 + 2 * 12 + 4;
    b.ifd({b.shortEntry(0x0100, 640), {0x010F, 2, 8, make}, {0x011A, 5, 1, res}, {0x8769, 4, 1, exif}});
    b.bytes.append("Norvane\0", 8);
    b.put32(300);
    b.put32(1);
    b.ifd({{0x9003, 2, 20, date}, {0x927C, 7, quint32(note.size()), date + 20}});
    return b.bytes + QByteArray("2026:11:21 10:00:00\0", 20) + note;
}

// IFD0 with an Exif pointer; the Exif IFD's one entry is a maker note with a
// broken count and offset; the note lies `gap` bytes behind the value field.
QByteArray damagedFile(int gap, const QByteArray& note, qint64* countAt, qint64* noteAt)
{
    Block b(false);
    b.ifd({{0x8769, 4, 1, 8 + 2 + 12 + 4}});
    b.put16(1);
    b.put16(0x927C);
    b.put16(7);
    *countAt = b.bytes.size();
    b.put32(3);
    // The damaged offset and the next-IFD word, as far as the gap leaves room.
    b.bytes.append(QByteArray("\x00\xFF\xFF\xFF\0\0\0\0", 8).left(gap));
    b.bytes.append(QByteArray(int(*countAt) + 4 + gap - b.bytes.size(), '\xAA'));
    *noteAt = b.bytes.size();
    return b.bytes + note + QByteArray(8, '\0');
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
        EXPECT_EQ(exif.getInt(0x0100), 640);
        EXPECT_EQ(exif.getValue(0x010F).data, QByteArray("Norvane\0", 8));
        EXPECT_EQ(exif.getInt(0x011A), 300) << "numerator first";
        EXPECT_EQ(exif.getValue(0x9003).count, 20u);
        EXPECT_FALSE(exif.hasTag(0x8769)) << "the pointer itself is not kept";
        EXPECT_TRUE(exif.hasHDRFlag()) << "the suite's note is stored raw and read as itself";
        EXPECT_FLOAT_EQ(exif.getGWMakerNotValueByTag(0xC001), 2.2f);
    }
}

TEST(ExifRead, BadEntriesEndOrSkipWithoutLosingWhatCameBefore)
{
    Block b(false);
    // 2^32 + 2 bytes of shorts are skipped; type 14 ends the IFD.
    b.ifd({b.shortEntry(0x0101, 480), {0x0102, 3, 0x80000001u, 100}, {0x0103, 14, 1, 0}, b.shortEntry(0x0106, 2)});
    const CgwExif exif = read(b.bytes);
    EXPECT_EQ(exif.getInt(0x0101), 480);
    EXPECT_FALSE(exif.hasTag(0x0102));
    EXPECT_FALSE(exif.hasTag(0x0106));
}

TEST(ExifRead, BadHeadersFailReadingAndRecovery)
{
    // No byte order, a first IFD before 8, nothing at all.
    for (const QByteArray& bytes : {QByteArray("XX*\0\x08\0\0\0", 8), QByteArray("II*\0\x04\0\0\0", 8), QByteArray()}) {
        SCOPED_TRACE(bytes.toHex().toStdString());
        bool ok = true;
        read(bytes, 0, &ok);
        EXPECT_FALSE(ok);
        CgwFileBuffer file(bytes);
        file.open(QIODevice::ReadOnly);
        EXPECT_FALSE(CgwExif().recoverMakerNote(file, nullptr, nullptr, nullptr));
    }
}

TEST(ExifRead, ChainsKeepTheFirstValueAndLoopsEnd)
{
    // IFD0 at 8 and IFD1 behind it, each with a width; IFD1 points back to IFD0.
    // A second width of type 7 is kept apart.
    Block b(true);
    b.ifd({b.shortEntry(0x0100, 640), {0x0100, 7, 4, 0x41424344}}, 8 + 30);
    b.ifd({b.shortEntry(0x0100, 320)}, 8);
    EXPECT_EQ(read(b.bytes).getInt(0x0100), 640) << "the chain cannot overwrite the first IFD";
    EXPECT_EQ(read(b.bytes).getValue(0xFF07).data, QByteArray("ABCD"));

    bool ok = false;
    EXPECT_EQ(read(b.bytes, 1, &ok).getInt(0x0100), 320);
    EXPECT_TRUE(ok);
    read(b.bytes, 2, &ok);
    EXPECT_FALSE(ok) << "back at the first IFD: no third page";
    CgwFileBuffer file(b.bytes);
    file.open(QIODevice::ReadOnly);
    EXPECT_EQ(CgwExif::readAllPages(file).size(), 2u);
}

TEST(ExifRead, ForeignMakerNotesAreParsedAsIfds)
{
    // An unknown maker note that is an IFD at its first byte.
    Block b(false);
    b.ifd({{0x927C, 7, 18, 8 + 2 + 12 + 4}});
    b.ifd({b.shortEntry(0x0001, 77)});
    const CgwExif exif = read(b.bytes);
    EXPECT_EQ(exif.getInt(0x0001), 77);
    EXPECT_EQ(exif.getValue(0x927C).count, 18u) << "the raw block is kept too";
}

TEST(ExifRead, RecoveryFindsTheNoteWithinFortyBytesOfTheEntry)
{
    const QByteArray note = suiteNote(18000);
    // The first place tried is one byte behind the value field.
    const struct {
        int gap;
        bool found;
    } cases[] = {{8, true}, {1, true}, {40, true}, {41, false}, {0, false}};
    for (const auto& [gap, found] : cases) {
        SCOPED_TRACE(gap);
        qint64 countAt = 0, noteAt = 0;
        CgwFileBuffer file(damagedFile(gap, note, &countAt, &noteAt));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        CgwExif exif;
        qint64 countPosition = -1, length = -1, offset = -1;
        EXPECT_EQ(exif.recoverMakerNote(file, &countPosition, &length, &offset), found);
        EXPECT_EQ(file.pos(), 0) << "the stream is put back";
        if (!found) {
            EXPECT_EQ(exif.getValue(0x927C).data, CgwMakerNote::emptyBlock()) << "the note is reset";
            continue;
        }
        EXPECT_EQ(countPosition, countAt);
        EXPECT_EQ(offset, noteAt);
        EXPECT_EQ(length, note.size());
        EXPECT_EQ(exif.getValue(0x927C).data, note);
        EXPECT_FLOAT_EQ(exif.getGWMakerNotValueByTag(0xC001), 1.8f);
    }
}
