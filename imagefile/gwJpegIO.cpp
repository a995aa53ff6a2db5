#include "imagefile/gwJpegIO.h"

#include "diagnostics/gwDebug.h"
#include "files/gwFile.h"

#include <jerror.h>

// ---- source -------------------------------------------------------------

cgw_jpeg_source_mgr::cgw_jpeg_source_mgr(j_decompress_ptr cinfo, CgwFile* file)
    : mFile(file), mBuffer(new JOCTET[kBufferSize])
{
    mRecord.self = this;
    mRecord.pub.init_source = initSource;
    mRecord.pub.fill_input_buffer = fillInputBuffer;
    mRecord.pub.skip_input_data = skipInputData;
    mRecord.pub.resync_to_restart = jpeg_resync_to_restart;
    mRecord.pub.term_source = termSource;
    mRecord.pub.next_input_byte = nullptr;
    mRecord.pub.bytes_in_buffer = 0;
    cinfo->src = &mRecord.pub;
}

cgw_jpeg_source_mgr::~cgw_jpeg_source_mgr()
{
    delete[] mBuffer;
}

cgw_jpeg_source_mgr& cgw_jpeg_source_mgr::of(j_decompress_ptr cinfo)
{
    return *reinterpret_cast<Record*>(cinfo->src)->self;
}

void cgw_jpeg_source_mgr::initSource(j_decompress_ptr) {}

boolean cgw_jpeg_source_mgr::fillInputBuffer(j_decompress_ptr cinfo)
{
    cgw_jpeg_source_mgr& self = of(cinfo);
    qint64 count = self.mFile->read(reinterpret_cast<char*>(self.mBuffer), qint64(kBufferSize));
    if (count < 1) {
        self.mBuffer[0] = 0xFF;
        self.mBuffer[1] = JPEG_EOI;
        count = 2;
    }
    self.mRecord.pub.next_input_byte = self.mBuffer;
    self.mRecord.pub.bytes_in_buffer = size_t(count);
    return TRUE;
}

void cgw_jpeg_source_mgr::skipInputData(j_decompress_ptr cinfo, long count)
{
    if (count <= 0)
        return;
    jpeg_source_mgr& pub = of(cinfo).mRecord.pub;
    while (size_t(count) > pub.bytes_in_buffer) {
        count -= long(pub.bytes_in_buffer);
        fillInputBuffer(cinfo);
    }
    pub.next_input_byte += count;
    pub.bytes_in_buffer -= size_t(count);
}

void cgw_jpeg_source_mgr::termSource(j_decompress_ptr cinfo)
{
    // Leave the file just behind the compressed data.
    cgw_jpeg_source_mgr& self = of(cinfo);
    if (!self.mFile->atEnd())
        self.mFile->seek(-qint64(self.mRecord.pub.bytes_in_buffer), 1);
}

// ---- destination --------------------------------------------------------

cgw_jpeg_destination_mgr::cgw_jpeg_destination_mgr(j_compress_ptr cinfo, CgwFile* file)
    : mFile(file), mBuffer(new JOCTET[kBufferSize])
{
    mRecord.self = this;
    mRecord.pub.init_destination = initDestination;
    mRecord.pub.empty_output_buffer = emptyOutputBuffer;
    mRecord.pub.term_destination = termDestination;
    mRecord.pub.next_output_byte = mBuffer;
    mRecord.pub.free_in_buffer = kBufferSize;
    cinfo->dest = &mRecord.pub;
}

cgw_jpeg_destination_mgr::~cgw_jpeg_destination_mgr()
{
    delete[] mBuffer;
}

cgw_jpeg_destination_mgr& cgw_jpeg_destination_mgr::of(j_compress_ptr cinfo)
{
    return *reinterpret_cast<Record*>(cinfo->dest)->self;
}

void cgw_jpeg_destination_mgr::initDestination(j_compress_ptr cinfo)
{
    cgw_jpeg_destination_mgr& self = of(cinfo);
    self.mRecord.pub.next_output_byte = self.mBuffer;
    self.mRecord.pub.free_in_buffer = kBufferSize;
}

void cgw_jpeg_destination_mgr::writeOut(j_common_ptr cinfo, size_t count)
{
    if (count > 0 && mFile->write(reinterpret_cast<const char*>(mBuffer), qint64(count)) == -1)
        (*cinfo->err->error_exit)(cinfo);
    mRecord.pub.next_output_byte = mBuffer;
    mRecord.pub.free_in_buffer = kBufferSize;
}

boolean cgw_jpeg_destination_mgr::emptyOutputBuffer(j_compress_ptr cinfo)
{
    of(cinfo).writeOut(reinterpret_cast<j_common_ptr>(cinfo), kBufferSize);
    return TRUE;
}

void cgw_jpeg_destination_mgr::termDestination(j_compress_ptr cinfo)
{
    cgw_jpeg_destination_mgr& self = of(cinfo);
    self.writeOut(reinterpret_cast<j_common_ptr>(cinfo), kBufferSize - self.mRecord.pub.free_in_buffer);
}

// ---- errors -------------------------------------------------------------

namespace {

void outputMessage(j_common_ptr cinfo)
{
    char text[JMSG_LENGTH_MAX];
    (*cinfo->err->format_message)(cinfo, text);
    const auto* manager = reinterpret_cast<const SgwJpegErrorManager*>(cinfo->err);
    gwDebugString(manager->path + QStringLiteral(": ") + QString::fromLocal8Bit(text));
}

// The callers catch the integer; C++ unwinds through libjpeg's frames,
// which the platform's compilers give unwind tables.
[[noreturn]] void errorExit(j_common_ptr cinfo)
{
    (*cinfo->err->output_message)(cinfo);
    jpeg_destroy(cinfo);
    throw 1;
}

} // namespace

SgwJpegErrorManager::SgwJpegErrorManager(j_common_ptr cinfo, const QString& filePath) : path(filePath)
{
    cinfo->err = jpeg_std_error(&pub);
    pub.error_exit = errorExit;
    pub.output_message = outputMessage;
}

SgwJpegDecompressor::SgwJpegDecompressor(const QString& path)
    : cinfo(), error(reinterpret_cast<j_common_ptr>(&cinfo), path)
{
    jpeg_create_decompress(&cinfo);
}

SgwJpegDecompressor::~SgwJpegDecompressor()
{
    jpeg_destroy_decompress(&cinfo);
}

SgwJpegCompressor::SgwJpegCompressor(const QString& path)
    : cinfo(), error(reinterpret_cast<j_common_ptr>(&cinfo), path)
{
    jpeg_create_compress(&cinfo);
}

SgwJpegCompressor::~SgwJpegCompressor()
{
    jpeg_destroy_compress(&cinfo);
}

QString gwJpegLibraryVersion()
{
    jpeg_error_mgr err;
    jpeg_std_error(&err);
    return QStringLiteral("JPEGlib version %1 (libjpeg-turbo %2)")
        .arg(QString::fromLatin1(err.jpeg_message_table[JMSG_VERSION]),
             QStringLiteral(QT_STRINGIFY(LIBJPEG_TURBO_VERSION)));
}

QString gwJpegLibraryNotice()
{
    jpeg_error_mgr err;
    jpeg_std_error(&err);
    return QString::fromLatin1(err.jpeg_message_table[JMSG_COPYRIGHT]);
}
