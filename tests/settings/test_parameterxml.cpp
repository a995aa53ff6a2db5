// Parameter XML: the exact bytes written, reading back, bad input giving an empty set and one log line.

#include "diagnostics/gwSystem.h"
#include "settings/gwXmlDataHandler.h"
#include "settings/gwXmlParameterSet.h"
#include "support/gwFuzzBodies.h"
#include "support/gwTestEnv.h"

#include <QBuffer>
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

// The document before its closing NUL, with the moment of writing, which alone
// may differ between runs, masked.
QString masked(const QByteArray& document)
{
    QString text = QString::fromUtf8(document.chopped(1));
    text.replace(QRegularExpression(QStringLiteral(R"(\d\d\.\d\d\.\d{4} \d\d:\d\d:\d\d)")), "DD.MM.YYYY hh:mm:ss");
    return text.replace(QRegularExpression(QStringLiteral(R"(\(c\) \d{4} )")), "(c) YYYY ");
}

} // namespace

// The exact bytes, CRLF line ends and the closing NUL included.
TEST(ParameterXml, DocumentFormByteForByte)
{
    const QString header = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?>\r\n\r\n"
                           "<!DOCTYPE ParameterSet>\r\n\r\n"
                           "<!-- Xml Preference file, written by Glimmerway "
                           + CgwSystem::applicationVersion(true)
                           + ".-->\r\n"
                             "<!-- Copyright (c) YYYY Norvane Imaging. All rights reserved.-->\r\n"
                             "<!-- File created on DD.MM.YYYY hh:mm:ss-->\r\n\r\n<ParameterSet>\r\n";
    CgwParameterSet set;
    set.setBool(QStringLiteral("IsHDR"), true);
    set.setString(QStringLiteral("Name"), QStringLiteral("New Job"));
    set.setValue(QStringLiteral("Path"), QStringLiteral("a:b;c,d{e}\\f<g>&h%i\r\nj k"));
    set.setValue(QStringLiteral("Empty"), QString());
    set.setString(QStringLiteral("Text"), QStringLiteral("äöü 日本"));
    const QByteArray document = written(set);
    EXPECT_EQ(masked(document),
              header + "\t<Empty>\r\n\t</Empty>\r\n"
                       "\t<IsHDR>\r\n\t\tTRUE%20\r\n\t</IsHDR>\r\n"
                       "\t<Name>\r\n\t\tNew~0020Job%20\r\n\t</Name>\r\n"
                       "\t<Path>\r\n\t\ta%3ab%3bc%2cd%7be%7d%5cf%3cg%3e%26h%25i%0d%0aj%20k\r\n\t</Path>\r\n"
                       "\t<Text>\r\n\t\täöü~0020日本%20\r\n\t</Text>\r\n"
                       "</ParameterSet>\r\n");
    EXPECT_EQ(document.indexOf('\0'), document.size() - 1) << "one closing NUL";
    EXPECT_EQ(CgwXmlParameterSet::readFile(gwWriteTestFile(QStringLiteral("set.xml"), document)), set);
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
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const int before = gwLogLineCount();
        EXPECT_TRUE(CgwXmlParameterSet::read(c.bytes).isEmpty());
        EXPECT_EQ(gwLogLineCount(), before + 1);
        EXPECT_TRUE(gwLastLogLine().startsWith("gwDebug: CgwXmlParameterSet::read : Error: "));
    }
}

// Each kept input of the fuzzer: every token decoded, the set written and read back.
TEST(ParameterXml, FuzzFindingsSurviveWriting)
{
    EXPECT_TRUE(gwReplayFuzzFindings("xml", gwFuzzParameterXml));
}

TEST(ParameterXml, HelpAndMovieCataloguesAreRead)
{
    const QString path = gwWriteTestFile(
        QStringLiteral("catalogue.xml"),
        "<Catalogue>\n <Guide id=\"scan\">  Scanning film  <Link>scan.pdf</Link><Revision>3</Revision>"
        "<NotNeeded>no</NotNeeded><Interactive>yes</Interactive></Guide>\n"
        " <Movie id=\"m1\">Not a guide<Link>m1.mp4</Link></Movie>\n"
        " <Guide id=\"hdr\">HDR<Link>hdr.pdf</Link></Guide>\n</Catalogue>\n");
    CgwXmlHelpDataHandler help;
    ASSERT_TRUE(help.parseFile(path));
    ASSERT_EQ(help.entries().size(), 2);
    const SgwCatalogueEntry& first = help.entries().first();
    EXPECT_EQ((QStringList{first.id, first.title, first.link, first.revision, first.notNeeded, first.interactive}),
              (QStringList{"scan", "Scanning film", "scan.pdf", "3", "no", "yes"}));
    EXPECT_EQ(help.entryUrl(help.entries().last()), "showdocu/hdr.pdf");
    EXPECT_EQ(help.entries().last().revision, "") << "fields start empty for each entry";

    CgwXmlMovieDataHandler movies;
    ASSERT_TRUE(movies.parseFile(path));
    ASSERT_EQ(movies.entries().size(), 1);
    EXPECT_EQ(movies.entryUrl(movies.entries().first()), "showMovie/m1.mp4");

    CgwXmlHelpDataHandler broken;
    EXPECT_FALSE(broken.parseFile(gwWriteTestFile("broken.xml", "<Catalogue>\n<Guide id=\"x\">b\n</Catalogue>\n")));
    EXPECT_TRUE(gwLastLogLine().startsWith("gwDebug: Fatal error on line 3, column"));
}
