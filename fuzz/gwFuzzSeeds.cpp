// fuzz_seeds DIR: writes what the suite's own writers make into DIR/tiff,
// DIR/bmp, DIR/jpeg and DIR/xml, as seeds beside the shared corpus of other
// programs' files. Only the suite writes maker notes, HDR marks, IR pages
// and parameter documents, so only these seeds reach that code early.

#include "Sourcen/Image/gwBitmapT.h"
#include "gwTestTiff.h"
#include "imagefile/gwImageFileBMP.h"
#include "imagefile/gwImageFileJPG.h"
#include "metadata/gwExif.h"
#include "metadata/gwIptc.h"
#include "settings/gwParamKeys.h"
#include "support/gwTestEnv.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <cstdio>

namespace {

using Rgba8 = CgwBitmapT<CgwPixel8x4>;

QString sOut;

bool keep(const QString& location, const QString& folder, const QString& name)
{
    const QString target = sOut + "/" + folder + "/" + name;
    QDir().mkpath(sOut + "/" + folder);
    QFile::remove(target);
    return !location.isEmpty() && QFile::copy(location.startsWith("file:") ? location.mid(5) : location, target);
}

// Pages at 300 dpi; `pixels` false writes the tags alone.
SgwTestPage page(QSize size, int bits, int samples, quint32 subfileType, bool pixels = true)
{
    return SgwTestPage{size, bits, samples, subfileType, 300.0, 0, pixels};
}

// A scan as the suite writes it: HDR mark, maker note, film and IPTC.
SgwTestTiff scan(std::vector<SgwTestPage> pages)
{
    SgwTestTiff layout;
    layout.pages = std::move(pages);
    layout.software = QStringLiteral("Glimmerway 8.2.1 r5 b");
    layout.hdri = gwHdriBytes(1, false);
    layout.film = QByteArray("Vendor").leftJustified(96, '\0') + QByteArray("Brand").leftJustified(96, '\0') + "Type";
    layout.iptc = QByteArray("\x1c\x02\x05\x00\x05Title", 10);
    layout.makerNote = true;
    layout.hdrMark = 1;
    layout.gamma = 22000;
    layout.optical = 3600;
    layout.vendor = 7;
    layout.scanner = 11;
    return layout;
}

bool writeTiffs()
{
    SgwTestTiff older = scan({page(QSize(9, 5), 8, 3, 0)});
    older.hdri.clear();
    older.behind = QByteArray(9 * 5 * 2, '\x5a');
    SgwTestTiff big = scan({page(QSize(12, 4), 16, 3, 0), page(QSize(12, 4), 16, 1, 4)});
    big.bigEndian = true;
    SgwTestTiff plain;
    plain.pages = {page(QSize(17, 3), 1, 1, 0)};
    return keep(gwWriteTestTiff("scan.tif", scan({page(QSize(13, 7), 8, 3, 0), page(QSize(13, 7), 16, 1, 4)})),
                "tiff", "scan.tif")
           && keep(gwWriteTestTiff("hirepx.tif", scan({page(QSize(4000, 2501), 8, 1, 0, false),
                                                        page(QSize(8, 5), 8, 3, 1), page(QSize(8, 5), 16, 1, 4)})),
                   "tiff", "hirepx.tif")
           && keep(gwWriteTestTiff("older-ir.tif", older), "tiff", "older-ir.tif")
           && keep(gwWriteTestTiff("big-endian.tif", big), "tiff", "big-endian.tif")
           && keep(gwWriteTestTiff("bilevel.tif", plain), "tiff", "bilevel.tif");
}

std::unique_ptr<Rgba8> pattern(QSize size, int mode)
{
    auto bitmap = std::make_unique<Rgba8>();
    bitmap->createBitmap(size, mode, 0);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            bitmap->line(y)[x] = CgwPixel8x4{{quint8(x * 29), quint8(y * 53), quint8(x * y), quint8(x + y)}};
    bitmap->setResolution(QPointF(300.0, 300.0));
    return bitmap;
}

bool writeBmps()
{
    bool ok = true;
    for (const int mode : {EgwColorModeGrey, EgwColorModeRGB, EgwColorModeCMYK, EgwColorModeRGBA}) {
        const QString name = QStringLiteral("mode%1.bmp").arg(mode);
        const QString path = gwTestRoot() + "/" + name;
        ok = ok && CgwImageFileBMP().saveBitmap("file:" + path, *pattern(QSize(5, 3), mode)) && keep(path, "bmp", name);
    }
    return ok;
}

bool writeJpegs()
{
    bool ok = true;
    for (const int mode : {EgwColorModeGrey, EgwColorModeRGB, EgwColorModeCMYK}) {
        for (int format = 0; format < 3; ++format) {
            std::unique_ptr<Rgba8> bitmap = pattern(QSize(19, 11), mode);
            CgwExif exif;
            exif.setTextValue(0x0131, QStringLiteral("Glimmerway 8.2.1 r5 b"));
            exif.setMakerNoteFloat(0xC001, 1, 2.2f);
            bitmap->setExif(exif);
            CgwIptc iptc;
            iptc.setValue(0x0205, QStringLiteral("Title"));
            bitmap->setIptc(iptc);
            CgwImageFileJPG writer;
            CgwParameterSet parameters;
            parameters.setLongLong(GgwParam_JPEGFormat, format);
            writer.setParameter(parameters);
            const QString name = QStringLiteral("mode%1-format%2.jpg").arg(mode).arg(format);
            const QString path = gwTestRoot() + "/" + name;
            ok = ok && writer.saveBitmap("file:" + path, *bitmap) && keep(path, "jpeg", name);
        }
    }
    return ok;
}

bool writeDocuments()
{
    CgwParameterSet set;
    set.setBool(QStringLiteral("IsHDR"), true);
    set.setDouble(QStringLiteral("Gamma"), 2.2);
    set.setLongLong(QStringLiteral("JPEGQuality"), -80);
    set.setULongLong(QStringLiteral("Serial"), 18446744073709551615ULL);
    set.setString(QStringLiteral("Name"), QStringLiteral("New Job ~ äöü\t日本"));
    set.setString(QStringLiteral("Empty"), QString());
    set.setValue(QStringLiteral("Path"), QStringLiteral("a:b;c,d{e}\\f<g>&h%i\nj k"));
    set.setPresetList(QStringLiteral("Presets"), {{QStringLiteral("Skin tones"), 1, 2, {3, -4, 5, 6, 7, 8}}});
    set.setValue(QStringLiteral("Size"), CgwParameterSet::valueFromDouble(1200).toQString()
                                             + CgwParameterSet::valueFromDouble(800.5).toQString());
    const QString path = gwTestRoot() + "/set.xml";
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    set.writeTo(file);
    file.close();
    return keep(path, "xml", "set.xml");
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: fuzz_seeds DIR\n");
        return 2;
    }
    sOut = QDir(QString::fromLocal8Bit(argv[1])).absolutePath();
    gwPrepareTestEnvironment();
    QCoreApplication app(argc, argv);
    const bool ok = writeTiffs() && writeBmps() && writeJpegs() && writeDocuments();
    QDir(gwTestRoot()).removeRecursively();
    if (!ok)
        std::fprintf(stderr, "fuzz_seeds: a seed could not be written\n");
    return ok ? 0 : 1;
}
