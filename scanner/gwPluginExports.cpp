#include "scanner/gwPluginExports.h"

#include "scanner/gwScannerInfo.h"

bool supportsScannerHDRImport(const QString& id)
{
    return id == GgwScannerHDRId;
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
