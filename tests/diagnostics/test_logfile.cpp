// The log within one process: stamped and flushed lines, error texts, the debug
// channel, first messages from many threads, and faults logged before they are thrown.

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

#include <utility>

#include <gtest/gtest.h>

// Runs first: nothing may be written before the first message.
TEST(LogFile, FirstMessageOpensTheFileWithPreambleHeaderAndStampedLine)
{
    CgwLogFile& log = CgwLogFile::instance();
    EXPECT_FALSE(QFile::exists(gwTestLogPath()));

    log.writeMessage(QStringLiteral("first message äöü"));
    const QByteArray content = gwReadFile(gwTestLogPath());
    EXPECT_TRUE(content.startsWith(QByteArray(73, '-') + "\nIf you experience any problems"));
    // The queued first message stands behind the header, read back while the
    // file is still open: every line is flushed at once.
    EXPECT_GT(content.indexOf("first message"), content.indexOf("  Runtime messages\n"));
    const QString last = QString::fromUtf8(content.trimmed().split('\n').last());
    const QRegularExpression stamped(R"(^\d\d\.\d\d\.\d{4} \d\d:\d\d:\d\d\.\d{3}  first message äöü$)");
    EXPECT_TRUE(stamped.match(last).hasMatch()) << qPrintable(last);
}

TEST(LogFile, ErrorsAreLoggedByTheirTextAndSuccessIsSkipped)
{
    CgwLogFile& log = CgwLogFile::instance();
    const int linesBefore = gwLogLineCount();
    EXPECT_TRUE(log.checkError(0));
    log.reportError(0);
    EXPECT_EQ(gwLogLineCount(), linesBefore) << "success codes write nothing";

    // The table's ends and codes outside it; 24 reads "No Error" but only 0 is success.
    const std::pair<int, const char*> cases[] = {
        {13, "File couldn't be opened (13)"}, {27, "Scan error (27)"}, {24, "No Error (24)"},
        {28, "FOUND NO CORRESPONDING ERROR-MESSAGE (28)"}, {-1, "FOUND NO CORRESPONDING ERROR-MESSAGE (-1)"}};
    for (const auto& [code, text] : cases) {
        EXPECT_FALSE(log.checkError(code)) << code;
        EXPECT_EQ(gwLastLogLine(), QByteArray("Errorcode: ") + text);
    }
    EXPECT_EQ(log.loggedErrors(), (QList<int>{13, 27, 24, 28, -1}));
}

TEST(LogFile, DebugChannelFormatsAndPrefixes)
{
    // Longer than the first 256 characters of room.
    const QByteArray longText(1000, 'k');
    gwDebug("<%s>", longText.constData());
    EXPECT_EQ(gwLastLogLine(), "gwDebug: <" + longText + ">");

    const int lines = gwLogLineCount();
    gwDebug(nullptr);
    EXPECT_EQ(gwLogLineCount(), lines);
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
            EXPECT_GT(content.indexOf(text), std::exchange(last, content.indexOf(text))) << "in order";
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
    EXPECT_THROW(gwThrowException<3>(message), CgwExceptionBase);
    EXPECT_EQ(gwLastLogLine(), "A error in Database is occured : " + message.toUtf8());
}
