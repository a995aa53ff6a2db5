// The database fault: logged with its type text, then thrown.

#include "diagnostics/gwException.h"
#include "support/gwTestEnv.h"

#include <gtest/gtest.h>

TEST(Exception, DatabaseFaultIsLoggedThenThrown)
{
    const QString message = QStringLiteral("The SQLite database for temp images couldn't be opened");
    try {
        gwThrowException<3>(message);
        FAIL() << "nothing thrown";
    } catch (const CgwExceptionBase& e) {
        EXPECT_EQ(e.exceptionType(), 3);
        EXPECT_EQ(e.message(), message);
        EXPECT_TRUE(e.details().empty());
    }
    const QByteArray log = gwReadFile(gwTestLogPath());
    const QByteArray expected = "  A error in Database is occured : " + message.toUtf8() + "\n";
    EXPECT_TRUE(log.endsWith(expected)) << log.right(200).constData();
}
