#pragma once

#include <QMap>
#include <QString>

// The free key/value set that travels with images, filters and scanners:
// keys sorted, each value a text of tokens.
class CgwParameterSet
{
public:
    bool isEmpty() const { return mValues.isEmpty(); }
    void clear() { mValues.clear(); }
    int count() const { return int(mValues.size()); }
    bool contains(const QString& key) const { return mValues.contains(key); }
    bool operator==(const CgwParameterSet& other) const { return mValues == other.mValues; }
    bool operator!=(const CgwParameterSet& other) const { return !(*this == other); }

    // The raw token text of a key; empty when it is missing.
    QString tokens(const QString& key) const { return mValues.value(key); }
    void setTokens(const QString& key, const QString& text) { mValues.insert(key, text); }
    void remove(const QString& key) { mValues.remove(key); }
    const QMap<QString, QString>& values() const { return mValues; }

private:
    QMap<QString, QString> mValues;
};
