#pragma once

#include <QByteArray>
#include <QObject>

// Gives Qt's translation its context name for the texts of the log.
class CgwLogFileTranslate : public QObject
{
    Q_OBJECT
};

// The line of 73 dashes that frames the parts of the log.
QByteArray gwLogSeparator();

// Written at the top of a new or freshly rotated log file. The contact blocks
// depend on the licence's version type: type 3 carries the hotline.
QByteArray gwLogPreamble(int versionType);

// Written at the start of every session: software and hardware facts.
QByteArray gwLogSessionHeader();
