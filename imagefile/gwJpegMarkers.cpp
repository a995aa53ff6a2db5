#include "imagefile/gwJpegMarkers.h"

#include "files/gwFile.h"

#include <cstring>
#include <vector>

namespace {

constexpr int kIccHeaderBytes = 14; // "ICC_PROFILE", NUL, sequence, count
constexpr qint64 kIccChunkBytes = 65519;

bool isIccMarker(const jpeg_saved_marker_ptr marker)
{
    return marker->marker == JPEG_APP0 + 2 && marker->data_length > 13
           && std::memcmp(marker->data, "ICC_PROFILE\0", 12) == 0;
}

} // namespace

bool gwFindJpegExif(CgwFile& file, qint64& markerPosition, qint64& length)
{
    const quint16 oldOrder = file.byteOrder();
    file.setByteOrder("MM");
    bool found = false;
    if (file.readUInt16() == 0xFFD8) {
        while (!file.atEnd()) {
            const qint64 at = file.pos();
            const quint16 marker = file.readUInt16();
            if ((marker & 0xFF00) != 0xFF00 || marker == 0xFFDA)
                break;
            const quint16 segment = file.readUInt16();
            if (file.atEnd())
                break;
            if (marker == 0xFFE1) {
                char head[6] = {};
                file.read(head, 6);
                if (QByteArray(head, 4).toLower() == "exif") {
                    markerPosition = at;
                    length = segment;
                    found = true;
                    break;
                }
            }
            if (segment < 2)
                break; // a length below its own two bytes would walk in place
            file.seek(at + 2 + segment, 0);
        }
    }
    file.setByteOrder(oldOrder);
    return found;
}

QByteArray gwReadJpegIccProfile(j_decompress_ptr cinfo)
{
    int count = 0;
    std::vector<jpeg_saved_marker_ptr> chunks;
    for (jpeg_saved_marker_ptr marker = cinfo->marker_list; marker; marker = marker->next) {
        if (!isIccMarker(marker))
            continue;
        const int sequence = marker->data[12];
        const int total = marker->data[13];
        if (count == 0) {
            count = total;
            chunks.assign(size_t(count) + 1, nullptr);
        }
        if (total != count || sequence < 1 || sequence > count || chunks[size_t(sequence)])
            return QByteArray();
        chunks[size_t(sequence)] = marker;
    }
    QByteArray profile;
    for (int sequence = 1; sequence <= count; ++sequence) {
        const jpeg_saved_marker_ptr chunk = chunks[size_t(sequence)];
        if (!chunk)
            return QByteArray();
        profile.append(reinterpret_cast<const char*>(chunk->data) + kIccHeaderBytes,
                       int(chunk->data_length) - kIccHeaderBytes);
    }
    return profile;
}

void gwWriteJpegIccProfile(j_compress_ptr cinfo, const QByteArray& profile)
{
    const qint64 total = profile.size();
    const int count = int((total + kIccChunkBytes - 1) / kIccChunkBytes);
    if (count < 1 || count > 255)
        return;
    for (int sequence = 1; sequence <= count; ++sequence) {
        const qint64 from = (sequence - 1) * kIccChunkBytes;
        const qint64 bytes = qMin(kIccChunkBytes, total - from);
        jpeg_write_m_header(cinfo, JPEG_APP0 + 2, unsigned(bytes + kIccHeaderBytes));
        for (const char c : QByteArray("ICC_PROFILE", 12))
            jpeg_write_m_byte(cinfo, quint8(c));
        jpeg_write_m_byte(cinfo, sequence);
        jpeg_write_m_byte(cinfo, count);
        for (qint64 i = 0; i < bytes; ++i)
            jpeg_write_m_byte(cinfo, quint8(profile[int(from + i)]));
    }
}
