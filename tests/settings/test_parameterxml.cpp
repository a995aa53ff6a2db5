// Parameter XML: the exact bytes of a written file, reading it back, and
// bad input that must give an empty set and one log line.

#include "diagnostics/gwDebug.h"
#include "diagnostics/gwSystem.h"
#include "settings/gwXmlDataHandler.h"
#include "settings/gwXmlParameterSet.h"
#include "support/gwTestEnv.h"

#include <QBuffer>
#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace {

QByteArray written(const CgwParameterSet& set)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    set.writeTo(buffer);
    return buffer.data();
}

// Replaces the moment of writing, which alone may differ between runs.
QByteArray masked(QByteArray document)
{
    // fromUtf8 would stop at the closing NUL; keep it apart.
    const bool nul = document.endsWith('\0');
    if (nul)
        document.chop(1);
    QString text = QString::fromUtf8(document);
    text.replace(QRegularExpression(QStringLiteral(R"(\d\d\.\d\d\.\d{4} \d\d:\d\d:\d\d)")), "DD.MM.YYYY hh:mm:ss");
    text.replace(QRegularExpression(QStringLiteral(R"(\(c\) \d{4} )")), "(c) YYYY ");
    return text.toUtf8() + (nul ? QByteArray(1, '\0') : QByteArray());
}

QByteArray header()
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?>\r\n"
           "\r\n"
           "<!DOCTYPE ParameterSet>\r\n"
           "\r\n"
           "<!-- Xml Preference file, written by Glimmerway "
           + CgwSystem::applicationVersion(true).toUtf8()
           + ".-->\r\n"
             "<!-- Copyright (c) YYYY Norvane Imaging. All rights reserved.-->\r\n"
             "<!-- File created on DD.MM.YYYY hh:mm:ss-->\r\n"
             "\r\n";
}

int logLineCount()
{
    return int(gwReadFile(gwTestLogPath()).count('\n'));
}

} // namespace

TEST(ParameterXml, DocumentFormByteForByte)
{
    CgwParameterSet set;
    set.setBool(QStringLiteral("IsHDR"), true);
    set.setString(QStringLiteral("Name"), QStringLiteral("New Job"));
    set.setValue(QStringLiteral("Path"), QStringLiteral("a:b;c,d{e}\\f<g>&h%i\nj k"));
    set.setValue(QStringLiteral("Empty"), QString());
    const QByteArray expected = header()
                                + "<ParameterSet>\r\n"
                                  "\t<Empty>\r\n"
                                  "\t</Empty>\r\n"
                                  "\t<IsHDR>\r\n"
                                  "\t\tTRUE%20\r\n"
                                  "\t</IsHDR>\r\n"
                                  "\t<Name>\r\n"
                                  "\t\tNew~0020Job%20\r\n"
                                  "\t</Name>\r\n"
                                  "\t<Path>\r\n"
                                  "\t\ta%3ab%3bc%2cd%7be%7d%5cf%3cg%3e%26h%25i%0aj%20k\r\n"
                                  "\t</Path>\r\n"
                                  "</ParameterSet>\r\n"
                                + QByteArray(1, '\0');
    const QByteArray document = written(set);
    EXPECT_EQ(masked(document), expected);
    EXPECT_EQ(document.count('\0'), 1);
    EXPECT_EQ(CgwXmlParameterSet::read(document), set);
}

TEST(ParameterXml, EmptySetGivesHeaderAndEmptyRoot)
{
    const QByteArray document = written(CgwParameterSet());
    EXPECT_EQ(masked(document), header() + "<ParameterSet>\r\n</ParameterSet>\r\n" + QByteArray(1, '\0'));
    EXPECT_TRUE(CgwXmlParameterSet::read(document).isEmpty());
}

TEST(ParameterXml, EveryKindOfValueSurvivesAFile)
{
    CgwParameterSet set;
    set.setBool(QStringLiteral("Flag"), false);
    set.setDouble(QStringLiteral("Gamma"), 2.2);
    set.setLongLong(QStringLiteral("Signed"), std::numeric_limits<qint64>::min());
    set.setULongLong(QStringLiteral("Unsigned"), std::numeric_limits<quint64>::max());
    set.setString(QStringLiteral("Text"), QStringLiteral("tab\tblank ~tilde äöü 日本"));
    set.setString(QStringLiteral("Nothing"), QString());
    set.setValue(QStringLiteral("List"), QStringLiteral("1 2 3 "));
    const QString path = gwTestRoot() + QStringLiteral("/set.xml");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    set.writeTo(file);
    file.close();

    const CgwParameterSet back = CgwXmlParameterSet::readFile(path);
    EXPECT_EQ(back, set);
    EXPECT_EQ(back.stringValue(QStringLiteral("Text"), QString()), "tab\tblank ~tilde äöü 日本");
    EXPECT_EQ(CgwParameterSet::uLongLongFromValue(back.value(QStringLiteral("Unsigned"))),
              std::numeric_limits<quint64>::max());
}

TEST(ParameterXml, BadDocumentsGiveAnEmptySetAndOneLogLine)
{
    CgwParameterSet good;
    good.setString(QStringLiteral("Name"), QStringLiteral("x y"));
    const QByteArray document = written(good);
    const struct {
        const char* name;
        QByteArray bytes;
    } cases[] = {
        {"empty", QByteArray()},
        {"not xml", "garbage"},
        {"cut in the middle", document.left(document.size() / 2 + 30)},
        {"unclosed root", "<ParameterSet><A>1%20</A>"},
        {"unknown percent escape", "<ParameterSet><A>1%41</A></ParameterSet>"},
        {"truncated percent escape", "<ParameterSet><A>1%2</A></ParameterSet>"},
        {"unknown tilde escape", "<ParameterSet><A>x~0041%20</A></ParameterSet>"},
        {"truncated tilde escape", "<ParameterSet><A>x~00</A></ParameterSet>"},
        {"nested element", "<ParameterSet><A><B>1</B></A></ParameterSet>"},
        {"key twice", "<ParameterSet><A>1</A><A>2</A></ParameterSet>"},
        {"text after the root", "<ParameterSet></ParameterSet><X/>"},
    };
    gwDebugString(QStringLiteral("the log is open before the first case"));
    for (const auto& c : cases) {
        const int before = logLineCount();
        EXPECT_TRUE(CgwXmlParameterSet::read(c.bytes).isEmpty()) << c.name;
        EXPECT_EQ(logLineCount(), before + 1) << c.name;
    }
    EXPECT_TRUE(gwReadFile(gwTestLogPath()).contains("gwDebug: CgwXmlParameterSet::read : Error: "));
}

TEST(ParameterXml, HelpAndMovieCataloguesAreRead)
{
    const QString path = gwTestRoot() + QStringLiteral("/catalogue.xml");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("<Catalogue>\n"
               " <Guide id=\"scan\">  Scanning film  <Link>scan.pdf</Link><Revision>3</Revision>"
               "<NotNeeded>no</NotNeeded><Interactive>yes</Interactive></Guide>\n"
               " <Movie id=\"m1\">Not a guide<Link>m1.mp4</Link></Movie>\n"
               " <Guide id=\"hdr\">HDR<Link>hdr.pdf</Link></Guide>\n"
               "</Catalogue>\n");
    file.close();

    CgwXmlHelpDataHandler help;
    ASSERT_TRUE(help.parseFile(path));
    ASSERT_EQ(help.entries().size(), 2);
    const SgwCatalogueEntry& first = help.entries().first();
    EXPECT_EQ(first.id, "scan");
    EXPECT_EQ(first.title, "Scanning film");
    EXPECT_EQ(first.link, "scan.pdf");
    EXPECT_EQ(first.revision, "3");
    EXPECT_EQ(first.notNeeded, "no");
    EXPECT_EQ(first.interactive, "yes");
    EXPECT_EQ(help.entryUrl(help.entries().last()), "showdocu/hdr.pdf");
    EXPECT_EQ(help.entries().last().revision, "") << "fields start empty for each entry";

    CgwXmlMovieDataHandler movies;
    ASSERT_TRUE(movies.parseFile(path));
    ASSERT_EQ(movies.entries().size(), 1);
    EXPECT_EQ(movies.entryUrl(movies.entries().first()), "showMovie/m1.mp4");
    EXPECT_TRUE(movies.folder().endsWith("/Glimmerway 8/Movies"));

    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write("<Catalogue>\n<Guide id=\"x\">broken\n</Catalogue>\n");
    file.close();
    CgwXmlHelpDataHandler broken;
    EXPECT_FALSE(broken.parseFile(path));
    EXPECT_TRUE(gwReadFile(gwTestLogPath()).contains("gwDebug: Fatal error on line 3, column"));
}
