#pragma once

// Exiv2 behind one process-wide lock. Exiv2 0.27 keeps global state (its
// tag tables, its log handler) and is not safe for concurrent use, so every
// call of the system into it holds gwExiv2Mutex().

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#include <exiv2/exiv2.hpp>
#pragma GCC diagnostic pop

#include <QString>

#include <functional>
#include <memory>
#include <mutex>

std::mutex& gwExiv2Mutex();

// Opens an image by location ("file:" is stripped) and reads its metadata.
// Throws Exiv2::AnyError like Exiv2 itself. Call with the lock held.
std::unique_ptr<Exiv2::Image> gwOpenExiv2Image(const QString& location);

// A value of the given type, as Exiv2 makes it for a dataset or tag.
std::unique_ptr<Exiv2::Value> gwCreateExiv2Value(Exiv2::TypeId type);

// Runs `work` under the lock. An Exiv2 error ends it with one log line,
// "<where> Exiv2 Error <code> while <doing>: <text>", and false.
bool gwRunExiv2(const char* where, const char* doing, const std::function<void()>& work);
