#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

class CgwParameterSet;

// The IPTC datasets of an image by numeric tag (record * 256 + dataset), in
// file order; repeatable ones such as keywords hold several values. Exiv2
// reads and writes the block. A value: bitmap heads carry it and copy it.
class CgwIptc
{
public:
    bool isEmpty() const { return mValues.isEmpty(); }
    void clear() { mValues.clear(); }
    bool operator==(const CgwIptc& other) const { return mValues == other.mValues; }
    bool operator!=(const CgwIptc& other) const { return !(*this == other); }

    // All values of a tag joined by "; ", as the browser shows them.
    QString value(int tag) const { return mValues.value(tag).join(QStringLiteral("; ")); }
    QStringList values(int tag) const { return mValues.value(tag); }
    void setValue(int tag, const QString& text) { mValues.insert(tag, QStringList{text}); }
    void addValue(int tag, const QString& text) { mValues[tag].append(text); }
    const QMap<int, QStringList>& datasets() const { return mValues; }

    // Reads the IPTC block of the file at `location` ("file:" allowed);
    // false, with a log line, when Exiv2 cannot read it.
    bool readIPTC(const QString& location);
    // Reads an IPTC block as TIFF files carry it (tag 0x83BB); false, with a
    // log line, when it cannot be decoded.
    bool readBlock(const QByteArray& block);

    // Writes these datasets into the file, replacing the file's datasets of
    // the same tags; then the user's IPTC parameters, if a set is given.
    bool applyToFile(const QString& location, const CgwParameterSet* params = nullptr) const;

    // Writes the user's IPTC parameters into the file: each non-empty one
    // replaces the file's datasets of its key, keywords one dataset each.
    static bool applyIptcToFile(const QString& location, const CgwParameterSet& params);

    // The value of `tag` with the translated label and the key of the text
    // table; empty label and key for a tag outside the table.
    QString valueAsText(int tag, QString& label, QString& key) const;
    static int textTableRows();

private:
    QMap<int, QStringList> mValues;
};
