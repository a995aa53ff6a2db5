// Whole sessions of the log, each one a process of its own: preamble, session
// header, rotation into "PrevLogFiles/", and a log that cannot be opened.

#include "support/gwTestEnv.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QThread>

#include <gtest/gtest.h>

namespace {

const QByteArray kPreambleStart = QByteArray(73, '-') + "\nIf you experience any problems";
const QByteArray kSessionTitle = "*** Log of Glimmerway session ***";

// The sessions of each test keep their log below a data folder of their own,
// apart from this process's log. Paths are below the test root.
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
        if (!process.waitForFinished(60000))
            return -1;
        if (stdErr)
            *stdErr = process.readAllStandardError();
        return process.exitCode();
    }
    QByteArray log() const { return gwReadFile(gwTestRoot() + '/' + mLog); }
    QStringList prevLogs() const { return QDir(gwTestRoot() + '/' + mPrev).entryList(QDir::Files, QDir::Name); }
};

} // namespace

TEST_F(LogSession, NewFileGetsPreambleAndHeaderLaterSessionsOnlyTheHeader)
{
    ASSERT_TRUE(gwTestLogPath().startsWith(qEnvironmentVariable("XDG_DATA_HOME")));
    ASSERT_EQ(run({"one", "two"}), 0);
    QByteArray content = log();
    EXPECT_TRUE(content.startsWith(kPreambleStart));
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
    const struct {
        qint64 size;
        bool blocked;
        bool rotates;
    } cases[] = {{1048576, false, false}, {1048577, false, true}, {1048600, true, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.size << (c.blocked ? " blocked" : ""));
        QDir(gwTestRoot() + '/' + mData).removeRecursively();
        if (c.blocked)
            gwWriteTestFile(mPrev, "a plain file in the folder's place");
        const QByteArray old = QByteArray(c.size - 4, 'a') + "end\n";
        gwWriteTestFile(mLog, old);

        ASSERT_EQ(run({"after"}), 0);
        const QByteArray content = log();
        EXPECT_EQ(content.count(kSessionTitle), 1);
        EXPECT_GT(content.indexOf("  after\n"), content.indexOf(kSessionTitle));
        EXPECT_EQ(content.startsWith(old), !c.rotates);
        EXPECT_EQ(content.contains("If you experience any problems"), c.rotates);
        ASSERT_EQ(prevLogs().size(), c.rotates ? 1 : 0);
        if (c.rotates) {
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
    for (const char* gone : {"old_00.txt", "old_01.txt", "old_02.txt"})
        EXPECT_FALSE(logs.contains(gone)) << gone;
    for (const char* kept : {"old_03.txt", "old_11.txt"})
        EXPECT_TRUE(logs.contains(kept)) << kept;
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
