#include "Sourcen/Image/gwBitmapT.h"

#include <QThread>

QList<QPair<int, int>> gwSplitRows(int first, int end)
{
    QList<QPair<int, int>> ranges;
    const int rows = end - first;
    if (rows <= 0)
        return ranges;
    const int n = std::max(1, QThread::idealThreadCount());
    const int chunk = rows / n + (rows % n ? 1 : 0);
    for (int start = first; start < end; start += chunk)
        ranges.append(qMakePair(start, std::min(start + chunk, end)));
    return ranges;
}
