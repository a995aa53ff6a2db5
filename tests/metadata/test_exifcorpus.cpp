// The Exif of the corpus's JPEG and TIFF files, read here, against what the
// exiv2 program reports for them.

#include "files/gwFile.h"
#include "metadata/gwExif.h"
#include "support/gwTestEnv.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>

#include <cstdio>
#include <cstring>

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
    QProcess exiv2;
    exiv2.start(QStringLiteral("exiv2"), {"-q", "-PExgnycv", path});
    exiv2.waitForFinished(30000);
    QList<Exiv2Tag> tags;
    // Text tags may hold any byte: keep them as they are.
    for (const QString& line : QString::fromLatin1(exiv2.readAllStandardOutput()).split('\n')) {
        const QStringList f = line.split(QRegularExpression(QStringLiteral("\\s+")));
        if (f.size() < 5 || !QStringList{"Image", "Photo", "GPSInfo"}.contains(f[1]))
            continue;
        const QString value = line.section(QRegularExpression(QStringLiteral("\\s+")), 5).trimmed();
        tags.append({quint16(f[0].toUInt(nullptr, 16)), f[3], value});
    }
    return tags;
}

// Where the TIFF header of a JPEG's Exif segment starts, or -1.
qint64 jpegExifOffset(const QByteArray& jpeg)
{
    qint64 at = 2;
    while (at + 4 <= jpeg.size() && quint8(jpeg[int(at)]) == 0xFF) {
        const int marker = quint8(jpeg[int(at + 1)]);
        const int length = (quint8(jpeg[int(at + 2)]) << 8) | quint8(jpeg[int(at + 3)]);
        if (marker == 0xE1 && jpeg.mid(int(at + 4), 6) == QByteArray("Exif\0\0", 6))
            return at + 10;
        if (marker == 0xDA)
            break;
        at += 2 + length;
    }
    return -1;
}

// Our value in exiv2's words.
QString text(const CgwExifValue& v, const QString& type)
{
    QStringList items;
    const char* d = v.data.constData();
    for (quint32 i = 0; i < v.count; ++i) {
        if (type == "Short") {
            quint16 x;
            std::memcpy(&x, d + 2 * i, 2);
            items << QString::number(x);
        } else if (type == "Long") {
            quint32 x;
            std::memcpy(&x, d + 4 * i, 4);
            items << QString::number(x);
        } else if (type == "Rational" || type == "SRational") {
            qint32 w[2];
            std::memcpy(w, d + 8 * i, 8);
            items << (type == "Rational" ? QStringLiteral("%1/%2").arg(quint32(w[0])).arg(quint32(w[1]))
                                         : QStringLiteral("%1/%2").arg(w[0]).arg(w[1]));
        }
    }
    if (type == "Ascii")
        return QString::fromLatin1(v.data.constData(), int(qstrnlen(v.data.constData(), uint(v.data.size())))).trimmed();
    return items.join(' ');
}

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
            const QByteArray bytes = gwReadFile(path);
            const qint64 start = folder == "jpeg" ? jpegExifOffset(bytes) : 0;
            CgwFileBuffer file(bytes);
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            CgwExif exif;
            file.seek(std::max<qint64>(start, 0), 0);
            const bool read = start >= 0 && exif.readFromStream(file, 0); // must not crash on any file
            const QList<Exiv2Tag> expected = exiv2Tags(path);
            if (!read || expected.isEmpty() || kByDesign.contains(folder + "/" + name))
                continue;
            ++files;
            for (const Exiv2Tag& t : expected) {
                const bool comparable = QStringList{"Short", "Long", "Ascii", "Rational", "SRational"}.contains(t.type)
                                        && t.tag != 0x8769 && t.tag != 0x8825 && t.tag != 0xA005;
                if (!comparable)
                    continue;
                ASSERT_TRUE(exif.hasTag(t.tag)) << std::hex << t.tag;
                EXPECT_EQ(text(exif.getValue(t.tag), t.type), t.value) << std::hex << t.tag;
                ++compared;
            }
        }
    }
    std::printf("compared %d tags in %d files with exiv2\n", compared, files);
    EXPECT_GE(files, 10);
    EXPECT_GE(compared, 200);
}
