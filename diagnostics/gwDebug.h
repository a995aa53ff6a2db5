#pragma once

#include <QString>

// All traces of the system pass through these; they reach the log file with
// the prefix "gwDebug: ".
void gwDebug(const char* format, ...) __attribute__((format(printf, 1, 2)));
void gwDebugString(const QString& message);

// Moves "<path><process id>" onto `path`, retrying for a while when another
// program (a virus scanner, a thumbnailer) still holds one of the files.
bool gwRenameProcessTempFile(const QString& path);
