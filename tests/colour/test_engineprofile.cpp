// The engine layer over Little CMS: what it refuses to open, the rules of
// writing elements, and the header a caller sets surviving serialisation.

#include "colour/gwEngineProfile.h"
#include "colour/gwIccSignature.h"
#include "gwTestProfiles.h"
#include "support/gwTestEnv.h"

#include <gtest/gtest.h>

TEST(EngineProfile, RefusesWhatIsNoProfileAndSaysWhy)
{
    const QByteArray srgb = gwSRGBProfileBytes();
    // Empty, shorter than a header, no profile signature: told apart by size.
    for (const QByteArray& bytes : {QByteArray(), srgb.left(100), QByteArray(srgb).replace(36, 4, "xxxx")}) {
        QString error;
        EXPECT_EQ(CgwEngineProfile::openMemory(bytes, &error), nullptr) << bytes.size();
        EXPECT_FALSE(error.isEmpty()) << bytes.size();
    }
    QString error;
    const QString missing = gwTestRoot() + QStringLiteral("/missing.icc");
    EXPECT_EQ(CgwEngineProfile::openFile(missing, &error), nullptr);
    EXPECT_TRUE(error.contains(missing)) << error.toStdString();
}

TEST(EngineProfile, ElementsAreSizedBeforeTheyAreWrittenAndWritesStayInside)
{
    constexpr quint32 tag = gwIccSignature("cprt");
    const auto profile = CgwEngineProfile::createWritable();
    ASSERT_NE(profile, nullptr);
    EXPECT_FALSE(profile->setElement(tag, 0, QByteArray("text")));
    ASSERT_TRUE(profile->setElementSize(tag, 12));
    EXPECT_TRUE(profile->setElement(tag, 0, QByteArray("text")));
    EXPECT_TRUE(profile->setElement(tag, 8, QByteArray("ab")));
    EXPECT_FALSE(profile->setElement(tag, 10, QByteArray("abc")));
    EXPECT_FALSE(profile->setElement(tag, 0xFFFFFFFFu, QByteArray("a")));
    EXPECT_EQ(profile->element(tag), QByteArray("text\0\0\0\0ab\0\0", 12));
    EXPECT_FALSE(profile->setElementSize(tag, 0));
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
    ASSERT_TRUE(profile->setHeader(header));

    // Little CMS would write its own version, date and more; the bytes must
    // hold the caller's.
    const QByteArray bytes = profile->toBytes();
    ASSERT_NE(CgwEngineProfile::openMemory(bytes), nullptr);
    EXPECT_EQ(gwBigEndian<quint32>(bytes, 0), quint32(bytes.size()));
    EXPECT_EQ(bytes.mid(4, 20), QByteArray("Lino\x02\x10\0\0abstLab XYZ ", 20));
    EXPECT_EQ(bytes.mid(24, 12).toHex().toStdString(), "07e3000b0019000d000e000f") << "2019-11-25 13:14:15";
    EXPECT_EQ(bytes.mid(40, 4), "MSFT");
    // Manufacturer, model, attributes, intent.
    EXPECT_EQ(bytes.mid(48, 20).toHex().toStdString(), "4e4f5256" "0000002a" "0102030405060708" "00000002");
}
