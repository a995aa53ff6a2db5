// The Exif of the corpus's JPEG and TIFF files, read here, against what the
// exiv2 program reports for them.

#include "files/gwFile.h"
#include "imagefile/gwJpegMarkers.h"
#include "metadata/gwExif.h"
#include "support/gwTestEnv.h"

#include <QDir>
#include <QRegularExpression>
#include <QStandardPaths>

#include <cstdio>

#include <gtest/gtest.h>

namespace {

struct Exiv2Tag {
    quint16 tag;
    QString type;
    QString value;
};

// Tags of the main IFD, the Exif IFD and the GPS IFD as exiv2 prints them.
QList<Exiv2Tag> exiv2Tags(const QString& path)
{
    QList<Exiv2Tag> tags;
    // Text tags may hold any byte: keep them as they are.
    for (const QString& line : QString::fromLatin1(gwRunProgram("exiv2", {"-q", "-PExgnycv", path})).split('\n')) {
        const QStringList f = line.split(QRegularExpression(QStringLiteral("\\s+")));
        if (f.size() < 5 || !QStringList{"Image", "Photo", "GPSInfo"}.contains(f[1]))
            continue;
        const QString value = line.section(QRegularExpression(QStringLiteral("\\s+")), 5).trimmed();
        tags.append({quint16(f[0].toUInt(nullptr, 16)), f[3], value});
    }
    return tags;
}

// Our value in exiv2's words.
QString text(const CgwExif& exif, quint16 tag, const QString& type)
{
    if (type == "Ascii")
        return exif.getAscii(tag).trimmed();
    QStringList items;
    for (int i = 0; i < int(exif.getValue(tag).count); ++i) {
        qint32 n = 0, d = 0;
        if (type == "Short" || type == "Long")
            items << QString::number(exif.getInt(tag, i));
        else if (exif.getRational(tag, i, &n, &d))
            items << (type == "Rational" ? QStringLiteral("%1/%2").arg(quint32(n)).arg(quint32(d))
                                         : QStringLiteral("%1/%2").arg(n).arg(d));
    }
    return items.join(' ');
}

// The TIFF types compared, by exiv2's names.
const QMap<QString, int> kTypes = {{"Ascii", 2}, {"Short", 3}, {"Long", 4}, {"Rational", 5}, {"SRational", 10}};

// Files that this reader reads otherwise, on purpose.
const QMap<QString, QString> kByDesign = {
    {"tiff/oom-225817ca0f8c663be7ab4b9e717b02c661e66834.tif",
     "11 entries claimed in 88 bytes: an IFD whose entries do not fit is not read at all"},
};

} // namespace

TEST(ExifCorpus, TagValuesAgreeWithExiv2)
{
    const QString corpus = QStringLiteral(GW_CORPUS_DIR);
    if (!QDir(corpus).exists() || QStandardPaths::findExecutable("exiv2").isEmpty())
        GTEST_SKIP() << "needs the corpus and the exiv2 program";
    int compared = 0;
    int files = 0;
    for (const QString folder : {"jpeg", "tiff"}) {
        const QDir dir(corpus + "/" + folder);
        for (const QString& name : dir.entryList(QDir::Files, QDir::Name)) {
            SCOPED_TRACE((folder + "/" + name).toStdString());
            const QString path = dir.filePath(name);
            CgwFileBuffer file(gwReadFile(path));
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            // A JPEG's TIFF header stands behind APP1's marker, length and "Exif\0\0".
            qint64 marker = -10, length = 0;
            const bool found = folder == "tiff" || gwFindJpegExif(file, marker, length);
            file.seek(marker + 10, 0);
            CgwExif exif;
            const bool read = found && exif.readFromStream(file, 0); // must not crash on any file
            const QList<Exiv2Tag> expected = exiv2Tags(path);
            if (!read || expected.isEmpty() || kByDesign.contains(folder + "/" + name))
                continue;
            ++files;
            for (const Exiv2Tag& t : expected) {
                if (!kTypes.contains(t.type) || t.tag == 0x8769 || t.tag == 0x8825 || t.tag == 0xA005)
                    continue; // the pointers are not kept
                ASSERT_TRUE(exif.hasTag(t.tag)) << std::hex << t.tag;
                EXPECT_EQ(exif.getValue(t.tag).type, kTypes[t.type]) << std::hex << t.tag;
                EXPECT_EQ(text(exif, t.tag, t.type), t.value) << std::hex << t.tag;
                ++compared;
            }
        }
    }
    std::printf("compared %d tags in %d files with exiv2\n", compared, files);
    EXPECT_GE(files, 10);
    EXPECT_GE(compared, 200);
}
