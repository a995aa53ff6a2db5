// The file abstraction: the clamping seek, numbers in both byte orders, and
// devices in the wrong mode.

#include "files/gwFilePathList.h"
#include "support/gwTestEnv.h"

#include <gtest/gtest.h>

namespace {


QByteArray hundredBytes()
{
    QByteArray bytes;
    for (int i = 0; i < 100; ++i)
        bytes.append(char(i));
    return bytes;
}

} // namespace

TEST(File, SeekIsHeldToTheFile)
{
    CgwFileFS disk(gwWriteTestFile("seek.bin", hundredBytes()));
    CgwFileBuffer memory(hundredBytes());
    for (CgwFile* file : {static_cast<CgwFile*>(&disk), static_cast<CgwFile*>(&memory)}) {
        ASSERT_TRUE(file->open(QIODevice::ReadOnly));
        const struct {
            qint64 offset;
            int origin;
            qint64 expected;
        } cases[] = {
            {40, 0, 40}, {150, 0, 100}, {-5, 0, 0}, {5, 2, 100}, {-10, 2, 90}, {-500, 2, 0},
            {50, 0, 50}, {10, 1, 60},   {-100, 1, 0}, {30, 7, 30},
        };
        for (const auto& c : cases) {
            EXPECT_EQ(file->seek(c.offset, c.origin), c.expected) << c.offset << "/" << c.origin;
            EXPECT_EQ(file->pos(), c.expected);
        }
        file->seek(98, 0);
        char bytes[4];
        EXPECT_EQ(file->read(bytes, 4), 2) << "a read stops at the end";
        EXPECT_TRUE(file->atEnd());
    }
}

TEST(File, NumbersFollowTheByteOrder)
{
    CgwFileBuffer file(QByteArray::fromHex("0102030405060708090a0b0c0d0e0f10"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.byteOrder(), CgwFile::kLittleEndian) << "new files start as \"II\"";
    EXPECT_EQ(file.readUInt16(), 0x0201);
    file.setByteOrder("MM");
    EXPECT_EQ(file.byteOrder(), CgwFile::kBigEndian);
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
    CgwFileFS writeOnly(path);
    ASSERT_TRUE(writeOnly.open(QIODevice::WriteOnly | QIODevice::Append));
    char byte;
    EXPECT_EQ(writeOnly.read(&byte, 1), -1);
    EXPECT_TRUE(writeOnly.readAll().isEmpty());
    writeOnly.close();

    CgwFileFS readOnly(path);
    ASSERT_TRUE(readOnly.open(QIODevice::ReadOnly));
    EXPECT_EQ(readOnly.write("x", 1), -1);
    EXPECT_EQ(readOnly.readAll(), QByteArray("content"));

    CgwFileFS missing(gwTestRoot() + "/missing.bin");
    EXPECT_FALSE(missing.open(QIODevice::ReadOnly));
    EXPECT_EQ(missing.read(&byte, 1), -1);

    CgwFileSD scanner(QStringLiteral("scnr:HDR Atelier"));
    EXPECT_FALSE(scanner.open(QIODevice::ReadOnly));
    EXPECT_EQ(scanner.read(&byte, 1), -1);
    EXPECT_TRUE(scanner.readAll().isEmpty());
    EXPECT_EQ(scanner.path(), "scnr:HDR Atelier");
}

TEST(File, RegistryHandsOutFilesByScheme)
{
    const QString path = gwWriteTestFile("scheme.bin", "abc");
    CgwFilePathList& list = CgwFilePathList::instance();
    std::unique_ptr<CgwFile> disk(list.createFile("file:" + path));
    ASSERT_TRUE(disk && disk->open(QIODevice::ReadOnly));
    EXPECT_EQ(disk->readAll(), QByteArray("abc"));

    // Schemes without a location of their own reach the disk, losing five characters.
    std::unique_ptr<CgwFile> fallback(list.createFile("dtbs:" + path));
    ASSERT_TRUE(fallback && fallback->open(QIODevice::ReadOnly));
    EXPECT_EQ(fallback->readAll(), QByteArray("abc"));
    EXPECT_FALSE(list.hasScheme("dtbs:"));

    std::unique_ptr<CgwFile> scanner(list.createFile("scnr:/some/scan"));
    ASSERT_TRUE(scanner);
    EXPECT_FALSE(scanner->open(QIODevice::ReadOnly));
    std::unique_ptr<CgwFilePathBase> scannerLocation(list.locationFor("scnr:"));
    EXPECT_EQ(scannerLocation->createFile("file:abc", false), nullptr);
    EXPECT_EQ(list.fileInfo("file:" + path).size, 3);
}
