// The browser's display text of Exif values.

#include "metadata/gwExif.h"

#include <gtest/gtest.h>

TEST(ExifText, ValuesAsTheBrowserShowsThem)
{
    CgwExif exif;
    exif.setIntValue(0x0100, 6000);
    exif.setIntValue(0x0101, 4000);
    exif.setRationalValue(0x011A, 300.0);
    exif.setRationalValue(0x011B, 299.5);
    exif.setIntValue(0x0128, 2);
    exif.setRationalValue(0xA20E, 10.0);
    exif.setRationalValue(0xA20F, 10.0);
    exif.setIntValue(0xA210, 7);
    exif.setValue(0x0133, CgwExifValue{2, 20, QByteArray("2026:11:21 10:00:00", 20)}); // read, not settable
    const quint32 exposure[2] = {1, 250};
    exif.setValue(0x829A, CgwExifValue{5, 1, QByteArray(reinterpret_cast<const char*>(exposure), 8)});
    exif.setIntValue(0x8827, 400);
    exif.setIntValue(0x8822, 3);
    exif.setIntValue(0x9207, 99);
    exif.setTextValue(0x010F, QStringLiteral("Norvane"));
    exif.setIntValue(0x0115, 3);
    exif.setRationalValue(0x9206, 2.5);
    const struct {
        quint16 tag;
        const char* text;
    } cases[] = {
        {0x0100, "6000 x 4000 pixel"},
        {0x011A, "300 x 299.5 inch"}, // the unit from a third tag
        {0xA20E, "10 x 10"},          // an unknown unit adds nothing
        {0x0133, "2026.11.21"},
        {0x829A, "1/250 seconds"}, // as stored, not divided out
        {0x8827, "ISO 400"},
        {0x8822, "Aperture priority"},
        {0x9207, "Undefined"}, // a value without a name
        {0x010F, "Norvane"},
        {0x0115, "3 samples"},
        {0x9206, "2.5 meter"},
        {0x0101, "Not available"}, // no row of its own
        {0x9208, "Not available"}, // a row, but no value
    };
    for (const auto& c : cases)
        EXPECT_EQ(exif.getValueAsText(c.tag), QString::fromLatin1(c.text)) << std::hex << c.tag;
}

TEST(ExifText, TemplatesKeepTheirHistoricKeys)
{
    // Users' templates hold the keys as spelled, the crossed film and HDRi
    // rows and the flash key shared with gain control included.
    EXPECT_EQ(CgwExif::textKey(0x89AB), "%tifffilm%");
    EXPECT_EQ(CgwExif::textLabel(0x89AB), "HDRi");
    EXPECT_EQ(CgwExif::textKey(0xA407), "%exitflash%");
    EXPECT_EQ(CgwExif::textKey(0x920A), "%exitfclenght%");
    EXPECT_TRUE(CgwExif::textKey(0x1234).isEmpty());
}
