// Writing the suite's maker note: records added behind the others, replaced
// by tag, foreign notes discarded on the first write; and its byte buffer.

#include "metadata/gwExif.h"
#include "metadata/gwMakerNote.h"
#include "metadata/gwMemBufferT.h"

#include <gtest/gtest.h>

namespace {

struct Rec {
    quint16 tag;
    quint8 format;
    qint32 value;
};

std::vector<Rec> records(const CgwExif& exif)
{
    std::vector<Rec> out;
    Rec r{};
    quint8 third = 0;
    for (int i = 0; exif.getMakerNoteRecord(i, &r.tag, &r.format, &third, &r.value); ++i) {
        EXPECT_EQ(third, 1) << "written records carry 1 in their third byte";
        out.push_back(r);
    }
    return out;
}

} // namespace

TEST(MakerNote, SettingATagAgainMovesItToTheEndAndFloatsAreFixedPoint)
{
    CgwExif exif; // no note yet: the first record starts one
    EXPECT_TRUE(exif.setMakerNoteInt(0xC005, 0, 1));
    EXPECT_TRUE(exif.setMakerNoteInt(0xC008, 0, 4000));
    EXPECT_TRUE(exif.setMakerNoteFloat(0xC005, 0, 2.7f)); // truncated: 2
    const std::vector<Rec> r = records(exif);
    ASSERT_EQ(r.size(), 2u);
    EXPECT_EQ(r[0].tag, 0xC008);
    EXPECT_EQ(r[1].tag, 0xC005);
    EXPECT_EQ(r[1].value, 2);
    EXPECT_EQ(exif.getValue(CgwMakerNote::kExifTag).count, 10u + 8 * 2);
    EXPECT_TRUE(exif.getValue(CgwMakerNote::kExifTag).data.endsWith("NORD"));

    // Fixed point in single precision.
    ASSERT_TRUE(exif.setMakerNoteFloat(0xC001, 1, 2.2f));
    EXPECT_EQ(records(exif).back().value, 22000);
    ASSERT_TRUE(exif.setMakerNoteInt(0xC00F, 1, 1)); // the negative flag: a raw 1 under format 1
    EXPECT_FLOAT_EQ(exif.getGWMakerNotValueByTag(0xC00F), 0.0001f);
    EXPECT_FALSE(exif.setMakerNoteInt(0xC002, 2, 5));
    EXPECT_FALSE(exif.setMakerNoteFloat(0xC002, 7, 5.0f));
    EXPECT_EQ(records(exif).size(), 4u);
}

TEST(MakerNote, ForeignNotesAreKeptByReadingAndDiscardedByWriting)
{
    CgwExif exif;
    const QByteArray foreign("Nikon\0\x02\x10\0\0MM\0*\0\0", 16); // the literal holds all 16 bytes
    exif.setValue(CgwMakerNote::kExifTag, CgwExifValue{7, quint32(foreign.size()), foreign});
    bool found = true;
    EXPECT_EQ(exif.getGWMakerNotValueByTag(0xC005, &found), 0.0f);
    EXPECT_FALSE(found);
    EXPECT_EQ(exif.getValue(CgwMakerNote::kExifTag).data, foreign) << "reading leaves it alone";
    EXPECT_FALSE(exif.removeMakerNoteRecord(0xC005));
    ASSERT_TRUE(exif.setMakerNoteInt(0xC005, 0, 1));
    EXPECT_TRUE(exif.getValue(CgwMakerNote::kExifTag).data.startsWith("NVI1"));
    EXPECT_TRUE(exif.hasHDRFlag());
    EXPECT_TRUE(exif.removeMakerNoteRecord(0xC005));
    EXPECT_FALSE(exif.hasHDRFlag());
    EXPECT_EQ(exif.getValue(CgwMakerNote::kExifTag).data, QByteArray("NVI1\0\0NORD", 10)) << "the empty note";
}

TEST(MakerNote, MemBufferInsertsAndRemovesWithinItsBounds)
{
    CgwMemBufferT<char> buffer;
    buffer.append("abc", 3);
    EXPECT_TRUE(buffer.insertAt(1, "xy", 2));
    EXPECT_EQ(std::string(buffer.data(), buffer.size()), "axybc");
    EXPECT_FALSE(buffer.insertAt(9, "xy", 2));
    EXPECT_FALSE(buffer.removeRange(2, 9));
    EXPECT_TRUE(buffer.removeRange(1, 3));
    EXPECT_EQ(std::string(buffer.data(), buffer.size()), "abc");
}
