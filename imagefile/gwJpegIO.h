#pragma once

// libjpeg's plumbing for CgwImageFileJPG: source and destination managers
// over CgwFile with buffers of their own, the error manager, and owners of
// the codec objects.

#include <QString>

#include <cstddef>
#include <cstdio>
#include <jpeglib.h>

class CgwFile;

// Feeds the decompressor from a file, 4096 bytes at a time. At the file's
// end it hands out a fake end-of-image, so a truncated stream ends cleanly
// with what was decoded.
class cgw_jpeg_source_mgr
{
public:
    static constexpr size_t kBufferSize = 4096;

    cgw_jpeg_source_mgr(j_decompress_ptr cinfo, CgwFile* file);
    virtual ~cgw_jpeg_source_mgr();

    cgw_jpeg_source_mgr(const cgw_jpeg_source_mgr&) = delete;
    cgw_jpeg_source_mgr& operator=(const cgw_jpeg_source_mgr&) = delete;

private:
    // libjpeg sees only the public record; the callbacks find the manager
    // through the pointer beside it.
    struct Record {
        jpeg_source_mgr pub;
        cgw_jpeg_source_mgr* self;
    };

    static cgw_jpeg_source_mgr& of(j_decompress_ptr cinfo);
    static void initSource(j_decompress_ptr cinfo);
    static boolean fillInputBuffer(j_decompress_ptr cinfo);
    static void skipInputData(j_decompress_ptr cinfo, long count);
    static void termSource(j_decompress_ptr cinfo);

    Record mRecord;
    CgwFile* mFile;
    JOCTET* mBuffer;
};

// Takes the compressor's output into a file, 4096 bytes at a time. A failed
// write ends the compression through the error manager.
class cgw_jpeg_destination_mgr
{
public:
    static constexpr size_t kBufferSize = 4096;

    cgw_jpeg_destination_mgr(j_compress_ptr cinfo, CgwFile* file);
    virtual ~cgw_jpeg_destination_mgr();

    cgw_jpeg_destination_mgr(const cgw_jpeg_destination_mgr&) = delete;
    cgw_jpeg_destination_mgr& operator=(const cgw_jpeg_destination_mgr&) = delete;

private:
    struct Record {
        jpeg_destination_mgr pub;
        cgw_jpeg_destination_mgr* self;
    };

    static cgw_jpeg_destination_mgr& of(j_compress_ptr cinfo);
    static void initDestination(j_compress_ptr cinfo);
    static boolean emptyOutputBuffer(j_compress_ptr cinfo);
    static void termDestination(j_compress_ptr cinfo);
    void writeOut(j_common_ptr cinfo, size_t count);

    Record mRecord;
    CgwFile* mFile;
    JOCTET* mBuffer;
};

// libjpeg's standard error manager with two replacements: a fatal error is
// logged, destroys the codec object and throws the integer 1; messages go to
// the log behind the file's path.
struct SgwJpegErrorManager {
    jpeg_error_mgr pub;
    QString path;

    SgwJpegErrorManager(j_common_ptr cinfo, const QString& filePath);
};

// Owners of the codec objects; destroying one that the error manager has
// already destroyed is harmless.
struct SgwJpegDecompressor {
    jpeg_decompress_struct cinfo;
    SgwJpegErrorManager error;

    explicit SgwJpegDecompressor(const QString& path);
    ~SgwJpegDecompressor();
};

struct SgwJpegCompressor {
    jpeg_compress_struct cinfo;
    SgwJpegErrorManager error;

    explicit SgwJpegCompressor(const QString& path);
    ~SgwJpegCompressor();
};

// "JPEGlib version " with the library's own version and notice.
QString gwJpegLibraryVersion();
QString gwJpegLibraryNotice();
