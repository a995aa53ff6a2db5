#pragma once

// Timing helpers shared by the benchmark programs: every figure is printed
// beside a plain memcpy of the same bytes measured in the same run.

#include <QSize>
#include <QString>

#include <cstddef>
#include <functional>

// Best of three after one warm-up run, in seconds; `prepare` runs before
// each run, outside the timing.
double gwBestTime(const std::function<void()>& work, const std::function<void()>& prepare = {});

// One timed run, in seconds.
double gwTimeOnce(const std::function<void()>& work);

struct SgwMemcpyBaselines {
    double warm; // into resident pages
    double cold; // into pages touched for the first time
};
SgwMemcpyBaselines gwMemcpyTimes(size_t bytes);
void gwPrintBaselines(size_t bytes, const SgwMemcpyBaselines& base);

// One line: name, storage, kind, throughput and its ratio to the baseline.
void gwReport(const char* name, const char* storage, const char* kind, double bytes, double seconds, double baseline);

// The 16-bit RGB test bitmap, 8000 pixels wide, sized by the first argument
// in megapixels (default 51.2), and memcpy of its bytes; both printed.
struct SgwBenchSetup {
    QSize size;
    size_t bytes;
    SgwMemcpyBaselines base;
};
SgwBenchSetup gwBenchSetup(int argc, char** argv);

// Runs `cases(storage)` once with the bitmaps in memory and once in mapped
// files (MMFRamLimit 0); storage is "memory" or "mapped".
void gwRunInMemoryAndMapped(const std::function<void(const char*)>& cases);

// An uncompressed 16-bit RGB TIFF of a varying pattern, 16 rows a strip.
bool gwWriteBenchTiff(const QString& path, const QSize& size);

// The process's peak resident memory in bytes since the last reset (VmHWM).
qint64 gwPeakResidentBytes();
void gwResetPeakResident();
