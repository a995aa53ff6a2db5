#pragma once

#include <QList>
#include <QString>

// QXmlSimpleReader and its handler are deprecated in Qt 5.15 but are what
// the catalogues have always been read with.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#include <QXmlDefaultHandler>

// One entry of the help or movie catalogue.
struct SgwCatalogueEntry {
    QString id;          // the entry element's identifying attribute
    QString title;       // the entry element's own text
    QString link;
    QString revision;
    QString notNeeded;
    QString interactive;
};

// Reads a catalogue of help guides or movies.
class CgwXmlDataHandler : public QXmlDefaultHandler
{
public:
    ~CgwXmlDataHandler() override;

    bool startElement(const QString& namespaceURI, const QString& localName, const QString& qName,
                      const QXmlAttributes& attributes) override;
    bool endElement(const QString& namespaceURI, const QString& localName, const QString& qName) override;
    bool characters(const QString& text) override;
    bool fatalError(const QXmlParseException& exception) override;

    virtual QString entryElement() const = 0;
    virtual QString linkPrefix() const = 0;
    virtual QString folder() const = 0;

    // Parses a catalogue file; false when the parser stopped on an error.
    bool parseFile(const QString& path);
    const QList<SgwCatalogueEntry>& entries() const { return mEntries; }
    // The link as the application opens it: the prefix, then the entry's link.
    QString entryUrl(const SgwCatalogueEntry& entry) const { return linkPrefix() + entry.link; }

private:
    QString mElement;
    bool mInEntry = false;
    SgwCatalogueEntry mEntry;
    QList<SgwCatalogueEntry> mEntries;
};

class CgwXmlHelpDataHandler : public CgwXmlDataHandler
{
public:
    QString entryElement() const override { return QStringLiteral("Guide"); }
    QString linkPrefix() const override { return QStringLiteral("showdocu/"); }
    QString folder() const override;
};

class CgwXmlMovieDataHandler : public CgwXmlDataHandler
{
public:
    QString entryElement() const override { return QStringLiteral("Movie"); }
    QString linkPrefix() const override { return QStringLiteral("showMovie/"); }
    QString folder() const override;
};

#pragma GCC diagnostic pop
