// The database fault and the exception texts.

#include "diagnostics/gwException.h"
#include "diagnostics/gwSingleton.h"
#include "support/gwTestEnv.h"

#include <QThread>

#include <gtest/gtest.h>

TEST(Exception, TypeTexts)
{
    const char* texts[] = {"Unknown exception",
                           "Division by zero",
                           "Bitmap could not be used correctly",
                           "A error in Database is occured",
                           "Parameter is set / used wrong",
                           "The web server indicates an error",
                           "An error in internal system occured"};
    for (int type = 0; type < CgwExceptionBase::kTypeCount; ++type)
        EXPECT_EQ(CgwExceptionBase::typeText(type), QString::fromLatin1(texts[type])) << type;
}

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

namespace {
class Counter : public CgwSingleton<Counter>
{
    friend class CgwSingleton<Counter>;
    Counter() { ++sConstructed; }

public:
    static inline std::atomic<int> sConstructed{0};
};
} // namespace

TEST(Exception, SingletonIsMadeOnceAcrossThreads)
{
    std::vector<QThread*> threads;
    std::atomic<Counter*> seen[8] = {};
    for (int i = 0; i < 8; ++i)
        threads.push_back(QThread::create([&seen, i] { seen[i] = &Counter::instance(); }));
    for (QThread* t : threads)
        t->start();
    for (QThread* t : threads) {
        t->wait();
        delete t;
    }
    EXPECT_EQ(Counter::sConstructed, 1);
    for (auto& s : seen)
        EXPECT_EQ(s.load(), &Counter::instance());
}
