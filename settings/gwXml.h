#pragma once

#include "settings/gwQString.h"

#include <QObject>
#include <memory>
#include <vector>

// The value of an element: its text and that text read as a number.
class CgwXmlValue
{
public:
    // Refuses empty text. The number is the text's, or 1.0 when it starts with "TRUE".
    bool setText(const CgwQString& text);
    void setBool(bool value);

    bool isInitialized() const { return initialized; }
    const CgwQString& text() const { return mText; }
    double number() const { return mNumber; }

private:
    bool initialized = false;
    CgwQString mText;
    double mNumber = 0.0;
};

// A node of the document tree; owns its children.
class CgwXmlElement : public QObject
{
    Q_OBJECT

public:
    CgwXmlElement() = default;
    ~CgwXmlElement() override;

    void clear();
    void setName(const CgwQString& name);
    const CgwQString& name() const { return mName; }
    CgwXmlElement* addChild(const CgwQString& name);
    const std::vector<std::unique_ptr<CgwXmlElement>>& children() const { return mChildren; }
    CgwXmlElement* parentElement() const { return mParent; }

    bool setValue(const CgwQString& text);
    bool hasValue() const { return mHasValue; }
    const CgwXmlValue& value() const { return mValue; }

    void setFlags(bool first, bool second)
    {
        mFirstFlag = first;
        mSecondFlag = second;
    }

private:
    bool initialized = false;
    CgwQString mName;
    std::vector<std::unique_ptr<CgwXmlElement>> mChildren;
    CgwXmlElement* mParent = nullptr;
    CgwXmlValue mValue;
    bool mHasValue = false;
    bool mFirstFlag = false;
    bool mSecondFlag = true;
};

// The program's own XML writer: a header of fixed lines, then the tree with
// tab indents and CR LF line ends, or neither in compact mode.
class CgwXml
{
public:
    CgwXml();
    virtual ~CgwXml();
    virtual void prepare() {}
    virtual void reserved() {}

    void clear();
    CgwXmlElement* setRoot(const CgwQString& name);
    CgwXmlElement* root() { return &mRoot; }
    CgwXmlElement* addElement(CgwXmlElement* parent, const CgwQString& name, const CgwQString& value);
    void setCompact(bool compact) { mCompact = compact; }
    CgwQString toString();

protected:
    void writeHeader();
    void writeElement(const CgwXmlElement* element, int depth);

private:
    void writeLine(const QString& text);

    CgwXmlElement mRoot;
    bool mCompact = false;
    bool initialized = false;
    CgwQString mOutput;
    QString mLineEnd;
};
