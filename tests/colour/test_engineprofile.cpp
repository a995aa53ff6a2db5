// The engine layer over Little CMS: what it opens and refuses, the rules of
// writing elements, and the header a caller sets surviving serialisation.

#include "colour/gwEngineProfile.h"
#include "colour/gwIccSignature.h"
#include "gwTestProfiles.h"
#include "support/gwTestEnv.h"

#include <gtest/gtest.h>

namespace {

constexpr quint32 kTag = gwIccSignature("cprt");

} // namespace

TEST(EngineProfile, RefusesWhatIsNoProfileAndSaysWhy)
{
    QByteArray noProfile = gwSRGBProfileBytes();
    noProfile.replace(36, 4, "xxxx");
    const struct {
        const char* what;
        QByteArray bytes;
    } cases[] = {
        {"empty", QByteArray()},
        {"shorter than a header", gwSRGBProfileBytes().left(100)},
        {"no profile signature", noProfile},
    };
    for (const auto& c : cases) {
        QString error;
        EXPECT_EQ(CgwEngineProfile::openMemory(c.bytes, &error), nullptr) << c.what;
        EXPECT_FALSE(error.isEmpty()) << c.what;
    }
    QString error;
    const QString missing = gwTestRoot() + QStringLiteral("/missing.icc");
    EXPECT_EQ(CgwEngineProfile::openFile(missing, &error), nullptr);
    EXPECT_TRUE(error.contains(missing)) << error.toStdString();
}

TEST(EngineProfile, OpensFilesAndBlocksForReadingOnly)
{
    const QByteArray bytes = gwGrayProfileBytes();
    const QString path = gwWriteTestFile(QStringLiteral("engine/gray.icc"), bytes);
    for (const auto& profile : {CgwEngineProfile::openMemory(bytes), CgwEngineProfile::openFile(path)}) {
        ASSERT_NE(profile, nullptr);
        EXPECT_TRUE(profile->isValid());
        EXPECT_EQ(profile->header().size, quint32(bytes.size()));
        EXPECT_EQ(profile->element(gwIccSignature("kTRC")).left(4), QByteArray("para"));
        EXPECT_FALSE(profile->isWritable());
        EXPECT_FALSE(profile->setHeader(profile->header()));
        EXPECT_FALSE(profile->setElementSize(kTag, 16));
        EXPECT_FALSE(profile->setElement(gwIccSignature("kTRC"), 0, QByteArray("curv")));
    }
}

TEST(EngineProfile, ElementsAreSizedBeforeTheyAreWrittenAndWritesStayInside)
{
    const auto profile = CgwEngineProfile::createWritable();
    ASSERT_NE(profile, nullptr);
    // Without a class, colour spaces and tables the engine has nothing to
    // transform with.
    EXPECT_FALSE(profile->isValid());
    EXPECT_FALSE(profile->setElement(kTag, 0, QByteArray("text")));
    ASSERT_TRUE(profile->setElementSize(kTag, 12));
    EXPECT_EQ(profile->element(kTag), QByteArray(12, '\0'));
    EXPECT_TRUE(profile->setElement(kTag, 0, QByteArray("text")));
    EXPECT_TRUE(profile->setElement(kTag, 8, QByteArray("ab")));
    EXPECT_FALSE(profile->setElement(kTag, 10, QByteArray("abc")));
    EXPECT_FALSE(profile->setElement(kTag, 0xFFFFFFFFu, QByteArray("a")));
    EXPECT_EQ(profile->element(kTag), QByteArray("text\0\0\0\0ab\0\0", 12));
    EXPECT_FALSE(profile->setElementSize(kTag, 0));
}

TEST(EngineProfile, TheCallersHeaderSurvivesSerialisation)
{
    const auto profile = CgwEngineProfile::createWritable();
    ASSERT_NE(profile, nullptr);
    SgwProfileHeader header = profile->header();
    header.cmmType = gwIccSignature("Lino");
    header.version = 0x02100000;
    header.deviceClass = gwIccSignature("abst");
    header.colorSpace = gwIccSignature("Lab ");
    header.pcs = gwIccSignature("XYZ ");
    header.platform = gwIccSignature("MSFT");
    header.manufacturer = gwIccSignature("NORV");
    header.model = 42;
    header.attributes = 0x0102030405060708ull;
    header.renderingIntent = 2;
    header.setDateTime(QDateTime(QDate(2019, 11, 25), QTime(13, 14, 15), Qt::UTC));
    header.illuminantX = 0xF6D4;
    header.illuminantY = 0x10000;
    header.illuminantZ = 0xD32B;
    ASSERT_TRUE(profile->setHeader(header));

    // Little CMS would write its own version, date and more; the bytes must
    // hold the caller's.
    const QByteArray bytes = profile->toBytes();
    ASSERT_NE(CgwEngineProfile::openMemory(bytes), nullptr);
    EXPECT_EQ(gwBigEndian<quint32>(bytes, 0), quint32(bytes.size()));
    EXPECT_EQ(bytes.mid(4, 20), QByteArray("Lino\x02\x10\0\0abstLab XYZ ", 20));
    EXPECT_EQ(bytes.mid(24, 12).toHex().toStdString(), "07e3000b0019000d000e000f") << "2019-11-25 13:14:15";
    EXPECT_EQ(bytes.mid(40, 4), "MSFT");
    // Manufacturer, model, attributes, intent, illuminant.
    EXPECT_EQ(bytes.mid(48, 32).toHex().toStdString(),
              "4e4f5256" "0000002a" "0102030405060708" "00000002" "0000f6d4" "00010000" "0000d32b");
}
