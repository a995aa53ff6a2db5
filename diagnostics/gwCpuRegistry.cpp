#include "diagnostics/gwCpuRegistry.h"

#include <QFile>
#include <QStringList>

#include <cmath>

CPURegistry::~CPURegistry() = default;

bool CPURegistry::read()
{
    QFile file(QStringLiteral("/proc/cpuinfo"));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return false;
    if (!readFrom(QString::fromUtf8(file.readAll())))
        return false;
    if (mhz <= 0.0) {
        // Some virtual machines give no "cpu MHz"; the frequency driver may.
        QFile maxFreq(QStringLiteral("/sys/devices/system/cpu/cpu0/cpufreq/cpuinfo_max_freq"));
        if (maxFreq.open(QIODevice::ReadOnly))
            mhz = maxFreq.readAll().trimmed().toDouble() / 1000.0;
    }
    return mhz > 0.0;
}

bool CPURegistry::readFrom(const QString& cpuinfo)
{
    mhz = 0.0;
    name.clear();
    vendor.clear();
    const QStringList lines = cpuinfo.split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        if (line.trimmed().isEmpty() && !name.isEmpty())
            break; // end of the first processor's block
        const int colon = line.indexOf(QLatin1Char(':'));
        if (colon < 0)
            continue;
        const QString key = line.left(colon).trimmed();
        const QString value = line.mid(colon + 1).trimmed();
        if (key == QLatin1String("model name"))
            name = value;
        else if (key == QLatin1String("vendor_id"))
            vendor = value;
        else if (key == QLatin1String("cpu MHz"))
            mhz = value.toDouble();
        else if (key == QLatin1String("cpu family"))
            mFamily = static_cast<quint16>(value.toUInt());
        else if (key == QLatin1String("model"))
            mModel = static_cast<quint16>(value.toUInt());
        else if (key == QLatin1String("stepping"))
            mStepping = static_cast<quint16>(value.toUInt());
    }
    identifier = QStringLiteral("Family %1 Model %2 Stepping %3").arg(mFamily).arg(mModel).arg(mStepping);
    return !name.isEmpty() && !vendor.isEmpty();
}

quint64 CPURegistry::speedHz() const
{
    return static_cast<quint64>(std::llround(mhz * 1000000.0));
}

quint64 CPURegistry::speedMHz() const
{
    return static_cast<quint64>(std::llround(mhz));
}

std::string CPURegistry::processorName() const { return name.toStdString(); }
std::string CPURegistry::vendorName() const { return vendor.toStdString(); }
quint16 CPURegistry::family() const { return mFamily; }
quint16 CPURegistry::model() const { return mModel; }
quint16 CPURegistry::stepping() const { return mStepping; }

QString CPURegistry::speedText(quint64 hz)
{
    static const struct {
        double divisor;
        const char* unit;
    } units[] = {{1e9, "GHz"}, {1e6, "MHz"}, {1e3, "KHz"}};
    for (const auto& unit : units) {
        if (static_cast<double>(hz) >= unit.divisor)
            return QString::number(static_cast<double>(hz) / unit.divisor, 'g', 6) + QLatin1Char(' ')
                   + QLatin1String(unit.unit);
    }
    return QString();
}
