#pragma once

#include <QString>

// The warning that the log file could not be opened: a modal box when the
// process has a widget application on this thread, otherwise the same text
// on stderr.
void gwShowLogOpenWarning(const QString& filePath);
