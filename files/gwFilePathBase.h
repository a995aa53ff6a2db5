#pragma once

#include "files/gwFileListing.h"

#include <QIcon>
#include <QMutex>
#include <QObject>
#include <QThread>
#include <QUrl>

// Lists one folder of a location on its own thread.
class CgwFilePathFSThread : public QThread
{
    Q_OBJECT

public:
    CgwFilePathFSThread(const QString& path, bool wantFiles, QObject* parent = nullptr);

Q_SIGNALS:
    void signalFinishedList(CgwFileInfoList entries, bool wantFiles);

protected:
    void run() override;
    // The scheme this worker lists, and whether volume entries are described.
    virtual QString scheme() const { return QStringLiteral("file:"); }
    virtual bool describesVolumes() const { return true; }

    QString path;
    bool wantFiles;
};

// A place the browser shows: the local disks, a database, the recent list,
// the scanners. Short-lived: made for a request and deleted by its caller.
class CgwFilePathBase : public QObject
{
    Q_OBJECT

public:
    explicit CgwFilePathBase(QObject* parent = nullptr);
    ~CgwFilePathBase() override;

    virtual void stopThread();
    virtual bool isResponsibleFor(const QString& path) const { return path.left(5) == scheme(); }
    virtual QString scheme() const = 0;
    virtual void prepare() {}
    virtual bool isVirtual() const { return false; }
    virtual QString displayName() const = 0;
    virtual CgwFileInfoList listFolders(const QString& path);
    virtual CgwFileInfoList listFiles(const QString& path);
    virtual void requestFolders(const QString& path);
    virtual void requestFiles(const QString& path);
    virtual QIcon icon(const QString& path);
    virtual SgwFileInfo fileInfo(const QString& path);
    virtual QUrl url(const QString& path) const;
    virtual CgwFile* createFile(const QString& path, bool flag) = 0;
    virtual bool removeFile(const QString& path);
    virtual void finish() {}

Q_SIGNALS:
    // The answer to requestFolders or requestFiles.
    void signalListReady(CgwFileInfoList entries, bool wantFiles);

public Q_SLOTS:
    void slotFinishedList(CgwFileInfoList entries, bool wantFiles);

protected:
    virtual CgwFilePathFSThread* newWorker(const QString& path, bool wantFiles) = 0;
    virtual bool describesVolumes() const { return true; }

private:
    void request(const QString& path, bool wantFiles);
    void startWorker(const QString& path, bool wantFiles);

    bool mStarted = false;
    QList<QPair<QString, bool>> mRequests; // waiting: path and whether files are wanted
    CgwFilePathFSThread* mWorker = nullptr;
    QMutex mMutex;
};
