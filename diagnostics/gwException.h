#pragma once

#include <QString>
#include <string>
#include <vector>

// Exceptions are rare in this system: integer codes thrown deep in bitmap
// storage, and the database fault below. Everything else fails by result.
class CgwExceptionBase
{
public:
    explicit CgwExceptionBase(const QString& message);
    virtual ~CgwExceptionBase();
    virtual int exceptionType() const = 0;

    const QString& message() const { return mMessage; }
    const std::vector<std::string>& details() const { return mDetails; }

    // The table text of the type, " : ", then the message.
    QString logText() const;

    static QString typeText(int type);
    static constexpr int kTypeCount = 7;

protected:
    QString mMessage;
    std::vector<std::string> mDetails;
};

template <int N>
class CgwExceptionT : public CgwExceptionBase
{
public:
    explicit CgwExceptionT(const QString& message) : CgwExceptionBase(message) {}
    int exceptionType() const override { return N; }
};

// The one instantiation in use: a fault of a persistent store.
using CgwDatabaseException = CgwExceptionT<3>;

// Logs the exception's text with a time stamp, then throws it by value.
void gwLogException(const CgwExceptionBase& exception);

template <int N>
[[noreturn]] void gwThrowException(const QString& message)
{
    CgwExceptionT<N> exception(message);
    gwLogException(exception);
    throw exception;
}
