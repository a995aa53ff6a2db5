// The file abstraction: the clamping seek, numbers in both byte orders, and
// devices in the wrong mode.

#include "files/gwFilePathList.h"
#include "support/gwTestEnv.h"

#include <gtest/gtest.h>

TEST(File, SeekIsHeldToTheFile)
{
    QByteArray bytes;
    for (int i = 0; i < 100; ++i)
        bytes.append(char(i));
    CgwFileFS disk(gwWriteTestFile("seek.bin", bytes));
    CgwFileBuffer memory(bytes);
    // Offsets past either end stop there; an unknown origin counts from the start.
    const struct {
        qint64 offset;
        int origin;
        qint64 expected;
    } cases[] = {
        {40, 0, 40}, {150, 0, 100}, {-5, 0, 0}, {5, 2, 100}, {-10, 2, 90}, {-500, 2, 0},
        {50, 0, 50}, {10, 1, 60},   {-100, 1, 0}, {30, 7, 30},
    };
    for (CgwFile* file : {static_cast<CgwFile*>(&disk), static_cast<CgwFile*>(&memory)}) {
        ASSERT_TRUE(file->open(QIODevice::ReadOnly));
        for (const auto& c : cases) {
            EXPECT_EQ(file->seek(c.offset, c.origin), c.expected) << c.offset << "/" << c.origin;
            EXPECT_EQ(file->pos(), c.expected);
        }
        file->seek(98, 0);
        char four[4];
        EXPECT_EQ(file->read(four, 4), 2) << "a read stops at the end";
        EXPECT_TRUE(file->atEnd());
    }
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

TEST(File, WrongModesFailWithoutHarm)
{
    const QString path = gwWriteTestFile("modes.bin", "content");
    char byte;
    CgwFileFS writeOnly(path);
    ASSERT_TRUE(writeOnly.open(QIODevice::WriteOnly | QIODevice::Append));
    EXPECT_EQ(writeOnly.read(&byte, 1), -1);
    EXPECT_TRUE(writeOnly.readAll().isEmpty());
    writeOnly.close();

    CgwFileFS readOnly(path);
    ASSERT_TRUE(readOnly.open(QIODevice::ReadOnly));
    EXPECT_EQ(readOnly.write("x", 1), -1);
    EXPECT_EQ(readOnly.readAll(), QByteArray("content"));

    CgwFileFS missing(gwTestRoot() + "/missing.bin");
    CgwFileSD scanner(QStringLiteral("scnr:HDR Atelier"));
    for (CgwFile* file : {static_cast<CgwFile*>(&missing), static_cast<CgwFile*>(&scanner)}) {
        EXPECT_FALSE(file->open(QIODevice::ReadOnly));
        EXPECT_EQ(file->read(&byte, 1), -1);
        EXPECT_TRUE(file->readAll().isEmpty());
    }
}

TEST(File, RegistryHandsOutFilesByScheme)
{
    const QString path = gwWriteTestFile("scheme.bin", "abc");
    CgwFilePathList& list = CgwFilePathList::instance();
    // Schemes without a location of their own reach the disk, losing five characters.
    EXPECT_FALSE(list.hasScheme("dtbs:"));
    for (const QString& scheme : {QStringLiteral("file:"), QStringLiteral("dtbs:")}) {
        std::unique_ptr<CgwFile> file(list.createFile(scheme + path));
        ASSERT_TRUE(file && file->open(QIODevice::ReadOnly)) << qPrintable(scheme);
        EXPECT_EQ(file->readAll(), QByteArray("abc"));
    }
    EXPECT_EQ(list.fileInfo("file:" + path).size, 3);

    std::unique_ptr<CgwFile> scanner(list.createFile("scnr:/some/scan"));
    ASSERT_TRUE(scanner);
    EXPECT_FALSE(scanner->open(QIODevice::ReadOnly));
    std::unique_ptr<CgwFilePathBase> scannerLocation(list.locationFor("scnr:"));
    EXPECT_EQ(scannerLocation->createFile("file:abc", false), nullptr);
}
