#include "support/gwFuzzBodies.h"

#include "files/gwFile.h"
#include "metadata/gwExif.h"

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
