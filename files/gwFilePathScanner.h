#pragma once

#include "files/gwFilePathBase.h"
#include "scanner/gwScannerInfo.h"

#include <vector>

// The worker of the scanner location: the disk worker with the scheme "scnr:".
class CgwFilePathScannerThread : public CgwFilePathFSThread
{
    Q_OBJECT

public:
    using CgwFilePathFSThread::CgwFilePathFSThread;

protected:
    QString scheme() const override { return QStringLiteral("scnr:"); }
    bool describesVolumes() const override { return false; }
};

// The browser's entry for scanners, scheme "scnr:". Its paths name no real
// file: a file made here opens nothing.
class CgwFilePathScanner : public CgwFilePathBase
{
    Q_OBJECT

public:
    using CgwFilePathBase::CgwFilePathBase;

    QString scheme() const override { return QStringLiteral("scnr:"); }
    QString displayName() const override;
    CgwFile* createFile(const QString& path, bool flag) override;
    void finish() override {}
    void setScanners(const std::vector<CgwScannerInfo>& scanners) { mScanners = scanners; }
    const std::vector<CgwScannerInfo>& scanners() const { return mScanners; }

protected:
    CgwFilePathFSThread* newWorker(const QString& path, bool wantFiles) override;
    bool describesVolumes() const override { return false; }

private:
    std::vector<CgwScannerInfo> mScanners;
};
