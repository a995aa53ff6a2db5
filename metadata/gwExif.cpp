#include "metadata/gwExif.h"

#include "metadata/gwMakerNote.h"

float CgwExif::getGWMakerNotValueByTag(quint16 tag, bool* found) const
{
    if (found)
        *found = false;
    if (!hasTag(CgwMakerNote::kExifTag))
        return 0.0f;
    return CgwMakerNote(mValues.value(CgwMakerNote::kExifTag).data).valueByTag(tag, found);
}

QString CgwExif::getAscii(quint16 tag) const
{
    const QByteArray text = getValue(tag).data;
    const int end = text.indexOf('\0');
    return QString::fromLatin1(end < 0 ? text : text.left(end));
}

bool CgwExif::hasHDRFlag() const
{
    return hasTag(CgwMakerNote::kExifTag) && getGWMakerNotValueByTag(0xC005) != 0.0f;
}

namespace {
CgwMakerNote noteOf(const CgwExif& exif)
{
    return CgwMakerNote(exif.getValue(CgwMakerNote::kExifTag).data);
}

void storeNote(CgwExif& exif, const CgwMakerNote& note)
{
    exif.setValue(CgwMakerNote::kExifTag, CgwExifValue{7, quint32(note.block().size()), note.block()});
}
} // namespace

bool CgwExif::getMakerNoteRecord(int index, quint16* tag, quint8* format, quint8* third, qint32* value) const
{
    if (!hasTag(CgwMakerNote::kExifTag))
        return false;
    CgwMakerNote::Record record;
    if (!noteOf(*this).record(index, &record))
        return false;
    if (tag)
        *tag = record.tag;
    if (format)
        *format = record.format;
    if (third)
        *third = record.third;
    if (value)
        *value = record.value;
    return true;
}

void CgwExif::resetMakerNote()
{
    storeNote(*this, CgwMakerNote(CgwMakerNote::emptyBlock()));
}

bool CgwExif::setMakerNoteInt(quint16 tag, quint8 format, qint32 value)
{
    if (format > 1)
        return false;
    CgwMakerNote note = noteOf(*this);
    note.setRecord(tag, format, value);
    storeNote(*this, note);
    return true;
}

bool CgwExif::setMakerNoteFloat(quint16 tag, quint8 format, float value)
{
    if (format > 1)
        return false;
    CgwMakerNote note = noteOf(*this);
    note.setFloatRecord(tag, format, value);
    storeNote(*this, note);
    return true;
}

bool CgwExif::removeMakerNoteRecord(quint16 tag)
{
    CgwMakerNote note = noteOf(*this);
    if (!note.removeRecord(tag))
        return false;
    storeNote(*this, note);
    return true;
}
