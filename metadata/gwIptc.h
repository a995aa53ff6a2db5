#pragma once

#include <QMap>
#include <QString>

// IPTC values of an image by numeric tag (record * 256 + dataset).
class CgwIptc
{
public:
    bool isEmpty() const { return mValues.isEmpty(); }
    void clear() { mValues.clear(); }
    bool operator==(const CgwIptc& other) const { return mValues == other.mValues; }
    bool operator!=(const CgwIptc& other) const { return !(*this == other); }

    QString value(int tag) const { return mValues.value(tag); }
    void setValue(int tag, const QString& text) { mValues.insert(tag, text); }
    const QMap<int, QString>& values() const { return mValues; }

private:
    QMap<int, QString> mValues;
};
