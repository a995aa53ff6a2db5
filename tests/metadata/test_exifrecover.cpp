// Recovering the suite's maker note when its entry's count or offset is damaged.

#include "files/gwFile.h"
#include "metadata/gwExif.h"
#include "metadata/gwMakerNote.h"

#include <QtEndian>

#include <gtest/gtest.h>

namespace {

// IFD0 with an Exif pointer; the Exif IFD's first entry is a maker note with
// a broken count and offset; the note itself lies `gap` bytes behind the
// entry's value field.
QByteArray damagedFile(int gap, QByteArray* note, qint64* countAt, qint64* noteAt)
{
    CgwMakerNote n;
    n.setRecord(0xC005, 0, 1);
    n.setRecord(0xC001, 1, 18000);
    *note = n.block();
    QByteArray b("II\x2a\0\x08\0\0\0", 8);
    const auto put16 = [&](quint16 v) { char x[2]; qToLittleEndian(v, x); b.append(x, 2); };
    const auto put32 = [&](quint32 v) { char x[4]; qToLittleEndian(v, x); b.append(x, 4); };
    const quint32 exifIfd = 8 + 2 + 12 + 4;
    put16(1);
    put16(0x8769); put16(4); put32(1); put32(exifIfd);
    put32(0);
    put16(1);
    put16(0x927C); put16(7);
    *countAt = b.size();
    put32(3); // damaged count
    const qint64 valueField = b.size();
    // The damaged offset and the next-IFD word, as far as the gap leaves room.
    b.append(QByteArray("\x00\xFF\xFF\xFF\0\0\0\0", 8).left(gap));
    while (b.size() < valueField + gap)
        b.append('\xAA');
    *noteAt = b.size();
    b.append(*note);
    b.append(QByteArray(8, '\0'));
    return b;
}

} // namespace

TEST(ExifRecover, FindsTheNoteWithinFortyBytesOfTheEntry)
{
    const struct {
        int gap;
        bool found;
    } cases[] = {{8, true}, {1, true}, {40, true}, {41, false}, {0, false}}; // the first place tried is one byte on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.gap);
        QByteArray note;
        qint64 countAt = 0;
        qint64 noteAt = 0;
        CgwFileBuffer file(damagedFile(c.gap, &note, &countAt, &noteAt));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        CgwExif exif;
        qint64 countPosition = -1, length = -1, offset = -1;
        EXPECT_EQ(exif.recoverMakerNote(file, &countPosition, &length, &offset), c.found);
        EXPECT_EQ(file.pos(), 0) << "the stream is put back";
        if (!c.found) {
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

TEST(ExifRecover, BadHeadersFail)
{
    for (const QByteArray& bytes : {QByteArray("XX\x2a\0\x08\0\0\0", 8), QByteArray("II\x2a\0\x04\0\0\0", 8), QByteArray()}) {
        CgwFileBuffer file(bytes);
        file.open(QIODevice::ReadOnly);
        CgwExif exif;
        EXPECT_FALSE(exif.recoverMakerNote(file, nullptr, nullptr, nullptr));
    }
}
