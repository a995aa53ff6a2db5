#include "gwScanOutput.h"

#include "Sourcen/Image/gwBitmapT.h"
#include "gwScanHost.h"
#include "imagefile/gwImageFileList.h"

#include <QFileInfo>
#include <QImage>
#include <QImageWriter>

#include <memory>

namespace {
// 16-bit grey and RGB keep their depth; 8-bit bitmaps go through toQImage.
QImage imageOf(const CgwBitmapBase& bitmap)
{
    const QSize size = bitmap.size();
    if (const auto* grey = dynamic_cast<const CgwBitmapT<CgwPixelGrey16Type>*>(&bitmap)) {
        QImage image(size, QImage::Format_Grayscale16);
        for (int y = 0; y < size.height(); ++y) {
            const CgwArrayT<CgwPixelGrey16Type> line = grey->line(y);
            auto* out = reinterpret_cast<quint16*>(image.scanLine(y));
            for (int x = 0; x < size.width(); ++x)
                out[x] = line[x].s[0];
        }
        return image;
    }
    if (const auto* rgb = dynamic_cast<const CgwBitmapT<CgwPixel16x3>*>(&bitmap)) {
        QImage image(size, QImage::Format_RGBX64);
        for (int y = 0; y < size.height(); ++y) {
            const CgwArrayT<CgwPixel16x3> line = rgb->line(y);
            auto* out = reinterpret_cast<QRgba64*>(image.scanLine(y));
            for (int x = 0; x < size.width(); ++x)
                out[x] = QRgba64::fromRgba64(line[x].s[0], line[x].s[1], line[x].s[2], 65535);
        }
        return image;
    }
    QImage image = const_cast<CgwBitmapBase&>(bitmap).toQImage(0.0);
    return image.format() == QImage::Format_ARGB32 ? image.convertToFormat(QImage::Format_RGB32) : image;
}

bool writePng(const QString& path, const CgwBitmapBase& bitmap, QString* error)
{
    QImageWriter writer(path, "png");
    if (writer.write(imageOf(bitmap)))
        return true;
    *error = QStringLiteral("cannot write %1: %2").arg(path, writer.errorString());
    return false;
}

// A new object of the format whose extensions hold `suffix`, or null.
std::unique_ptr<CgwImageFileBase> formatForSuffix(const QString& suffix)
{
    const CgwImageFileList& list = CgwImageFileList::instance();
    for (int type : list.formats()) {
        std::unique_ptr<CgwImageFileBase> format(list.createImageFile(type));
        for (const std::string& extension : format ? format->fileExtensions() : std::vector<std::string>())
            if (!extension.empty() && suffix == QString::fromStdString(extension))
                return format;
    }
    return nullptr;
}
} // namespace

bool gwCanWriteScan(const QString& path, QString* error)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == QLatin1String("png") || formatForSuffix(suffix))
        return true;
    *error = QStringLiteral("no image format writes \".%1\" files; use .png, .jpg, .bmp").arg(suffix);
    return false;
}

bool gwWriteScan(const QString& path, const CgwBitmapBase& bitmap, const CgwBitmapBase* ir, QString* error)
{
    const QFileInfo info(path);
    const QString suffix = info.suffix().toLower();
    if (suffix == QLatin1String("png")) {
        if (!writePng(path, bitmap, error))
            return false;
        const QString irPath = info.path() + QLatin1Char('/') + info.completeBaseName() + QStringLiteral("_ir.png");
        return !ir || writePng(irPath, *ir, error);
    }
    std::unique_ptr<CgwImageFileBase> format = formatForSuffix(suffix);
    if (!format)
        return gwCanWriteScan(path, error);
    if (!format->saveBitmap(gwFileLocation(path), bitmap, ir)) {
        *error = QStringLiteral("the %1 writer could not store %2 (the log tells why)").arg(suffix, path);
        return false;
    }
    return true;
}
