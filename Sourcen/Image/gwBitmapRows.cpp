#include "Sourcen/Image/gwBitmapT.h"

#include <QThread>
#include <QtConcurrent>

// Qt's pool orders the caller's writes before the workers and the workers'
// writes before the return, through locks that ThreadSanitizer cannot see
// in an uninstrumented Qt. The annotations state that ordering.
#if defined(__SANITIZE_THREAD__)
extern "C" void __tsan_acquire(void* address);
extern "C" void __tsan_release(void* address);
#define GW_TSAN_ACQUIRE(a) __tsan_acquire(a)
#define GW_TSAN_RELEASE(a) __tsan_release(a)
#else
#define GW_TSAN_ACQUIRE(a) ((void)(a))
#define GW_TSAN_RELEASE(a) ((void)(a))
#endif

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

void gwRunOverRows(int first, int end, const std::function<void(int, int)>& work)
{
    QList<QPair<int, int>> ranges = gwSplitRows(first, end);
    int start = 0;
    int done = 0;
    GW_TSAN_RELEASE(&start);
    QtConcurrent::blockingMap(ranges, [&](QPair<int, int>& range) {
        GW_TSAN_ACQUIRE(&start);
        work(range.first, range.second);
        GW_TSAN_RELEASE(&done);
    });
    GW_TSAN_ACQUIRE(&done);
}
