#include "settings/gwXmlDataHandler.h"

#include "diagnostics/gwDebug.h"
#include "diagnostics/gwSystem.h"

#include <QFile>

#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

CgwXmlDataHandler::~CgwXmlDataHandler() = default;

bool CgwXmlDataHandler::startElement(const QString&, const QString&, const QString& qName,
                                     const QXmlAttributes& attributes)
{
    mElement = qName;
    if (qName == entryElement()) {
        mInEntry = true;
        mEntry = SgwCatalogueEntry();
        const int idIndex = attributes.index(QStringLiteral("id"));
        if (idIndex >= 0)
            mEntry.id = attributes.value(idIndex);
        else if (attributes.count() > 0)
            mEntry.id = attributes.value(0);
    }
    return true;
}

bool CgwXmlDataHandler::characters(const QString& text)
{
    if (!mInEntry)
        return true;
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty())
        return true;
    if (mElement == entryElement())
        mEntry.title = trimmed;
    else if (mElement == QLatin1String("Link"))
        mEntry.link = trimmed;
    else if (mElement == QLatin1String("Revision"))
        mEntry.revision = trimmed;
    else if (mElement == QLatin1String("NotNeeded"))
        mEntry.notNeeded = trimmed;
    else if (mElement == QLatin1String("Interactive"))
        mEntry.interactive = trimmed;
    return true;
}

bool CgwXmlDataHandler::endElement(const QString&, const QString&, const QString& qName)
{
    if (qName == entryElement() && mInEntry) {
        mEntries.append(mEntry);
        mInEntry = false;
    }
    mElement.clear();
    return true;
}

bool CgwXmlDataHandler::fatalError(const QXmlParseException& exception)
{
    gwDebugString(QStringLiteral("Fatal error on line ") + QString::number(exception.lineNumber())
                  + QStringLiteral(", column ") + QString::number(exception.columnNumber()) + QStringLiteral(": ")
                  + exception.message());
    return false;
}

bool CgwXmlDataHandler::parseFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    QXmlInputSource source(&file);
    QXmlSimpleReader reader;
    reader.setContentHandler(this);
    reader.setErrorHandler(this);
    return reader.parse(source);
}

QString CgwXmlHelpDataHandler::folder() const
{
    return CgwSystem::documentationFolder();
}

QString CgwXmlMovieDataHandler::folder() const
{
    return CgwSystem::moviesFolder();
}
