#include "diagnostics/gwDebug.h"

#include "diagnostics/gwLogFile.h"

#include <QCoreApplication>
#include <QFile>
#include <QThread>

#include <cstdarg>
#include <cstdio>
#include <vector>

void gwDebug(const char* format, ...)
{
    if (!format)
        return;
    std::vector<char> text(256);
    va_list args;
    va_start(args, format);
    va_list retry;
    va_copy(retry, args);
    const int needed = std::vsnprintf(text.data(), text.size(), format, args);
    va_end(args);
    if (needed >= 0 && static_cast<size_t>(needed) >= text.size()) {
        text.resize(static_cast<size_t>(needed) + 1);
        std::vsnprintf(text.data(), text.size(), format, retry);
    }
    va_end(retry);
    gwDebugString(needed < 0 ? QString() : QString::fromUtf8(text.data()));
}

void gwDebugString(const QString& message)
{
    CgwLogFile::instance().writeMessage(QStringLiteral("gwDebug: ") + message);
}

bool gwRenameProcessTempFile(const QString& path)
{
    const QString tempPath = path + QString::number(QCoreApplication::applicationPid());
    if (!QFile::exists(tempPath))
        return false;

    // std::rename replaces the target in one step, so the old file stays
    // whole until the new one takes its place.
    const QByteArray from = QFile::encodeName(tempPath);
    const QByteArray to = QFile::encodeName(path);
    if (std::rename(from.constData(), to.constData()) == 0)
        return true;
    for (int retry = 0; retry < 10; ++retry) {
        QThread::msleep(500);
        if (std::rename(from.constData(), to.constData()) == 0)
            return true;
    }
    gwDebugString(QStringLiteral("Exiv2 handler: Failed to rename file to ") + path);
    return false;
}
