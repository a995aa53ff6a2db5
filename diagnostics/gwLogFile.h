#pragma once

#include "diagnostics/gwSingleton.h"

#include <QIODevice>
#include <QList>
#include <QMutex>
#include <QRecursiveMutex>
#include <QString>
#include <QStringList>

#include <atomic>
#include <memory>

class CgwFile;

// The one log of the process, "LogFile.txt" in the log folder. Opened by the
// first message, flushed after every message, rolled into "PrevLogFiles/"
// when a new session finds it larger than 1 MiB. It never stops the program.
class CgwLogFile : public CgwSingleton<CgwLogFile>
{
    friend class CgwSingleton<CgwLogFile>;

public:
    ~CgwLogFile() override;

    void writeMessage(const QString& message);
    void logError(int code);
    bool checkError(int code);
    void reportError(int code);
    static QString errorText(int code);
    void reset();

    int lastErrorCode() const;
    QList<int> loggedErrors() const;
    // "file:" and the live log's path.
    QString logFilePath() const { return logPath; }
    // The live log, or after a rotation the copy in "PrevLogFiles/".
    QString currentFilePath() const { return currentPath; }
    bool isOpen() const { return opened.load(std::memory_order_acquire); }

    static constexpr qint64 kRotationSize = 1048576;
    static constexpr int kKeptOldLogs = 10;

private:
    CgwLogFile();

    bool openLogFile();
    bool rotateLogFile();
    QString prevLogFolder() const;
    QString livePath() const;
    bool openFile(QIODevice::OpenMode mode);
    void writeStamped(const QString& message);
    void drainPending();

    bool initialized = false;
    int lastError = 0;
    QList<int> errorList;
    QString logPath;
    QString currentPath;
    std::atomic<bool> opened{false};
    bool openAttempted = false;
    QStringList pendingMessages;
    mutable QMutex mutex;
    // Serialises the queue and the lazy open, so that messages of other
    // threads arriving during the open are neither lost nor doubled.
    QRecursiveMutex openMutex;
    std::unique_ptr<CgwFile> file;
};
