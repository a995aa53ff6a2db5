#include "imagefile/gwTiffIO.h"

#include "diagnostics/gwDebug.h"
#include "files/gwFile.h"
#include "files/gwFilePathList.h"

#include <QSet>

#include <cstdarg>
#include <cstring>
#include <limits>
#include <mutex>

namespace {

// What the client procedures work on: the file and where the TIFF starts.
struct SgwTiffClient {
    std::unique_ptr<CgwFile> file;
    qint64 base = 0;
};

SgwTiffClient& clientOf(thandle_t handle)
{
    return *static_cast<SgwTiffClient*>(handle);
}

tmsize_t readProc(thandle_t handle, void* buffer, tmsize_t size)
{
    return tmsize_t(clientOf(handle).file->read(static_cast<char*>(buffer), qint64(size)));
}

tmsize_t writeProc(thandle_t handle, void* buffer, tmsize_t size)
{
    return tmsize_t(clientOf(handle).file->write(static_cast<const char*>(buffer), qint64(size)));
}

toff_t seekProc(thandle_t handle, toff_t offset, int whence)
{
    SgwTiffClient& client = clientOf(handle);
    const qint64 target = whence == SEEK_SET ? client.base + qint64(offset) : qint64(offset);
    const qint64 at = client.file->seek(target, whence);
    return at < client.base ? toff_t(-1) : toff_t(at - client.base);
}

int closeProc(thandle_t handle)
{
    delete static_cast<SgwTiffClient*>(handle);
    return 0;
}

toff_t sizeProc(thandle_t handle)
{
    const SgwTiffClient& client = clientOf(handle);
    return toff_t(qMax<qint64>(0, client.file->size() - client.base));
}

int mapProc(thandle_t, void**, toff_t*)
{
    return 0;
}

void unmapProc(thandle_t, void*, toff_t) {}

struct SgwTiffMessages {
    std::mutex mutex;
    QSet<QString> seen;
    QStringList order;
};

SgwTiffMessages& messages()
{
    static SgwTiffMessages sMessages;
    return sMessages;
}

QString formatMessage(const char* module, const char* format, va_list args)
{
    char text[1024];
    std::vsnprintf(text, sizeof(text), format, args);
    return QString::fromLocal8Bit(module ? module : "") + QStringLiteral(": ") + QString::fromLocal8Bit(text);
}

// True the first time a message is seen.
bool enterMessage(const QString& message)
{
    SgwTiffMessages& all = messages();
    std::lock_guard<std::mutex> lock(all.mutex);
    if (all.seen.contains(message))
        return false;
    all.seen.insert(message);
    all.order << message;
    return true;
}

bool isPrivateTagNoise(const QString& message)
{
    return message.contains(QLatin1String("0x89ab")) || message.contains(QLatin1String("0x89ac"))
           || message.contains(QLatin1String("wrong data type 4 for \"RichTIFFIPTC\"; tag ignored"));
}

void errorHandler(const char* module, const char* format, va_list args)
{
    enterMessage(formatMessage(module, format, args));
}

void errorHandlerExt(thandle_t, const char* module, const char* format, va_list args)
{
    errorHandler(module, format, args);
}

void warningHandler(const char* module, const char* format, va_list args)
{
    const QString message = formatMessage(module, format, args);
    if (enterMessage(message) && !isPrivateTagNoise(message))
        gwDebugString(message);
}

void warningHandlerExt(thandle_t, const char* module, const char* format, va_list args)
{
    warningHandler(module, format, args);
}

// libtiff sorts its field table again for every unknown tag it meets, so a
// directory of thousands of them costs a tenth of a second at each of the
// many opens of one load. No image file comes near this many entries.
constexpr quint64 kMaxDirectoryEntries = 1024;

// Whether no directory of the chain (as far as it is counted) has more
// entries than that; classic and BigTIFF alike. What cannot be read here is
// left to libtiff.
bool directoriesPlausible(CgwFile& file, qint64 base)
{
    char order[2] = {0, 0};
    if (file.seek(base, 0) != base || file.read(order, 2) != 2 || (order[0] != 'I' && order[0] != 'M'))
        return true;
    file.setByteOrder(order[0] == 'I' ? "II" : "MM");
    const bool big = file.readUInt16() == 43;
    if (big)
        file.readUInt32(); // offset size and reserved
    quint64 next = big ? file.readUInt64() : file.readUInt32();
    QSet<quint64> seen;
    for (int i = 0; i < 100 && next != 0 && next < quint64(file.size()) && !seen.contains(next); ++i) {
        seen.insert(next);
        file.seek(base + qint64(next), 0);
        bool ok = true;
        const quint64 entries = big ? file.readUInt64(&ok) : file.readUInt16(&ok);
        if (!ok)
            return true;
        if (entries > kMaxDirectoryEntries)
            return false;
        file.seek(qint64(entries) * (big ? 20 : 12), 1);
        next = big ? file.readUInt64(&ok) : file.readUInt32(&ok);
        if (!ok)
            return true;
    }
    return true;
}

} // namespace

TIFF* gwTiffOpen(const QString& path, int mode, qint64 offset)
{
    gwTiffInstallHandlers();
    auto client = std::make_unique<SgwTiffClient>();
    client->file.reset(CgwFilePathList::instance().createFile(path));
    const QIODevice::OpenMode openMode = mode == 2 ? QIODevice::ReadWrite | QIODevice::Truncate : QIODevice::ReadOnly;
    if (!client->file || !client->file->open(openMode))
        return nullptr;
    if (mode != 2 && !directoriesPlausible(*client->file, offset))
        return nullptr;
    client->file->seek(offset, 0);
    client->base = offset;
    // A handle that opens owns the client and frees it in its close
    // procedure; a failed open does not call that procedure.
    TIFF* tiff = TIFFClientOpen(path.toLocal8Bit().constData(), mode == 2 ? "wb" : "rb", client.get(), readProc,
                                writeProc, seekProc, closeProc, sizeProc, mapProc, unmapProc);
    if (tiff)
        client.release();
    return tiff;
}

void gwTiffMergePrivateTags(TIFF* tiff)
{
    static const TIFFFieldInfo kHdri[] = {
        {kGwTiffTagHDRi, 1, 1, TIFF_BYTE, FIELD_CUSTOM, 1, 1, const_cast<char*>("TIFFTAG_HDRi")}};
    static const TIFFFieldInfo kFilm[] = {
        {kGwTiffTagFilm, 1, 1, TIFF_BYTE, FIELD_CUSTOM, 1, 1, const_cast<char*>("TIFFTAG_FILM")}};
    TIFFMergeFieldInfo(tiff, kHdri, 1);
    TIFFMergeFieldInfo(tiff, kFilm, 1);
}

void gwTiffInstallHandlers()
{
    static const bool sInstalled = [] {
        TIFFSetErrorHandler(errorHandler);
        TIFFSetErrorHandlerExt(errorHandlerExt);
        TIFFSetWarningHandler(warningHandler);
        TIFFSetWarningHandlerExt(warningHandlerExt);
        return true;
    }();
    Q_UNUSED(sInstalled);
}

QStringList gwTiffSeenMessages()
{
    SgwTiffMessages& all = messages();
    std::lock_guard<std::mutex> lock(all.mutex);
    return all.order;
}

int gwTiffDirectoryCount(const QString& path)
{
    const CgwTiffHandle tiff = gwTiffOpenHandle(path, 1, 0);
    if (!tiff) {
        gwDebugString(QStringLiteral("Error: directoryCount: ") + path);
        return 0;
    }
    int count = 1;
    while (count < 100 && TIFFReadDirectory(tiff.get()))
        ++count;
    return count;
}

SgwTiffPage gwTiffReadPage(TIFF* tiff)
{
    SgwTiffPage page;
    TIFFGetField(tiff, TIFFTAG_BITSPERSAMPLE, &page.bits);
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &page.width);
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &page.height);
    TIFFGetField(tiff, TIFFTAG_SAMPLESPERPIXEL, &page.samples);
    TIFFGetField(tiff, TIFFTAG_COMPRESSION, &page.compression);
    TIFFGetField(tiff, TIFFTAG_ROWSPERSTRIP, &page.rowsPerStrip);
    TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &page.photometric);
    TIFFGetField(tiff, TIFFTAG_ORIENTATION, &page.orientation);
    TIFFGetField(tiff, TIFFTAG_PLANARCONFIG, &page.planar);
    TIFFGetField(tiff, TIFFTAG_SUBFILETYPE, &page.subfileType);
    float resolution = 0.0f;
    if (TIFFGetField(tiff, TIFFTAG_XRESOLUTION, &resolution))
        page.xResolution = resolution;
    if (TIFFGetField(tiff, TIFFTAG_YRESOLUTION, &resolution))
        page.yResolution = resolution;
    return page;
}

QByteArray gwTiffFieldBytes(TIFF* tiff, ttag_t tag)
{
    const TIFFField* field = TIFFFindField(tiff, tag, TIFF_ANY);
    if (!field || !TIFFFieldPassCount(field))
        return QByteArray();
    // libtiff hands the count back in 16 or 32 bits, as the field is declared.
    const void* data = nullptr;
    quint64 count = 0;
    if (TIFFFieldSetGetCountSize(field) == 4) {
        quint32 count32 = 0;
        if (TIFFGetField(tiff, tag, &count32, &data) != 1)
            return QByteArray();
        count = count32;
    } else {
        quint16 count16 = 0;
        if (TIFFGetField(tiff, tag, &count16, &data) != 1)
            return QByteArray();
        count = count16;
    }
    const quint64 bytes = count * quint64(TIFFFieldSetGetSize(field) > 0 ? TIFFFieldSetGetSize(field) : 1);
    if (!data || bytes == 0 || bytes > quint64(std::numeric_limits<int>::max()))
        return QByteArray();
    return QByteArray(static_cast<const char*>(data), int(bytes));
}

quint64 gwTiffHdriValue(TIFF* tiff)
{
    const QByteArray bytes = gwTiffFieldBytes(tiff, kGwTiffTagHDRi);
    if (bytes.size() < 8)
        return 0;
    quint64 value = 0;
    std::memcpy(&value, bytes.constData(), 8);
    return TIFFIsByteSwapped(tiff) ? __builtin_bswap64(value) : value;
}

QStringList gwTiffFilmStrings(const QByteArray& block)
{
    QStringList texts;
    for (int start : {0, 96, 192}) {
        const QByteArray field = block.mid(start, 96);
        const int end = field.indexOf('\0');
        texts << QString::fromLatin1(end < 0 ? field : field.left(end));
    }
    return texts;
}
