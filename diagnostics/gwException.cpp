#include "diagnostics/gwException.h"

#include "diagnostics/gwLogFile.h"

namespace {
// Built at load time; indexed by exceptionType().
const QString sExceptionTypeTexts[CgwExceptionBase::kTypeCount] = {
    QStringLiteral("Unknown exception"),
    QStringLiteral("Division by zero"),
    QStringLiteral("Bitmap could not be used correctly"),
    QStringLiteral("A error in Database is occured"),
    QStringLiteral("Parameter is set / used wrong"),
    QStringLiteral("The web server indicates an error"),
    QStringLiteral("An error in internal system occured"),
};
}

CgwExceptionBase::CgwExceptionBase(const QString& message) : mMessage(message) {}

CgwExceptionBase::~CgwExceptionBase() = default;

QString CgwExceptionBase::typeText(int type)
{
    if (type < 0 || type >= kTypeCount)
        return sExceptionTypeTexts[0];
    return sExceptionTypeTexts[type];
}

QString CgwExceptionBase::logText() const
{
    return typeText(exceptionType()) + QStringLiteral(" : ") + mMessage;
}

void gwLogException(const CgwExceptionBase& exception)
{
    CgwLogFile::instance().writeMessage(exception.logText());
}
