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

// Read otherwise on purpose: 11 entries claimed in 88 bytes; an IFD whose
// entries do not fit is not read at all.
const QString kByDesign = QStringLiteral("tiff/oom-225817ca0f8c663be7ab4b9e717b02c661e66834.tif");

} // namespace

TEST(ExifCorpus, TagValuesAgreeWithExiv2)
{
    const QString corpus = QStringLiteral(GW_CORPUS_DIR);
    if (!QDir(corpus).exists() || QStandardPaths::findExecutable("exiv2").isEmpty())
        GTEST_SKIP() << "needs the corpus and the exiv2 program";
    const QRegularExpression space(QStringLiteral("\\s+"));
    int compared = 0, files = 0;
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
            if (!read || folder + "/" + name == kByDesign)
                continue;
            // Tags of the main, Exif and GPS IFDs as exiv2 prints them; text tags
            // may hold any byte: keep them as they are.
            const int before = compared;
            const QString report = QString::fromLatin1(gwRunProgram("exiv2", {"-q", "-PExgnycv", path}));
            for (const QString& line : report.split('\n')) {
                const QStringList f = line.split(space);
                const quint16 tag = quint16(f.value(0).toUInt(nullptr, 16));
                if (f.size() < 5 || !QStringList{"Image", "Photo", "GPSInfo"}.contains(f[1]) || !kTypes.contains(f[3])
                    || tag == 0x8769 || tag == 0x8825 || tag == 0xA005)
                    continue; // the pointers are not kept
                ASSERT_TRUE(exif.hasTag(tag)) << std::hex << tag;
                EXPECT_EQ(exif.getValue(tag).type, kTypes[f[3]]) << std::hex << tag;
                EXPECT_EQ(text(exif, tag, f[3]), line.section(space, 5).trimmed()) << std::hex << tag;
                ++compared;
            }
            files += compared > before;
        }
    }
    std::printf("compared %d tags in %d files with exiv2\n", compared, files);
    EXPECT_GE(files, 10);
    EXPECT_GE(compared, 200);
}
