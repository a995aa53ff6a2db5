// The scanner table and the connection wait of the scanner connector.

#include "Sourcen/Image/gwAbortFlag.h"
#include "scanner/gwScannerBase.h"
#include "scanner/gwScannerConnector.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QThread>

#include <tuple>

#include <gtest/gtest.h>

namespace {

void setRowBusy(bool busy)
{
    QWriteLocker lock(&sScannerLock);
    sScannerInUse.at(0) = busy;
}

// A scanner that claims table row 0 through the shared in-use flags.
class TableScanner : public CgwScannerBase
{
public:
    int attempts = 0;
    bool connected = false;

    bool tryConnect() override
    {
        ++attempts;
        QWriteLocker lock(&sScannerLock);
        if (!connected && !sScannerInUse.at(0))
            connected = sScannerInUse.at(0) = true;
        return connected;
    }
    bool isConnected() override { return connected; }
    void disconnectScanner() override {}
    CgwBitmapHead getScannerInformation(bool*, int, int) override { return CgwBitmapHead(); }
    bool startScan(CgwBitmapBase*, bool*, CgwBitmapBase*, CgwBitmapBase*) override { return false; }
    bool supportsScanner(const CgwScannerInfo&) override { return true; }
    bool isScannerInUse(const CgwScannerInfo&) override { return false; }
    std::vector<CgwScannerInfo> filterSupportedScanners(std::vector<CgwScannerInfo> list) override { return list; }
    std::vector<CgwScannerInfo> getScannerList() override { return {}; }
};

class ConnectionWait : public ::testing::Test
{
protected:
    void TearDown() override { setRowBusy(false); }

    struct Result {
        bool connected;
        qint64 ms;
        int started;
        int finished;
        bool finishedWith;
        int connectorsOwn; // signals of the connector itself, which the scanner's stand for
    };
    static Result wait(TableScanner& scanner, bool* abortFlag, double timeout)
    {
        CgwScannerConnector connector(abortFlag);
        QSignalSpy started(&scanner, &CgwScannerBase::signalConnectorWaitingStarted);
        QSignalSpy finished(&scanner, &CgwScannerBase::signalConnectorWaitingFinished);
        QSignalSpy ownStarted(&connector, &CgwScannerConnector::signalWaitingStarted);
        QSignalSpy ownFinished(&connector, &CgwScannerConnector::signalWaitingFinished);
        QElapsedTimer timer;
        timer.start();
        const bool connected = connector.waitForConnection(scanner, timeout);
        return {connected, timer.elapsed(), int(started.count()), int(finished.count()),
                !finished.isEmpty() && finished.first().first().toBool(),
                int(ownStarted.count() + ownFinished.count())};
    }
};

} // namespace

TEST(ScannerTable, RowsIdentifiersAndEndMark)
{
    // Made at load time from the shared constants, which must already exist.
    EXPECT_EQ(sScannerTable[0].mMakeAndModel, "HDR,Atelier");
    EXPECT_EQ(sScannerTable[0].mScannerId, "HDR Atelier");
    EXPECT_EQ(gwScannerTableRows().size(), 1u) << "the end mark is no scanner";
    EXPECT_EQ(gwScannerTableRow("HDR Atelier"), 0);
    EXPECT_EQ(gwScannerTableRow("HDR,Atelier"), -1);
    EXPECT_EQ(gwScannerTableRow("-1"), -1);
}

TEST(ScannerTable, InUseFlagsAreClearedByTheFirstScannerOnly)
{
    for (const bool clears : {true, false}) {
        setRowBusy(true);
        gwClearScannerInUseOnce();
        QReadLocker lock(&sScannerLock);
        EXPECT_EQ(sScannerInUse.at(0), !clears);
    }
    setRowBusy(false);
}

// Without an abort flag a busy row is tried again while a budget lasts, which
// falls by a second for every 10 ms slept.
TEST_F(ConnectionWait, LimitedWaitConnectsAtOnceOrSpendsItsBudget)
{
    // Name, row busy, abort flag, timeout, attempts, least and most milliseconds.
    const std::tuple<const char*, bool, bool, double, int, qint64, qint64> cases[] = {
        {"free row: at once, no waiting signalled", false, false, 0.0, 1, 0, 50},
        {"no flag, default ten seconds: ten sleeps, two retries", true, false, 0.0, 3, 95, 1000},
        {"no flag, two seconds: two sleeps, one retry", true, false, 2.0, 2, 19, 500},
        {"flag already set: no sleep at all", true, true, 0.0, 1, 0, 10},
    };
    for (const auto& [name, busy, withFlag, timeout, attempts, minMs, maxMs] : cases) {
        SCOPED_TRACE(name);
        setRowBusy(busy);
        TableScanner scanner;
        bool abort = true;
        const Result r = wait(scanner, withFlag ? &abort : nullptr, timeout);
        EXPECT_EQ(r.connected, !busy);
        EXPECT_EQ(scanner.attempts, attempts);
        EXPECT_GE(r.ms, minMs);
        EXPECT_LT(r.ms, maxMs);
        EXPECT_EQ(r.started, busy ? 1 : 0);
        EXPECT_EQ(r.finished, 1);
        EXPECT_EQ(r.finishedWith, !busy);
        EXPECT_EQ(r.connectorsOwn, 0);
    }
}

// With an abort flag the wait has no limit: it lasts until the row frees or the flag is set.
TEST_F(ConnectionWait, UnlimitedWaitEndsWhenTheRowFreesOrTheFlagIsSet)
{
    for (const bool frees : {true, false}) {
        SCOPED_TRACE(frees ? "the row frees" : "the flag is set");
        setRowBusy(true);
        TableScanner scanner;
        bool abort = false;
        std::unique_ptr<QThread> other(QThread::create([&abort, frees] {
            QThread::msleep(300); // longer than any limited wait would last
            frees ? setRowBusy(false) : gwRequestAbort(&abort);
        }));
        other->start();
        const Result r = wait(scanner, &abort, 0.0);
        other->wait();
        EXPECT_EQ(r.connected, frees);
        EXPECT_EQ(r.finishedWith, frees);
        EXPECT_GE(r.ms, 290);
        EXPECT_LT(r.ms, 2000);
    }
}
