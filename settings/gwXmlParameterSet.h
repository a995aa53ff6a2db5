#pragma once

#include "settings/gwParameterSet.h"
#include "settings/gwXml.h"

#include <QByteArray>

// A parameter set as a document: the root "ParameterSet" and one element per
// key, in key order, whose text is the encoded value.
class CgwXmlParameterSet : public CgwXml
{
public:
    void fill(const CgwParameterSet& parameters);

    // Reads a document of this form back into a set, undoing the "%" escape
    // of the element text. A trailing NUL is allowed. Anything malformed,
    // including a broken "~" escape in a value, gives an empty set and one
    // log line.
    static CgwParameterSet read(const QByteArray& document);
    static CgwParameterSet readFile(const QString& path);
};
