// JPEG: the corpus against its reference, metadata that survives a save and
// a load, the writer's parameters and failures.

#include "Sourcen/Image/gwBitmapT.h"
#include "imagefile/gwImageFileJPG.h"
#include "imagefile/gwImageFileList.h"
#include "metadata/gwExif.h"
#include "support/gwCorpus.h"
#include "support/gwTestEnv.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QSet>

#include <algorithm>

#include <gtest/gtest.h>

#include <memory>

namespace {

using Rgba8 = CgwBitmapT<CgwPixel8x4>;

// Loads through the registry's JPEG object; libjpeg's fatal errors arrive as
// a thrown integer and count as a refused file.
std::unique_ptr<CgwBitmapBase> loadJpeg(const QString& path, int* thrown = nullptr)
{
    CgwImageFileJPG jpeg;
    try {
        return std::unique_ptr<CgwBitmapBase>(jpeg.loadBitmap("file:" + path, 0));
    } catch (int code) {
        if (thrown)
            *thrown = code;
        return nullptr;
    }
}

QString corpusFile(const QString& name)
{
    return gwCorpusDir() + QStringLiteral("/jpeg/") + name;
}

QByteArray exiv2Output(const QStringList& args, const QString& path)
{
    return gwRunProgram(QStringLiteral("exiv2"), QStringList{"-q"} + args + QStringList{path});
}

std::unique_ptr<Rgba8> gradient(const QSize& size, int mode)
{
    auto bitmap = std::make_unique<Rgba8>();
    bitmap->createBitmap(size, mode, 0);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            bitmap->line(y)[x] = CgwPixel8x4{{quint8(x * 255 / size.width()), quint8(y * 255 / size.height()),
                                              quint8((x + y) & 0xFF), 0}};
    return bitmap;
}

// The non-empty lines of a program's output, blanks folded, sorted: the
// writer may order datasets differently.
QList<QByteArray> sortedLines(const QByteArray& text)
{
    QList<QByteArray> lines;
    for (const QByteArray& line : text.split('\n'))
        if (!line.isEmpty())
            lines << line.simplified();
    std::sort(lines.begin(), lines.end());
    return lines;
}

} // namespace

TEST(Jpeg, CorpusDecodesToItsReference)
{
    if (!QDir(gwCorpusDir() + "/jpeg").exists())
        GTEST_SKIP() << "no corpus";
    const QMap<QString, SgwCorpusReference> references = gwCorpusReferences("jpeg");
    int compared = 0;
    for (const QString& name : QDir(gwCorpusDir() + "/jpeg").entryList({"*.jpg"}, QDir::Files)) {
        const SgwCorpusReference ref = references.value(name);
        EXPECT_EQ(CgwImageFileList::instance().imageFileType("file:" + corpusFile(name), 0), 20) << qPrintable(name);
        int thrown = 0;
        const std::unique_ptr<CgwBitmapBase> bitmap = loadJpeg(corpusFile(name), &thrown);
        if (ref.status != "confirmed")
            continue; // broken, truncated or 12-bit: it only must not crash
        ASSERT_TRUE(bitmap) << qPrintable(name) << " threw " << thrown;
        EXPECT_EQ(bitmap->size(), QSize(ref.width, ref.height)) << qPrintable(name);
        // Adobe CMYK is stored inverted and loaded as stored; the reference
        // holds ink amounts.
        const bool adobeCmyk = bitmap->colorMode() == EgwColorModeCMYK;
        EXPECT_EQ(gwSampleHash(*bitmap, ref.channels, adobeCmyk), ref.sha256) << qPrintable(name);
        ++compared;
    }
    EXPECT_GE(compared, 19);
}

TEST(Jpeg, BrokenFilesEndCleanly)
{
    const QByteArray good = gwReadFile(corpusFile("hopper.jpg"));
    if (good.isEmpty())
        GTEST_SKIP() << "no corpus";
    const struct {
        const char* name;
        QByteArray bytes;
        bool loads; // a bitmap (perhaps partly decoded) rather than a refusal
    } cases[] = {
        {"cut in the scan", good.left(good.size() / 2), true},
        {"cut in the header", good.left(300), false},
        {"only SOI", QByteArray("\xFF\xD8\xFF", 3), false},
        {"scan data overwritten", good.left(good.size() / 2) + QByteArray(2000, '\x55'), true},
    };
    for (const auto& c : cases) {
        const QString path = gwWriteTestFile(QStringLiteral("broken/%1.jpg").arg(c.name), c.bytes);
        const std::unique_ptr<CgwBitmapBase> bitmap = loadJpeg(path);
        EXPECT_EQ(bool(bitmap), c.loads) << c.name;
        if (bitmap) {
            EXPECT_EQ(bitmap->size(), QSize(128, 128)) << c.name;
        }
    }
}

TEST(Jpeg, ParametersAreClamped)
{
    const struct {
        qint64 quality, format;
        int storedQuality, storedFormat;
    } cases[] = {{5, 7, 10, 2}, {101, -1, 100, 0}, {90, 1, 90, 1}, {10, 2, 10, 2}};
    for (const auto& c : cases) {
        CgwImageFileJPG jpeg;
        CgwParameterSet params;
        params.setLongLong("JPEGQuality", c.quality);
        params.setLongLong("JPEGFormat", c.format);
        jpeg.setParameter(params);
        EXPECT_EQ(jpeg.quality(), c.storedQuality) << c.quality;
        EXPECT_EQ(jpeg.format(), c.storedFormat) << c.format;
        CgwParameterSet read;
        jpeg.getParameter(read);
        EXPECT_EQ(read.longLongValue("JPEGQuality", 0), c.storedQuality);
    }
}

TEST(Jpeg, EveryCodingAndModeRoundTrips)
{
    const struct {
        int mode, format;
        int channels;
    } cases[] = {{EgwColorModeRGB, 0, 3}, {EgwColorModeRGB, 1, 3}, {EgwColorModeRGB, 2, 3},
                 {EgwColorModeGrey, 0, 1}, {EgwColorModeCMYK, 0, 4}, {EgwColorModeRGBA, 2, 3}};
    for (const auto& c : cases) {
        const std::unique_ptr<Rgba8> made = gradient(QSize(67, 45), c.mode);
        const Rgba8& source = *made;
        CgwImageFileJPG writer;
        CgwParameterSet params;
        params.setLongLong("JPEGQuality", 100);
        params.setLongLong("JPEGFormat", c.format);
        writer.setParameter(params);
        const QString path = gwTestRoot() + QStringLiteral("/round/%1_%2.jpg").arg(c.mode).arg(c.format);
        QDir().mkpath(gwTestRoot() + "/round");
        ASSERT_TRUE(writer.saveBitmap("file:" + path, source)) << c.mode << " " << c.format;
        const std::unique_ptr<CgwBitmapBase> back = loadJpeg(path);
        ASSERT_TRUE(back);
        EXPECT_EQ(back->colorMode(), c.mode == EgwColorModeRGBA ? EgwColorModeRGB : c.mode);
        EXPECT_EQ(back->size(), source.size());
        // Quality 100 keeps every sample within a few steps.
        int worst = 0;
        const auto& typed = dynamic_cast<const Rgba8&>(*back);
        for (int y = 0; y < source.size().height(); ++y)
            for (int x = 0; x < source.size().width(); ++x)
                for (int ch = 0; ch < c.channels; ++ch)
                    worst = std::max(worst, std::abs(int(typed.line(y)[x].s[ch]) - int(source.line(y)[x].s[ch])));
        EXPECT_LE(worst, 8) << c.mode << " " << c.format;
        const QByteArray bytes = gwReadFile(path);
        EXPECT_EQ(bytes.contains("\xFF\xC2"), c.format == 2) << "progressive frame marker";
    }
}

TEST(Jpeg, SavedMetadataReadsBackAsExiv2ShowsIt)
{
    const QString source = corpusFile("iptc.jpg");
    if (!QFile::exists(source))
        GTEST_SKIP() << "no corpus";
    std::unique_ptr<CgwBitmapBase> bitmap = loadJpeg(source);
    ASSERT_TRUE(bitmap);
    const std::unique_ptr<CgwBitmapBase> big = loadJpeg(corpusFile("icc_profile_big.jpg"));
    ASSERT_TRUE(big);
    // 399788 bytes in seven chunks, loaded and written back byte for byte.
    EXPECT_EQ(big->profile().profileBytes(), exiv2Output({"-pC"}, corpusFile("icc_profile_big.jpg")));
    bitmap->setProfile(big->profile());
    const QString target = gwTestRoot() + "/saved.jpg";
    CgwImageFileJPG writer;
    ASSERT_TRUE(writer.saveBitmap("file:" + target, *bitmap));

    EXPECT_EQ(exiv2Output({"-pC"}, target), exiv2Output({"-pC"}, corpusFile("icc_profile_big.jpg")));
    const QList<QByteArray> iptc = sortedLines(exiv2Output({"-PIkyv"}, source));
    EXPECT_EQ(iptc.size(), 9);
    EXPECT_EQ(sortedLines(exiv2Output({"-PIkyv"}, target)), iptc);

    // Exif: the writer keeps every tag in the first directory (exiv2 calls
    // the Exif ones unknown there), renews those it takes from the bitmap,
    // leaves the thumbnail behind and writes only the tags of its list (not
    // YCbCrPositioning); every other tag keeps its type, count and value.
    const QSet<QByteArray> renewed = {"0x0100", "0x0101", "0x0112", "0x0128", "0x012d", "0x0131", "0x0132",
                                      "0x0213", "0x8769", "0x8825", "0xa001", "0xa002", "0xa003"};
    const auto exifTags = [&](const QString& path) {
        QList<QByteArray> tags;
        for (const QByteArray& line : sortedLines(exiv2Output({"-u", "-PExgycv"}, path))) {
            const QList<QByteArray> f = line.split(' ');
            if (f.size() >= 4 && f[1] != "Thumbnail" && !renewed.contains(f[0]))
                tags << f[0] + ' ' + f.mid(2).join(' ');
        }
        return tags;
    };
    const QList<QByteArray> before = exifTags(source);
    EXPECT_GE(before.size(), 20);
    EXPECT_EQ(exifTags(target), before);
}

TEST(Jpeg, AProfileWithAMissingChunkIsDropped)
{
    const std::unique_ptr<CgwBitmapBase> big = loadJpeg(corpusFile("icc_profile_big.jpg"));
    if (!big)
        GTEST_SKIP() << "no corpus";
    QByteArray bytes = gwReadFile(corpusFile("icc_profile_big.jpg"));
    // Renumber the chunks 1, 3, 4, ... 8 of a count of 8: number 2 is missing.
    int at = -1;
    int chunk = 0;
    while ((at = bytes.indexOf(QByteArray("ICC_PROFILE\0", 12), at + 1)) >= 0) {
        ++chunk;
        bytes[at + 12] = char(chunk == 1 ? 1 : chunk + 1);
        bytes[at + 13] = char(8);
    }
    ASSERT_EQ(chunk, 7);
    const QString path = gwWriteTestFile("gap.jpg", bytes);
    const std::unique_ptr<CgwBitmapBase> bitmap = loadJpeg(path);
    ASSERT_TRUE(bitmap);
    EXPECT_FALSE(bitmap->profile().isValid());
    EXPECT_EQ(gwSampleHash(*bitmap, 3), gwSampleHash(*big, 3));
}

TEST(Jpeg, TheOldVersionsGammaRecordIsNotTrusted)
{
    const std::unique_ptr<Rgba8> bitmap = gradient(QSize(16, 16), EgwColorModeRGB);
    CgwExif exif;
    exif.setMakerNoteFloat(0xC001, 1, 2.2f);
    bitmap->setExif(exif);
    const QString saved = gwTestRoot() + "/gamma.jpg";
    ASSERT_TRUE(CgwImageFileJPG().saveBitmap("file:" + saved, *bitmap));
    const QByteArray bytes = gwReadFile(saved);
    const int at = bytes.indexOf("Glimmerway 8"); // the writer names this program
    ASSERT_GE(at, 0);
    const int length = bytes.indexOf('\0', at) - at;
    for (const auto& [software, gamma] : {std::pair{"Glimmerway 6.2.1", 0.0f}, {"Glimmerway 8.8.0", 2.2f},
                                           {"glimmerway 6", 2.2f}}) {
        QByteArray renamed = bytes;
        renamed.replace(at, length, QByteArray(software).leftJustified(length, '\0'));
        const QString path = gwWriteTestFile("renamed.jpg", renamed);
        EXPECT_FLOAT_EQ(CgwImageFileJPG().loadImageInformation("file:" + path, 0).mGamma, gamma) << software;
        const std::unique_ptr<CgwBitmapBase> loaded = loadJpeg(path);
        ASSERT_TRUE(loaded);
        EXPECT_FLOAT_EQ(loaded->gamma(), gamma) << software;
    }
}

TEST(Jpeg, AFailedSaveLeavesTheTargetAsItWas)
{
    const QString target = gwWriteTestFile("keep.jpg", "the user's file");
    const QStringList temporaryBefore = QDir(QDir::tempPath()).entryList({"GW8_tmp*"});
    CgwBitmapT<CgwPixel16x3> deep;
    deep.createBitmap(QSize(8, 8), EgwColorModeRGB, 0);
    const std::unique_ptr<Rgba8> lab = gradient(QSize(8, 8), EgwColorModeRGB);
    lab->setColorMode(EgwColorModeLab);
    const std::pair<const char*, const CgwBitmapBase*> cases[] = {{"16-bit samples", &deep}, {"Lab", lab.get()}};
    for (const auto& [what, bitmap] : cases) {
        EXPECT_FALSE(CgwImageFileJPG().saveBitmap("file:" + target, *bitmap)) << what;
        EXPECT_EQ(gwReadFile(target), "the user's file") << what;
    }
    const QStringList temporaryAfter = QDir(QDir::tempPath()).entryList({"GW8_tmp*"});
    EXPECT_EQ(temporaryAfter, temporaryBefore) << "a failed save left its temporary file";
}

// 16384 x 16384 pixels claimed by a stream of a few hundred bytes: the head
// is read, the bitmap is refused rather than a gigabyte painted grey.
TEST(Jpeg, AHugeHeadOverAFewBytesIsRefused)
{
    const QString path = gwTestRoot() + "/small.jpg";
    ASSERT_TRUE(CgwImageFileJPG().saveBitmap("file:" + path, *gradient(QSize(19, 11), EgwColorModeRGB)));
    QByteArray bytes = gwReadFile(path);
    const int frame = bytes.indexOf("\xff\xc0");
    ASSERT_GT(frame, 0);
    bytes.replace(frame + 5, 4, QByteArray("\x40\x00\x40\x00", 4));
    const QString huge = "file:" + gwWriteTestFile("huge.jpg", bytes);
    EXPECT_EQ(CgwImageFileJPG().loadImageInformation(huge, 0).mSize, QSize(16384, 16384));
    EXPECT_EQ(std::unique_ptr<CgwBitmapBase>(CgwImageFileJPG().loadBitmap(huge, 0)), nullptr);
}

TEST(Jpeg, ThePreviewIsTheExifThumbnail)
{
    const QString thumbPath = gwTestRoot() + "/pic-thumb.jpg";
    const QString path = gwTestRoot() + "/pic.jpg";
    ASSERT_TRUE(CgwImageFileJPG().saveBitmap("file:" + thumbPath, *gradient(QSize(40, 30), EgwColorModeRGB)));
    ASSERT_TRUE(CgwImageFileJPG().saveBitmap("file:" + path, *gradient(QSize(400, 300), EgwColorModeRGB)));
    EXPECT_EQ(CgwImageFileJPG().loadPreview("file:" + path, 0), nullptr);
    int exit = -1;
    gwRunProgram("exiv2", {"-q", "-it", path}, &exit); // inserts pic-thumb.jpg
    ASSERT_EQ(exit, 0);
    const std::unique_ptr<CgwBitmapBase> preview(CgwImageFileJPG().loadPreview("file:" + path, 0));
    ASSERT_TRUE(preview);
    EXPECT_EQ(preview->size(), QSize(40, 30));
}
