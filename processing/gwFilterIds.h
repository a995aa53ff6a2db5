#pragma once

#include <QStringList>

// The suite names its filters by these ids, in the order of its table. Ids
// ending in "_" are followed by a number.
const QStringList& gwFilterIds();

// The names the suite shows for its filters and tools, in their table.
const QStringList& gwFilterDisplayNames();

// The id of the one filter this system runs.
inline QString gwGammaFilterId()
{
    return QStringLiteral("gwGamma");
}
