// The engine layer over Little CMS: what it opens and refuses, the rules of
// writing elements, and the header a caller sets surviving serialisation.

#include "colour/gwEngineProfile.h"
#include "colour/gwIccSignature.h"
#include "colour/gwLcmsHandles.h"
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

TEST(EngineProfile, OpensFilesAndBlocksWithTheHeaderTheyCarry)
{
    const QByteArray bytes = gwGrayProfileBytes();
    const QString path = gwWriteTestFile(QStringLiteral("engine/gray.icc"), bytes);
    for (const auto& profile : {CgwEngineProfile::openMemory(bytes), CgwEngineProfile::openFile(path)}) {
        ASSERT_NE(profile, nullptr);
        EXPECT_TRUE(profile->isValid());
        EXPECT_FALSE(profile->isWritable());
        const SgwProfileHeader header = profile->header();
        EXPECT_EQ(header.size, quint32(bytes.size()));
        EXPECT_EQ(header.cmmType, gwBigEndian32(bytes, 4));
        EXPECT_EQ(header.deviceClass, gwIccSignature("mntr"));
        EXPECT_EQ(header.colorSpace, gwIccSignature("GRAY"));
        EXPECT_EQ(header.platform, gwBigEndian32(bytes, 40));
        EXPECT_EQ(header.illuminantX, qint32(gwBigEndian32(bytes, 68)));
        EXPECT_GT(profile->elementSize(gwIccSignature("kTRC")), 12u);
        EXPECT_EQ(profile->elementSize(gwIccSignature("A2B0")), 0u);
    }
}

TEST(EngineProfile, ProfilesOpenedForReadingRefuseWrites)
{
    const auto profile = CgwEngineProfile::openMemory(gwSRGBProfileBytes());
    ASSERT_NE(profile, nullptr);
    EXPECT_FALSE(profile->setHeader(profile->header()));
    EXPECT_FALSE(profile->setElementSize(kTag, 16));
    EXPECT_FALSE(profile->setElement(gwIccSignature("desc"), 0, QByteArray("text")));
}

TEST(EngineProfile, ElementsAreSizedBeforeTheyAreWrittenAndWritesStayInside)
{
    const auto profile = CgwEngineProfile::createWritable();
    ASSERT_NE(profile, nullptr);
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

    const QByteArray bytes = profile->toBytes();
    const auto reread = CgwEngineProfile::openMemory(bytes);
    ASSERT_NE(reread, nullptr);
    const SgwProfileHeader back = reread->header();
    EXPECT_EQ(back.size, quint32(bytes.size()));
    EXPECT_EQ(back.cmmType, header.cmmType);
    EXPECT_EQ(back.platform, header.platform);
    EXPECT_EQ(back.illuminantX, header.illuminantX);
    EXPECT_EQ(back.illuminantZ, header.illuminantZ);
    EXPECT_EQ(back.year, 2019);
    EXPECT_EQ(back.second, 15);
    EXPECT_EQ(back.attributes, header.attributes);
    // What the engine itself keeps agrees with the bytes.
    const CgwLcmsProfile lcms(cmsOpenProfileFromMem(bytes.constData(), cmsUInt32Number(bytes.size())));
    ASSERT_TRUE(lcms);
    EXPECT_EQ(cmsGetDeviceClass(lcms.get()), cmsSigAbstractClass);
    EXPECT_EQ(cmsGetPCS(lcms.get()), cmsSigXYZData);
    EXPECT_EQ(cmsGetEncodedICCversion(lcms.get()), 0x02100000u);
    EXPECT_EQ(cmsGetHeaderManufacturer(lcms.get()), gwIccSignature("NORV"));
    EXPECT_EQ(cmsGetHeaderModel(lcms.get()), 42u);
    EXPECT_EQ(cmsGetHeaderRenderingIntent(lcms.get()), 2u);
}

TEST(EngineProfile, AWritableProfileIsValidOnlyWhenItsBytesCanBeUsed)
{
    const auto profile = CgwEngineProfile::createWritable();
    ASSERT_NE(profile, nullptr);
    // Without a class, colour spaces and tables the engine has nothing to
    // transform with.
    EXPECT_FALSE(profile->isValid());
}
