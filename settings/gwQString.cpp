#include "settings/gwQString.h"

namespace {

bool isEscaped(ushort c)
{
    switch (c) {
    case '\r': case '\n': case '%': case '&': case ',': case ':': case ';':
    case '<': case '>': case '\\': case '{': case '}': case ' ':
        return true;
    default:
        return false;
    }
}

} // namespace

int gwHexDigit(QChar c)
{
    const ushort u = c.unicode();
    if (u >= '0' && u <= '9')
        return u - '0';
    if (u >= 'a' && u <= 'f')
        return u - 'a' + 10;
    if (u >= 'A' && u <= 'F')
        return u - 'A' + 10;
    return -1;
}

CgwQString::~CgwQString() = default;

QString gwEncodeEscapes(const QString& text, QChar marker, int digits, GgwEscapedPredicate escaped)
{
    int length = 0;
    for (const QChar c : text)
        length += escaped(c.unicode()) ? 1 + digits : 1;
    QString out;
    out.reserve(length); // sized once
    for (const QChar c : text) {
        if (escaped(c.unicode()))
            out += marker + QString::number(c.unicode(), 16).rightJustified(digits, QLatin1Char('0'));
        else
            out += c;
    }
    return out;
}

bool gwDecodeEscapes(const QString& text, QChar marker, int digits, GgwEscapedPredicate escaped, QString& result)
{
    QString out;
    out.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        if (text[i] != marker) {
            out += text[i];
            continue;
        }
        if (i + digits >= text.size())
            return false;
        int code = 0;
        for (int d = 1; d <= digits; ++d) {
            const int digit = gwHexDigit(text[i + d]);
            if (digit < 0)
                return false;
            code = code * 16 + digit;
        }
        if (!escaped(ushort(code)))
            return false;
        out += QChar(code);
        i += digits;
    }
    result = out;
    return true;
}

CgwQString CgwQString::escaped() const
{
    return gwEncodeEscapes(mString, QLatin1Char('%'), 2, isEscaped);
}

bool CgwQString::unescape(CgwQString& result) const
{
    QString text;
    if (!gwDecodeEscapes(mString, QLatin1Char('%'), 2, isEscaped, text))
        return false;
    result = CgwQString(text);
    return true;
}
