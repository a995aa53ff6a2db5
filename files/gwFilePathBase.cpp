#include "files/gwFilePathBase.h"

#include <QFileIconProvider>
#include <QGuiApplication>

CgwFilePathFSThread::CgwFilePathFSThread(const QString& p, bool files, QObject* parent)
    : QThread(parent), path(p), wantFiles(files)
{
    qRegisterMetaType<CgwFileInfoList>("CgwFileInfoList");
}

void CgwFilePathFSThread::run()
{
    Q_EMIT signalFinishedList(gwListLocation(scheme(), path, wantFiles, describesVolumes()), wantFiles);
}

CgwFilePathBase::CgwFilePathBase(QObject* parent) : QObject(parent)
{
    qRegisterMetaType<CgwFileInfoList>("CgwFileInfoList");
}

CgwFilePathBase::~CgwFilePathBase()
{
    stopThread();
}

void CgwFilePathBase::stopThread()
{
    QMutexLocker lock(&mMutex);
    mStarted = true;
    mRequests.clear();
    if (mWorker) {
        mWorker->wait(); // a running thread cannot be deleted
        delete mWorker;
        mWorker = nullptr;
    }
}

CgwFileInfoList CgwFilePathBase::listFolders(const QString& path)
{
    return gwListLocation(scheme(), path, false, describesVolumes());
}

CgwFileInfoList CgwFilePathBase::listFiles(const QString& path)
{
    return gwListLocation(scheme(), path, true, describesVolumes());
}

void CgwFilePathBase::requestFolders(const QString& path)
{
    request(path, false);
}

void CgwFilePathBase::requestFiles(const QString& path)
{
    request(path, true);
}

void CgwFilePathBase::request(const QString& path, bool wantFiles)
{
    QMutexLocker lock(&mMutex);
    if (mWorker && mWorker->isFinished()) {
        delete mWorker;
        mWorker = nullptr;
    }
    if (mWorker)
        mRequests.append(qMakePair(path, wantFiles)); // answered when the running list arrives
    else
        startWorker(path, wantFiles);
}

void CgwFilePathBase::startWorker(const QString& path, bool wantFiles)
{
    mWorker = newWorker(path, wantFiles);
    connect(mWorker, &CgwFilePathFSThread::signalFinishedList, this, &CgwFilePathBase::slotFinishedList,
            Qt::QueuedConnection);
    mWorker->start(QThread::InheritPriority);
}

void CgwFilePathBase::slotFinishedList(CgwFileInfoList entries, bool wantFiles)
{
    {
        QMutexLocker lock(&mMutex);
        if (mWorker) {
            mWorker->wait();
            delete mWorker;
            mWorker = nullptr;
        }
        if (!mRequests.isEmpty()) {
            const QPair<QString, bool> next = mRequests.takeFirst();
            startWorker(next.first, next.second);
        }
    }
    Q_EMIT signalListReady(entries, wantFiles);
}

QIcon CgwFilePathBase::icon(const QString& path)
{
    // The provider is not thread-safe, and needs a GUI application.
    static QMutex sIconMutex;
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return QIcon();
    QMutexLocker lock(&sIconMutex);
    static QFileIconProvider sProvider;
    static QFileInfo sInfo;
    if (path == scheme())
        return sProvider.icon(QFileIconProvider::Computer);
    sInfo.setFile(path.mid(5));
    return sProvider.icon(sInfo);
}

SgwFileInfo CgwFilePathBase::fileInfo(const QString& path)
{
    SgwFileInfo entry;
    if (!isResponsibleFor(path))
        return entry;
    const QFileInfo info(path.mid(5));
    entry.name = info.fileName();
    entry.isFolder = info.isDir();
    entry.size = info.size();
    entry.date = gwCreationTime(info);
    return entry;
}

QUrl CgwFilePathBase::url(const QString& path) const
{
    return QUrl::fromLocalFile(path.mid(5));
}

bool CgwFilePathBase::removeFile(const QString&)
{
    return false;
}
