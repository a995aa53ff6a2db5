#pragma once

#include "settings/gwQString.h"

#include <QList>
#include <QMap>
#include <QMetaType>

class QIODevice;

// One selective-colour preset: a name, two integers and six integers.
struct SgwSelectiveColorPreset {
    QString name;
    int first = 0;
    int second = 0;
    int values[6] = {0, 0, 0, 0, 0, 0};
};

// The configuration of anything: a map from key to a value of tokens, sorted
// by the keys' code units. Every token ends with one blank; blank and tab
// both separate tokens when reading.
class CgwParameterSet
{
public:
    using Map = QMap<CgwQString, CgwQString>;

    CgwParameterSet() = default;
    CgwParameterSet(const CgwParameterSet& other) = default;
    CgwParameterSet& operator=(CgwParameterSet other)
    {
        swap(other);
        return *this;
    }
    virtual ~CgwParameterSet();

    // Overwrites the output with the raw value when the key exists; leaves
    // it alone otherwise, so callers set their default first.
    bool getValue(const QString& key, CgwQString& value) const;
    bool getValue(const QString& key, QString& value) const;
    bool hasKey(const QString& key) const { return mValues.contains(key); }
    // The first key in order; empty for an empty set.
    QString firstKey() const { return mValues.isEmpty() ? QString() : mValues.firstKey().toQString(); }
    // The raw value; empty when the key is missing.
    CgwQString value(const QString& key) const { return mValues.value(key); }
    void setValue(const QString& key, const CgwQString& value) { mValues[key] = value; }
    void setValue(const QString& key, const QString& value) { mValues[key] = CgwQString(value); }
    void setPresetList(const QString& key, const QList<SgwSelectiveColorPreset>& presets);
    CgwQString& operator[](const QString& key) { return mValues[key]; }

    // Typed shortcuts over the token encoders and the first token's reader.
    void setBool(const QString& key, bool v) { setValue(key, valueFromBool(v)); }
    void setDouble(const QString& key, double v) { setValue(key, valueFromDouble(v)); }
    void setLongLong(const QString& key, qint64 v) { setValue(key, valueFromLongLong(v)); }
    void setULongLong(const QString& key, quint64 v) { setValue(key, valueFromULongLong(v)); }
    void setString(const QString& key, const QString& v) { setValue(key, valueFromString(v)); }
    bool boolValue(const QString& key, bool fallback) const;
    double doubleValue(const QString& key, double fallback) const;
    qint64 longLongValue(const QString& key, qint64 fallback) const;
    QString stringValue(const QString& key, const QString& fallback) const;

    void clear() { mValues.clear(); }
    bool isEmpty() const { return mValues.isEmpty(); }
    int count() const { return int(mValues.size()); }
    void remove(const QString& key) { mValues.remove(key); }
    void swap(CgwParameterSet& other) { mValues.swap(other.mValues); }
    Map::const_iterator begin() const { return mValues.constBegin(); }
    Map::const_iterator end() const { return mValues.constEnd(); }
    bool operator==(const CgwParameterSet& other) const { return mValues == other.mValues; }
    bool operator!=(const CgwParameterSet& other) const { return !(*this == other); }

    // The set as parameter XML, followed by one NUL byte.
    void writeTo(QIODevice& device) const;

    static bool findToken(const QString& value, int index, int& start, int& end);
    static bool boolFromValue(const QString& value, int index = 0);
    static double doubleFromValue(const QString& value, int index = 0);
    static qint64 longLongFromValue(const QString& value, int index = 0);
    static quint64 uLongLongFromValue(const QString& value, int index = 0);
    // Undoes valueFromString; false for a token with a broken "~" escape.
    static bool stringFromValue(const QString& value, int index, QString& text);
    // True when every "~" of the value starts a valid escape.
    static bool hasValidEscapes(const QString& value);

    static CgwQString valueFromBool(bool value);
    static CgwQString valueFromDouble(double value);
    static CgwQString valueFromLongLong(qint64 value);
    static CgwQString valueFromULongLong(quint64 value);
    static CgwQString valueFromString(const QString& value);

private:
    Map mValues;
};
Q_DECLARE_METATYPE(CgwParameterSet)
