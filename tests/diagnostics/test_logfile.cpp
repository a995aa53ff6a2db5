// The log within one process: error texts, stamped and flushed lines, the
// debug channel, and the first messages of a session arriving from many threads.

#include "diagnostics/gwAssert.h"
#include "diagnostics/gwDebug.h"
#include "diagnostics/gwLogFile.h"
#include "diagnostics/gwLogHeader.h"
#include "support/gwTestEnv.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QThread>

#include <gtest/gtest.h>

namespace {

QList<QByteArray> logLines()
{
    return gwReadFile(gwTestLogPath()).split('\n');
}

// The message part of the last non-empty line, checking its stamp.
QByteArray lastMessage()
{
    const QList<QByteArray> lines = logLines();
    for (auto it = lines.rbegin(); it != lines.rend(); ++it) {
        if (it->isEmpty())
            continue;
        static const QRegularExpression stamp(QStringLiteral(R"(^\d\d\.\d\d\.\d{4} \d\d:\d\d:\d\d\.\d{3}  )"));
        EXPECT_TRUE(stamp.match(QString::fromUtf8(*it)).hasMatch()) << it->constData();
        return it->mid(25);
    }
    return QByteArray();
}

} // namespace

TEST(LogFile, ErrorTextCoversTheTableAndUnknownCodes)
{
    const struct {
        int code;
        const char* text;
    } cases[] = {
        {0, "Errorcode: No Error (0)"},
        {1, "Errorcode: Crash (1)"},
        {11, "Errorcode: TempLine is missing (11)"},
        {17, "Errorcode: Memory is full (17)"},
        {23, "Errorcode: Filter-parameters are wrong (23)"},
        {24, "Errorcode: No Error (24)"},
        {27, "Errorcode: Scan error (27)"},
        {28, "Errorcode: FOUND NO CORRESPONDING ERROR-MESSAGE (28)"},
        {-1, "Errorcode: FOUND NO CORRESPONDING ERROR-MESSAGE (-1)"},
        {4711, "Errorcode: FOUND NO CORRESPONDING ERROR-MESSAGE (4711)"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(CgwLogFile::errorText(c.code), QString::fromLatin1(c.text)) << c.code;
}

TEST(LogFile, FirstMessageOpensTheFileWithPreambleHeaderAndStampedLine)
{
    CgwLogFile& log = CgwLogFile::instance();
    EXPECT_FALSE(QFile::exists(gwTestLogPath())) << "nothing may be written before the first message";
    EXPECT_EQ(log.logFilePath(), QStringLiteral("file:") + gwTestLogPath());

    log.writeMessage(QStringLiteral("first message äöü"));
    ASSERT_TRUE(log.isOpen());
    const QByteArray content = gwReadFile(gwTestLogPath());
    EXPECT_TRUE(content.startsWith(QByteArray(73, '-') + "\nIf you experience any problems"));
    EXPECT_TRUE(content.contains("*** Log of Glimmerway session ***"));
    // The queued first message stands behind the header, read back while the
    // file is still open: every line is flushed at once.
    EXPECT_GT(content.indexOf("first message"), content.indexOf("  Runtime messages\n"));
    EXPECT_EQ(lastMessage(), QByteArray("first message äöü"));

    log.writeMessage(QStringLiteral("second"));
    EXPECT_EQ(lastMessage(), QByteArray("second"));
}

TEST(LogFile, LogErrorRecordsCodesAndCheckErrorSkipsSuccess)
{
    CgwLogFile& log = CgwLogFile::instance();
    log.writeMessage(QStringLiteral("start"));
    const int linesBefore = logLines().size();

    EXPECT_TRUE(log.checkError(0));
    log.reportError(0);
    EXPECT_EQ(logLines().size(), linesBefore) << "success codes write nothing";

    EXPECT_FALSE(log.checkError(13));
    EXPECT_EQ(lastMessage(), QByteArray("Errorcode: File couldn't be opened (13)"));
    log.reportError(26);
    log.logError(0);
    EXPECT_EQ(lastMessage(), QByteArray("Errorcode: No Error (0)"));
    EXPECT_EQ(log.lastErrorCode(), 0);
    EXPECT_EQ(log.loggedErrors(), (QList<int>{13, 26, 0}));
}

TEST(LogFile, DebugChannelFormatsAndPrefixes)
{
    gwDebug("value %d of %s at %.2f", 3, "x", 1.5);
    EXPECT_EQ(lastMessage(), QByteArray("gwDebug: value 3 of x at 1.50"));

    // Longer than the first 256 characters of room.
    const QByteArray longText(1000, 'k');
    gwDebug("<%s>", longText.constData());
    EXPECT_EQ(lastMessage(), "gwDebug: <" + longText + ">");

    const int lines = logLines().size();
    gwDebug(nullptr);
    EXPECT_EQ(logLines().size(), lines);

    gwDebugString(QStringLiteral("plain"));
    EXPECT_EQ(lastMessage(), QByteArray("gwDebug: plain"));
}

TEST(LogFile, AssertionReportsNameFileLineAndFunction)
{
    const void* retVal = nullptr;
    if (!retVal)
        GW_BADPTR(retVal);
    const QByteArray line = lastMessage();
    EXPECT_TRUE(line.startsWith("gwDebug: GW_BADPTR: F:")) << line.constData();
    EXPECT_TRUE(line.contains("test_logfile.cpp L:")) << line.constData();
    EXPECT_TRUE(line.contains(" f:virtual void LogFile_AssertionReportsNameFileLineAndFunction_Test::TestBody()"))
        << line.constData();
    EXPECT_TRUE(line.endsWith(" v:retVal")) << line.constData();

    GW_REPORT_PIXEL_NOT_FOUND(-30, 7);
    EXPECT_TRUE(lastMessage().endsWith("Pixel at [-30][7] cannot be found!"));
    GW_REPORT_AT("Error: Zero-sized output image!");
    EXPECT_TRUE(lastMessage().endsWith(" Error: Zero-sized output image!"));
}

TEST(LogFile, FirstMessagesFromManyThreadsAreAllWrittenOnce)
{
    constexpr int kThreads = 8;
    constexpr int kMessages = 50;
    std::vector<QThread*> workers;
    for (int t = 0; t < kThreads; ++t) {
        workers.push_back(QThread::create([t] {
            for (int m = 0; m < kMessages; ++m)
                CgwLogFile::instance().writeMessage(QStringLiteral("thread %1 message %2").arg(t).arg(m));
        }));
    }
    for (QThread* w : workers)
        w->start();
    for (QThread* w : workers) {
        w->wait();
        delete w;
    }
    const QByteArray content = gwReadFile(gwTestLogPath());
    EXPECT_EQ(content.count("*** Log of Glimmerway session ***"), 1);
    for (int t = 0; t < kThreads; ++t) {
        int last = -1;
        for (int m = 0; m < kMessages; ++m) {
            const QByteArray text = QStringLiteral("thread %1 message %2\n").arg(t).arg(m).toUtf8();
            EXPECT_EQ(content.count(text), 1) << text.constData();
            const int at = content.indexOf(text);
            EXPECT_GT(at, last) << "messages of one thread keep their order";
            last = at;
        }
    }
}

TEST(LogFile, RenameProcessTempFileReplacesTheTarget)
{
    const QString target = gwTestRoot() + QStringLiteral("/image.tif");
    const QString temp = target + QString::number(QCoreApplication::applicationPid());
    EXPECT_FALSE(gwRenameProcessTempFile(target)) << "no temporary file";

    QFile old(target);
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write("old");
    old.close();
    QFile fresh(temp);
    ASSERT_TRUE(fresh.open(QIODevice::WriteOnly));
    fresh.write("new content");
    fresh.close();

    EXPECT_TRUE(gwRenameProcessTempFile(target));
    EXPECT_EQ(gwReadFile(target), QByteArray("new content"));
    EXPECT_FALSE(QFile::exists(temp));
}

TEST(LogFile, RenameProcessTempFileGivesUpAfterTenRetries)
{
    // A non-empty folder in the target's place refuses every rename.
    const QString target = gwTestRoot() + QStringLiteral("/held");
    ASSERT_TRUE(QDir().mkpath(target + QStringLiteral("/inside")));
    QFile temp(target + QString::number(QCoreApplication::applicationPid()));
    ASSERT_TRUE(temp.open(QIODevice::WriteOnly));
    temp.close();

    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(gwRenameProcessTempFile(target));
    EXPECT_GE(timer.elapsed(), 4900);
    EXPECT_EQ(lastMessage(), ("gwDebug: Exiv2 handler: Failed to rename file to " + target).toUtf8());
    EXPECT_TRUE(temp.exists());
}

TEST(LogFile, PreambleContactBlocksDependOnTheVersionType)
{
    const QByteArray main = gwLogPreamble(0);
    const QByteArray hotline = gwLogPreamble(3);
    for (const QByteArray* text : {&main, &hotline}) {
        EXPECT_TRUE(text->startsWith(QByteArray(73, '-') + "\n"));
        EXPECT_EQ(text->count("Web/mail contact (for free): "), 2);
        EXPECT_LT(text->indexOf("Europe, Africa, Australia, Asia:"), text->indexOf("USA, North & South America:"));
        EXPECT_TRUE(text->endsWith("you do not like to share.\n"));
    }
    EXPECT_FALSE(main.contains("Hotline: "));
    EXPECT_LT(main.indexOf("Web/mail contact"), main.indexOf("Fax: ")) << "web contact ahead of the fax";
    EXPECT_EQ(hotline.count("Hotline: "), 2);
    EXPECT_LT(hotline.indexOf("Hotline: "), hotline.indexOf("Fax: "));
    EXPECT_LT(hotline.indexOf("Fax: "), hotline.indexOf("Web/mail contact"));
}
