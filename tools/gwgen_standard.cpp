// Draws the plug-in's built-in picture, a small scan target: colour
// patches, a grey wedge, gradients, fine lines and a caption. The output
// is committed as scanner/resources/standard.jpg; run this again only to
// change the picture.
//
// gwgen_standard OUT.jpg

#include <QFont>
#include <QGuiApplication>
#include <QImage>
#include <QImageWriter>
#include <QLinearGradient>
#include <QPainter>

#include <cstdio>

namespace {

// Twelve patches of familiar colours (skin, sky, foliage, primaries).
const QRgb kPatches[] = {0x735244, 0xc29682, 0x627a9d, 0x576c43, 0x8580b1, 0x67bdaa,
                         0xd67e2c, 0x505ba6, 0xc15a63, 0x5e3c6c, 0x9dbc40, 0xe0a32e};

void drawPatches(QPainter& p)
{
    for (int i = 0; i < 12; ++i)
        p.fillRect(20 + (i % 6) * 100, 60 + (i / 6) * 90, 90, 80, QColor(kPatches[i]));
}

void drawWedge(QPainter& p)
{
    for (int i = 0; i < 16; ++i) {
        const int v = i * 255 / 15;
        p.fillRect(20 + i * 37, 250, 37, 40, QColor(v, v, v));
    }
}

void drawGradients(QPainter& p)
{
    const QColor ends[] = {Qt::red, Qt::green, Qt::blue};
    for (int i = 0; i < 3; ++i) {
        QLinearGradient g(20, 0, 612, 0);
        g.setColorAt(0.0, Qt::black);
        g.setColorAt(1.0, ends[i]);
        p.fillRect(20, 300 + i * 20, 592, 18, g);
    }
}

void drawLines(QPainter& p)
{
    p.setRenderHint(QPainter::Antialiasing, false);
    p.setPen(QPen(Qt::black, 1));
    for (int x = 0; x < 120; x += 2)
        p.drawLine(20 + x, 372, 20 + x, 404); // one-pixel lines: resolution at a glance
    for (int y = 0; y < 32; y += 2)
        p.drawLine(160, 372 + y, 280, 372 + y);
}

} // namespace

int main(int argc, char** argv)
{
    QGuiApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: gwgen_standard OUT.jpg\n");
        return 2;
    }
    QImage image(640, 420, QImage::Format_RGB32);
    image.fill(QColor(236, 234, 228));
    image.setDotsPerMeterX(11811); // 300 dpi
    image.setDotsPerMeterY(11811);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    QFont font;
    font.setPixelSize(22);
    p.setFont(font);
    p.setPen(Qt::black);
    p.drawText(20, 40, QStringLiteral("HDR Atelier - built-in scan target"));
    drawPatches(p);
    drawWedge(p);
    drawGradients(p);
    drawLines(p);
    p.end();
    QImageWriter writer(QString::fromLocal8Bit(argv[1]), "jpg");
    writer.setQuality(90);
    if (!writer.write(image)) {
        std::fprintf(stderr, "gwgen_standard: %s\n", qPrintable(writer.errorString()));
        return 1;
    }
    return 0;
}
