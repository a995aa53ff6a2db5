// Exif blocks: read from blocks built here byte by byte in both byte orders,
// the suite's maker note recovered when its entry is damaged, blocks written
// and read back, the browser's display text of values, and every input the
// fuzzers ever crashed on replayed: none may harm us again.

#include "Sourcen/Image/gwBitmapT.h"
#include "files/gwFile.h"
#include "metadata/gwExif.h"
#include "metadata/gwMakerNote.h"
#include "support/gwFuzzBodies.h"
#include "support/gwTestEnv.h"

#include <QRegularExpression>

#include <array>

#include <gtest/gtest.h>

namespace {

// Builds a TIFF-shaped block: header, IFDs of 12-byte entries, data behind.
struct Block {
    // Tag, type, count, and the value or its offset.
    using Entry = std::array<quint32, 4>;
    // The header: byte order, 42, the first IFD at 8.
    explicit Block(bool bigEndian) : big(bigEndian), bytes(bigEndian ? "MM\0*\0\0\0\x08" : "II*\0\x08\0\0\0", 8) {}
    // The low `size` bytes of `v` in the block's order.
    void put(quint32 v, int size)
    {
        for (int i = 0; i < size; ++i)
            bytes.append(char(v >> 8 * (big ? size - 1 - i : i)));
    }
    // An IFD of the entries and the offset of the next.
    void ifd(std::initializer_list<Entry> entries, quint32 next = 0)
    {
        put(quint32(entries.size()), 2);
        for (const Entry& e : entries)
            for (int i = 0; i < 4; ++i)
                put(e[i], i < 2 ? 2 : 4);
        put(next, 4);
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
    b.put(300, 4);
    b.put(1, 4);
    b.ifd({{0x9003, 2, 20, date}, {0x927C, 7, quint32(note.size()), date + 20}});
    return b.bytes + QByteArray("2026:11:21 10:00:00\0", 20) + note;
}

// Where the damaged file's maker-note entry has its count: behind IFD0, the
// Exif IFD's entry count, tag and type.
constexpr qint64 kCountAt = 8 + 2 + 12 + 4 + 2 + 4;

// IFD0 with an Exif pointer; the Exif IFD's one entry is a maker note with a
// broken count and offset; the note lies `gap` bytes behind the value field.
QByteArray damagedFile(int gap, const QByteArray& note)
{
    Block b(false);
    b.ifd({{0x8769, 4, 1, 8 + 2 + 12 + 4}});
    b.ifd({{0x927C, 7, 3, 0xFFFFFF00}});
    // The damaged offset and the next-IFD word stay as far as the gap leaves room.
    const int noteAt = int(kCountAt) + 4 + gap;
    return b.bytes.left(noteAt).leftJustified(noteAt, '\xAA') + note + QByteArray(8, '\0');
}

// Every kind of value the writer knows, and two tags it must leave out.
CgwExif sample(quint16 order)
{
    CgwExif exif;
    exif.setByteOrder(order);
    exif.setIntValue(0x0100, 6000);       // long
    exif.setIntValue(0x0112, 6);          // short
    exif.setRationalValue(0x011A, 2400.5); // rational
    exif.setTextValue(0x010F, QStringLiteral("Norvane"));
    exif.setTextValue(0x9003, QStringLiteral("2026:11:21 10:00:00"));
    exif.setRationalValue(0x829A, 0.004);
    exif.setRationalValue(0x9201, -6.5); // signed rational
    exif.setMakerNoteFloat(0xC001, 1, 2.2f);
    exif.setValue(0x0103, CgwExifValue{3, 1, QByteArray("\x01\0", 2)}); // known, not writable
    exif.setValue(0x1234, CgwExifValue{3, 1, QByteArray("\x07\0", 2)}); // unknown
    return exif;
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
        EXPECT_FALSE(exif.hasTag(0x8769)) << "the pointer itself is not kept";
        EXPECT_FLOAT_EQ(exif.getGWMakerNotValueByTag(0xC001), 2.2f) << "the suite's note, kept raw";
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

    EXPECT_EQ(read(b.bytes, 1).getInt(0x0100), 320);
    CgwFileBuffer file(b.bytes);
    file.open(QIODevice::ReadOnly);
    EXPECT_EQ(CgwExif::readAllPages(file).size(), 2u) << "back at the first IFD: no third page";

    // Two IFDs that name each other as their SubIFD are two pages, not 256.
    Block sub(false);
    sub.ifd({{0x014A, 4, 1, 8 + 18}});
    sub.ifd({{0x014A, 4, 1, 8}});
    CgwFileBuffer subFile(sub.bytes);
    subFile.open(QIODevice::ReadOnly);
    EXPECT_EQ(CgwExif::readAllPages(subFile).size(), 2u);
}

TEST(ExifRead, RecoveryFindsTheNoteWithinFortyBytesOfTheEntry)
{
    const QByteArray note = suiteNote(18000);
    // The first place tried is one byte behind the value field.
    const std::pair<int, bool> cases[] = {{8, true}, {1, true}, {40, true}, {41, false}, {0, false}};
    for (const auto& [gap, found] : cases) {
        SCOPED_TRACE(gap);
        CgwFileBuffer file(damagedFile(gap, note));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        CgwExif exif;
        qint64 countPosition = -1, length = -1, offset = -1;
        EXPECT_EQ(exif.recoverMakerNote(file, &countPosition, &length, &offset), found);
        EXPECT_EQ(file.pos(), 0) << "the stream is put back";
        if (!found) {
            EXPECT_EQ(exif.getValue(0x927C).data, CgwMakerNote::emptyBlock()) << "the note is reset";
            continue;
        }
        EXPECT_EQ(countPosition, kCountAt);
        EXPECT_EQ(offset, kCountAt + 4 + gap);
        EXPECT_EQ(length, note.size());
        EXPECT_EQ(exif.getValue(0x927C).data, note);
    }
}

TEST(ExifWrite, EveryQualifyingTagComesBackInBothByteOrders)
{
    for (quint16 order : {CgwExif::kLittleEndian, CgwExif::kBigEndian}) {
        for (bool subIfd : {false, true}) {
            SCOPED_TRACE(std::to_string(order) + (subIfd ? " with Exif IFD" : ""));
            CgwExif exif = sample(order);
            if (subIfd)
                exif.setIntValue(0x8769, 0);
            QByteArray block;
            ASSERT_TRUE(exif.writeTiffBlock(block));
            EXPECT_EQ(block.left(2), order == CgwExif::kBigEndian ? QByteArray("MM") : QByteArray("II"));
            const CgwExif back = read(block);
            for (quint16 tag : {0x0100, 0x0112, 0x011A, 0x010F, 0x9003, 0x829A, 0x9201, 0x927C})
                EXPECT_EQ(back.getValue(tag), exif.getValue(tag)) << std::hex << tag;
            EXPECT_FALSE(back.hasTag(0x0103)) << "not among the writable tags";
            EXPECT_FALSE(back.hasTag(0x1234)) << "unknown tags are never written";
        }
    }
}

TEST(ExifWrite, UnknownTagsAreNeverSetAndEmptyIfdsNotWritten)
{
    CgwExif exif;
    EXPECT_FALSE(exif.setIntValue(0x1234, 5));
    EXPECT_FALSE(exif.setTextValue(0x0100, QStringLiteral("no text for a number")));
    exif.setValue(0x0103, CgwExifValue{3, 1, QByteArray("\x01\0", 2)});
    exif.selectWritableTags();
    QByteArray block("keep");
    EXPECT_FALSE(exif.writeIfd(block, 0, 8));
    EXPECT_EQ(block, QByteArray("keep"));
    EXPECT_TRUE(gwReadFile(gwTestLogPath()).endsWith("gwDebug: Warning: No valid tags found.\n"));

    CgwExif exifOnly = sample(CgwExif::kLittleEndian);
    exifOnly.selectExifTagsOnly();
    QByteArray ifd;
    ASSERT_TRUE(exifOnly.writeIfd(ifd, 1, 0));
    EXPECT_EQ(quint8(ifd[0]), 4) << "ExposureTime, DateTimeOriginal, ShutterSpeed and the maker note";
}

TEST(ExifWrite, FillFromBitmapSetsTheDefaultTags)
{
    CgwBitmapT<CgwPixel16x3> bitmap;
    ASSERT_TRUE(bitmap.createBitmap(QSize(640, 480), EgwColorModeRGB, 0));
    bitmap.setResolution(300.0, 300.0);
    bitmap.setGamma(2.2f);
    CgwExif exif;
    exif.setIntValue(0xA001, 1);
    exif.fillFromBitmap(bitmap);
    EXPECT_EQ(exif.getInt(0x0100), 640);
    EXPECT_EQ(exif.getInt(0xA003), 480);
    EXPECT_DOUBLE_EQ(exif.getDouble(0x011A), 300.0);
    EXPECT_FALSE(exif.hasTag(0xA001));
    ASSERT_EQ(exif.getValue(0x012D).count, 65536u);
    EXPECT_EQ(exif.getInt(0x012D, 0), 0);
    EXPECT_EQ(exif.getInt(0x012D, 65535), 65535);
    EXPECT_EQ(exif.getInt(0x012D, 32768), 14263) << "(32768 / 65535)^2.2 of full scale";
    const QByteArray date = exif.getValue(0x0132).data;
    EXPECT_TRUE(date.endsWith('\0'));
    EXPECT_TRUE(QRegularExpression(R"(^\d{4}\.\d\d\.\d\d \d\d:\d\d:\d\d$)").match(QString::fromLatin1(date)).hasMatch())
        << date.constData();
    EXPECT_TRUE(exif.getValue(0x0131).data.startsWith("Glimmerway 8.8.0 r17"));
}

TEST(ExifText, ValuesAsTheBrowserShowsThemUnderTheirHistoricKeys)
{
    CgwExif exif;
    for (auto [tag, value] : {std::pair<quint16, int>{0x0100, 6000}, {0x0101, 4000}, {0x0128, 2}, {0xA210, 7},
                              {0x8827, 400}, {0x8822, 3}, {0x9207, 99}, {0x0115, 3}})
        exif.setIntValue(tag, value);
    for (auto [tag, value] : {std::pair<quint16, double>{0x011A, 300.0}, {0x011B, 299.5}, {0xA20E, 10.0},
                              {0xA20F, 10.0}, {0x9206, 2.5}})
        exif.setRationalValue(tag, value);
    exif.setValue(0x0133, CgwExifValue{2, 20, QByteArray("2026:11:21 10:00:00", 20)}); // read, not settable
    const quint32 exposure[2] = {1, 250};
    exif.setValue(0x829A, CgwExifValue{5, 1, QByteArray(reinterpret_cast<const char*>(exposure), 8)});
    exif.setTextValue(0x010F, QStringLiteral("Norvane"));
    const struct {
        quint16 tag;
        const char* text;
    } cases[] = {
        {0x0100, "6000 x 4000 pixel"}, {0x0133, "2026.11.21"}, {0x8827, "ISO 400"}, {0x8822, "Aperture priority"},
        {0x010F, "Norvane"},           {0x0115, "3 samples"},  {0x9206, "2.5 meter"},
        {0x011A, "300 x 299.5 inch"}, // the unit from a third tag
        {0xA20E, "10 x 10"},          // an unknown unit adds nothing
        {0x829A, "1/250 seconds"},    // as stored, not divided out
        {0x9207, "Undefined"},        // a value without a name
        {0x0101, "Not available"},    // no row of its own
        {0x9208, "Not available"},    // a row, but no value
    };
    for (const auto& c : cases)
        EXPECT_EQ(exif.getValueAsText(c.tag), QString::fromLatin1(c.text)) << std::hex << c.tag;
    // Users' templates hold the keys as spelled, the crossed film and HDRi
    // rows and the flash key shared with gain control included.
    EXPECT_EQ(CgwExif::textKey(0x89AB), "%tifffilm%");
    EXPECT_EQ(CgwExif::textKey(0xA407), "%exitflash%");
    EXPECT_EQ(CgwExif::textKey(0x920A), "%exitfclenght%");
    EXPECT_EQ(CgwExif::textLabel(0x89AB), "HDRi");
    EXPECT_TRUE(CgwExif::textKey(0x1234).isEmpty());
}

TEST(FuzzFindings, ExifStreamsThatOnceCrashed)
{
    EXPECT_TRUE(gwReplayFuzzFindings("exif", gwFuzzExifStream));
}
