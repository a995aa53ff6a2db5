#include "support/gwCorpus.h"

#include "support/gwTestEnv.h"

#include "Sourcen/Image/gwBitmapT.h"

#include <QCryptographicHash>
#include <QList>

namespace {

template <class Pixel>
void appendSamples(const CgwBitmapT<Pixel>& bitmap, int channels, bool invert, QByteArray& out)
{
    using Sample = typename Pixel::SampleType;
    const Sample max = std::numeric_limits<Sample>::max();
    for (int y = 0; y < bitmap.size().height(); ++y) {
        const CgwArrayT<Pixel> line = bitmap.line(y);
        for (int x = 0; x < bitmap.size().width(); ++x) {
            for (int c = 0; c < channels; ++c) {
                const Sample v = invert ? Sample(max - line[x].s[c]) : line[x].s[c];
                for (size_t b = 0; b < sizeof(Sample); ++b)
                    out.append(char(v >> (8 * b)));
            }
        }
    }
}

} // namespace

QByteArray gwSampleBytes(const CgwBitmapBase& bitmap, int channels, bool invert)
{
    QByteArray out;
    gwDispatchPixelType(bitmap.pixelType(), [&](auto pixel) {
        using Pixel = decltype(pixel);
        if constexpr (std::is_integral_v<typename Pixel::SampleType>)
            appendSamples(dynamic_cast<const CgwBitmapT<Pixel>&>(bitmap), channels, invert, out);
    });
    return out;
}

QByteArray gwSampleHash(const CgwBitmapBase& bitmap, int channels, bool invert)
{
    return QCryptographicHash::hash(gwSampleBytes(bitmap, channels, invert), QCryptographicHash::Sha256).toHex();
}

QByteArray gwRgba8Hash(const CgwBitmapBase& bitmap, const std::array<int, 3>& order)
{
    const auto& typed = dynamic_cast<const CgwBitmapT<CgwPixel8x4>&>(bitmap);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (int y = 0; y < bitmap.size().height(); ++y) {
        const CgwArrayT<CgwPixel8x4> line = typed.line(y);
        for (int x = 0; x < bitmap.size().width(); ++x) {
            const quint8* s = line[x].s;
            const char rgba[4] = {char(s[order[0]]), char(s[order[1]]), char(s[order[2]]), char(255)};
            hash.addData(rgba, 4);
        }
    }
    return hash.result().toHex();
}

QString gwCorpusDir()
{
    return QStringLiteral(GW_CORPUS_DIR);
}

QMap<QString, SgwCorpusReference> gwCorpusReferences(const QString& folder)
{
    QMap<QString, SgwCorpusReference> references;
    const QByteArray prefix = folder.toUtf8() + '/';
    const QList<QByteArray> lines = gwReadFile(gwCorpusDir() + QStringLiteral("/REFERENCE.tsv")).split('\n');
    for (const QByteArray& line : lines) {
        const QList<QByteArray> f = line.split('\t');
        if (f.size() < 12 || !f[0].startsWith(prefix) || f[1] != "0")
            continue;
        references.insert(QString::fromUtf8(f[0].mid(prefix.size())),
                          SgwCorpusReference{QString::fromUtf8(f[2]), f[4].toInt(), f[5].toInt(), f[7].toInt(), f[10],
                                             f[11]});
    }
    return references;
}
