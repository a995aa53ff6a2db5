#include "Sourcen/Image/gwArrayT.h"

#include "diagnostics/gwDebug.h"

void gwReportEmptyArrayAccess()
{
    gwDebugString(QStringLiteral("CgwArrayT::operator[] : not allowed to access an empty array"));
}
