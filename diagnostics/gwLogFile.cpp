#include "diagnostics/gwLogFile.h"

#include "diagnostics/gwLogHeader.h"
#include "diagnostics/gwLogWarning.h"
#include "diagnostics/gwSystem.h"
#include "files/gwFilePathList.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

namespace {

// Outlives the object: once the log is destroyed every message is dropped.
std::atomic<bool> logFileClosed{false};

const char* const kErrorTexts[] = {
    "No Error",
    "Crash",
    "Bitmap is locked",
    "Bitmap is wrong format",
    "Bitmap is empty",
    "Bitmap couldn't be created",
    "Pixel out of range",
    "Row out of range",
    "Unsupported bitdepth",
    "Unsupported colormode",
    "Wrong size parameter",
    "TempLine is missing",
    "Bitmap-ID is not in list",
    "File couldn't be opened",
    "File is empty",
    "File is not available",
    "Filename not set",
    "Memory is full",
    "CMS not supported",
    "CMS not enough profiles",
    "CMS create transform failed",
    "Translation failed",
    "Filter is not defined",
    "Filter-parameters are wrong",
    "No Error", // a second success code, kept as it always was
    "Thread is running",
    "Connect failed",
    "Scan error",
};
constexpr int kErrorCount = int(sizeof(kErrorTexts) / sizeof(kErrorTexts[0]));

// The licence's version type decides the contact blocks of the preamble.
// Without the serial database the main form applies.
constexpr int kVersionTypeMain = 0;

QByteArray stamp()
{
    return QDateTime::currentDateTime().toString(QStringLiteral("dd.MM.yyyy hh:mm:ss.zzz")).toUtf8() + "  ";
}

} // namespace

CgwLogFile::CgwLogFile()
{
    reset();
}

CgwLogFile::~CgwLogFile()
{
    QMutexLocker lock(&mutex);
    if (file)
        file->close();
    file.reset();
    logFileClosed = true;
    lock.unlock();
    reset();
}

void CgwLogFile::reset()
{
    logPath = CgwSystem::logFolder() + QStringLiteral("/LogFile.txt");
    currentPath = logPath;
    lastError = 0;
    if (!initialized) {
        initialized = true;
        openAttempted = false;
    }
}

QString CgwLogFile::errorText(int code)
{
    const char* text = (code >= 0 && code < kErrorCount) ? kErrorTexts[code] : "FOUND NO CORRESPONDING ERROR-MESSAGE";
    return QStringLiteral("Errorcode: %1 (%2)").arg(QLatin1String(text)).arg(code);
}

void CgwLogFile::logError(int code)
{
    writeMessage(errorText(code));
    QMutexLocker lock(&mutex);
    lastError = code;
    errorList.append(code);
}

bool CgwLogFile::checkError(int code)
{
    if (code != 0)
        logError(code);
    return code == 0;
}

void CgwLogFile::reportError(int code)
{
    if (code != 0)
        logError(code);
}

int CgwLogFile::lastErrorCode() const
{
    QMutexLocker lock(&mutex);
    return lastError;
}

QList<int> CgwLogFile::loggedErrors() const
{
    QMutexLocker lock(&mutex);
    return errorList;
}

void CgwLogFile::writeMessage(const QString& message)
{
    if (logFileClosed)
        return;
    if (!isOpen()) {
        QMutexLocker openLock(&openMutex);
        if (!isOpen()) {
            // Queued first: the open drains the queue and so writes it.
            pendingMessages.append(message);
            if (!openAttempted) {
                openAttempted = true;
                openLogFile();
            }
            return;
        }
    }
    writeStamped(message);
}

void CgwLogFile::writeStamped(const QString& message)
{
    QMutexLocker lock(&mutex);
    if (!file)
        return;
    file->write(stamp() + message.toUtf8() + '\n');
    file->flush();
}

QString CgwLogFile::livePath() const
{
    return logPath.startsWith(QLatin1String("file:")) ? logPath.mid(5) : logPath;
}

bool CgwLogFile::openFile(QIODevice::OpenMode mode)
{
    file.reset(CgwFilePathList::instance().createFile(logPath));
    return file && file->open(mode);
}

bool CgwLogFile::openLogFile()
{
    {
        QMutexLocker lock(&mutex);
        errorList.clear();
    }
    currentPath = logPath;
    if (!openFile(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text)) {
        file.reset();
        gwShowLogOpenWarning(livePath());
        return false;
    }

    bool fresh = file->size() == 0;
    if (file->size() > kRotationSize) {
        file->close();
        if (rotateLogFile()) {
            fresh = openFile(QIODevice::WriteOnly | QIODevice::Text);
        } else {
            openFile(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text);
        }
        if (!file || !file->isOpen()) {
            file.reset();
            gwShowLogOpenWarning(livePath());
            return false;
        }
    }
    if (fresh)
        file->write(gwLogPreamble(kVersionTypeMain));
    file->write(gwLogSessionHeader());
    drainPending();
    file->flush();
    opened.store(true, std::memory_order_release);
    return true;
}

void CgwLogFile::drainPending()
{
    // The stamp is the time of draining: queued messages lose their own.
    while (!pendingMessages.isEmpty())
        file->write(stamp() + pendingMessages.takeFirst().toUtf8() + '\n');
}

QString CgwLogFile::prevLogFolder() const
{
    QString path = livePath();
    path.remove(QStringLiteral("LogFile.txt"));
    return path + QStringLiteral("PrevLogFiles/");
}

namespace {

// Removes the oldest files until at most `keep` remain; files whose name holds
// "DS_Store" count but are never chosen.
void pruneOldLogs(const QString& folder, int keep)
{
    QDir dir(folder);
    int count = int(dir.entryList(QDir::Files | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot).size());
    bool removed = true;
    while (count > keep && removed) {
        const QFileInfoList entries = dir.entryInfoList(QDir::Files | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Unsorted);
        QDateTime oldest = QDateTime::currentDateTime();
        QString candidate;
        for (const QFileInfo& entry : entries) {
            if (entry.fileName().contains(QLatin1String("DS_Store")) || entry.isDir())
                continue;
            // Where the file system keeps no birth time, the last change stands in.
            const QDateTime created = entry.birthTime().isValid() ? entry.birthTime() : entry.lastModified();
            if (created < oldest) {
                oldest = created;
                candidate = entry.absoluteFilePath();
            }
        }
        removed = !candidate.isEmpty() && QFile::remove(candidate);
        if (removed)
            --count;
    }
}

} // namespace

bool CgwLogFile::rotateLogFile()
{
    const QString folder = prevLogFolder();
    QDir dir(folder);
    if (!dir.exists()) {
        if (!QDir().mkdir(folder))
            return false;
    } else {
        pruneOldLogs(folder, kKeptOldLogs - 1);
    }
    const QDateTime now = QDateTime::currentDateTime();
    const QString copy = folder + QStringLiteral("LogFile_%1_%2_%3__%4_%5_%6.txt")
                                      .arg(now.date().day())
                                      .arg(now.date().month())
                                      .arg(now.date().year())
                                      .arg(now.time().hour())
                                      .arg(now.time().minute())
                                      .arg(now.time().second());
    if (!QFile::copy(livePath(), copy))
        return false;
    currentPath = QStringLiteral("file:") + copy;
    return true;
}
