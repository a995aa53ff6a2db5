// One log session: writes each argument as a message and exits.

#include "diagnostics/gwLogFile.h"

#include <QCoreApplication>
#include <QStringList>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList messages = app.arguments().mid(1);
    for (const QString& message : messages)
        CgwLogFile::instance().writeMessage(message);
    return 0;
}
