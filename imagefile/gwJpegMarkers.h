#pragma once

// The JPEG markers that carry metadata: the Exif block in APP1 and the ICC
// profile in APP2 chunks.

#include <QByteArray>

#include <cstddef>
#include <cstdio>
#include <jpeglib.h>

class CgwFile;

// Walks the markers behind SOI up to the start of scan and reports the first
// APP1 segment whose payload begins "Exif" (any letter case): the marker's
// file position and the segment's length field. The file position is left
// where the walk stopped.
bool gwFindJpegExif(CgwFile& file, qint64& markerPosition, qint64& length);

// The ICC profile from the APP2 markers that the decompressor saved: every
// chunk "ICC_PROFILE\0", sequence numbers 1..count each once, all agreeing on
// the count. Empty when there is none or the chunks break those rules.
QByteArray gwReadJpegIccProfile(j_decompress_ptr cinfo);

// Writes a profile as APP2 chunks of at most 65519 bytes each.
void gwWriteJpegIccProfile(j_compress_ptr cinfo, const QByteArray& profile);
