#pragma once

#include "files/gwFilePathBase.h"

// The ".GWX_Thumbs.db" of the browser's thumbnails; declared here, used by the browser.
extern const char* const GgwThumbnailDatabaseName;

// The local disks, scheme "file:". The root "file:" lists the mounted volumes.
class CgwFilePathFS : public CgwFilePathBase
{
    Q_OBJECT

public:
    using CgwFilePathBase::CgwFilePathBase;

    QString scheme() const override { return QStringLiteral("file:"); }
    QString displayName() const override;
    CgwFile* createFile(const QString& path, bool flag) override;
    bool removeFile(const QString& path) override;

protected:
    CgwFilePathFSThread* newWorker(const QString& path, bool wantFiles) override;
};
