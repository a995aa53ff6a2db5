// Profiles as values: reading from memory and files, the facts taken from
// the header, descriptions and their fallbacks, writing out, and the handle
// that copies share.

#include "colour/gwEngineProfile.h"
#include "colour/gwProfileBase.h"
#include "diagnostics/gwLogFile.h"
#include "gwTestProfiles.h"
#include "support/gwTestEnv.h"

#include <gtest/gtest.h>

namespace {

CgwProfileBase fromBytes(const QByteArray& bytes)
{
    CgwProfileBase profile;
    profile.setFromMemory(reinterpret_cast<const unsigned char*>(bytes.constData()), bytes.size());
    return profile;
}

QByteArray withLengthField(QByteArray bytes, quint32 length)
{
    qToBigEndian(length, bytes.data());
    return bytes;
}

} // namespace

TEST(ProfileBase, TheLengthFieldCutsABlockButNeverReachesPastTheData)
{
    const QByteArray srgb = gwSRGBProfileBytes();
    const qint64 n = srgb.size();
    const struct {
        const char* what;
        QByteArray data;
        qint64 size;
        qint64 kept;
        bool valid;
    } cases[] = {
        {"exact", srgb, n, n, true},
        {"data longer than the field", srgb + QByteArray(300, 'x'), n + 300, n, true},
        {"field longer than the data", withLengthField(srgb, quint32(n + 500)), n, n, true},
        {"size below the data", srgb, n - 200, n - 200, false},
        {"field of zero", withLengthField(srgb, 0), n, 0, false},
    };
    for (const auto& c : cases) {
        const CgwProfileBase profile = fromBytes(c.data.left(int(c.size)));
        EXPECT_TRUE(profile.isBufferProfile()) << c.what;
        EXPECT_EQ(profile.bufferSize(), c.kept) << c.what;
        EXPECT_EQ(profile.isValid(), c.valid) << c.what;
        EXPECT_EQ(profile.isEmbeddable(), c.valid) << c.what;
        EXPECT_EQ(profile.profileBytes(), c.data.left(int(c.kept))) << c.what;
    }
}

TEST(ProfileBase, ColourSpaceAndClassDecideModeRolesAndValidity)
{
    const struct {
        const char* what;
        QByteArray bytes;
        int mode;
        bool source, destination, valid;
    } cases[] = {
        {"sRGB display", gwSRGBProfileBytes(), 3, true, true, true},
        {"grey display", gwGrayProfileBytes(), 1, true, true, true},
        {"CMY printer", gwLutProfileBytes(cmsSigOutputClass, cmsSigCmyData), 4, false, true, true},
        {"CMYK printer", gwLutProfileBytes(cmsSigOutputClass, cmsSigCmykData), 6, false, true, true},
        {"RGB scanner", gwLutProfileBytes(cmsSigInputClass, cmsSigRgbData), 3, true, false, true},
        {"RGB colour space", gwLutProfileBytes(cmsSigColorSpaceClass, cmsSigRgbData), 3, true, true, true},
        {"Lab abstract", gwSavedProfile(cmsCreateLab4Profile(nullptr)), 5, true, true, true},
        {"CMYK link", gwSavedProfile(cmsCreateInkLimitingDeviceLink(cmsSigCmykData, 300)), 6, false, false, false},
        {"HSV display", gwLutProfileBytes(cmsSigDisplayClass, cmsSigHsvData), 0, true, true, false},
        {"XYZ abstract", gwSavedProfile(cmsCreateXYZProfile()), 0, true, true, false},
    };
    for (const auto& c : cases) {
        ASSERT_FALSE(c.bytes.isEmpty()) << c.what;
        CgwProfileBase profile = fromBytes(c.bytes);
        EXPECT_EQ(profile.isValid(), c.valid) << c.what;
        // The facts stay readable after validity is lost, for a message.
        EXPECT_EQ(profile.colorMode(), c.mode) << c.what;
        EXPECT_EQ(profile.canBeSource(), c.source) << c.what;
        EXPECT_EQ(profile.canBeDestination(), c.destination) << c.what;
    }
}

TEST(ProfileBase, DescriptionsFallBackToTheFileNameAndNameTheSameProfile)
{
    const QByteArray srgb = gwSRGBProfileBytes();
    const QByteArray bare = gwWithDescription(srgb, QString());
    const QString film = gwWriteTestFile(QStringLiteral("profiles/Film Stock.v2.icc"), bare);
    const QString unnamed = QStringLiteral("Unnamed (maybe broken)");
    const struct {
        const char* what;
        CgwProfileBase profile;
        QString text;
        bool fromElement;
    } cases[] = {
        {"mluc in memory", fromBytes(srgb), QStringLiteral("sRGB built-in"), true},
        {"desc of version 2", fromBytes(gwAsVersion2(srgb)), QStringLiteral("sRGB built-in"), true},
        {"file without desc", CgwProfileBase::fromFile(film), QStringLiteral("Film Stock.v2"), false},
        {"memory without desc", fromBytes(bare), unnamed, false},
        {"empty", CgwProfileBase(), unnamed, false},
    };
    for (const auto& c : cases) {
        QString text;
        EXPECT_EQ(c.profile.getDescription(text), c.fromElement) << c.what;
        EXPECT_EQ(text, c.text) << c.what;
    }
    EXPECT_TRUE(cases[3].profile.isValid());
    // The same profile is the same description, whatever the bytes.
    EXPECT_NE(cases[0].profile, cases[1].profile);
    EXPECT_TRUE(cases[0].profile.isSameProfile(&cases[1].profile));
    EXPECT_FALSE(cases[0].profile.isSameProfile(&cases[3].profile));
    EXPECT_FALSE(cases[0].profile.isSameProfile(nullptr));
}

TEST(ProfileBase, FilesThatCannotBeReadLeaveTheProfileEmptyWithTheirErrorCode)
{
    // Missing or no path: 13; empty, with or without scheme: 14.
    const QString empty = gwWriteTestFile(QStringLiteral("profiles/empty.icc"), QByteArray());
    const std::pair<QString, int> cases[] = {
        {gwTestRoot() + QStringLiteral("/none.icc"), 13}, {QString(), 13}, {empty, 14}, {"file:" + empty, 14}};
    for (const auto& [path, code] : cases) {
        for (bool load : {false, true}) {
            SCOPED_TRACE(path.toStdString() + (load ? " loaded" : ""));
            CgwProfileBase profile = fromBytes(gwSRGBProfileBytes());
            const int lines = gwLogLineCount();
            profile.setFromFile(path, load);
            EXPECT_EQ(CgwLogFile::instance().lastErrorCode(), code);
            EXPECT_EQ(gwLogLineCount(), lines + 1);
            EXPECT_FALSE(profile.isValid());
            EXPECT_TRUE(profile.path().isEmpty());
            EXPECT_FALSE(profile.isBufferProfile());
        }
    }
}

TEST(ProfileBase, FileProfilesLoadIntoMemoryOnlyWhenAsked)
{
    const QByteArray bytes = gwGrayProfileBytes();
    const QString path = gwWriteTestFile(QStringLiteral("profiles/gray.icc"), bytes);
    for (bool load : {false, true}) {
        CgwProfileBase profile;
        profile.setFromFile(load ? QStringLiteral("file:") + path : path, load);
        EXPECT_TRUE(profile.isValid()) << load;
        EXPECT_EQ(profile.isFileProfile(), !load) << load;
        EXPECT_EQ(profile.bufferSize(), load ? bytes.size() : 0) << load;
        EXPECT_EQ(profile.profileBytes(), bytes) << load;
    }
}

TEST(ProfileBase, BufferToFileWritesTheBytesAndBecomesThatFilesProfile)
{
    const QByteArray bytes = gwSRGBProfileBytes();
    CgwProfileBase profile = fromBytes(bytes);
    const QString unwritable = gwTestRoot() + QStringLiteral("/no such folder/x.icc");
    EXPECT_FALSE(profile.bufferToFile(unwritable));
    EXPECT_EQ(gwLastLogLine(),
              "gwDebug: CgwProfileBase::bufferToFile Error: Could not open file " + unwritable.toUtf8());
    EXPECT_TRUE(profile.isBufferProfile()) << "a failed write changes nothing";

    const QString path = gwTestRoot() + QStringLiteral("/written.icc");
    ASSERT_TRUE(profile.bufferToFile(QStringLiteral("file:") + path));
    EXPECT_TRUE(profile.isFileProfile() && profile.isValid());
    EXPECT_EQ(profile.path(), QStringLiteral("file:") + path);
    EXPECT_EQ(gwReadFile(path), bytes);
    // A file profile is read first, so it can be written elsewhere.
    const QString copy = gwTestRoot() + QStringLiteral("/copy.icc");
    ASSERT_TRUE(profile.bufferToFile(copy));
    EXPECT_EQ(gwReadFile(copy), bytes);
    EXPECT_FALSE(CgwProfileBase().bufferToFile(gwTestRoot() + QStringLiteral("/nothing.icc")));
}

TEST(ProfileBase, CopiesShareOneHandleAndTheLastOneClosesIt)
{
    CgwProfileBase profile = fromBytes(gwSRGBProfileBytes());
    ASSERT_TRUE(profile.openEngineProfile());
    std::weak_ptr<CgwEngineProfile> handle = profile.engineProfile();
    {
        const CgwProfileBase copy = profile;
        EXPECT_EQ(copy.engineProfile(), profile.engineProfile());
        profile.closeEngineProfile();
        EXPECT_FALSE(handle.expired());
        QString text;
        EXPECT_TRUE(copy.getDescription(text));
    }
    EXPECT_TRUE(handle.expired());
    // Without a valid profile there is nothing to open: error 15.
    EXPECT_FALSE(CgwProfileBase().openEngineProfile());
    EXPECT_EQ(CgwLogFile::instance().lastErrorCode(), 15);
}
