// Whole sessions of the log, each one a process of its own: preamble, session
// header, rotation into "PrevLogFiles/", and a log that cannot be opened.

#include "support/gwTestEnv.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QThread>

#include <tuple>

#include <gtest/gtest.h>

namespace {

const QByteArray kSessionTitle = "*** Log of Glimmerway session ***";

// Each test's sessions log into a data folder of their own, not this process's; paths below the test root.
class LogSession : public ::testing::Test
{
protected:
    const QString mData = QStringLiteral("sessions/") + testing::UnitTest::GetInstance()->current_test_info()->name();
    const QString mLog = mData + gwTestLogPath().mid(qEnvironmentVariable("XDG_DATA_HOME").size());
    const QString mPrev = QFileInfo(mLog).path() + QStringLiteral("/PrevLogFiles");

    // Runs one session, a process of its own writing each message; gives its exit code.
    int run(const QStringList& messages, QByteArray* stdErr = nullptr)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_DATA_HOME"), gwTestRoot() + '/' + mData);
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(GW_LOG_SESSION_HELPER), messages);
        const bool finished = process.waitForFinished(60000);
        if (stdErr)
            *stdErr = process.readAllStandardError();
        return finished ? process.exitCode() : -1;
    }
    QByteArray log() const { return gwReadFile(gwTestRoot() + '/' + mLog); }
    QStringList prevLogs() const { return QDir(gwTestRoot() + '/' + mPrev).entryList(QDir::Files, QDir::Name); }
};

} // namespace

TEST_F(LogSession, NewFileGetsPreambleAndHeaderLaterSessionsOnlyTheHeader)
{
    ASSERT_EQ(run({"one", "two"}), 0);
    QByteArray content = log();
    EXPECT_TRUE(content.startsWith(QByteArray(73, '-') + "\nIf you experience any problems"));
    EXPECT_LT(content.indexOf("  one\n"), content.indexOf("  two\n"));
    for (const char* line : {"Maximum number of concurrent threads : ", "Date and time : ", "System        : ",
                             "Version       : Glimmerway 8.8.0 r17 (", "Processor speed: ", "Vendor name   : "})
        EXPECT_TRUE(content.contains(line)) << line;

    ASSERT_EQ(run({"three"}), 0);
    content = log();
    EXPECT_EQ(content.count("If you experience any problems"), 1) << "no second preamble";
    EXPECT_EQ(content.count(kSessionTitle), 2);
    EXPECT_GT(content.indexOf("  three\n"), content.lastIndexOf(kSessionTitle));
}

// Only a log above one mebibyte is moved aside, and only where the folder of
// old logs can be made; otherwise the session appends without a preamble.
TEST_F(LogSession, RotatesOnlyAboveOneMebibyte)
{
    const std::tuple<qint64, bool, bool> cases[] = {
        {1048576, false, false}, {1048577, false, true}, {1048600, true, false}};
    for (const auto& [size, blocked, rotates] : cases) {
        SCOPED_TRACE(testing::Message() << size << (blocked ? " blocked" : ""));
        QDir(gwTestRoot() + '/' + mData).removeRecursively();
        if (blocked)
            gwWriteTestFile(mPrev, "a plain file in the folder's place");
        const QByteArray old = QByteArray(size - 4, 'a') + "end\n";
        gwWriteTestFile(mLog, old);

        ASSERT_EQ(run({"after"}), 0);
        const QByteArray content = log();
        EXPECT_EQ(content.count(kSessionTitle), 1);
        EXPECT_EQ(content.startsWith(old), !rotates);
        EXPECT_EQ(content.contains("If you experience any problems"), rotates);
        ASSERT_EQ(prevLogs().size(), rotates ? 1 : 0);
        if (rotates) {
            EXPECT_TRUE(prevLogs().first().startsWith("LogFile_"));
            EXPECT_EQ(gwReadFile(gwTestRoot() + '/' + mPrev + '/' + prevLogs().first()), old);
        }
    }
}

TEST_F(LogSession, RotationKeepsTheTenNewestOldLogs)
{
    // Twelve old logs, oldest first; the three oldest must go.
    const QDateTime base = QDateTime::currentDateTime().addDays(-30);
    for (int i = 0; i < 12; ++i) {
        QFile file(gwWriteTestFile(mPrev + QStringLiteral("/old_%1.txt").arg(i, 2, 10, QLatin1Char('0')), "old\n"));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        file.setFileTime(base.addSecs(i * 60), QFileDevice::FileModificationTime);
        QThread::msleep(5); // distinct birth times where the file system keeps them
    }
    gwWriteTestFile(mLog, QByteArray(1048577, 'b'));

    ASSERT_EQ(run({"rotated"}), 0);
    const QStringList logs = prevLogs();
    EXPECT_EQ(logs.size(), 10);
    for (const char* name : {"old_00.txt", "old_01.txt", "old_02.txt", "old_03.txt", "old_11.txt"})
        EXPECT_EQ(logs.contains(name), QLatin1String(name) >= QLatin1String("old_03.txt")) << name;
}

TEST_F(LogSession, UnopenableLogWarnsOnceAndTheProgramGoesOn)
{
    // A folder in the log file's place cannot be opened for writing, not even by root.
    ASSERT_TRUE(QDir().mkpath(gwTestRoot() + '/' + mLog));
    QByteArray stdErr;
    EXPECT_EQ(run({"lost 1", "lost 2", "lost 3"}, &stdErr), 0);
    EXPECT_EQ(stdErr.count("Attention! The logfile could not be opened."), 1) << stdErr.constData();
    EXPECT_TRUE(stdErr.contains(("File path is " + gwTestRoot() + '/' + mLog).toUtf8()));
}
