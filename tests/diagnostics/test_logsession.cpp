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

struct Session {
    int exitCode = -1;
    QByteArray stdErr;
};

Session runSession(const QStringList& messages)
{
    QProcess process;
    process.start(QStringLiteral(GW_LOG_SESSION_HELPER), messages);
    Session result;
    if (!process.waitForFinished(60000))
        return result;
    result.exitCode = process.exitCode();
    result.stdErr = process.readAllStandardError();
    return result;
}

QString logFolder()
{
    return QFileInfo(gwTestLogPath()).absolutePath();
}

QString prevFolder()
{
    return logFolder() + QStringLiteral("/PrevLogFiles");
}

void writeFile(const QString& path, const QByteArray& content)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    ASSERT_EQ(file.write(content), content.size());
}

QStringList prevLogs()
{
    return QDir(prevFolder()).entryList(QDir::Files, QDir::Name);
}

} // namespace

TEST(LogSession, NewFileGetsPreambleLaterSessionsOnlyTheHeader)
{
    ASSERT_EQ(runSession({"one", "two"}).exitCode, 0);
    QByteArray content = gwReadFile(gwTestLogPath());
    EXPECT_TRUE(content.startsWith(kPreambleStart));
    EXPECT_EQ(content.count(kSessionTitle), 1);
    EXPECT_LT(content.indexOf("  one\n"), content.indexOf("  two\n"));

    ASSERT_EQ(runSession({"three"}).exitCode, 0);
    content = gwReadFile(gwTestLogPath());
    EXPECT_EQ(content.count("If you experience any problems"), 1) << "no second preamble";
    EXPECT_EQ(content.count(kSessionTitle), 2);
    EXPECT_GT(content.indexOf("  three\n"), content.lastIndexOf(kSessionTitle));
}

TEST(LogSession, SessionHeaderCarriesSoftwareAndHardwareFacts)
{
    ASSERT_EQ(runSession({"x"}).exitCode, 0);
    const QByteArray content = gwReadFile(gwTestLogPath());
    for (const char* line : {"Maximum number of concurrent threads : ", "Date and time : ", "Platform      : PC\n",
                             "System        : ", "Bitness       : ", "Version       : Glimmerway 8.8.0 r17 (",
                             "Processor speed: ", "Vendor name   : ", "  Hardware\n", "  Runtime messages\n"}) {
        EXPECT_TRUE(content.contains(line)) << line;
    }
    EXPECT_TRUE(content.contains("Processors    : ") || content.contains("Processor     : "));
}

TEST(LogSession, RotatesOnlyAboveOneMebibyte)
{
    const struct {
        qint64 size;
        bool rotates;
    } cases[] = {{1048576, false}, {1048577, true}};
    for (const auto& c : cases) {
        QDir(logFolder()).removeRecursively();
        const QByteArray old = QByteArray(c.size - 4, 'a') + "end\n";
        writeFile(gwTestLogPath(), old);

        ASSERT_EQ(runSession({"after"}).exitCode, 0);
        const QByteArray content = gwReadFile(gwTestLogPath());
        if (c.rotates) {
            ASSERT_EQ(prevLogs().size(), 1);
            EXPECT_TRUE(prevLogs().first().startsWith("LogFile_"));
            EXPECT_EQ(gwReadFile(prevFolder() + "/" + prevLogs().first()), old) << "the copy keeps the old log";
            EXPECT_TRUE(content.startsWith(kPreambleStart)) << "a rotated log starts afresh";
        } else {
            EXPECT_TRUE(prevLogs().isEmpty());
            EXPECT_TRUE(content.startsWith(old));
            EXPECT_FALSE(content.contains("If you experience any problems"));
        }
        EXPECT_TRUE(content.contains("  after\n"));
    }
}

TEST(LogSession, RotationKeepsTheTenNewestOldLogs)
{
    // Twelve old logs, oldest first; the three oldest must go.
    const QDateTime base = QDateTime::currentDateTime().addDays(-30);
    for (int i = 0; i < 12; ++i) {
        const QString path = prevFolder() + QStringLiteral("/old_%1.txt").arg(i, 2, 10, QLatin1Char('0'));
        writeFile(path, "old log\n");
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        file.setFileTime(base.addSecs(i * 60), QFileDevice::FileModificationTime);
        file.close();
        QThread::msleep(5); // distinct birth times where the file system keeps them
    }
    writeFile(gwTestLogPath(), QByteArray(1048577, 'b'));

    ASSERT_EQ(runSession({"rotated"}).exitCode, 0);
    const QStringList logs = prevLogs();
    EXPECT_EQ(logs.size(), 10);
    for (const char* gone : {"old_00.txt", "old_01.txt", "old_02.txt"})
        EXPECT_FALSE(logs.contains(gone)) << gone;
    for (const char* kept : {"old_03.txt", "old_11.txt"})
        EXPECT_TRUE(logs.contains(kept)) << kept;
}

TEST(LogSession, FailedRotationAppendsWithoutPreamble)
{
    // A plain file where the folder of old logs should be: it cannot be made.
    writeFile(prevFolder(), "in the way");
    const QByteArray old = QByteArray(1048600, 'c');
    writeFile(gwTestLogPath(), old);

    ASSERT_EQ(runSession({"appended"}).exitCode, 0);
    const QByteArray content = gwReadFile(gwTestLogPath());
    EXPECT_TRUE(content.startsWith(old));
    EXPECT_FALSE(content.contains("If you experience any problems"));
    EXPECT_TRUE(content.contains(kSessionTitle));
    EXPECT_TRUE(content.contains("  appended\n"));
}

TEST(LogSession, UnopenableLogWarnsOnceAndTheProgramGoesOn)
{
    // A folder in the log file's place cannot be opened for writing, not even by root.
    ASSERT_TRUE(QDir().mkpath(gwTestLogPath()));
    const Session session = runSession({"lost 1", "lost 2", "lost 3"});
    EXPECT_EQ(session.exitCode, 0);
    EXPECT_EQ(session.stdErr.count("Attention! The logfile could not be opened."), 1) << session.stdErr.constData();
    EXPECT_TRUE(session.stdErr.contains(("File path is " + gwTestLogPath()).toUtf8()));
}
