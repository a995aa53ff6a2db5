#pragma once

#include <QMap>
#include <QString>

struct SgwIptcTextRow {
    int tag; // record * 256 + dataset
    const char* key;
    const char* label;
};

struct SgwIptcText {
    QString label; // translated
    QString key;   // "%iptc…%"
};

// The browser's table of IPTC datasets, by tag.
const QMap<int, SgwIptcText>& gwIptcTextTable();
int gwIptcTextRowCount();
