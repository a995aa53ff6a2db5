#pragma once

#include "diagnostics/gwSingleton.h"
#include "files/gwFilePathBase.h"

#include <QMap>
#include <QObject>

#include <memory>

class CgwFilePathFactoryBase
{
public:
    virtual ~CgwFilePathFactoryBase() = default;
    virtual CgwFilePathBase* create() = 0;
};

template <class T>
class CgwFilePathFactoryBaseT : public CgwFilePathFactoryBase
{
public:
    CgwFilePathBase* create() override { return new T; }
};

// Maps a location string's scheme, its first five characters, to the
// location that serves it. Unknown schemes go to the disk location.
class CgwFilePathList : public QObject, public CgwSingleton<CgwFilePathList>
{
    Q_OBJECT
    friend class CgwSingleton<CgwFilePathList>;

public:
    ~CgwFilePathList() override;

    // A new location for the scheme; the caller deletes it.
    CgwFilePathBase* locationFor(const QString& scheme) const;
    // A new file for the path, or null; the caller deletes it.
    CgwFile* createFile(const QString& path, bool flag = false) const;
    SgwFileInfo fileInfo(const QString& path) const;
    // Joins a location to the registry, replacing any of the same scheme.
    void registerLocation(const QString& scheme, std::unique_ptr<CgwFilePathFactoryBase> factory);
    bool hasScheme(const QString& scheme) const { return mFactories.count(scheme) > 0; }

    static QString schemeFile() { return QStringLiteral("file:"); }
    static QString schemeDatabase() { return QStringLiteral("dtbs:"); }
    static QString schemeRecent() { return QStringLiteral("rcnt:"); }
    static QString schemeScanner() { return QStringLiteral("scnr:"); }

private:
    CgwFilePathList();

    std::map<QString, std::unique_ptr<CgwFilePathFactoryBase>> mFactories;
    QStringList mOrder;
    bool mAutoRegister = true;
    int mCount = 0;
};
