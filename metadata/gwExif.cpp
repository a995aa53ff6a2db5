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

bool CgwExif::hasHDRFlag() const
{
    return hasTag(CgwMakerNote::kExifTag) && getGWMakerNotValueByTag(0xC005) != 0.0f;
}
