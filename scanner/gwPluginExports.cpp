#include "scanner/gwPluginExports.h"

#include "scanner/gwScannerHDRImport.h"
#include "scanner/gwScannerInfo.h"

bool supportsScannerHDRImport(const QString& id)
{
    return id == GgwScannerHDRId;
}

CgwScannerBase* newScannerHDRImport(const CgwScannerInfo& info)
{
    return new CgwScannerHDRImport(info);
}

namespace QtAddons {

QPainterPath intersect(const QPainterPath& a, const QPainterPath& b)
{
    return a.intersected(b);
}

QPainterPath subtract(const QPainterPath& a, const QPainterPath& b)
{
    return a.subtracted(b);
}

QPainterPath unite(const QPainterPath& a, const QPainterPath& b)
{
    return a.united(b);
}

} // namespace QtAddons
