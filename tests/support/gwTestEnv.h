#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

// Makes a private root folder for this test process and points HOME, the XDG
// folders, TEMP and TMPDIR into it, so that nothing touches the user's files.
// Call before any Qt object exists.
void gwPrepareTestEnvironment();

// The private root of this process.
QString gwTestRoot();

// The live log file of this process, without scheme.
QString gwTestLogPath();

// The whole content of a file; empty when it cannot be read.
QByteArray gwReadFile(const QString& path);

// Lines in the log so far. The first call opens the log with a line of its
// own, so that the header a new log starts with is not counted later.
int gwLogLineCount();

// The message of the log's last line, without its time stamp.
QByteArray gwLastLogLine();

// Writes `bytes` to `name` below the test root and returns the full path.
QString gwWriteTestFile(const QString& name, const QByteArray& bytes);

// Runs a program to its end and gives its standard output; the exit code
// goes to `exitCode` (-1 when it did not start or finish).
QByteArray gwRunProgram(const QString& program, const QStringList& args, int* exitCode = nullptr);
