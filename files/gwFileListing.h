#pragma once

#include "files/gwFile.h"

#include <QFileInfo>
#include <QMetaType>

#include <list>
#include <utility>

// Entries of a location: location string and description.
using CgwFileInfoList = std::list<std::pair<QString, SgwFileInfo>>;
Q_DECLARE_METATYPE(CgwFileInfoList)

// Lists the folders or the files of `path`, a location string of `scheme`.
// A path of another scheme gives nothing; the scheme alone lists the mounted
// volumes, described when `describeVolumes` is set and with empty records
// otherwise. Symbolic links are followed to their end and keep their own name.
CgwFileInfoList gwListLocation(const QString& scheme, const QString& path, bool wantFiles, bool describeVolumes);

// The file's creation time where the file system keeps one, else its last change.
QDateTime gwCreationTime(const QFileInfo& info);
