// The file abstraction: the clamping seek, numbers in both byte orders, files by scheme.

#include "files/gwFilePathList.h"
#include "support/gwTestEnv.h"

#include <tuple>

#include <gtest/gtest.h>

TEST(File, SeekIsHeldToTheFile)
{
    CgwFileFS file(gwWriteTestFile("seek.bin", QByteArray(100, 'x')));
    // Offsets past either end stop there; an unknown origin counts from the start.
    const std::tuple<qint64, int, qint64> cases[] = {{40, 0, 40}, {150, 0, 100}, {-5, 0, 0}, {5, 2, 100},
                                                     {-10, 2, 90}, {-500, 2, 0}, {50, 0, 50}, {10, 1, 60},
                                                     {-100, 1, 0}, {30, 7, 30}};
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    for (const auto& [offset, origin, expected] : cases) {
        EXPECT_EQ(file.seek(offset, origin), expected) << offset << "/" << origin;
        EXPECT_EQ(file.pos(), expected);
    }
    file.seek(98, 0);
    char four[4];
    EXPECT_EQ(file.read(four, 4), 2) << "a read stops at the end";
    EXPECT_TRUE(file.atEnd());
}

// New files start as "II"; the order may change between numbers.
TEST(File, NumbersFollowTheByteOrder)
{
    CgwFileBuffer file(QByteArray::fromHex("0102030405060708090a0b0c0d0e0f10"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readUInt16(), 0x0201);
    file.setByteOrder("MM");
    EXPECT_EQ(file.readUInt16(), 0x0304);
    EXPECT_EQ(file.readUInt32(), 0x05060708u);
    file.setByteOrder(CgwFile::kLittleEndian);
    EXPECT_EQ(file.readUInt64(), 0x100f0e0d0c0b0a09ull);
    bool ok = true;
    EXPECT_EQ(file.readUInt8(&ok), 0);
    EXPECT_FALSE(ok) << "nothing left";

    CgwFileBuffer out;
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    out.setByteOrder("MM");
    EXPECT_TRUE(out.writeUInt32(0x4D4D002A));
    out.setByteOrder("II");
    EXPECT_TRUE(out.writeUInt16(0x1234));
    EXPECT_EQ(out.data().toHex(), "4d4d002a3412");
}

TEST(File, RegistryHandsOutFilesByScheme)
{
    const QString path = gwWriteTestFile("scheme.bin", "abc");
    CgwFilePathList& list = CgwFilePathList::instance();
    // Schemes without a location of their own, such as "dtbs:", reach the disk, losing five characters.
    for (const QString& scheme : {QStringLiteral("file:"), QStringLiteral("dtbs:")}) {
        std::unique_ptr<CgwFile> file(list.createFile(scheme + path));
        ASSERT_TRUE(file && file->open(QIODevice::ReadOnly)) << qPrintable(scheme);
        EXPECT_EQ(file->readAll(), QByteArray("abc"));
    }

    std::unique_ptr<CgwFilePathBase> scannerLocation(list.locationFor("scnr:"));
    EXPECT_EQ(scannerLocation->createFile("file:abc", false), nullptr);
}
