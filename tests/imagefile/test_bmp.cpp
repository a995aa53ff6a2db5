// BMP: every corpus file read without harm, the good ones against their
// reference, and the exact bytes of written files.

#include "Sourcen/Image/gwBitmapT.h"
#include "imagefile/gwImageFileBMP.h"
#include "imagefile/gwImageFileList.h"
#include "support/gwCorpus.h"
#include "support/gwTestEnv.h"

#include <QDir>
#include <QtEndian>

#include <gtest/gtest.h>

namespace {

// Good files that this reader decodes otherwise, on purpose.
const QMap<QString, QString> kByDesign = {
    {"g_pal8topdown.bmp", "a negative height is not read as top-down"},
    {"g_rgb32bf.bmp", "bit fields shift every mask by 24"},
    {"g_rgb16bfdef.bmp", "bit fields shift every mask by 24"},
    {"g_rgb16-565.bmp", "bit fields shift every mask by 24"},
    {"g_rgb16.bmp", "5-bit samples are not widened by replication"},
};

} // namespace

TEST(Bmp, EveryCorpusFileReadsWithoutHarm)
{
    const QDir corpus(GW_CORPUS_DIR "/bmp");
    if (!corpus.exists())
        GTEST_SKIP() << "no corpus at " << GW_CORPUS_DIR;
    const QMap<QString, SgwCorpusReference> references = gwCorpusReferences("bmp");
    int compared = 0;
    for (const QString& name : corpus.entryList({"*.bmp"}, QDir::Files, QDir::Name)) {
        SCOPED_TRACE(name.toStdString());
        const QString path = "file:" + corpus.filePath(name);
        const int type = CgwImageFileList::instance().imageFileType(path, 0);
        CgwImageFileBMP format;
        const CgwBitmapHead head = format.loadImageInformation(path, 0);
        std::unique_ptr<CgwBitmapBase> bitmap(format.loadBitmap(path, 0));
        if (name == "x_ba-bm.bmp") {
            EXPECT_EQ(type, 0) << "\"BA\" is no BMP";
            continue;
        }
        EXPECT_EQ(type, EgwImageFileBMP);
        if (!name.startsWith("g_") || kByDesign.contains(name))
            continue;
        const SgwCorpusReference ref = references.value(name);
        ASSERT_TRUE(bitmap) << "a good file must load";
        EXPECT_EQ(bitmap->size(), QSize(ref.width, ref.height));
        EXPECT_EQ(head.mSize, QSize(ref.width, ref.height));
        if (ref.status == "confirmed") {
            // Palette entries land with blue in slot 0, the true-colour paths with red.
            const bool palette = head.mBitDepth * head.mChannels < 9;
            EXPECT_EQ(gwRgba8Hash(*bitmap, palette ? std::array<int, 3>{2, 1, 0} : std::array<int, 3>{0, 1, 2}),
                      ref.sha256Rgba8);
            ++compared;
        }
    }
    EXPECT_GE(compared, 15);
}

TEST(Bmp, BrokenFilesGiveNothingOrAPartialBitmap)
{
    const QDir corpus(GW_CORPUS_DIR "/bmp");
    if (!corpus.exists())
        GTEST_SKIP() << "no corpus";
    const struct {
        const char* name;
        bool bitmap;
    } cases[] = {
        {"b_badbitcount.bmp", false}, {"b_badwidth.bmp", false}, {"b_reallybig.bmp", false},
        {"b_shortfile.bmp", true},    {"b_badrle.bmp", true},     {"b_pal8badindex.bmp", true},
        {"q_rgba64.bmp", false},      {"q_pal4rlecut.bmp", true},
    };
    for (const auto& c : cases) {
        CgwImageFileBMP format;
        std::unique_ptr<CgwBitmapBase> bitmap(format.loadBitmap("file:" + corpus.filePath(c.name), 0));
        EXPECT_EQ(bitmap != nullptr, c.bitmap) << c.name;
    }
}

// A header of 2^20 x 4096 pixels with a few bytes behind: depths that no
// decoder takes a byte for would walk every pixel without end and are refused
// with the head; data that cannot paint the image is refused at the load.
TEST(Bmp, HugeHeadsOverTinyDataAreRefused)
{
    const struct {
        int depth;
        quint32 compression;
        bool headRefused;
    } cases[] = {{0, 0, true}, {9, 0, true}, {15, 0, true}, {33, 0, true},
                 {1, 0, false}, {24, 0, false}, {8, 1, false}, {32, 3, false}};
    for (const auto& c : cases) {
        QByteArray file("BM", 2);
        for (const quint32 field : {0u, 0u, 54u, 40u, 1u << 20, 4096u, 1u | quint32(c.depth) << 16, c.compression}) {
            char bytes[4];
            qToLittleEndian(field, bytes);
            file.append(bytes, 4);
        }
        file.append(QByteArray(20 + 4096, '\x55'));
        const QString path = "file:" + gwWriteTestFile("huge.bmp", file);
        EXPECT_EQ(CgwImageFileBMP().loadImageInformation(path, 0).mSize.isEmpty(), c.headRefused) << c.depth;
        EXPECT_EQ(std::unique_ptr<CgwBitmapBase>(CgwImageFileBMP().loadBitmap(path, 0)), nullptr) << c.depth;
    }
}

TEST(Bmp, HeadOfPaletteFiles)
{
    const QDir corpus(GW_CORPUS_DIR "/bmp");
    if (!corpus.exists())
        GTEST_SKIP() << "no corpus";
    const struct {
        const char* name;
        int mode, depth;
    } cases[] = {
        {"g_pal1.bmp", 1, 1},    // two grey entries: one channel, depth 1
        {"g_pal8.bmp", 3, 2},    // colour palette: 8 / 3
        // Twelve grey entries, but the palette is always read as 2^depth
        // entries, and the four behind them are pixel bytes: colour.
        {"g_pal4gs.bmp", 3, 1},
        {"g_pal4.bmp", 3, 1},    // colour palette: 4 / 3
        {"g_pal8os2.bmp", 3, 2}, // OS/2 header, three-byte entries
        {"g_rgb24.bmp", 3, 8},
        {"g_rgb16.bmp", 3, 5},
    };
    for (const auto& c : cases) {
        CgwImageFileBMP format;
        const CgwBitmapHead head = format.loadImageInformation("file:" + corpus.filePath(c.name), 0);
        EXPECT_EQ(head.mColorMode, c.mode) << c.name;
        EXPECT_EQ(head.mBitDepth, c.depth) << c.name;
        EXPECT_EQ(head.mScannerMode, 9);
    }
}

TEST(Bmp, WrittenFilesHaveTheStatedLayout)
{
    const struct {
        int mode;
        int channels;
        int pixelOffset;
        int bitCount;
    } cases[] = {{1, 1, 1148, 8}, {3, 3, 124, 24}, {6, 4, 124, 32}, {7, 4, 124, 32}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.mode);
        CgwBitmapT<CgwPixel8x4> four;
        CgwBitmapT<CgwPixelGrey8> grey;
        CgwBitmapBase& bitmap = c.mode == 1 ? static_cast<CgwBitmapBase&>(grey) : four;
        ASSERT_TRUE(bitmap.createBitmap(QSize(3, 2), c.mode, 0));
        bitmap.setResolution(300.0, 150.0);
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 3; ++x) {
                if (c.mode == 1)
                    grey.line(y)[x].s[0] = static_cast<unsigned char>(10 * y + x);
                else
                    four.line(y)[x] = CgwPixel8x4{{uchar(10 * y + x), uchar(100 + x), uchar(200 + y), 7}};
            }
        const QString path = gwTestRoot() + "/written.bmp";
        CgwImageFileBMP format;
        ASSERT_TRUE(format.saveBitmap("file:" + path, bitmap));
        const QByteArray file = gwReadFile(path);
        const auto u16 = [&](int at) { return qFromLittleEndian<quint16>(file.constData() + at); };
        const auto u32 = [&](int at) { return qFromLittleEndian<quint32>(file.constData() + at); };
        const int rowBytes = 3 * c.channels;
        const int pad = (4 - rowBytes % 4) % 4;
        const int block = (pad + 3) * 2 * c.channels;
        ASSERT_EQ(file.size(), c.pixelOffset + block);
        EXPECT_EQ(file.left(4), QByteArray("BM\0\0", 4)) << "a record of 16 bytes, zero behind the magic";
        EXPECT_EQ(u16(28), 1);
        EXPECT_EQ(u16(30), c.bitCount);
        // Offset and value of each 32-bit field: sizes, header, dimensions,
        // no compression, 300 x 150 dpi, colour space.
        const std::pair<int, quint32> fields[] = {{4, quint32(file.size())}, {8, 0}, {12, quint32(c.pixelOffset)},
                                                  {16, 108}, {20, 3}, {24, 2}, {32, 0}, {40, 11811}, {44, 5906},
                                                  {72, c.mode == 6 ? 2u : 1u}};
        for (const auto& [at, value] : fields)
            EXPECT_EQ(u32(at), value) << "at " << at;
        if (c.mode == 1) {
            EXPECT_EQ(file.mid(124 + 4 * 200, 4), QByteArray("\xc8\xc8\xc8\0", 4));
        }
        // The bottom row comes first, channels in reverse order.
        const QByteArray bottom = file.mid(c.pixelOffset, rowBytes);
        if (c.mode == 1) {
            EXPECT_EQ(bottom, QByteArray("\x0a\x0b\x0c", 3));
        } else {
            EXPECT_EQ(quint8(bottom[0]), c.channels == 4 ? 7 : 201) << "slot n-1 first";
            EXPECT_EQ(quint8(bottom[c.channels - 1]), 10) << "slot 0 last";
        }
        const QByteArray top = file.mid(c.pixelOffset + rowBytes + pad, rowBytes);
        EXPECT_EQ(quint8(top[c.channels - 1]), 0);
    }
}

TEST(Bmp, UnsupportedModesWriteNothing)
{
    CgwBitmapT<CgwPixel8x4> lab;
    ASSERT_TRUE(lab.createBitmap(QSize(2, 2), EgwColorModeLab, 0));
    CgwImageFileBMP format;
    const QString path = gwTestRoot() + "/lab.bmp";
    EXPECT_FALSE(format.saveBitmap("file:" + path, lab));
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_FALSE(format.saveBitmap("file:" + gwTestRoot() + "/no/folder/x.bmp",
                                   *std::unique_ptr<CgwBitmapBase>(lab.createEmptyCopy())));
}
