// The element blocks written into profiles, byte for byte, and the text read
// back from description elements of every type a profile may carry.

#include "colour/gwProfileElements.h"
#include "gwTestProfiles.h"

#include <cmath>

#include <gtest/gtest.h>

namespace {

QByteArray bytes(std::initializer_list<int> values)
{
    QByteArray out;
    for (int v : values)
        out.append(char(v));
    return out;
}

} // namespace

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
              QByteArray("XYZ \0\0\0\0", 8) + bytes({0, 0, 0xF6, 0xD4, 0, 1, 0, 0, 0, 0, 0xD3, 0x2B}));
    EXPECT_EQ(CgwProfileElements::xyzBlock(-0.5, 0.0, 32767.0).mid(8),
              bytes({0xFF, 0xFF, 0x80, 0x01, 0, 0, 0, 0, 0x7F, 0xFF, 0, 0}));
    EXPECT_TRUE(CgwProfileElements::xyzBlock(0.0, 32768.0, 0.0).isEmpty());
    EXPECT_TRUE(CgwProfileElements::xyzBlock(0.0, 0.0, -32769.0).isEmpty());
}

TEST(ProfileElements, IdentityLutHasTheStatedLengthAndRefusesOddShapes)
{
    const struct {
        int grid, in, out, length;
    } cases[] = {
        {2, 256, 256, 3172}, {3, 2, 2, 238}, {17, 2, 4096, (3 * 17 * 17 * 17 + 4098 * 3) * 2 + 52},
        {256, 256, 256, 0},  {1, 256, 256, 0}, {2, 1, 256, 0}, {2, 256, 4097, 0},
    };
    for (const auto& c : cases)
        EXPECT_EQ(CgwProfileElements::identityLut16Block(c.grid, c.in, c.out).size(), c.length)
            << c.grid << " " << c.in << " " << c.out;
}

TEST(ProfileElements, ThreePointGridListsItsNodesFirstChannelSlowest)
{
    const QByteArray lut = CgwProfileElements::identityLut16Block(3, 2, 2);
    const int grid = 52 + 3 * 2 * 2;
    // Node 5 is (0, 1, 2) in grid steps; 65535 / 2 rounds to 32768.
    EXPECT_EQ(gwBigEndian16(lut, grid + 5 * 6), 0);
    EXPECT_EQ(gwBigEndian16(lut, grid + 5 * 6 + 2), 32768);
    EXPECT_EQ(gwBigEndian16(lut, grid + 5 * 6 + 4), 65535);
    // Node 9 is (1, 0, 0).
    EXPECT_EQ(gwBigEndian16(lut, grid + 9 * 6), 32768);
    EXPECT_EQ(gwBigEndian16(lut, grid + 9 * 6 + 4), 0);
}

TEST(ProfileElements, TextIsReadFromEveryDescriptionType)
{
    QByteArray mluc = QByteArray("mluc\0\0\0\0", 8) + bytes({0, 0, 0, 1, 0, 0, 0, 12, 'e', 'n', 'U', 'S', 0, 0, 0, 6,
                                                              0, 0, 0, 28, 0, 'A', 0, 0xE9, 0, 'z'});
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
