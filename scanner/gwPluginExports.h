#pragma once

#include <QPainterPath>
#include <QString>

class CgwScannerBase;
struct CgwScannerInfo;

// The plug-in's outside surface, looked up by the host under these C++ names.
#define GW_EXPORT __attribute__((visibility("default")))

// True for "HDR Atelier" alone: whole string, case-sensitive, no trimming.
GW_EXPORT bool supportsScannerHDRImport(const QString& id);

// A new import scanner for `info`; the host owns it and deletes it through
// the virtual destructor. A scan may hand the host's bitmap pixels that this
// library allocated, so the host keeps the library loaded while it holds
// scanned bitmaps.
GW_EXPORT CgwScannerBase* newScannerHDRImport(const CgwScannerInfo& info);

namespace QtAddons {
GW_EXPORT QPainterPath intersect(const QPainterPath& a, const QPainterPath& b);
GW_EXPORT QPainterPath subtract(const QPainterPath& a, const QPainterPath& b);
GW_EXPORT QPainterPath unite(const QPainterPath& a, const QPainterPath& b);
} // namespace QtAddons
