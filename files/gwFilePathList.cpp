#include "files/gwFilePathList.h"

#include "files/gwFilePathFS.h"
#include "files/gwFilePathScanner.h"

CgwFilePathList::CgwFilePathList()
{
    // The database and recent locations join when they exist; until then
    // their schemes fall back to the disk location like any unknown one.
    registerLocation(schemeFile(), std::make_unique<CgwFilePathFactoryBaseT<CgwFilePathFS>>());
    registerLocation(schemeScanner(), std::make_unique<CgwFilePathFactoryBaseT<CgwFilePathScanner>>());
}

CgwFilePathList::~CgwFilePathList() = default;

void CgwFilePathList::registerLocation(const QString& scheme, std::unique_ptr<CgwFilePathFactoryBase> factory)
{
    if (!mOrder.contains(scheme))
        mOrder.append(scheme);
    mFactories[scheme] = std::move(factory);
}

CgwFilePathBase* CgwFilePathList::locationFor(const QString& scheme) const
{
    const auto it = mFactories.find(scheme);
    if (it == mFactories.end())
        return new CgwFilePathFS;
    return it->second->create();
}

CgwFile* CgwFilePathList::createFile(const QString& path, bool flag) const
{
    std::unique_ptr<CgwFilePathBase> location(locationFor(path.left(5)));
    return location ? location->createFile(path, flag) : nullptr;
}

SgwFileInfo CgwFilePathList::fileInfo(const QString& path) const
{
    std::unique_ptr<CgwFilePathBase> location(locationFor(path.left(5)));
    return location ? location->fileInfo(path) : SgwFileInfo();
}
