#pragma once

#include <QString>

// The value of a hexadecimal digit, or -1.
int gwHexDigit(QChar c);

// The escape codecs of the suite's texts: every character for which
// `escaped` holds becomes `marker` and `digits` lower-case hex digits of its
// code. Decoding is the exact inverse and fails on any other use of the marker.
using GgwEscapedPredicate = bool (*)(ushort code);
QString gwEncodeEscapes(const QString& text, QChar marker, int digits, GgwEscapedPredicate escaped);
bool gwDecodeEscapes(const QString& text, QChar marker, int digits, GgwEscapedPredicate escaped, QString& result);

// A thin class around one QString, with number conversions, a narrow-string
// constructor, and the "%xx" escape of element text in the suite's XML.
class CgwQString
{
public:
    CgwQString() = default;
    CgwQString(const QString& text) : mString(text) {}
    CgwQString(const char* utf8) : mString(QString::fromUtf8(utf8)) {}
    CgwQString(const CgwQString&) = default;
    CgwQString& operator=(const CgwQString&) = default;
    virtual ~CgwQString();

    operator const QString&() const { return mString; }
    const QString& toQString() const { return mString; }
    QString& toQString() { return mString; }

    int length() const { return int(mString.size()); }
    bool isEmpty() const { return mString.isEmpty(); }

    static CgwQString number(double value) { return QString::number(value); }
    static CgwQString number(qint64 value) { return QString::number(value); }
    static CgwQString number(quint64 value) { return QString::number(value); }
    static CgwQString number(int value) { return QString::number(value); }
    double toDouble() const { return mString.toDouble(); }
    qint64 toLongLong() const { return mString.toLongLong(); }
    quint64 toULongLong() const { return mString.toULongLong(); }
    int toInt() const { return mString.toInt(); }

    // Line feed, "%", "&", ",", ":", ";", "<", ">", "\", "{", "}" and blank
    // become "%" and two lower-case hex digits; all else stays.
    CgwQString escaped() const;
    // The exact inverse; false for a "%" that is not one of those escapes.
    bool unescape(CgwQString& result) const;

    bool operator==(const CgwQString& o) const { return mString == o.mString; }
    bool operator!=(const CgwQString& o) const { return mString != o.mString; }
    bool operator<(const CgwQString& o) const { return mString < o.mString; }

private:
    QString mString;
};
