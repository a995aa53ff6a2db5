// JPEG load and save against libjpeg-turbo's own djpeg and cjpeg on the same
// 24-megapixel picture in the same run: loadBitmap of a baseline JPEG against
// djpeg decoding it, saveBitmap at quality 90 against cjpeg encoding the same
// pixels from a PPM. The tools' times include starting the process.
//
// gwbench_jpeg [width height]   (default 6000 x 4000)

#include "gwBenchSupport.h"

#include "Sourcen/Image/gwBitmapT.h"
#include "imagefile/gwImageFileJPG.h"
#include "settings/gwParamKeys.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdio>
#include <memory>
#include <random>

namespace {

// A picture with gradients and grain, so the coder has real work.
std::unique_ptr<CgwBitmapT<CgwPixel8x4>> picture(const QSize& size, QByteArray& ppm)
{
    auto bitmap = std::make_unique<CgwBitmapT<CgwPixel8x4>>();
    bitmap->createBitmap(size, EgwColorModeRGB, 0);
    ppm = QStringLiteral("P6\n%1 %2\n255\n").arg(size.width()).arg(size.height()).toLatin1();
    const int header = ppm.size();
    ppm.resize(header + size.width() * size.height() * 3);
    std::mt19937 random(7);
    for (int y = 0; y < size.height(); ++y) {
        const auto row = bitmap->line(y);
        char* out = ppm.data() + header + qint64(y) * size.width() * 3;
        for (int x = 0; x < size.width(); ++x) {
            const int grain = int(random() % 16);
            const CgwPixel8x4 p{{quint8((x * 255 / size.width() + grain) & 0xFF),
                                 quint8((y * 255 / size.height() + grain) & 0xFF), quint8((x ^ y) & 0xFF), 0}};
            row[x] = p;
            out[3 * x] = char(p.s[0]);
            out[3 * x + 1] = char(p.s[1]);
            out[3 * x + 2] = char(p.s[2]);
        }
    }
    return bitmap;
}

double toolTime(const QString& tool, const QStringList& args)
{
    return gwBestTime([&] {
        QProcess process;
        process.start(tool, args);
        process.waitForFinished(-1);
    });
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QSize size(argc > 2 ? std::atoi(argv[1]) : 6000, argc > 2 ? std::atoi(argv[2]) : 4000);
    QTemporaryDir dir;
    QByteArray ppm;
    const auto bitmap = picture(size, ppm);
    const QString ppmPath = dir.filePath("picture.ppm");
    const QString jpegPath = dir.filePath("picture.jpg");
    QFile file(ppmPath);
    if (!file.open(QIODevice::WriteOnly) || file.write(ppm) != ppm.size())
        return 1;
    file.close();

    CgwImageFileJPG jpeg;
    CgwParameterSet params;
    params.setLongLong(GgwParam_JPEGQuality, 90);
    jpeg.setParameter(params);
    if (!jpeg.saveBitmap("file:" + jpegPath, *bitmap)) {
        std::printf("could not write %s\n", qPrintable(jpegPath));
        return 1;
    }
    std::printf("%d x %d RGB (%.1f megapixels), JPEG of %.1f MB at quality 90\n", size.width(), size.height(),
                size.width() * double(size.height()) / 1e6, QFile(jpegPath).size() / 1e6);

    const double djpeg = toolTime("djpeg", {"-outfile", "/dev/null", jpegPath});
    const double load = gwBestTime([&] { delete CgwImageFileJPG().loadBitmap("file:" + jpegPath, 0); });
    std::printf("%-28s %8.1f ms   djpeg %8.1f ms   %5.2f x djpeg\n", "loadBitmap", load * 1e3, djpeg * 1e3,
                load / djpeg);

    const QString savedPath = dir.filePath("saved.jpg");
    const double cjpeg = toolTime("cjpeg", {"-quality", "90", "-outfile", "/dev/null", ppmPath});
    const double save = gwBestTime([&] { jpeg.saveBitmap("file:" + savedPath, *bitmap); });
    std::printf("%-28s %8.1f ms   cjpeg %8.1f ms   %5.2f x cjpeg\n", "saveBitmap quality 90", save * 1e3,
                cjpeg * 1e3, save / cjpeg);
    return 0;
}
