#pragma once

#include <QString>
#include <QtGlobal>
#include <string>

// The processor facts of the log's session header, read from /proc/cpuinfo.
class CPURegistry
{
public:
    CPURegistry() = default;
    virtual bool read();
    virtual quint64 speedHz() const;
    virtual quint64 speedMHz() const;
    virtual std::string processorName() const;
    virtual std::string vendorName() const;
    virtual quint16 family() const;
    virtual quint16 model() const;
    virtual quint16 stepping() const;
    // Four feature queries of the original interface; none is known here.
    virtual bool hasFeature1() const { return false; }
    virtual bool hasFeature2() const { return false; }
    virtual bool hasFeature3() const { return false; }
    virtual bool hasFeature4() const { return false; }
    virtual ~CPURegistry();

    // Parses the text of /proc/cpuinfo; the first processor's block counts.
    // Fails when the name, the vendor or the speed is missing.
    bool readFrom(const QString& cpuinfo);

    // "2.496 GHz": the largest of GHz, MHz, KHz that does not exceed the speed,
    // six significant digits; empty below 1000 Hz.
    static QString speedText(quint64 hz);

private:
    double mhz = 0.0;
    QString identifier;
    QString name;
    QString vendor;
    quint16 mFamily = 0;
    quint16 mModel = 0;
    quint16 mStepping = 0;
};
