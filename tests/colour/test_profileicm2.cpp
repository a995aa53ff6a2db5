// Profiles the suite makes: the Lab identity profile, checked against Little
// CMS byte for byte and by a transform, and a matrix profile built from the
// setters.

#include "colour/gwEngineProfile.h"
#include "colour/gwIccSignature.h"
#include "colour/gwLcmsHandles.h"
#include "colour/gwProfileICM2.h"
#include "gwTestProfiles.h"

#include <QDateTime>

#include <gtest/gtest.h>

namespace {

CgwLcmsProfile openedByLcms(const QByteArray& bytes)
{
    return CgwLcmsProfile(cmsOpenProfileFromMem(bytes.constData(), cmsUInt32Number(bytes.size())));
}

QByteArray rawTag(const CgwLcmsProfile& profile, cmsTagSignature tag)
{
    const cmsUInt32Number size = cmsReadRawTag(profile.get(), tag, nullptr, 0);
    QByteArray bytes(int(size), '\0');
    cmsReadRawTag(profile.get(), tag, bytes.data(), size);
    return bytes;
}

QString copyrightOf(const CgwLcmsProfile& profile)
{
    const auto* mlu = static_cast<const cmsMLU*>(cmsReadTag(profile.get(), cmsSigCopyrightTag));
    char text[256] = {};
    return mlu && cmsMLUgetASCII(mlu, "en", "US", text, sizeof text) ? QString::fromLatin1(text) : QString();
}

class LabProfile : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(mLab.createLabProfile());
        mBytes = mLab.profileBytes();
        mLcms = openedByLcms(mBytes);
        ASSERT_TRUE(mLcms);
    }

    CgwProfileICM2 mLab;
    QByteArray mBytes;
    CgwLcmsProfile mLcms;
};

} // namespace

TEST_F(LabProfile, IsAValidLabSpaceProfileForBothRoles)
{
    EXPECT_TRUE(mLab.isValid());
    EXPECT_TRUE(mLab.isBufferProfile());
    EXPECT_EQ(mLab.colorMode(), 5);
    EXPECT_TRUE(mLab.canBeSource());
    EXPECT_TRUE(mLab.canBeDestination());
    EXPECT_EQ(cmsGetDeviceClass(mLcms.get()), cmsSigColorSpaceClass);
    EXPECT_EQ(cmsGetColorSpace(mLcms.get()), cmsSigLabData);
    EXPECT_EQ(cmsGetPCS(mLcms.get()), cmsSigLabData);
}

TEST_F(LabProfile, CarriesTheStatedHeaderFields)
{
    const QDateTime now = QDateTime::currentDateTimeUtc();
    const struct {
        int offset;
        quint32 value;
    } fields[] = {
        {0, quint32(mBytes.size())},       {4, gwIccSignature("Lino")},  {8, 0x02100000},
        {12, gwIccSignature("spac")},      {16, gwIccSignature("Lab ")}, {20, gwIccSignature("Lab ")},
        {36, gwIccSignature("acsp")},      {40, gwIccSignature("MSFT")}, {44, 0},
        {48, gwIccSignature("MSFT")},      {56, 0},                      {60, 0},
        {64, 0},                           {68, 0xF6D4},                 {72, 0x10000},
        {76, 0xD32B},
    };
    for (const auto& f : fields)
        EXPECT_EQ(gwBigEndian32(mBytes, f.offset), f.value) << "offset " << f.offset;
    const QDateTime stamped(QDate(gwBigEndian16(mBytes, 24), gwBigEndian16(mBytes, 26), gwBigEndian16(mBytes, 28)),
                            QTime(gwBigEndian16(mBytes, 30), gwBigEndian16(mBytes, 32), gwBigEndian16(mBytes, 34)),
                            Qt::UTC);
    EXPECT_LE(qAbs(stamped.secsTo(now)), 60) << stamped.toString().toStdString();
}

TEST_F(LabProfile, BothTablesAreTheSameIdentityLut16)
{
    const QByteArray a2b = rawTag(mLcms, cmsSigAToB0Tag);
    EXPECT_EQ(a2b.size(), (3 * 8 + (256 + 256) * 3) * 2 + 52);
    EXPECT_EQ(rawTag(mLcms, cmsSigBToA0Tag), a2b);
    EXPECT_EQ(a2b.left(12), QByteArray("mft2\0\0\0\0\3\3\2\0", 12));
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            EXPECT_EQ(gwBigEndian32(a2b, 12 + 4 * (3 * row + column)), row == column ? 0x10000u : 0u);
    EXPECT_EQ(gwBigEndian16(a2b, 48), 256);
    EXPECT_EQ(gwBigEndian16(a2b, 50), 256);
    const int secondInput = 52 + 512;
    EXPECT_EQ(gwBigEndian16(a2b, secondInput + 2 * 1), 257);
    EXPECT_EQ(gwBigEndian16(a2b, secondInput + 2 * 255), 65535);
    const int grid = 52 + 3 * 512;
    const quint16 nodes[8][3] = {{0, 0, 0},         {0, 0, 65535},     {0, 65535, 0},     {0, 65535, 65535},
                                 {65535, 0, 0},     {65535, 0, 65535}, {65535, 65535, 0}, {65535, 65535, 65535}};
    for (int n = 0; n < 8; ++n)
        for (int c = 0; c < 3; ++c)
            EXPECT_EQ(gwBigEndian16(a2b, grid + 6 * n + 2 * c), nodes[n][c]) << "node " << n;
    const int lastOutput = grid + 48 + 2 * 512;
    EXPECT_EQ(gwBigEndian16(a2b, lastOutput + 2 * 128), 128 * 257);
    EXPECT_EQ(lastOutput + 512, a2b.size());
}

TEST_F(LabProfile, CarriesWhitePointAndTheMakersRights)
{
    const auto* white = static_cast<const cmsCIEXYZ*>(cmsReadTag(mLcms.get(), cmsSigMediaWhitePointTag));
    ASSERT_NE(white, nullptr);
    EXPECT_NEAR(white->X, 0.96417, 1e-4);
    EXPECT_NEAR(white->Y, 1.0, 1e-4);
    EXPECT_NEAR(white->Z, 0.82487, 1e-4);
    EXPECT_EQ(copyrightOf(mLcms), CgwProfileICM2::copyrightNotice());
    EXPECT_TRUE(CgwProfileICM2::copyrightNotice().contains(QStringLiteral("Norvane Imaging")));
}

TEST_F(LabProfile, TransformsLabToLabUnchanged)
{
    const CgwLcmsProfile lab(cmsCreateLab4Profile(nullptr));
    const CgwLcmsTransform transform(
        cmsCreateTransform(mLcms.get(), TYPE_Lab_DBL, lab.get(), TYPE_Lab_DBL, INTENT_PERCEPTUAL, 0));
    ASSERT_TRUE(transform);
    const cmsCIELab colours[] = {{0, 0, 0}, {50, 20, -30}, {100, 0, 0}, {75, -60, 45}, {20, 90, -100}};
    for (const cmsCIELab& in : colours) {
        cmsCIELab out = {};
        cmsDoTransform(transform.get(), &in, &out, 1);
        EXPECT_NEAR(out.L, in.L, 0.01) << in.L << " " << in.a << " " << in.b;
        EXPECT_NEAR(out.a, in.a, 0.01) << in.L << " " << in.a << " " << in.b;
        EXPECT_NEAR(out.b, in.b, 0.01) << in.L << " " << in.a << " " << in.b;
    }
}

TEST(ProfileICM2, SettersNeedAMemoryProfile)
{
    CgwProfileICM2 profile;
    EXPECT_FALSE(profile.setDescription(QStringLiteral("x")));
    EXPECT_FALSE(profile.setWhitePoint(0.9642, 1.0, 0.8249));
    EXPECT_FALSE(profile.finishMemoryProfile());
    // A finished profile is read from its bytes like any other.
    ASSERT_TRUE(profile.createLabProfile());
    EXPECT_FALSE(profile.setCopyright(QString()));
}

TEST(ProfileICM2, AFailingToneCurveEndsTheRun)
{
    CgwProfileICM2 profile;
    ASSERT_TRUE(profile.createMemoryProfile(QStringLiteral("curves")));
    EXPECT_FALSE(profile.setToneCurves({1.0}, {300.0}, {1.0}));
    const auto engine = profile.engineProfile();
    EXPECT_EQ(engine->elementSize(gwIccSignature("rTRC")), 16u);
    EXPECT_EQ(engine->elementSize(gwIccSignature("gTRC")), 0u);
    EXPECT_EQ(engine->elementSize(gwIccSignature("bTRC")), 0u);
    EXPECT_EQ(profile.name(), QStringLiteral("curves"));
}

TEST(ProfileICM2, SettersBuildAMatrixProfileTheEngineCanUse)
{
    CgwProfileICM2 profile;
    ASSERT_TRUE(profile.createMemoryProfile(QStringLiteral("matrix")));
    ASSERT_TRUE(profile.setDescription(QStringLiteral("Norvane Test RGB")));
    ASSERT_TRUE(profile.setCopyright(QStringLiteral("test rights")));
    ASSERT_TRUE(profile.setWhitePoint(0.9642, 1.0, 0.8249));
    // The sRGB primaries adapted to D50.
    ASSERT_TRUE(profile.setColorants(0.4361, 0.2225, 0.0139, 0.3851, 0.7169, 0.0971, 0.1431, 0.0606, 0.7141));
    ASSERT_TRUE(profile.setToneCurves({2.2}, {2.2}, {2.2}));
    const auto engine = profile.engineProfile();
    SgwProfileHeader header = engine->header();
    header.version = 0x02100000;
    header.deviceClass = gwIccSignature("mntr");
    header.colorSpace = gwIccSignature("RGB ");
    header.pcs = gwIccSignature("XYZ ");
    ASSERT_TRUE(engine->setHeader(header));
    ASSERT_TRUE(profile.finishMemoryProfile());

    EXPECT_TRUE(profile.isValid());
    EXPECT_EQ(profile.colorMode(), 3);
    EXPECT_EQ(profile.name(), QStringLiteral("Norvane Test RGB"));
    const CgwLcmsProfile lcms = openedByLcms(profile.profileBytes());
    ASSERT_TRUE(lcms);
    EXPECT_TRUE(cmsIsMatrixShaper(lcms.get()));
    EXPECT_EQ(copyrightOf(lcms), QStringLiteral("test rights"));
    const auto* red = static_cast<const cmsToneCurve*>(cmsReadTag(lcms.get(), cmsSigRedTRCTag));
    ASSERT_NE(red, nullptr);
    EXPECT_NEAR(cmsEstimateGamma(red, 0.01), 563.0 / 256.0, 0.01);

    const CgwLcmsProfile xyz(cmsCreateXYZProfile());
    const CgwLcmsTransform transform(
        cmsCreateTransform(lcms.get(), TYPE_RGB_DBL, xyz.get(), TYPE_XYZ_DBL, INTENT_RELATIVE_COLORIMETRIC, 0));
    ASSERT_TRUE(transform);
    const double white[3] = {1.0, 1.0, 1.0};
    cmsCIEXYZ out = {};
    cmsDoTransform(transform.get(), white, &out, 1);
    EXPECT_NEAR(out.X, 0.9642, 0.002);
    EXPECT_NEAR(out.Y, 1.0, 0.002);
    EXPECT_NEAR(out.Z, 0.8249, 0.002);
}
