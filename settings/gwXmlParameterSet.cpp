#include "settings/gwXmlParameterSet.h"

#include "diagnostics/gwDebug.h"

#include <QFile>
#include <QXmlStreamReader>

namespace {

// The element text without the writer's indent: a value line stands between
// a line end with two tabs and a line end with one (CR LF arrives as LF).
QString stripIndent(const QString& text)
{
    if (text.startsWith(QLatin1String("\n\t\t")) && text.endsWith(QLatin1String("\n\t")) && text.size() >= 5)
        return text.mid(3, text.size() - 5);
    if (text == QLatin1String("\n\t"))
        return QString();
    return text;
}

// Whether the writer can store the text again: XML characters in whole
// UTF-16. The writer's documents are UTF-8, but one that declares another
// encoding (UTF-7, say) can decode to unpaired surrogates.
bool storable(const QString& text)
{
    for (int i = 0; i < text.size(); ++i) {
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            ++i;
            continue;
        }
        const ushort u = text[i].unicode();
        if (text[i].isSurrogate() || u == 0xFFFE || u == 0xFFFF || (u < 0x20 && u != '\t' && u != '\n' && u != '\r'))
            return false;
    }
    return true;
}

bool readEntries(QXmlStreamReader& xml, CgwParameterSet& set, QString& error)
{
    while (xml.readNextStartElement()) {
        const QString key = xml.name().toString();
        const QString text = xml.readElementText(QXmlStreamReader::ErrorOnUnexpectedElement);
        if (xml.hasError())
            return false;
        CgwQString value;
        if (!CgwQString(stripIndent(text)).unescape(value)) {
            error = QStringLiteral("unknown escape in the value of ") + key;
            return false;
        }
        if (!storable(key) || !storable(value)) {
            error = QStringLiteral("a character that cannot be written again in the value of ") + key;
            return false;
        }
        if (!CgwParameterSet::hasValidEscapes(value)) {
            error = QStringLiteral("broken token in the value of ") + key;
            return false;
        }
        if (set.hasKey(key)) {
            error = QStringLiteral("key ") + key + QStringLiteral(" appears twice");
            return false;
        }
        set.setValue(key, value);
    }
    return !xml.hasError();
}

CgwParameterSet parse(const QByteArray& document, QString& error)
{
    QByteArray bytes = document;
    if (bytes.endsWith('\0'))
        bytes.chop(1);
    QXmlStreamReader xml(bytes);
    CgwParameterSet set;
    if (!xml.readNextStartElement()) {
        error = xml.hasError() ? xml.errorString() : QStringLiteral("no root element");
        return CgwParameterSet();
    }
    if (readEntries(xml, set, error)) {
        while (!xml.atEnd())
            xml.readNext();
    }
    if (error.isEmpty() && xml.hasError())
        error = QStringLiteral("%1 at line %2, column %3").arg(xml.errorString()).arg(xml.lineNumber()).arg(xml.columnNumber());
    return error.isEmpty() ? set : CgwParameterSet();
}

} // namespace

void CgwXmlParameterSet::fill(const CgwParameterSet& parameters)
{
    clear();
    CgwXmlElement* rootElement = setRoot(QStringLiteral("ParameterSet"));
    rootElement->setFlags(false, true);
    for (auto it = parameters.begin(); it != parameters.end(); ++it)
        addElement(rootElement, it.key(), it.value());
}

CgwParameterSet CgwXmlParameterSet::read(const QByteArray& document)
{
    QString error;
    CgwParameterSet set = parse(document, error);
    if (!error.isEmpty())
        gwDebugString(QStringLiteral("CgwXmlParameterSet::read : Error: ") + error);
    return set;
}

CgwParameterSet CgwXmlParameterSet::readFile(const QString& path)
{
    QFile file(path);
    if (!file.exists())
        return CgwParameterSet(); // nothing saved yet: the caller keeps its defaults
    if (!file.open(QIODevice::ReadOnly)) {
        gwDebugString(QStringLiteral("CgwXmlParameterSet::readFile : Error: cannot open ") + path);
        return CgwParameterSet();
    }
    return read(file.readAll());
}
