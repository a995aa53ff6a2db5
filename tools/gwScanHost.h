#pragma once

// The host application's side of the plug-in, as gwscan, the tests and the
// benchmark use it: the library is loaded with QLibrary and reached only by
// its exported names and the scanner interface. A scanned bitmap may hold
// pixels the plug-in allocated, so the plug-in stays loaded while such
// bitmaps live (QLibrary unloads only when asked to).

#include "Sourcen/Image/gwBitmapHead.h"

#include <QLibrary>
#include <QString>

#include <memory>

class CgwBitmapBase;
class CgwScannerBase;
struct CgwScannerInfo;

class CgwScanHost
{
public:
    // The plug-in built beside this program when `path` is empty.
    explicit CgwScanHost(const QString& path = QString());

    bool load();
    QString errorString() const { return mError; }
    bool supports(const QString& id) const;
    // A scanner for the table row "HDR Atelier"; the caller owns it.
    std::unique_ptr<CgwScannerBase> newScanner() const;
    std::unique_ptr<CgwScannerBase> newScanner(const CgwScannerInfo& info) const;

private:
    using Supports = bool (*)(const QString&);
    using Factory = CgwScannerBase* (*)(const CgwScannerInfo&);

    QLibrary mLibrary;
    Supports mSupports = nullptr;
    Factory mFactory = nullptr;
    QString mError;
};

struct SgwHostScan {
    bool ok = false;
    std::unique_ptr<CgwBitmapBase> bitmap;
    std::unique_ptr<CgwBitmapBase> ir; // when the file has an infrared channel
};

// An empty bitmap of the type a host picks for the scanner information (the
// types the readers deliver, so that the pixels move instead of being copied),
// carrying what startScan reads from it: scan size, colour mode,
// resolution, scanner mode and parameters. Null for a mode no type holds.
std::unique_ptr<CgwBitmapBase> gwHostBitmapFor(const CgwBitmapHead& info);

// One scan of the source the scanner has, with the infrared pass when the
// information reports an infrared channel.
SgwHostScan gwHostScan(CgwScannerBase& scanner, const CgwBitmapHead& info, bool* abortFlag);

// The location ("file:/...") of a path; a text that already has a scheme
// ("file:", "scnr:") stays as it is.
QString gwFileLocation(const QString& path);

// A stored parameter value as words: its tokens, each unescaped.
QString gwReadableValue(const QString& value);
