// The log within one process: error texts, stamped and flushed lines, the
// debug channel, the first messages of a session arriving from many threads,
// and faults that are logged before they are thrown.

#include "diagnostics/gwAssert.h"
#include "diagnostics/gwDebug.h"
#include "diagnostics/gwException.h"
#include "diagnostics/gwLogFile.h"
#include "diagnostics/gwLogHeader.h"
#include "support/gwTestEnv.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QThread>

#include <gtest/gtest.h>

// Runs first: nothing may be written before the first message.
TEST(LogFile, FirstMessageOpensTheFileWithPreambleHeaderAndStampedLine)
{
    CgwLogFile& log = CgwLogFile::instance();
    EXPECT_FALSE(QFile::exists(gwTestLogPath()));
    EXPECT_EQ(log.logFilePath(), QStringLiteral("file:") + gwTestLogPath());

    log.writeMessage(QStringLiteral("first message äöü"));
    ASSERT_TRUE(log.isOpen());
    const QByteArray content = gwReadFile(gwTestLogPath());
    EXPECT_TRUE(content.startsWith(QByteArray(73, '-') + "\nIf you experience any problems"));
    // The queued first message stands behind the header, read back while the
    // file is still open: every line is flushed at once.
    EXPECT_GT(content.indexOf("first message"), content.indexOf("  Runtime messages\n"));
    const QString last = QString::fromUtf8(content.trimmed().split('\n').last());
    const QRegularExpression stamped(R"(^\d\d\.\d\d\.\d{4} \d\d:\d\d:\d\d\.\d{3}  first message äöü$)");
    EXPECT_TRUE(stamped.match(last).hasMatch()) << qPrintable(last);
    log.writeMessage(QStringLiteral("second"));
    EXPECT_EQ(gwLastLogLine(), QByteArray("second"));
}

TEST(LogFile, ErrorsAreLoggedByTheirTextAndSuccessIsSkipped)
{
    CgwLogFile& log = CgwLogFile::instance();
    const int linesBefore = gwLogLineCount();
    EXPECT_TRUE(log.checkError(0));
    log.reportError(0);
    EXPECT_EQ(gwLogLineCount(), linesBefore) << "success codes write nothing";
    EXPECT_FALSE(log.checkError(13));
    EXPECT_EQ(gwLastLogLine(), QByteArray("Errorcode: File couldn't be opened (13)"));

    // The table's ends and codes outside it; 24 is a second success code.
    const struct {
        int code;
        const char* text;
    } cases[] = {
        {27, "Errorcode: Scan error (27)"},
        {28, "Errorcode: FOUND NO CORRESPONDING ERROR-MESSAGE (28)"},
        {-1, "Errorcode: FOUND NO CORRESPONDING ERROR-MESSAGE (-1)"},
        {24, "Errorcode: No Error (24)"},
        {0, "Errorcode: No Error (0)"},
    };
    for (const auto& c : cases) {
        log.logError(c.code);
        EXPECT_EQ(gwLastLogLine(), QByteArray(c.text));
    }
    EXPECT_EQ(log.lastErrorCode(), 0);
    EXPECT_EQ(log.loggedErrors(), (QList<int>{13, 27, 28, -1, 24, 0}));
}

TEST(LogFile, DebugChannelFormatsAndPrefixes)
{
    gwDebug("value %d of %s at %.2f", 3, "x", 1.5);
    EXPECT_EQ(gwLastLogLine(), QByteArray("gwDebug: value 3 of x at 1.50"));
    // Longer than the first 256 characters of room.
    const QByteArray longText(1000, 'k');
    gwDebug("<%s>", longText.constData());
    EXPECT_EQ(gwLastLogLine(), "gwDebug: <" + longText + ">");

    const int lines = gwLogLineCount();
    gwDebug(nullptr);
    EXPECT_EQ(gwLogLineCount(), lines);
    gwDebugString(QStringLiteral("plain"));
    EXPECT_EQ(gwLastLogLine(), QByteArray("gwDebug: plain"));
}

TEST(LogFile, AssertionReportsNameFileLineAndFunction)
{
    const void* retVal = nullptr;
    if (!retVal)
        GW_BADPTR(retVal);
    const QRegularExpression report(R"(^gwDebug: GW_BADPTR: F:\S*test_logfile\.cpp L:\d+ f:virtual void )"
                                    R"(LogFile_AssertionReportsNameFileLineAndFunction_Test::TestBody\(\) v:retVal$)");
    EXPECT_TRUE(report.match(QString::fromUtf8(gwLastLogLine())).hasMatch()) << gwLastLogLine().constData();
    GW_REPORT_PIXEL_NOT_FOUND(-30, 7);
    EXPECT_TRUE(gwLastLogLine().endsWith("Pixel at [-30][7] cannot be found!"));
}

TEST(LogFile, FirstMessagesFromManyThreadsAreAllWrittenOnce)
{
    constexpr int kThreads = 8;
    constexpr int kMessages = 50;
    std::vector<std::unique_ptr<QThread>> workers;
    for (int t = 0; t < kThreads; ++t) {
        workers.emplace_back(QThread::create([t] {
            for (int m = 0; m < kMessages; ++m)
                CgwLogFile::instance().writeMessage(QStringLiteral("thread %1 message %2").arg(t).arg(m));
        }));
        workers.back()->start();
    }
    for (auto& w : workers)
        w->wait();
    const QByteArray content = gwReadFile(gwTestLogPath());
    EXPECT_EQ(content.count("*** Log of Glimmerway session ***"), 1);
    for (int t = 0; t < kThreads; ++t) {
        int last = -1;
        for (int m = 0; m < kMessages; ++m) {
            const QByteArray text = QStringLiteral("thread %1 message %2\n").arg(t).arg(m).toUtf8();
            EXPECT_EQ(content.count(text), 1) << text.constData();
            EXPECT_GT(content.indexOf(text), last) << "messages of one thread keep their order";
            last = content.indexOf(text);
        }
    }
}

TEST(LogFile, RenameProcessTempFileReplacesTheTargetOrGivesUpAfterTenRetries)
{
    const QString pid = QString::number(QCoreApplication::applicationPid());
    const QString target = gwWriteTestFile(QStringLiteral("image.tif"), "old");
    EXPECT_FALSE(gwRenameProcessTempFile(target)) << "no temporary file";
    const QString temp = gwWriteTestFile("image.tif" + pid, "new content");
    EXPECT_TRUE(gwRenameProcessTempFile(target));
    EXPECT_EQ(gwReadFile(target), QByteArray("new content"));
    EXPECT_FALSE(QFile::exists(temp));

    // A non-empty folder in the target's place refuses every rename.
    const QString held = gwWriteTestFile(QStringLiteral("held/inside"), "").section('/', 0, -2);
    const QString heldTemp = gwWriteTestFile("held" + pid, "");
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(gwRenameProcessTempFile(held));
    EXPECT_GE(timer.elapsed(), 4900);
    EXPECT_EQ(gwLastLogLine(), ("gwDebug: Exiv2 handler: Failed to rename file to " + held).toUtf8());
    EXPECT_TRUE(QFile::exists(heldTemp));
}

// The hotline form leads with hotline and fax; the main form has no hotline and leads with the web.
TEST(LogFile, PreambleContactBlocksDependOnTheVersionType)
{
    const QByteArray main = gwLogPreamble(0);
    const QByteArray hotline = gwLogPreamble(3);
    EXPECT_FALSE(main.contains("Hotline: "));
    EXPECT_LT(main.indexOf("Web/mail contact"), main.indexOf("Fax: "));
    EXPECT_EQ(hotline.count("Hotline: "), 2);
    EXPECT_LT(hotline.indexOf("Hotline: "), hotline.indexOf("Fax: "));
    EXPECT_LT(hotline.indexOf("Fax: "), hotline.indexOf("Web/mail contact"));
}

TEST(Exception, DatabaseFaultIsLoggedThenThrown)
{
    const QString message = QStringLiteral("The SQLite database for temp images couldn't be opened");
    try {
        gwThrowException<3>(message);
        FAIL() << "nothing thrown";
    } catch (const CgwExceptionBase& e) {
        EXPECT_EQ(e.exceptionType(), 3);
        EXPECT_EQ(e.message(), message);
        EXPECT_TRUE(e.details().empty());
    }
    EXPECT_EQ(gwLastLogLine(), "A error in Database is occured : " + message.toUtf8());
}
