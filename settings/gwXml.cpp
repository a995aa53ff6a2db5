#include "settings/gwXml.h"

#include "diagnostics/gwSystem.h"

#include <QDateTime>

bool CgwXmlValue::setText(const CgwQString& text)
{
    if (text.isEmpty())
        return false;
    mText = text;
    mNumber = text.toDouble();
    if (text.toQString().left(4).toUpper() == QLatin1String("TRUE"))
        mNumber = 1.0;
    initialized = true;
    return true;
}

void CgwXmlValue::setBool(bool value)
{
    mText = QString::fromLatin1(value ? "TRUE" : "FALSE");
    mNumber = value ? 1.0 : 0.0;
    initialized = true;
}

CgwXmlElement::~CgwXmlElement() = default;

void CgwXmlElement::clear()
{
    mChildren.clear();
    mName = CgwQString();
    mValue = CgwXmlValue();
    mHasValue = false;
    initialized = false;
}

void CgwXmlElement::setName(const CgwQString& name)
{
    mName = name;
    initialized = true;
}

CgwXmlElement* CgwXmlElement::addChild(const CgwQString& name)
{
    mChildren.push_back(std::make_unique<CgwXmlElement>());
    CgwXmlElement* child = mChildren.back().get();
    child->mParent = this;
    child->setName(name);
    return child;
}

bool CgwXmlElement::setValue(const CgwQString& text)
{
    mHasValue = mValue.setText(text);
    return mHasValue;
}

CgwXml::CgwXml()
{
    clear();
}

CgwXml::~CgwXml() = default;

void CgwXml::clear()
{
    mRoot.clear();
    mOutput = CgwQString();
    mLineEnd = QStringLiteral("\r\n");
    initialized = true;
}

CgwXmlElement* CgwXml::setRoot(const CgwQString& name)
{
    mRoot.clear();
    if (!name.isEmpty())
        mRoot.setName(name);
    return &mRoot;
}

CgwXmlElement* CgwXml::addElement(CgwXmlElement* parent, const CgwQString& name, const CgwQString& value)
{
    if (!parent)
        return nullptr;
    CgwXmlElement* child = parent->addChild(name);
    child->setValue(value);
    return child;
}

CgwQString CgwXml::toString()
{
    mOutput = CgwQString();
    writeHeader();
    writeElement(&mRoot, 0);
    return mOutput;
}

void CgwXml::writeLine(const QString& text)
{
    mOutput.toQString() += text;
    if (!mCompact)
        mOutput.toQString() += mLineEnd;
}

void CgwXml::writeHeader()
{
    const QDateTime now = QDateTime::currentDateTime();
    const QDate d = now.date();
    const QTime t = now.time();
    writeLine(QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?>"));
    writeLine(QString());
    writeLine(QStringLiteral("<!DOCTYPE ") + mRoot.name().toQString() + QStringLiteral(">"));
    writeLine(QString());
    writeLine(QStringLiteral("<!-- Xml Preference file, written by ") + CgwSystem::applicationName()
              + QLatin1Char(' ') + CgwSystem::applicationVersion(true) + QStringLiteral(".-->"));
    writeLine(QStringLiteral("<!-- Copyright (c) %1 Norvane Imaging. All rights reserved.-->").arg(d.year()));
    writeLine(QString::asprintf("<!-- File created on %02d.%02d.%04d %02d:%02d:%02d-->", d.day(), d.month(),
                                d.year(), t.hour(), t.minute(), t.second()));
    writeLine(QString());
}

void CgwXml::writeElement(const CgwXmlElement* element, int depth)
{
    const QString indent = mCompact ? QString() : QString(depth, QLatin1Char('\t'));
    writeLine(indent + QLatin1Char('<') + element->name().toQString() + QLatin1Char('>'));
    if (element->hasValue()) {
        const QString valueIndent = mCompact ? QString() : indent + QLatin1Char('\t');
        writeLine(valueIndent + element->value().text().escaped().toQString());
    }
    for (const auto& child : element->children()) {
        if (child)
            writeElement(child.get(), depth + 1);
    }
    writeLine(indent + QStringLiteral("</") + element->name().toQString() + QLatin1Char('>'));
}
