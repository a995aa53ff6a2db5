// The element blocks written into profiles, byte for byte, and the text read
// back from description elements of every type a profile may carry.

#include "colour/gwProfileElements.h"
#include "gwTestProfiles.h"

#include <cmath>

#include <gtest/gtest.h>

TEST(ProfileElements, TextBlockIsTypeReservedAndZeroEndedLatin1)
{
    EXPECT_EQ(CgwProfileElements::textBlock(QStringLiteral("Lab")), QByteArray("text\0\0\0\0Lab\0", 12));
    EXPECT_EQ(CgwProfileElements::textBlock(QString()), QByteArray("text\0\0\0\0\0", 9));
    EXPECT_EQ(CgwProfileElements::textBlock(QStringLiteral("\u00e9")), QByteArray("text\0\0\0\0\xe9\0", 10));
}

TEST(ProfileElements, ToneCurvesHoldU8Fixed8ValuesInBlocksOfTheStatedLength)
{
    const struct {
        QVector<double> values;
        QByteArray expected;
    } cases[] = {
        {{}, QByteArray("curv\0\0\0\0\0\0\0\0\0\0\0\0", 16)},
        {{2.2}, QByteArray("curv\0\0\0\0\0\0\0\1\x02\x33\0\0", 16)},
        {{0.5, 1.0, 255.99}, QByteArray("curv\0\0\0\0\0\0\0\3\x00\x80\x01\x00\xff\xfd\0\0", 20)},
    };
    for (const auto& c : cases)
        EXPECT_EQ(CgwProfileElements::toneCurveBlock(c.values), c.expected) << c.values.size();
    for (double outside : {-0.01, 256.0, std::nan("")})
        EXPECT_TRUE(CgwProfileElements::toneCurveBlock({1.0, outside}).isEmpty()) << outside;
}

TEST(ProfileElements, XyzBlocksRoundToS15Fixed16AndRefuseWhatDoesNotFit)
{
    EXPECT_EQ(CgwProfileElements::xyzBlock(0.96417, 1.0, 0.82487),
              QByteArray("XYZ \0\0\0\0", 8) + QByteArray::fromHex("0000f6d4 00010000 0000d32b"));
    EXPECT_EQ(CgwProfileElements::xyzBlock(-0.5, 0.0, 32767.0).mid(8),
              QByteArray::fromHex("ffff8001 00000000 7fff0000"));
    EXPECT_TRUE(CgwProfileElements::xyzBlock(0.0, 32768.0, 0.0).isEmpty());
    EXPECT_TRUE(CgwProfileElements::xyzBlock(0.0, 0.0, -32769.0).isEmpty());
}

TEST(ProfileElements, IdentityLutIsAnMft2OfIdentityMatrixCurvesAndGridOfTheStatedLength)
{
    // Two grid points and 256-entry curves, as the Lab profile carries them.
    const QByteArray lut = CgwProfileElements::identityLut16Block(2, 256, 256);
    EXPECT_EQ(lut.left(12), QByteArray("mft2\0\0\0\0\3\3\2\0", 12));
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(gwBigEndian<quint32>(lut, 12 + 4 * i), i % 4 == 0 ? 0x10000u : 0u) << "matrix " << i;
    EXPECT_EQ(gwBigEndian<quint32>(lut, 48), 0x01000100u) << "256 entries in and out";
    const int grid = 52 + 3 * 512, lastOutput = grid + 8 * 6 + 2 * 512;
    EXPECT_EQ(gwBigEndian<quint16>(lut, 52 + 512 + 2), 257) << "the second input curve";
    // The nodes run with the first channel slowest.
    for (int node = 0; node < 8; ++node)
        for (int c = 0; c < 3; ++c)
            EXPECT_EQ(gwBigEndian<quint16>(lut, grid + 6 * node + 2 * c), (node >> (2 - c) & 1) * 65535) << node << c;
    EXPECT_EQ(gwBigEndian<quint16>(lut, lastOutput + 2 * 128), 128 * 257);

    // On a grid of three, node 5 is (0, 1, 2) in steps; 65535 / 2 rounds up.
    const QByteArray three = CgwProfileElements::identityLut16Block(3, 2, 2);
    EXPECT_EQ(gwBigEndian<quint16>(three, 52 + 12 + 5 * 6 + 2), 32768);
    EXPECT_EQ(gwBigEndian<quint16>(three, 52 + 12 + 5 * 6 + 4), 65535);

    // Grid points, input and output entries, and the length: none for shapes no table can have.
    const int shapes[][4] = {{2, 256, 256, 3172}, {3, 2, 2, 238}, {17, 2, 4096, (3 * 17 * 17 * 17 + 4098 * 3) * 2 + 52},
                             {256, 256, 256, 0},  {1, 256, 256, 0}, {2, 1, 256, 0}, {2, 256, 4097, 0}};
    for (const auto& s : shapes)
        EXPECT_EQ(CgwProfileElements::identityLut16Block(s[0], s[1], s[2]).size(), s[3])
            << s[0] << " " << s[1] << " " << s[2];
}

TEST(ProfileElements, TextIsReadFromEveryDescriptionType)
{
    // 'mluc', one record of 12 bytes: "enUS", six bytes at 28, "A\u00e9z" in UTF-16.
    const QByteArray mluc = QByteArray::fromHex("6d6c7563 00000000 00000001 0000000c"
                                                "656e5553 00000006 0000001c 004100e9007a");
    const struct {
        const char* what;
        QByteArray block;
        QString text;
    } cases[] = {
        {"desc", QByteArray("desc\0\0\0\0\0\0\0\5Film\0tail", 21), QStringLiteral("Film")},
        {"desc, count past the end", QByteArray("desc\0\0\0\0\0\0\1\0Fi", 14), QStringLiteral("Fi")},
        {"text", CgwProfileElements::textBlock(QStringLiteral("Norvane")), QStringLiteral("Norvane")},
        {"empty text", CgwProfileElements::textBlock(QString()), QLatin1String("")},
        {"mluc", mluc, QStringLiteral("A\u00e9z")},
        {"mluc cut short", mluc.left(30), QString()},
        {"curve", CgwProfileElements::toneCurveBlock({1.0}), QString()},
        {"too short", QByteArray("text"), QString()},
    };
    for (const auto& c : cases) {
        const QString text = CgwProfileElements::textOf(c.block);
        EXPECT_EQ(text, c.text) << c.what;
        EXPECT_EQ(text.isNull(), c.text.isNull()) << c.what;
    }
}
