// IPTC: the user's parameters written into files through Exiv2, read back
// as exiv2 shows them, and the browser's text table.

#include "metadata/gwIptc.h"
#include "settings/gwParamKeys.h"
#include "settings/gwParameterSet.h"
#include "support/gwCorpus.h"
#include "support/gwTestEnv.h"

#include <QFile>

#include <gtest/gtest.h>

namespace {

// A fresh copy of a corpus JPEG with three datasets of its own.
QString copyOfIptcJpeg(const QString& name)
{
    const QByteArray bytes = gwReadFile(gwCorpusDir() + "/jpeg/app13-multiple.jpg");
    return bytes.isEmpty() ? QString() : gwWriteTestFile(name, bytes);
}

// The values of a dataset as the exiv2 program reads them.
QStringList datasets(const QString& path, const QString& key)
{
    return QString::fromUtf8(gwRunProgram("exiv2", {"-q", "-K", key, "-Pv", path})).split('\n', Qt::SkipEmptyParts);
}

CgwParameterSet keywords(const QStringList& words)
{
    CgwParameterSet params;
    QString value;
    for (const QString& word : words)
        value += CgwParameterSet::valueFromString(word).toQString();
    params.setValue(GgwParam_IPTCKeywords, value);
    params.setLongLong(GgwParam_IPTCKeywordCount, words.size());
    return params;
}

} // namespace

TEST(Iptc, ParametersReplaceTheirKeysAndLeaveTheRest)
{
    const QString path = copyOfIptcJpeg("params.jpg");
    if (path.isEmpty())
        GTEST_SKIP() << "no corpus";
    CgwIptc before;
    ASSERT_TRUE(before.readIPTC("file:" + path));
    ASSERT_FALSE(before.isEmpty());

    CgwParameterSet params = keywords({"film", "Kodachrome 64", "1972"});
    params.setString(GgwParam_IPTCCity, QStringLiteral("Zürich"));
    params.setString(GgwParam_IPTCHeadline, QString()); // empty: the file's value stays
    ASSERT_TRUE(CgwIptc::applyIptcToFile("file:" + path, params));

    EXPECT_EQ(datasets(path, "Iptc.Application2.Keywords"), QStringList({"film", "Kodachrome 64", "1972"}));
    EXPECT_EQ(datasets(path, "Iptc.Application2.City"), QStringList({"Zürich"}));
    CgwIptc after;
    ASSERT_TRUE(after.readIPTC(path)); // without "file:" the same
    EXPECT_EQ(after.values(0x0219), QStringList({"film", "Kodachrome 64", "1972"}));
    // Every dataset the parameters did not name is as it was.
    for (auto it = before.datasets().constBegin(); it != before.datasets().constEnd(); ++it) {
        if (it.key() != 0x0219 && it.key() != 0x025A) {
            EXPECT_EQ(after.values(it.key()), it.value()) << std::hex << it.key();
        }
    }
}

TEST(Iptc, ARecordWritesBackWhatItRead)
{
    const QString source = gwCorpusDir() + "/jpeg/iptc.jpg";
    if (!QFile::exists(source))
        GTEST_SKIP() << "no corpus";
    CgwIptc record;
    ASSERT_TRUE(record.readIPTC(source));
    ASSERT_GE(record.datasets().size(), 3);
    const QString target = copyOfIptcJpeg("record.jpg");
    ASSERT_TRUE(record.applyToFile("file:" + target));
    CgwIptc back;
    ASSERT_TRUE(back.readIPTC(target));
    for (auto it = record.datasets().constBegin(); it != record.datasets().constEnd(); ++it)
        EXPECT_EQ(back.values(it.key()), it.value()) << std::hex << it.key();
}

TEST(Iptc, Exiv2ErrorsEndInOneLogLine)
{
    const QString path = gwWriteTestFile("not-an-image.jpg", "plain text, no image");
    EXPECT_FALSE(CgwIptc::applyIptcToFile("file:" + path, keywords({"x"})));
    EXPECT_TRUE(gwLastLogLine().startsWith("gwDebug: CgwIptc::applyIptcToFile() Exiv2 Error "));
    EXPECT_TRUE(gwLastLogLine().contains(" while storing IPTC data: "));
    EXPECT_EQ(gwReadFile(path), "plain text, no image");
    CgwIptc none;
    EXPECT_FALSE(none.readIPTC(gwTestRoot() + "/missing.jpg"));
    EXPECT_TRUE(none.isEmpty());
}

TEST(Iptc, TextJoinsRepeatedDatasets)
{
    CgwIptc iptc;
    iptc.addValue(0x0219, "film");
    iptc.addValue(0x0219, "slide");
    QString label, key;
    EXPECT_EQ(iptc.valueAsText(0x0219, label, key), "film; slide");
    EXPECT_EQ(key, "%iptckays%") << "as users' templates spell it";
    EXPECT_EQ(iptc.valueAsText(0x0299, label, key), "");
    EXPECT_TRUE(label.isEmpty() && key.isEmpty()) << "a dataset without a row";
}
