#pragma once

#include "metadata/gwExifValue.h"

#include <QMap>
#include <QSet>

#include <vector>

class CgwBitmapBase;
class CgwFile;

// The TIFF type of a tag the suite knows, or 0: a tag that is not known is
// never set and never written.
int gwExifKnownTagType(quint16 tag);

// One image's TIFF/Exif tags, ordered by tag; the maker note is the value of
// tag 0x927C.
class CgwExif
{
public:
    static constexpr quint16 kLittleEndian = 0x4949;
    static constexpr quint16 kBigEndian = 0x4D4D;

    bool isEmpty() const { return mValues.isEmpty(); }
    void clear() { mValues.clear(); }
    bool operator==(const CgwExif& other) const
    {
        return mValues == other.mValues && mByteOrder == other.mByteOrder;
    }
    bool operator!=(const CgwExif& other) const { return !(*this == other); }

    bool hasTag(quint16 tag) const { return mValues.contains(tag); }
    CgwExifValue getValue(quint16 tag) const { return mValues.value(tag); }
    void setValue(quint16 tag, const CgwExifValue& value) { mValues.insert(tag, value); }
    void removeTag(quint16 tag) { mValues.remove(tag); }
    const QMap<quint16, CgwExifValue>& values() const { return mValues; }

    quint16 byteOrder() const { return mByteOrder; }
    void setByteOrder(quint16 order) { mByteOrder = order; }

    // The one way the suite reads a maker-note record: 0.0 and not found when
    // there is no maker note, no signature or no record of that tag.
    float getGWMakerNotValueByTag(quint16 tag, bool* found = nullptr) const;
    bool hasHDRFlag() const;

    // Reads the IFD of `page` from a stream that stands at a TIFF header.
    // False for a bad byte-order word or a first offset below 8.
    bool readFromStream(CgwFile& stream, int page = 0);
    // One IFD at the stream's position and whatever hangs from it.
    void readIfd(CgwFile& stream, bool parseMakerNotes, bool highNibble);
    // One record for each IFD of the chain; empty for a bad header.
    static std::vector<CgwExif> readAllPages(CgwFile& stream);
    // Repairs a maker note whose entry is damaged, from the stream standing
    // at the TIFF header: the note found within forty bytes behind the first
    // entry of the Exif or GPS IFD is stored, and where its count and offset
    // belong is reported for a caller that may patch the file. `ifdOffset`
    // -1 takes the first IFD from the header. The stream is left where it was.
    bool recoverMakerNote(CgwFile& stream, qint64* countPosition, qint64* length, qint64* offset,
                          qint64 ifdOffset = -1);
    qint64 baseOffset() const { return mBaseOffset; }

    // Setters for known tags, in the tag's type; false for unknown tags.
    bool setIntValue(quint16 tag, qint64 value);
    bool setRationalValue(quint16 tag, double value);
    bool setTextValue(quint16 tag, const QString& text);
    // Item `index` of a value as a number; rationals divided out. 0 when missing.
    // An ASCII value up to its first NUL; empty when the tag is missing.
    QString getAscii(quint16 tag) const;
    qint64 getInt(quint16 tag, int index = 0) const;
    double getDouble(quint16 tag, int index = 0) const;
    bool getRational(quint16 tag, int index, qint32* numerator, qint32* denominator) const;

    // The tags the next write may emit.
    void selectWritableTags();
    void selectExifTagsOnly();
    const std::vector<quint16>& tagList() const { return mTagList; }
    // A TIFF header and the IFD, in this record's byte order; offsets count
    // from the start of `block`.
    bool writeTiffBlock(QByteArray& block);
    // One IFD of the qualifying tags at `offset`, with its data behind it.
    bool writeIfd(QByteArray& block, int level, quint32 offset);
    // The default tags of a new file made from the bitmap.
    void fillFromBitmap(const CgwBitmapBase& bitmap);

    // The browser's text of a tag, with its unit; "Not available" when the
    // tag is missing or has no text.
    QString getValueAsText(quint16 tag) const;
    // The placeholder the browser's templates use for a tag, and its label.
    static QString textKey(quint16 tag);
    static QString textLabel(quint16 tag);
    static int textTableSize();

    // The maker note's records. Setting one on an Exif without a note, or
    // with a foreign one, starts an empty note first.
    bool getMakerNoteRecord(int index, quint16* tag, quint8* format, quint8* third, qint32* value) const;
    bool setMakerNoteInt(quint16 tag, quint8 format, qint32 value);
    bool setMakerNoteFloat(quint16 tag, quint8 format, float value);
    bool removeMakerNoteRecord(quint16 tag);
    void resetMakerNote();

private:
    // The byte order and the first IFD's offset; the stream's order is set.
    bool readHeader(CgwFile& stream, qint64& firstIfd);
    // The page's IFD and whatever hangs from it; the stream goes back to the header.
    void readPage(CgwFile& stream, qint64 ifd);
    void readMakerNote(CgwFile& stream, quint16 tag, qint64 offset);
    bool recoverFrom(CgwFile& stream, qint64 ifdOffset, qint64* countPosition, qint64* length, qint64* offset);
    bool readItems(CgwFile& stream, const CgwExifValue& shape, QByteArray& data);

    bool writeIfdAt(QByteArray& block, int level, quint32 offset, int depth);

    std::vector<quint16> mTagList;
    QMap<quint16, CgwExifValue> mValues;
    qint64 mBaseOffset = 0;
    QSet<qint64> mVisited; // IFDs read by this pass; a chain that loops ends
    quint16 mByteOrder = kLittleEndian;
};
