#include "gwBenchSupport.h"

#include "settings/gwFilterOptions.h"
#include "settings/gwParamKeys.h"

#include <QThread>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {
using Clock = std::chrono::steady_clock;
}

double gwTimeOnce(const std::function<void()>& work)
{
    const auto start = Clock::now();
    work();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double gwBestTime(const std::function<void()>& work, const std::function<void()>& prepare)
{
    double best = 1e30;
    for (int i = 0; i < 4; ++i) {
        if (prepare)
            prepare();
        const double seconds = gwTimeOnce(work);
        if (i > 0)
            best = std::min(best, seconds);
    }
    return best;
}

SgwMemcpyBaselines gwMemcpyTimes(size_t bytes)
{
    std::vector<char> from(bytes, 1);
    std::vector<char> resident(bytes, 2);
    char* fresh = nullptr;
    SgwMemcpyBaselines b;
    b.warm = gwBestTime([&] { std::memcpy(resident.data(), from.data(), bytes); });
    b.cold = gwBestTime([&] { std::memcpy(fresh, from.data(), bytes); }, [&] {
        std::free(fresh);
        fresh = static_cast<char*>(std::malloc(bytes));
    });
    std::free(fresh);
    return b;
}

void gwPrintBaselines(size_t bytes, const SgwMemcpyBaselines& base)
{
    std::printf("%-30s %-6s %-4s %8.0f MB/s\n", "memcpy", "", "warm", bytes / base.warm / 1e6);
    std::printf("%-30s %-6s %-4s %8.0f MB/s\n", "memcpy", "", "cold", bytes / base.cold / 1e6);
}

void gwReport(const char* name, const char* storage, const char* kind, double bytes, double seconds, double baseline)
{
    std::printf("%-30s %-6s %-4s %8.0f MB/s  %5.2f x memcpy\n", name, storage, kind, bytes / seconds / 1e6,
                baseline / seconds);
}

SgwBenchSetup gwBenchSetup(int argc, char** argv)
{
    const double megapixels = argc > 1 ? std::atof(argv[1]) : 51.2;
    const int width = 8000;
    SgwBenchSetup setup;
    setup.size = QSize(width, int(megapixels * 1e6 / width));
    setup.bytes = size_t(setup.size.width()) * size_t(setup.size.height()) * 6;
    std::printf("16-bit RGB bitmap %d x %d (%.1f million pixels, %.0f MB), %d worker threads\n", setup.size.width(),
                setup.size.height(), setup.size.width() * double(setup.size.height()) / 1e6, setup.bytes / 1e6,
                QThread::idealThreadCount());
    setup.base = gwMemcpyTimes(setup.bytes);
    gwPrintBaselines(setup.bytes, setup.base);
    return setup;
}

void gwRunInMemoryAndMapped(const std::function<void(const char*)>& cases)
{
    CgwFilterOptions::instance().setOption(GgwParam_MMFRamLimit, 1 << 20);
    cases("memory");
    CgwFilterOptions::instance().setOption(GgwParam_MMFRamLimit, 0);
    cases("mapped");
}
