// Writing Exif blocks and reading them back.

#include "Sourcen/Image/gwBitmapT.h"
#include "files/gwFile.h"
#include "metadata/gwExif.h"
#include "support/gwTestEnv.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

namespace {

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

CgwExif readBack(const QByteArray& block)
{
    CgwFileBuffer file(block);
    file.open(QIODevice::ReadOnly);
    CgwExif exif;
    EXPECT_TRUE(exif.readFromStream(file, 0));
    return exif;
}

} // namespace

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
            const CgwExif back = readBack(block);
            for (quint16 tag : {0x0100, 0x0112, 0x011A, 0x010F, 0x9003, 0x829A, 0x9201, 0x927C})
                EXPECT_EQ(back.getValue(tag), exif.getValue(tag)) << std::hex << tag;
            EXPECT_FALSE(back.hasTag(0x0103)) << "not among the writable tags";
            EXPECT_FALSE(back.hasTag(0x1234)) << "unknown tags are never written";
            EXPECT_DOUBLE_EQ(back.getDouble(0x9201), -6.5);
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
