#include "support/gwTestEnv.h"

#include "diagnostics/gwDebug.h"
#include "diagnostics/gwSystem.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <cstdlib>
#include <string>

namespace {
QString sRoot;

void setPath(const char* variable, const QString& path)
{
    QDir().mkpath(path);
    qputenv(variable, QFile::encodeName(path));
}
} // namespace

void gwPrepareTestEnvironment()
{
    const QByteArray base = qEnvironmentVariableIsEmpty("TMPDIR") ? QByteArray("/tmp") : qgetenv("TMPDIR");
    std::string pattern = base.toStdString() + "/gwtest-XXXXXX";
    if (!mkdtemp(pattern.data()))
        std::abort();
    sRoot = QString::fromStdString(pattern);
    setPath("HOME", sRoot + "/home");
    setPath("XDG_DATA_HOME", sRoot + "/home/.local/share");
    setPath("XDG_CONFIG_HOME", sRoot + "/home/.config");
    setPath("XDG_CACHE_HOME", sRoot + "/home/.cache");
    setPath("XDG_RUNTIME_DIR", sRoot + "/runtime");
    QFile::setPermissions(sRoot + "/runtime", QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    setPath("TEMP", sRoot + "/temp");
    setPath("TMPDIR", sRoot + "/tmp");
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
}

QString gwTestRoot()
{
    return sRoot;
}

QString gwTestLogPath()
{
    return CgwSystem::logFolder().mid(5) + QStringLiteral("/LogFile.txt");
}

QByteArray gwReadFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString gwWriteTestFile(const QString& name, const QByteArray& bytes)
{
    const QString path = sRoot + QLatin1Char('/') + name;
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.write(bytes);
    return path;
}

QByteArray gwLastLogLine()
{
    const QList<QByteArray> lines = gwReadFile(gwTestLogPath()).trimmed().split('\n');
    return lines.isEmpty() ? QByteArray() : lines.last().mid(25);
}

int gwLogLineCount()
{
    static const bool sOpened = (gwDebugString(QStringLiteral("test: log opened")), true);
    Q_UNUSED(sOpened);
    return int(gwReadFile(gwTestLogPath()).count('\n'));
}

QByteArray gwRunProgram(const QString& program, const QStringList& args, int* exitCode)
{
    QProcess process;
    process.start(program, args);
    const bool finished = process.waitForFinished(120000);
    if (exitCode)
        *exitCode = finished && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    return process.readAllStandardOutput();
}
