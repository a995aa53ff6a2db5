// The format registry and what every format shares: detection, crop,
// parameters, temporary files and the final move; and every input kept from
// the readers' fuzzers, replayed.

#include "Sourcen/Image/gwBitmapT.h"
#include "imagefile/gwImageFileBMP.h"
#include "imagefile/gwImageFileList.h"
#include "settings/gwParamKeys.h"
#include "support/gwFuzzBodies.h"
#include "support/gwTestEnv.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

TEST(Registry, DetectionWalksTheFormatsByHeader)
{
    CgwImageFileList& list = CgwImageFileList::instance();
    const struct {
        const char* name;
        QByteArray bytes; // null: no file at all
        int type;
    } cases[] = {
        {"empty.bmp", QByteArray(""), 0},
        {"bm.dat", QByteArray("BM\0\0", 4), EgwImageFileBMP},
        {"ba.bmp", QByteArray("BA rest"), 0},
        {"missing.bmp", QByteArray(), 0},
    };
    for (const auto& c : cases) {
        const QString path = c.bytes.isNull() ? gwTestRoot() + "/" + c.name : gwWriteTestFile(c.name, c.bytes);
        EXPECT_EQ(list.imageFileType("file:" + path, 0), c.type) << c.name;
    }
    // The header is read at the offset.
    const QString embedded = gwWriteTestFile("embedded.bin", QByteArray("xxxxBM"));
    EXPECT_EQ(list.imageFileType("file:" + embedded, 4), EgwImageFileBMP);
    EXPECT_EQ(list.imageFileType("file:" + embedded, 0), 0);
}

TEST(Registry, UnknownFormatsGiveNullAndOneLogLine)
{
    EXPECT_EQ(CgwImageFileList::instance().createImageFile(99), nullptr);
    EXPECT_EQ(gwLastLogLine(), "gwDebug: CgwImageFileList::createImageFile not available 99");
    std::unique_ptr<CgwImageFileBase> bmp(CgwImageFileList::instance().createImageFile(EgwImageFileBMP));
    ASSERT_NE(bmp, nullptr);
    EXPECT_EQ(bmp->fileExtensions(), std::vector<std::string>{"bmp"});
    EXPECT_EQ(bmp->loadBitmapIR(QStringLiteral("file:/x.bmp"), 0), nullptr);
    EXPECT_EQ(gwLastLogLine(), "gwDebug: CgwImageFileBase::loadBitmapIR: This file format does not support IR");
}

TEST(Registry, CropAndParameters)
{
    CgwImageFileBMP format;
    CgwParameterSet set;
    set.setValue(GgwParam_ImageSize, QStringLiteral("-20 10 "));
    set.setValue(GgwParam_ImageOffset, QStringLiteral("30.7 5 "));
    format.setParameter(set);
    EXPECT_EQ(format.cropRect(), CgwRectT<int>(10, 5, 30, 15)) << "normalised, numbers truncated";
    CgwParameterSet back;
    format.getParameter(back);
    EXPECT_EQ(back.value(GgwParam_ImageOffset).toQString(), "10 5 ");
    EXPECT_EQ(back.value(GgwParam_ImageSize).toQString(), "20 10 ");

    CgwBitmapT<CgwPixel8x4>* bitmap = new CgwBitmapT<CgwPixel8x4>();
    ASSERT_TRUE(bitmap->createBitmap(QSize(20, 10), EgwColorModeRGB, 0));
    CgwBitmapBase* same = format.finishBitmap(bitmap);
    EXPECT_EQ(same, bitmap) << "a crop of the bitmap's own size leaves it alone";
    EXPECT_EQ(same->scannerMode(), 9);
    format.setCropRect(CgwRectT<int>(2, 2, 6, 5));
    std::unique_ptr<CgwBitmapBase> cropped(format.finishBitmap(same));
    EXPECT_EQ(cropped->size(), QSize(4, 3));
    format.clearCropRect();
    EXPECT_EQ(format.cropRect(), CgwRectT<int>());
    EXPECT_EQ(format.finishBitmap(nullptr), nullptr);
}

TEST(Registry, CreatorVersionAndTemporaryNames)
{
    const struct {
        const char* software;
        const char* version;
    } cases[] = {
        {"Glimmerway 8.8.0 r17 (Nov 25 2019) ba0fa59 25.11. ", "8.8.0r17"},
        {"Glimmerway 8.1", ""}, // fewer than four pieces
    };
    for (const auto& c : cases)
        EXPECT_EQ(CgwImageFileBase::creatorVersion(c.software), c.version) << c.software;

    const QString first = CgwImageFileBase::temporaryFilePath();
    const QString stem = QDir::tempPath() + "/GW8_tmp" + QString::number(QCoreApplication::applicationPid());
    EXPECT_TRUE(first.startsWith(stem));
    const int n = first.mid(stem.size()).toInt();
    QFile taken(stem + QString::number(n + 1));
    ASSERT_TRUE(taken.open(QIODevice::WriteOnly)); // the next name is in use
    const QString second = CgwImageFileBase::temporaryFilePath();
    EXPECT_EQ(second, stem + QString::number(n + 2));
    EXPECT_FALSE(QFile::exists(second));
}

TEST(Registry, MoveToTargetReplacesInOneStep)
{
    const QString target = gwWriteTestFile("target.tif", "old");
    const QString temp = gwWriteTestFile("temp.tif", "new");
    EXPECT_TRUE(CgwImageFileBase::moveToTarget(temp, "file:" + target));
    EXPECT_EQ(gwReadFile(target), QByteArray("new"));
    EXPECT_FALSE(QFile::exists(temp));

    // Across file systems: /dev/shm is a memory file system on Linux.
    if (QDir("/dev/shm").exists()) {
        const QString shm = QStringLiteral("/dev/shm/gwmove%1").arg(QCoreApplication::applicationPid());
        QFile other(shm);
        ASSERT_TRUE(other.open(QIODevice::WriteOnly));
        other.write("across");
        other.close();
        EXPECT_TRUE(CgwImageFileBase::moveToTarget(shm, "file:" + target));
        EXPECT_EQ(gwReadFile(target), QByteArray("across"));
        EXPECT_FALSE(QFile::exists(shm));
    }

    // A move that cannot happen removes the target and keeps the temporary file, as required.
    const QString kept = gwWriteTestFile("kept.tif", "data");
    EXPECT_FALSE(CgwImageFileBase::moveToTarget(kept, "file:" + gwTestRoot() + "/no/such/folder/x.tif"));
    EXPECT_TRUE(QFile::exists(kept));
}

TEST(Registry, FuzzFindingsOfEveryReaderLoadWithoutHarm)
{
    const struct {
        const char* target;
        void (*body)(const QByteArray&);
    } cases[] = {{"bmp", gwFuzzBmp}, {"jpeg", gwFuzzJpeg}, {"tiff", gwFuzzTiff}};
    for (const auto& c : cases)
        EXPECT_TRUE(gwReplayFuzzFindings(c.target, c.body)) << c.target;
}
