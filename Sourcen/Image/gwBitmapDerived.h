#pragma once

// Images made from a bitmap: thumbnail, QImage, and a bitmap of another
// pixel type.

#include "Sourcen/Image/gwBitmapColorMode.h"
#include "Sourcen/Image/gwBitmapTransfer.h"

#include <QTransform>

template <class Pixel>
CgwBitmapBase* CgwBitmapT<Pixel>::getThumbnail(int maxSize) const
{
    const qint64 w = size().width();
    const qint64 h = size().height();
    if (w == maxSize && h == maxSize)
        return clone();
    qint64 tw = maxSize;
    qint64 th = maxSize;
    if (w > h)
        th = std::max<qint64>(h * maxSize / w, 2);
    else if (h > w)
        tw = std::max<qint64>(w * maxSize / h, 2);
    if (tw <= 0 || th <= 0) {
        GW_REPORT_AT("Error: Zero-sized output image!");
        return nullptr;
    }
    const qint64 stepX = w / tw;
    const qint64 stepY = h / th;
    if (stepX == 0 || stepY == 0) {
        GW_REPORT_AT("Error: Upscale necessary for thumbnail!");
        return nullptr;
    }
    // Never true; the message has always stood here.
    if (pixelType() == 4 && pixelType() == 5)
        GW_REPORT_AT("Error: Querying thumbnail on Bitmap with Pixelformat other than RGB16 or Grey16!");
    auto* thumbnail = static_cast<CgwBitmapT<Pixel>*>(createEmptyCopy());
    thumbnail->createBitmap(QSize(int(tw), int(th)), colorMode(), 0);
    if (!thumbnail->isInitialized()) {
        GW_REPORT_AT("Error: Could not allocate thumbnail image!");
        delete thumbnail;
        return nullptr;
    }
    for (int y = 0; y < th; ++y) {
        const CgwArrayT<Pixel> in = line(int(y * stepY));
        const CgwArrayT<Pixel> out = thumbnail->line(y);
        for (int x = 0; x < tw; ++x)
            out[x] = in[int(x * stepX)];
    }
    return thumbnail;
}

template <class Pixel>
QImage CgwBitmapT<Pixel>::toQImage(double angle)
{
    const int mode = colorMode();
    const bool supported = mode == 1 || mode == 3 || mode == 4 || mode == 5 || mode == 7
                           || (mode == 6 && Pixel::kChannels >= 4);
    if (!isInitialized())
        return QImage();
    if (!supported) {
        gwDebugString(sizeof(Sample) == 1
                          ? QStringLiteral("CgwBitmapT::toQImage : Error: Unsupported bitmap format (8 bits per channel)!")
                          : QStringLiteral("CgwBitmapT::toQImage : Error: Unsupported bitmap format (16 bits per channel)!"));
        return QImage();
    }
    const int w = size().width();
    int rows = getLegalRectBottom();
    if (rows < 0 || rows > size().height())
        rows = size().height();
    QImage image(w, size().height(), QImage::Format_ARGB32);
    if (image.isNull())
        return QImage();
    image.fill(0); // rows not yet scanned stay transparent
    uchar* bits = image.bits();
    const qsizetype stride = image.bytesPerLine();
    const auto eight = [](Sample s) { return int(std::trunc(float(s) * 255.0f / float(Pixel::kMax))); };
    gwRunOverRows(0, rows, [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            const CgwArrayT<Pixel> in = line(y);
            auto* out = reinterpret_cast<QRgb*>(bits + stride * y);
            for (int x = 0; x < w; ++x) {
                const Pixel& p = in[x];
                int c[4] = {eight(p.s[0]), 0, 0, 255};
                for (int i = 1; i < Pixel::kChannels && i < 4; ++i)
                    c[i] = eight(p.s[i]);
                if (mode == 1 || Pixel::kChannels < 3) {
                    out[x] = qRgb(c[0], c[0], c[0]);
                    continue;
                }
                if (mode == 5 || mode == 6) {
                    const float f[4] = {c[0] / 255.0f, c[1] / 255.0f, c[2] / 255.0f, c[3] / 255.0f};
                    float rgb[3];
                    if (mode == 5)
                        gwLabToRgb(f, rgb);
                    else
                        gwCmykToRgb(f, rgb);
                    for (int i = 0; i < 3; ++i)
                        c[i] = int(std::trunc(rgb[i] * 255.0f));
                }
                out[x] = qRgba(c[0], c[1], c[2], mode == 7 ? c[3] : 255);
            }
        }
    });
    if (angle > -360.0 && angle < 360.0) {
        QTransform turn;
        turn.rotate(angle);
        image = image.transformed(turn, Qt::SmoothTransformation);
    }
    return image;
}

template <class Pixel>
template <class Src>
bool CgwBitmapT<Pixel>::createFromType(const CgwBitmapT<Src>& source, bool reuse)
{
    if constexpr (std::is_same_v<Src, Pixel>) {
        if (reuse) {
            swap(const_cast<CgwBitmapT<Src>&>(source));
            const_cast<CgwBitmapT<Src>&>(source).reset(false);
            return true;
        }
        if (!createBitmap(source.size(), source.colorMode(), unsigned(source.filterRadius())))
            return false;
        *this = source;
        return true;
    } else {
        if (reuse)
            gwDebugString(QStringLiteral("CgwBitmapT<>::createBitmapFrom : Info': Could not reuse input bitmap's memory."));
        if (!createBitmap(source.size(), source.colorMode(), 0) || !setBlock(QPoint(0, 0), source))
            return false;
        setGamma(source.gamma());
        setScannerMode(source.scannerMode());
        return true;
    }
}

template <class Pixel>
bool CgwBitmapT<Pixel>::createBitmapFrom(CgwBitmapBase& source, bool reuse)
{
    reset(false);
    if (!source.isInitialized()) {
        gwDebugString(QStringLiteral("CgwBitmapT<>::createBitmapFrom : Error: Input bitmap is not legal!"));
        return false;
    }
    const int mode = source.colorMode();
    const int channels = gwColorModeChannels(mode);
    const bool modeKnown = mode == 1 || (mode >= 3 && mode <= 7);
    if (!modeKnown || (Pixel::kChannels >= 3 && channels > Pixel::kChannels)) {
        gwDebugString(QStringLiteral(
            "CgwBitmapT<>::createBitmapFrom : Error: Input bitmap's color mode is unknown or not supported!"));
        return false;
    }
    if (std::is_floating_point_v<Sample> && channels > Pixel::kChannels) {
        gwDebugString(QStringLiteral("CgwBitmapT<>::createBitmapFrom : Error: Unsupported output channel count!"));
        return false;
    }
    if (auto* same = dynamic_cast<CgwBitmapT<Pixel>*>(&source))
        return createFromType(*same, reuse);
    bool result = false;
    const bool known = gwDispatchPixelType(source.pixelType(), [&](auto pixel) {
        using Src = decltype(pixel);
        result = createFromType(static_cast<const CgwBitmapT<Src>&>(source), reuse);
    });
    return known && result;
}
