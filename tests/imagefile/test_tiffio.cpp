// libtiff over CgwFile: header offsets, directory counts, the private tags
// and the message handlers, on files written here with libtiff itself.

#include "imagefile/gwTiffIO.h"
#include "support/gwTestEnv.h"

#include <QFile>

#include <gtest/gtest.h>

#include <vector>

namespace {

// Writes `pages` 4 x 3 grey pages; `extraTag`, when not 0, is an unknown
// 32-bit tag on the first page, and `hdri` the private tag's 8 bytes.
QString writeTiff(const QString& name, int pages, ttag_t extraTag = 0, const QByteArray& hdri = QByteArray())
{
    const QString path = gwTestRoot() + "/" + name;
    TIFF* tiff = TIFFOpen(path.toLocal8Bit().constData(), "w");
    if (!tiff)
        return QString();
    const TIFFFieldInfo extra[] = {{extraTag, 1, 1, TIFF_LONG, FIELD_CUSTOM, 1, 0, const_cast<char*>("extra")}};
    if (extraTag)
        TIFFMergeFieldInfo(tiff, extra, 1);
    gwTiffMergePrivateTags(tiff);
    const unsigned char row[4] = {1, 2, 3, 4};
    for (int page = 0; page < pages; ++page) {
        TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 4);
        TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 3);
        TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
        TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
        TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
        if (page == 0 && extraTag)
            TIFFSetField(tiff, extraTag, quint32(7));
        if (page == 0 && !hdri.isEmpty())
            TIFFSetField(tiff, kGwTiffTagHDRi, quint32(hdri.size()), hdri.constData());
        for (int y = 0; y < 3; ++y)
            TIFFWriteScanline(tiff, const_cast<unsigned char*>(row), quint32(y), 0);
        TIFFWriteDirectory(tiff);
    }
    TIFFClose(tiff);
    return path;
}

} // namespace

TEST(TiffIO, DirectoryCounts)
{
    const struct {
        int pages;
        int count;
    } cases[] = {{1, 1}, {3, 3}, {100, 100}, {105, 100}};
    for (const auto& c : cases) {
        const QString path = writeTiff(QStringLiteral("pages%1.tif").arg(c.pages), c.pages);
        ASSERT_FALSE(path.isEmpty());
        EXPECT_EQ(gwTiffDirectoryCount("file:" + path), c.count) << c.pages;
    }
    const QString missing = "file:" + gwTestRoot() + "/missing.tif";
    EXPECT_EQ(gwTiffDirectoryCount(missing), 0);
    EXPECT_EQ(gwLastLogLine(), "gwDebug: Error: directoryCount: " + missing.toUtf8());
}

TEST(TiffIO, OffsetsCountFromTheHeader)
{
    const QString plain = writeTiff("plain.tif", 2);
    const QByteArray embedded = QByteArray(333, 'x') + gwReadFile(plain);
    const QString path = gwWriteTestFile("embedded.bin", embedded);
    const CgwTiffHandle tiff = gwTiffOpenHandle("file:" + path, 1, 333);
    ASSERT_TRUE(tiff);
    quint32 width = 0;
    TIFFGetField(tiff.get(), TIFFTAG_IMAGEWIDTH, &width);
    EXPECT_EQ(width, 4u);
    std::vector<unsigned char> row(4);
    ASSERT_EQ(TIFFReadScanline(tiff.get(), row.data(), 2, 0), 1);
    EXPECT_EQ(row, std::vector<unsigned char>({1, 2, 3, 4}));
    EXPECT_TRUE(TIFFReadDirectory(tiff.get()));
    EXPECT_FALSE(gwTiffOpenHandle("file:" + path, 1, 0)) << "junk where the header should be";
}

TEST(TiffIO, ThePrivateTagsReadBack)
{
    const QByteArray hdri("\x10\x20\x30\x40\x00\x00\x00\x01", 8);
    const QString path = writeTiff("private.tif", 1, 0, hdri);
    const CgwTiffHandle tiff = gwTiffOpenHandle("file:" + path, 1, 0);
    ASSERT_TRUE(tiff);
    gwTiffMergePrivateTags(tiff.get());
    EXPECT_EQ(gwTiffFieldBytes(tiff.get(), kGwTiffTagHDRi), hdri);
    // Bytes in file order, read as a little-endian file's word.
    EXPECT_EQ(gwTiffHdriValue(tiff.get()), 0x0100000040302010ull);
    EXPECT_TRUE(gwTiffFieldBytes(tiff.get(), kGwTiffTagFilm).isEmpty());
}

TEST(TiffIO, FilmTextsSitAtFixedPlaces)
{
    QByteArray block(288, '\0');
    block.replace(0, 5, "Kodak");
    block.replace(96, 9, "Ektachrom");
    block.replace(192, 4, "E100");
    EXPECT_EQ(gwTiffFilmStrings(block), QStringList({"Kodak", "Ektachrom", "E100"}));
    // A short block, and a text that fills its field without a NUL.
    EXPECT_EQ(gwTiffFilmStrings(QByteArray(96, 'x') + "ab"), QStringList({QString(96, 'x'), "ab", ""}));
}

TEST(TiffIO, WarningsReachTheLogOnceAndThePrivateTagsNoiseNever)
{
    const QString unknown = writeTiff("unknown.tif", 1, 40000);
    const QString privateTag = writeTiff("noise.tif", 1, 0, QByteArray(8, '\1'));
    const int before = gwLogLineCount();
    for (int i = 0; i < 3; ++i) {
        gwTiffOpenHandle("file:" + unknown, 1, 0);
        gwTiffOpenHandle("file:" + privateTag, 1, 0); // read without the private tags merged
    }
    const QStringList seen = gwTiffSeenMessages();
    const auto mentions = [&](const char* text) {
        return std::count_if(seen.begin(), seen.end(), [&](const QString& m) { return m.contains(text); });
    };
    EXPECT_EQ(mentions("40000"), 1);
    EXPECT_EQ(mentions("0x89ab"), 1);
    EXPECT_EQ(gwLogLineCount(), before + 1);
    EXPECT_TRUE(gwLastLogLine().contains("40000"));
}

TEST(TiffIO, ErrorsAreKeptButNotLogged)
{
    QByteArray broken = gwReadFile(writeTiff("whole.tif", 1));
    broken.truncate(16); // the directory is gone
    const QString path = gwWriteTestFile("broken.tif", broken);
    const int before = gwLogLineCount();
    EXPECT_FALSE(gwTiffOpenHandle("file:" + path, 1, 0));
    EXPECT_EQ(gwLogLineCount(), before);
    EXPECT_FALSE(gwTiffSeenMessages().isEmpty());
}
