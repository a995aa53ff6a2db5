#include "support/gwFuzzBodies.h"

#include "Sourcen/Image/gwBitmapBase.h"
#include "files/gwFile.h"
#include "imagefile/gwImageFileBMP.h"
#include "imagefile/gwImageFileJPG.h"
#include "imagefile/gwImageFileTIF.h"
#include "metadata/gwExif.h"
#include "settings/gwXmlParameterSet.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

// The input as a file of this process; its location ("file:...").
QString writeInput(const QByteArray& input)
{
    static const QString path =
        QDir::tempPath() + QStringLiteral("/gw-fuzz-input-") + QString::number(QCoreApplication::applicationPid());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(input) != input.size()) {
        std::fprintf(stderr, "cannot write the fuzz input to %s\n", qPrintable(path));
        std::abort();
    }
    return QStringLiteral("file:") + path;
}

void drop(CgwBitmapBase* bitmap)
{
    delete bitmap;
}

// A broken invariant is a finding like a crash.
void require(bool holds, const char* what)
{
    if (!holds) {
        std::fprintf(stderr, "fuzz invariant broken: %s\n", what);
        std::abort();
    }
}

// Names what changed on the way, for the one who looks into a finding.
void reportDifference(const CgwParameterSet& before, const CgwParameterSet& after)
{
    QStringList keys;
    for (const CgwParameterSet* set : {&before, &after})
        for (auto it = set->begin(); it != set->end(); ++it)
            if (before.value(it.key()) != after.value(it.key()) || !before.hasKey(it.key()) || !after.hasKey(it.key()))
                keys << it.key();
    keys.removeDuplicates();
    for (const QString& key : keys)
        std::fprintf(stderr, "%s: \"%s\" became \"%s\"\n", qPrintable(key),
                     before.value(key).toQString().toUtf8().toPercentEncoding(" ").constData(),
                     after.value(key).toQString().toUtf8().toPercentEncoding(" ").constData());
}

} // namespace

void gwFuzzExifStream(const QByteArray& input)
{
    CgwFileBuffer file(input);
    if (!file.open(QIODevice::ReadOnly))
        return;
    // Every page, the display text of what came in, and a write of it.
    for (const CgwExif& page : CgwExif::readAllPages(file)) {
        for (auto it = page.values().constBegin(); it != page.values().constEnd(); ++it)
            page.getValueAsText(it.key());
        page.getGWMakerNotValueByTag(0xC001);
        CgwExif copy = page;
        QByteArray block;
        copy.writeTiffBlock(block);
    }
    file.seek(0, 0);
    CgwExif recovered;
    qint64 countPosition = 0, length = 0, offset = 0;
    recovered.recoverMakerNote(file, &countPosition, &length, &offset);
}

void gwFuzzBmp(const QByteArray& input)
{
    const QString location = writeInput(input);
    CgwImageFileBMP bmp;
    bmp.isFormat(location, nullptr);
    bmp.loadImageInformation(location, 0);
    // The preview of a BMP is its bitmap: one load covers both.
    drop(bmp.loadBitmap(location, 0));
}

void gwFuzzJpeg(const QByteArray& input)
{
    const QString location = writeInput(input);
    CgwImageFileJPG jpeg;
    // libjpeg's error manager throws the integer 1 out of every load; that is
    // the reader's answer to a corrupt stream, not a finding.
    try {
        jpeg.loadImageInformation(location, 0);
    } catch (int) {
    }
    try {
        drop(jpeg.loadBitmap(location, 0));
    } catch (int) {
    }
    try {
        drop(jpeg.loadPreview(location, 0));
    } catch (int) {
    }
}

void gwFuzzTiff(const QByteArray& input)
{
    const QString location = writeInput(input);
    CgwImageFileTIF tiff;
    // The head asks for the IR location and the HiRePX page itself.
    tiff.loadImageInformation(location, 0);
    drop(tiff.loadBitmap(location, 0));
    drop(tiff.loadPreview(location, 0));
    drop(tiff.loadBitmapIR(location, 0));
    drop(tiff.loadHiRePX(location, 0));
}

void gwFuzzParameterXml(const QByteArray& input)
{
    const CgwParameterSet set = CgwXmlParameterSet::read(input);
    for (auto it = set.begin(); it != set.end(); ++it) {
        const QString& value = it.value();
        const bool escapesValid = CgwParameterSet::hasValidEscapes(value);
        for (int index = 0; index < 4; ++index) {
            int start = 0, end = 0;
            CgwParameterSet::findToken(value, index, start, end);
            CgwParameterSet::boolFromValue(value, index);
            CgwParameterSet::doubleFromValue(value, index);
            CgwParameterSet::longLongFromValue(value, index);
            CgwParameterSet::uLongLongFromValue(value, index);
            QString text;
            const bool decoded = CgwParameterSet::stringFromValue(value, index, text);
            require(decoded || !escapesValid, "a value with valid escapes has a token that does not decode");
            QString again;
            require(!decoded || (CgwParameterSet::stringFromValue(CgwParameterSet::valueFromString(text), 0, again)
                                 && again == text),
                    "a decoded token does not survive encoding");
        }
    }
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    set.writeTo(buffer);
    const CgwParameterSet again = CgwXmlParameterSet::read(buffer.data());
    if (again != set)
        reportDifference(set, again);
    require(again == set, "a set read does not survive writing");
}

bool gwReplayFuzzFindings(const char* target, void (*body)(const QByteArray&))
{
    const QDir findings(QStringLiteral(GW_TEST_DATA_DIR "/fuzz/") + QLatin1String(target));
    const QStringList names = findings.entryList(QDir::Files, QDir::Name);
    for (const QString& name : names) {
        QFile file(findings.filePath(name));
        require(file.open(QIODevice::ReadOnly), "a kept input cannot be read");
        std::fprintf(stderr, "replaying %s/%s\n", target, qPrintable(name));
        body(file.readAll());
    }
    return !names.isEmpty();
}
