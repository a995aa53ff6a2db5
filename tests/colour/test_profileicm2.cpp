// Profiles the suite makes: the Lab identity profile, checked against Little
// CMS by a transform, and a matrix profile built from the setters.

#include "colour/gwEngineProfile.h"
#include "colour/gwIccSignature.h"
#include "colour/gwProfileICM2.h"
#include "gwTestProfiles.h"

#include <QDateTime>

#include <cmath>

#include <gtest/gtest.h>

TEST(ProfileICM2, TheLabProfileIsAVersion2IdentityStampedInUniversalTime)
{
    CgwProfileICM2 lab;
    ASSERT_TRUE(lab.createLabProfile());
    EXPECT_TRUE(lab.isValid());
    EXPECT_EQ(lab.colorMode(), 5);
    const CgwLcmsProfile lcms = gwOpenedByLcms(lab.profileBytes());
    ASSERT_TRUE(lcms);
    EXPECT_EQ(cmsGetEncodedICCversion(lcms.get()), 0x02100000u);
    EXPECT_EQ(cmsGetDeviceClass(lcms.get()), cmsSigColorSpaceClass);
    tm made = {};
    ASSERT_TRUE(cmsGetHeaderCreationDateTime(lcms.get(), &made));
    const QDateTime stamped(QDate(made.tm_year + 1900, made.tm_mon + 1, made.tm_mday),
                            QTime(made.tm_hour, made.tm_min, made.tm_sec), Qt::UTC);
    EXPECT_LE(qAbs(stamped.secsTo(QDateTime::currentDateTimeUtc())), 60) << stamped.toString().toStdString();

    const auto* white = static_cast<const cmsCIEXYZ*>(cmsReadTag(lcms.get(), cmsSigMediaWhitePointTag));
    ASSERT_NE(white, nullptr);
    EXPECT_NEAR(white->X, 0.96417, 1e-4);
    EXPECT_NEAR(white->Y, 1.0, 1e-4);
    EXPECT_NEAR(white->Z, 0.82487, 1e-4);
    const auto* rights = static_cast<const cmsMLU*>(cmsReadTag(lcms.get(), cmsSigCopyrightTag));
    char text[256] = {};
    ASSERT_TRUE(rights && cmsMLUgetASCII(rights, "en", "US", text, sizeof text));
    EXPECT_EQ(QString::fromLatin1(text), CgwProfileICM2::copyrightNotice());

    const CgwLcmsProfile lab4(cmsCreateLab4Profile(nullptr));
    const CgwLcmsTransform transform(
        cmsCreateTransform(lcms.get(), TYPE_Lab_DBL, lab4.get(), TYPE_Lab_DBL, INTENT_PERCEPTUAL, 0));
    ASSERT_TRUE(transform);
    for (const cmsCIELab& in : {cmsCIELab{0, 0, 0}, {50, 20, -30}, {100, 0, 0}, {75, -60, 45}, {20, 90, -100}}) {
        SCOPED_TRACE(testing::Message() << in.L << " " << in.a << " " << in.b);
        cmsCIELab out = {};
        cmsDoTransform(transform.get(), &in, &out, 1);
        EXPECT_NEAR(out.L, in.L, 0.01);
        EXPECT_NEAR(out.a, in.a, 0.01);
        EXPECT_NEAR(out.b, in.b, 0.01);
    }
}

TEST(ProfileICM2, SettersNeedAnOpenMemoryProfileAndStopAtTheFirstFailure)
{
    CgwProfileICM2 profile;
    EXPECT_FALSE(profile.setDescription(QStringLiteral("x")));
    EXPECT_FALSE(profile.finishMemoryProfile());
    ASSERT_TRUE(profile.createMemoryProfile(QStringLiteral("curves")));
    EXPECT_FALSE(profile.setToneCurves({1.0}, {300.0}, {1.0}));
    const auto engine = profile.engineProfile();
    EXPECT_EQ(engine->elementSize(gwIccSignature("rTRC")), 16u);
    EXPECT_EQ(engine->elementSize(gwIccSignature("gTRC")), 0u);
    EXPECT_EQ(engine->elementSize(gwIccSignature("bTRC")), 0u);
    // A finished profile is read from its bytes like any other.
    ASSERT_TRUE(profile.createLabProfile());
    EXPECT_FALSE(profile.setCopyright(QString()));
}

TEST(ProfileICM2, SettersBuildAMatrixProfileTheEngineCanUse)
{
    CgwProfileICM2 profile;
    ASSERT_TRUE(profile.createMemoryProfile(QStringLiteral("matrix")));
    ASSERT_TRUE(profile.setDescription(QStringLiteral("Norvane Test RGB")));
    ASSERT_TRUE(profile.setWhitePoint(0.9642, 1.0, 0.8249));
    // The sRGB primaries adapted to D50; they add up to the white point.
    ASSERT_TRUE(profile.setColorants(0.4361, 0.2225, 0.0139, 0.3851, 0.7169, 0.0971, 0.1431, 0.0606, 0.7141));
    ASSERT_TRUE(profile.setToneCurves({2.2}, {2.2}, {2.2}));
    SgwProfileHeader header = profile.engineProfile()->header();
    header.deviceClass = gwIccSignature("mntr");
    header.colorSpace = gwIccSignature("RGB ");
    header.pcs = gwIccSignature("XYZ ");
    ASSERT_TRUE(profile.engineProfile()->setHeader(header));
    ASSERT_TRUE(profile.finishMemoryProfile());
    EXPECT_EQ(profile.colorMode(), 3);
    EXPECT_EQ(profile.name(), QStringLiteral("Norvane Test RGB")) << "a finished profile is named by its description";

    const CgwLcmsProfile lcms = gwOpenedByLcms(profile.profileBytes());
    const CgwLcmsProfile xyz(cmsCreateXYZProfile());
    const CgwLcmsTransform transform(
        cmsCreateTransform(lcms.get(), TYPE_RGB_DBL, xyz.get(), TYPE_XYZ_DBL, INTENT_RELATIVE_COLORIMETRIC, 0));
    ASSERT_TRUE(transform);
    // Mid grey through the curves, then the colorants.
    const double grey[3] = {0.5, 0.5, 0.5}, y = std::pow(0.5, 2.2);
    cmsCIEXYZ out = {};
    cmsDoTransform(transform.get(), grey, &out, 1);
    EXPECT_NEAR(out.X, 0.9642 * y, 0.002);
    EXPECT_NEAR(out.Y, y, 0.002);
    EXPECT_NEAR(out.Z, 0.8249 * y, 0.002);
}
