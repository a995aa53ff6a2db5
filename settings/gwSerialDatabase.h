#pragma once

#include "diagnostics/gwSingleton.h"

// What the licence allows. The one fact the library needs is the version
// type: 3 selects the alternative option defaults and the log's hotline
// block, 2 the labelled option files; 0, the main form, when nothing else is known.
class CgwSerialDatabase : public CgwSingleton<CgwSerialDatabase>
{
    friend class CgwSingleton<CgwSerialDatabase>;

public:
    int versionType() const { return mVersionType; }

private:
    CgwSerialDatabase() = default;
    int mVersionType = 0;
};
