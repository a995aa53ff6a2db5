#include "settings/gwParameterSet.h"

#include "settings/gwXmlParameterSet.h"

#include <QIODevice>

namespace {

bool isSeparator(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\t');
}

enum class Span { Missing, Whole, AllButLast, Inner };

// Where the token lies: a token that covers the value, or all of it but a
// trailing separator, is converted from the value as it stands.
Span locate(const QString& value, int index, QString& token)
{
    int start = 0;
    int end = 0;
    if (!CgwParameterSet::findToken(value, index, start, end))
        return Span::Missing;
    if (start == 0 && end == value.size() - 1)
        return Span::Whole;
    if (start == 0 && end == value.size() - 2)
        return Span::AllButLast;
    token = value.mid(start, end - start + 1);
    return Span::Inner;
}

template <typename T, typename Convert>
T numberFromValue(const QString& value, int index, Convert convert)
{
    QString token;
    switch (locate(value, index, token)) {
    case Span::Missing: return T(0);
    case Span::Whole:
    case Span::AllButLast: return convert(value.trimmed());
    case Span::Inner: return convert(token);
    }
    return T(0);
}

bool isTokenEscape(ushort code)
{
    return code == '\t' || code == ' ' || code == '~';
}

const QString kNullToken = QStringLiteral("~NULL");

} // namespace

CgwParameterSet::~CgwParameterSet() = default;

bool CgwParameterSet::getValue(const QString& key, CgwQString& value) const
{
    const auto it = mValues.constFind(key);
    if (it == mValues.constEnd())
        return false;
    value = it.value();
    return true;
}

bool CgwParameterSet::getValue(const QString& key, QString& value) const
{
    CgwQString raw;
    if (!getValue(key, raw))
        return false;
    value = raw;
    return true;
}

void CgwParameterSet::setPresetList(const QString& key, const QList<SgwSelectiveColorPreset>& presets)
{
    QString value = valueFromLongLong(presets.size());
    for (const SgwSelectiveColorPreset& p : presets) {
        value += valueFromString(p.name).toQString() + valueFromLongLong(p.first).toQString()
                 + valueFromLongLong(p.second).toQString();
        for (int v : p.values)
            value += valueFromLongLong(v).toQString();
    }
    setValue(key, value);
}

bool CgwParameterSet::boolValue(const QString& key, bool fallback) const
{
    CgwQString raw;
    return getValue(key, raw) ? boolFromValue(raw) : fallback;
}

double CgwParameterSet::doubleValue(const QString& key, double fallback) const
{
    CgwQString raw;
    return getValue(key, raw) ? doubleFromValue(raw) : fallback;
}

qint64 CgwParameterSet::longLongValue(const QString& key, qint64 fallback) const
{
    CgwQString raw;
    return getValue(key, raw) ? longLongFromValue(raw) : fallback;
}

QString CgwParameterSet::stringValue(const QString& key, const QString& fallback) const
{
    CgwQString raw;
    QString text;
    if (!getValue(key, raw) || !stringFromValue(raw, 0, text))
        return fallback;
    return text;
}

void CgwParameterSet::writeTo(QIODevice& device) const
{
    CgwXmlParameterSet xml;
    xml.fill(*this);
    device.write(xml.toString().toQString().toUtf8());
    device.write("\0", 1);
}

bool CgwParameterSet::findToken(const QString& value, int index, int& start, int& end)
{
    const int length = int(value.size());
    int pos = 0;
    // Index 0 starts at once: a value that begins with a blank has an empty first token.
    for (int group = 0; group < index; ++group) {
        while (pos < length && !isSeparator(value[pos]))
            ++pos;
        while (pos < length && isSeparator(value[pos]))
            ++pos;
    }
    start = pos;
    while (pos < length && !isSeparator(value[pos]))
        ++pos;
    end = pos - 1;
    return pos > start;
}

bool CgwParameterSet::boolFromValue(const QString& value, int index)
{
    QString token;
    switch (locate(value, index, token)) {
    case Span::Missing: return false;
    case Span::Whole: return value == QLatin1String("TRUE");
    case Span::AllButLast: return value == QLatin1String("TRUE ");
    case Span::Inner: return token == QLatin1String("TRUE");
    }
    return false;
}

double CgwParameterSet::doubleFromValue(const QString& value, int index)
{
    return numberFromValue<double>(value, index, [](const QString& t) { return t.toDouble(); });
}

qint64 CgwParameterSet::longLongFromValue(const QString& value, int index)
{
    return numberFromValue<qint64>(value, index, [](const QString& t) { return t.toLongLong(); });
}

quint64 CgwParameterSet::uLongLongFromValue(const QString& value, int index)
{
    return numberFromValue<quint64>(value, index, [](const QString& t) { return t.toULongLong(); });
}

bool CgwParameterSet::stringFromValue(const QString& value, int index, QString& text)
{
    int start = 0;
    int end = 0;
    if (!findToken(value, index, start, end)) {
        text.clear();
        return true;
    }
    const QString token = value.mid(start, end - start + 1);
    if (token == kNullToken) {
        text.clear();
        return true;
    }
    return gwDecodeEscapes(token, QLatin1Char('~'), 4, isTokenEscape, text);
}

bool CgwParameterSet::hasValidEscapes(const QString& value)
{
    for (int i = 0; i < value.size(); ++i) {
        if (value[i] != QLatin1Char('~'))
            continue;
        const int after = i + int(kNullToken.size());
        const bool tokenStart = i == 0 || isSeparator(value[i - 1]);
        if (tokenStart && value.midRef(i, kNullToken.size()) == kNullToken
            && (after == value.size() || isSeparator(value[after]))) {
            i = after - 1;
            continue;
        }
        // Everything up to the next separator must decode.
        int end = i;
        while (end < value.size() && !isSeparator(value[end]))
            ++end;
        QString decoded;
        if (!gwDecodeEscapes(value.mid(i, end - i), QLatin1Char('~'), 4, isTokenEscape, decoded))
            return false;
        i = end;
    }
    return true;
}

CgwQString CgwParameterSet::valueFromBool(bool value)
{
    return QString::fromLatin1(value ? "TRUE " : "FALSE ");
}

CgwQString CgwParameterSet::valueFromDouble(double value)
{
    QString text;
    text.setNum(value);
    return text + QLatin1Char(' ');
}

CgwQString CgwParameterSet::valueFromLongLong(qint64 value)
{
    return QString::number(value) + QLatin1Char(' ');
}

CgwQString CgwParameterSet::valueFromULongLong(quint64 value)
{
    return QString::number(value) + QLatin1Char(' ');
}

CgwQString CgwParameterSet::valueFromString(const QString& value)
{
    if (value.isEmpty())
        return kNullToken + QLatin1Char(' ');
    return gwEncodeEscapes(value, QLatin1Char('~'), 4, isTokenEscape) + QLatin1Char(' ');
}

