// TIFF reader: the corpus against its references, and the files of other
// programs against what ImageMagick decodes.

#include "imagefile/gwImageFileList.h"
#include "imagefile/gwImageFileTIF.h"
#include "support/gwCorpus.h"
#include "support/gwTestEnv.h"

#include <QDir>

#include <gtest/gtest.h>

namespace {

std::unique_ptr<CgwBitmapBase> loadTiff(const QString& path, CgwBitmapHead* head = nullptr)
{
    CgwImageFileTIF tiff;
    tiff.resetState();
    if (head)
        *head = tiff.loadImageInformation("file:" + path, 0);
    return std::unique_ptr<CgwBitmapBase>(tiff.loadBitmap("file:" + path, 0));
}

// Good corpus files this reader decodes otherwise, on purpose.
const QMap<QString, QString> kByDesign = {
    {"hopper2IR.tif", "grey of 2 to 7 bits keeps the raw sample values, unscaled"},
    {"palette-1c-8b.tiff", "16-bit colour map entries are scaled by 255/65535 and truncated, not shifted"},
};

// Files whose samples are ink amounts: the bitmap holds maximum minus ink.
const QStringList kInk = {"flower-separated-contig-08.tif", "flower-separated-planar-16.tif",
                          "tiff_strip_cmyk_jpeg.tif", "tiff_strip_cmyk_16l_jpeg.tif"};

// Palette files are compared as the colours they expand to.
const QStringList kPalette = {"multipage.tiff"};

} // namespace

TEST(Tiff, EveryCorpusFileGivesItsReference)
{
    const QDir corpus(gwCorpusDir() + "/tiff");
    if (!corpus.exists())
        GTEST_SKIP() << "no corpus at " << qPrintable(gwCorpusDir());
    const QMap<QString, SgwCorpusReference> references = gwCorpusReferences("tiff");
    int compared = 0;
    for (auto it = references.constBegin(); it != references.constEnd(); ++it) {
        const QString& name = it.key();
        const SgwCorpusReference& ref = it.value();
        SCOPED_TRACE(name.toStdString());
        CgwBitmapHead head;
        const std::unique_ptr<CgwBitmapBase> bitmap = loadTiff(corpus.filePath(name), &head);
        if (ref.status != "confirmed" && ref.status != "single")
            continue; // broken files: surviving them is the test
        ASSERT_TRUE(bitmap) << "a good file must load";
        EXPECT_EQ(bitmap->size(), QSize(ref.width, ref.height));
        EXPECT_EQ(head.mSize, QSize(ref.width, ref.height));
        if (kByDesign.contains(name))
            continue;
        if (kPalette.contains(name))
            EXPECT_EQ(gwRgba8Hash(*bitmap, false).toStdString(), ref.sha256Rgba8.toStdString());
        else
            EXPECT_EQ(gwSampleHash(*bitmap, ref.channels, kInk.contains(name)).toStdString(), ref.sha256.toStdString());
        ++compared;
    }
    EXPECT_GE(compared, 28);
}
