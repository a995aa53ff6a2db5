// TIFF reader: the corpus against its references, and the files of other
// programs against what ImageMagick decodes.

#include "imagefile/gwImageFileList.h"
#include "gwTestTiff.h"
#include "imagefile/gwImageFileTIF.h"
#include "support/gwCorpus.h"
#include "support/gwTestEnv.h"

#include <QDir>

#include <gtest/gtest.h>

namespace {

std::unique_ptr<CgwBitmapBase> loadTiff(const QString& path, CgwBitmapHead* head = nullptr)
{
    CgwImageFileTIF tiff;
    tiff.resetState();
    if (head)
        *head = tiff.loadImageInformation("file:" + path, 0);
    return std::unique_ptr<CgwBitmapBase>(tiff.loadBitmap("file:" + path, 0));
}

// Good corpus files this reader decodes otherwise, on purpose.
const QMap<QString, QString> kByDesign = {
    {"hopper2IR.tif", "grey of 2 to 7 bits keeps the raw sample values, unscaled"},
    {"palette-1c-8b.tiff", "16-bit colour map entries are scaled by 255/65535 and truncated, not shifted"},
};

// Files whose samples are ink amounts: the bitmap holds maximum minus ink.
const QStringList kInk = {"flower-separated-contig-08.tif", "flower-separated-planar-16.tif",
                          "tiff_strip_cmyk_jpeg.tif", "tiff_strip_cmyk_16l_jpeg.tif"};

// Palette files are compared as the colours they expand to.
const QStringList kPalette = {"multipage.tiff"};

} // namespace

TEST(Tiff, EveryCorpusFileGivesItsReference)
{
    const QDir corpus(gwCorpusDir() + "/tiff");
    if (!corpus.exists())
        GTEST_SKIP() << "no corpus at " << qPrintable(gwCorpusDir());
    const QMap<QString, SgwCorpusReference> references = gwCorpusReferences("tiff");
    int compared = 0;
    for (auto it = references.constBegin(); it != references.constEnd(); ++it) {
        const QString& name = it.key();
        const SgwCorpusReference& ref = it.value();
        SCOPED_TRACE(name.toStdString());
        CgwBitmapHead head;
        const std::unique_ptr<CgwBitmapBase> bitmap = loadTiff(corpus.filePath(name), &head);
        if (ref.status != "confirmed" && ref.status != "single")
            continue; // broken files: surviving them is the test
        ASSERT_TRUE(bitmap) << "a good file must load";
        EXPECT_EQ(bitmap->size(), QSize(ref.width, ref.height));
        EXPECT_EQ(head.mSize, QSize(ref.width, ref.height));
        if (kByDesign.contains(name))
            continue;
        if (kPalette.contains(name))
            EXPECT_EQ(gwRgba8Hash(*bitmap).toStdString(), ref.sha256Rgba8.toStdString());
        else
            EXPECT_EQ(gwSampleHash(*bitmap, ref.channels, kInk.contains(name)).toStdString(), ref.sha256.toStdString());
        ++compared;
    }
    EXPECT_GE(compared, 31);
}

namespace {

const QString kMagick = QStringLiteral("convert-im6.q16");

// Plasma noise of an odd size, so that tiles and strips end part-way.
QString makeBase(int depth)
{
    const QString path = gwTestRoot() + QStringLiteral("/base%1.tif").arg(depth);
    int exit = -1;
    gwRunProgram(kMagick, {"-seed", "7", "-size", "67x45", "plasma:", "-depth", QString::number(depth), "-compress",
                           "none", path},
                 &exit);
    return exit == 0 ? path : QString();
}

// What ImageMagick decodes, in the corpus's sample layout. Lab is taken as
// it is stored ("-set colorspace sRGB"), not converted.
QByteArray magickSamples(const QString& path, const QString& layout, int depth)
{
    int exit = -1;
    const QStringList keep = layout == "lab" ? QStringList{"-set", "colorspace", "sRGB"} : QStringList();
    const QByteArray raw = gwRunProgram(kMagick, QStringList{path} + keep
                                                     + QStringList{"-depth", QString::number(depth), "-endian", "LSB",
                                                                   (layout == "lab" ? "rgb" : layout) + ":-"},
                                        &exit);
    return exit == 0 ? raw : QByteArray();
}

// The largest difference of two 8-bit sample runs; -1 when their lengths differ.
int largestDifference(const QByteArray& a, const QByteArray& b)
{
    if (a.size() != b.size())
        return -1;
    int largest = 0;
    for (int i = 0; i < a.size(); ++i)
        largest = std::max(largest, std::abs(int(quint8(a[i])) - int(quint8(b[i]))));
    return largest;
}

} // namespace

TEST(Tiff, FilesOfOtherProgramsDecodeAsImageMagickDecodesThem)
{
    const QString base8 = makeBase(8);
    const QString base16 = makeBase(16);
    if (base8.isEmpty() || base16.isEmpty())
        GTEST_SKIP() << "ImageMagick (convert-im6.q16) is not installed";
    const struct {
        const char* name;
        QString program;
        QStringList args; // the output path follows
        const char* layout;
        int depth;
        int channels;
        bool ink;
        int tolerance = 0;
    } cases[] = {
        {"tiffcp-lzw-strips", "tiffcp", {"-c", "lzw", "-r", "7", base8}, "rgb", 8, 3, false},
        {"tiffcp-deflate-predictor-16", "tiffcp", {"-c", "zip:2", "-r", "5", base16}, "rgb", 16, 3, false},
        // Strips of RGB JPEG, 8-bit CMYK, 8-bit tiles and planar strips come from the corpus.
        {"tiffcp-tiles-16-lzw", "tiffcp", {"-t", "-w", "32", "-l", "32", "-c", "lzw", base16}, "rgb", 16, 3, false},
        {"tiffcp-planar-tiles", "tiffcp", {"-p", "separate", "-t", "-w", "16", "-l", "16", "-c", "zip", base8},
         "rgb", 8, 3, false},
        {"tiffcp-jpeg-ycbcr", "tiffcp", {"-c", "jpeg", "-r", "16", base8}, "rgb", 8, 3, false},
        {"tiffcp-jpeg-ycbcr-tiles", "tiffcp", {"-c", "jpeg", "-t", "-w", "16", "-l", "16", base8}, "rgb", 8, 3, false},
        {"magick-grey8-lzw", kMagick, {base8, "-colorspace", "Gray", "-compress", "lzw"}, "gray", 8, 1, false},
        {"magick-grey16-tiles", kMagick, {base16, "-colorspace", "Gray", "-define", "tiff:tile-geometry=16x16"},
         "gray", 16, 1, false},
        {"magick-1bit-g4", kMagick, {base8, "-monochrome", "-compress", "group4"}, "gray", 8, 1, false},
        {"magick-palette", kMagick, {base8, "-type", "Palette", "-compress", "lzw"}, "rgb", 8, 3, false},
        {"magick-cmyk16-deflate", kMagick, {base16, "-colorspace", "CMYK", "-compress", "zip"}, "cmyk", 16, 4, true},
        // ImageMagick's own Lab quantum rounds: one step either way.
        {"magick-lab8", kMagick, {base8, "-colorspace", "Lab"}, "lab", 8, 3, false, 1},
        {"magick-rgb16-big-endian", kMagick, {base16, "-endian", "MSB"}, "rgb", 16, 3, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const QString path = gwTestRoot() + "/" + c.name + ".tif";
        int exit = -1;
        gwRunProgram(c.program, c.args + QStringList{path}, &exit);
        ASSERT_EQ(exit, 0) << qPrintable(c.program) << " could not write the file";
        const std::unique_ptr<CgwBitmapBase> bitmap = loadTiff(path);
        ASSERT_TRUE(bitmap);
        EXPECT_EQ(bitmap->size(), QSize(67, 45));
        const QByteArray ours = gwSampleBytes(*bitmap, c.channels, c.ink);
        const QByteArray theirs = magickSamples(path, c.layout, c.depth);
        if (c.tolerance == 0)
            EXPECT_TRUE(ours == theirs) << "the samples differ";
        else
            EXPECT_EQ(largestDifference(ours, theirs), c.tolerance);
    }
}

// Every load of a damaged file ends in null or a bitmap, never a crash.
TEST(Tiff, DamagedFilesNeverCrash)
{
    QStringList files;
    for (const char* broken : {"libtiff_segfault.tif", "oom-225817ca0f8c663be7ab4b9e717b02c661e66834.tif",
                               "test_ifd_loop_to_self.tif", "separate_planar_extra_samples.tiff"})
        files << gwCorpusDir() + "/tiff/" + broken;
    // Every cut of a suite file with an IR page.
    SgwTestTiff suite;
    suite.pages = {SgwTestPage{QSize(21, 9), 16, 3}, SgwTestPage{QSize(21, 9), 16, 1, 4}};
    suite.makerNote = true;
    suite.hdrMark = 1;
    const QByteArray whole = gwReadFile(gwWriteTestTiff("whole.tif", suite).mid(5));
    for (int cut = 0; cut < whole.size(); cut += 37)
        files << gwWriteTestFile(QStringLiteral("cut%1.tif").arg(cut), whole.left(cut));
    // Corpus files with a fixed sequence of byte changes near header and directories.
    quint32 state = 20261121;
    const auto next = [&state] { return state = state * 1664525u + 1013904223u; };
    for (const char* name : {"hopper_lzw.tif", "tiff_tiled_planar_16bit_RGB.tiff", "ycbcr-cat.tif", "hopper_jpg.tif",
                             "palette-1c-8b.tiff", "ojpeg_zackthecat_subsamp22_single_strip.tiff",
                             "tiled-gray-i1.tif", "hopper.Lab.tif"}) {
        const QByteArray original = gwReadFile(gwCorpusDir() + "/tiff/" + name);
        for (int round = 0; round < 40 && !original.isEmpty(); ++round) {
            QByteArray damaged = original;
            for (int i = 0, flips = 1 + int(next() % 4); i < flips; ++i) {
                const int span = std::min<int>(damaged.size(), 600);
                damaged[(next() & 1) ? int(next() % span) : damaged.size() - 1 - int(next() % span)] = char(next());
            }
            files << gwWriteTestFile(QStringLiteral("damaged%1_%2.tif").arg(files.size()).arg(round), damaged);
        }
    }
    for (const QString& file : files) {
        CgwImageFileTIF tiff;
        tiff.loadImageInformation("file:" + file, 0);
        for (CgwBitmapBase* loaded : {tiff.loadBitmap("file:" + file, 0), tiff.loadBitmapIR("file:" + file, 0),
                                      tiff.loadPreview("file:" + file, 0)}) {
            const std::unique_ptr<CgwBitmapBase> bitmap(loaded);
            if (bitmap) {
                EXPECT_GT(bitmap->size().width(), 0) << qPrintable(file);
            }
        }
    }
    EXPECT_GT(files.size(), 300);
}

// libtiff spends time on every unknown tag at every open; a directory of more
// than 1024 entries is refused before libtiff reads it.
TEST(Tiff, DirectoriesOfMoreThan1024EntriesAreRefused)
{
    for (const quint32 entries : {1024u, 1025u}) {
        QByteArray file("II*\0\x08\0\0\0", 8);
        const auto put = [&file](quint32 v, int size) {
            for (int i = 0; i < size; ++i)
                file.append(char(v >> 8 * i));
        };
        put(entries, 2);
        // One grey pixel (width, length, bits, compression, photometric, strip,
        // samples, rows, bytes), then unknown tags of a byte each.
        const quint32 data = 8 + 2 + 12 * entries + 4;
        const quint32 tags[][2] = {{256, 1}, {257, 1}, {258, 8},   {259, 1}, {262, 1},
                                   {273, data}, {277, 1}, {278, 1}, {279, 1}};
        for (const auto& tag : tags)
            put(tag[0], 2), put(4, 2), put(1, 4), put(tag[1], 4);
        for (quint32 i = 9; i < entries; ++i)
            put(40000 + i, 2), put(1, 2), put(1, 4), put(0, 4);
        put(0, 4);
        file.append('\x7f');
        const CgwTiffHandle tiff(gwTiffOpen("file:" + gwWriteTestFile("entries.tif", file), 1, 0));
        EXPECT_EQ(tiff != nullptr, entries == 1024) << entries;
    }
}
