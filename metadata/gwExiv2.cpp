#include "metadata/gwExiv2.h"

#include "diagnostics/gwDebug.h"

namespace {

// Exiv2 writes its warnings to stderr; ours go to the log.
void logExiv2Message(int level, const char* text)
{
    if (level >= Exiv2::LogMsg::warn)
        gwDebugString(QStringLiteral("Exiv2: ") + QString::fromUtf8(text).trimmed());
}

} // namespace

std::mutex& gwExiv2Mutex()
{
    static std::mutex sMutex;
    static const bool sHandled = [] {
        Exiv2::LogMsg::setHandler(logExiv2Message);
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::warn);
        return true;
    }();
    Q_UNUSED(sHandled);
    return sMutex;
}

bool gwRunExiv2(const char* where, const char* doing, const std::function<void()>& work)
{
    std::lock_guard<std::mutex> lock(gwExiv2Mutex());
    try {
        work();
        return true;
    } catch (const Exiv2::AnyError& error) {
        gwDebugString(QStringLiteral("%1 Exiv2 Error %2 while %3: %4")
                          .arg(QLatin1String(where))
                          .arg(error.code())
                          .arg(QLatin1String(doing), QString::fromUtf8(error.what())));
        return false;
    }
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
std::unique_ptr<Exiv2::Image> gwOpenExiv2Image(const QString& location)
{
    const QString path = location.startsWith(QLatin1String("file:")) ? location.mid(5) : location;
    std::unique_ptr<Exiv2::Image> image(Exiv2::ImageFactory::open(std::string(path.toLocal8Bit().constData())).release());
    if (image)
        image->readMetadata();
    return image;
}

std::unique_ptr<Exiv2::Value> gwCreateExiv2Value(Exiv2::TypeId type)
{
    return std::unique_ptr<Exiv2::Value>(Exiv2::Value::create(type).release());
}
#pragma GCC diagnostic pop
