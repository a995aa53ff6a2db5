// The scanner table, the base scanner's defaults and the connection wait.

#include "Sourcen/Image/gwAbortFlag.h"
#include "scanner/gwScannerBase.h"
#include "scanner/gwScannerConnector.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QThread>

#include <stdexcept>

#include <gtest/gtest.h>

namespace {

// A scanner that claims table row 0 through the shared in-use flags.
class TableScanner : public CgwScannerBase
{
public:
    int attempts = 0;

    void disconnectScanner() override
    {
        QWriteLocker lock(&sScannerLock);
        if (mRow >= 0)
            sScannerInUse.at(mRow) = false;
        mRow = -1;
    }
    bool tryConnect() override
    {
        ++attempts;
        QWriteLocker lock(&sScannerLock);
        if (mRow >= 0)
            return true;
        if (sScannerInUse.at(0))
            return false;
        sScannerInUse.at(0) = true;
        mRow = 0;
        return true;
    }
    bool isConnected() override { return mRow >= 0; }
    CgwBitmapHead getScannerInformation(bool*, int, int) override { return CgwBitmapHead(); }
    bool startScan(CgwBitmapBase*, bool*, CgwBitmapBase*, CgwBitmapBase*) override { return false; }
    bool supportsScanner(const CgwScannerInfo& info) override { return gwScannerTableRow(info.mScannerId) >= 0; }
    bool isScannerInUse(const CgwScannerInfo&) override { return false; }
    std::vector<CgwScannerInfo> filterSupportedScanners(std::vector<CgwScannerInfo> list) override { return list; }
    std::vector<CgwScannerInfo> getScannerList() override { return gwScannerTableRows(); }

    using CgwScannerBase::connectWithWait;

private:
    int mRow = -1;
};

void setRowBusy(bool busy)
{
    QWriteLocker lock(&sScannerLock);
    sScannerInUse.at(0) = busy;
}

class ConnectionWait : public ::testing::Test
{
protected:
    void SetUp() override { setRowBusy(false); }
    void TearDown() override { setRowBusy(false); }
};

struct WaitResult {
    bool connected;
    qint64 ms;
    int started;
    int finished;
    bool finishedWith;
};

WaitResult wait(TableScanner& scanner, bool* abortFlag, double timeout)
{
    QSignalSpy started(&scanner, &CgwScannerBase::signalConnectorWaitingStarted);
    QSignalSpy finished(&scanner, &CgwScannerBase::signalConnectorWaitingFinished);
    QElapsedTimer timer;
    timer.start();
    const bool connected = scanner.connectWithWait(abortFlag, timeout);
    return {connected, timer.elapsed(), int(started.count()), int(finished.count()),
            finished.isEmpty() ? false : finished.first().first().toBool()};
}

} // namespace

TEST(ScannerTable, RowsIdentifiersAndEndMark)
{
    const CgwScannerInfo none;
    EXPECT_EQ(none.mScannerClass, 0);
    EXPECT_TRUE(none.mMakeAndModel.isEmpty());
    EXPECT_EQ(none.mScannerId, "-1");
    EXPECT_EQ(none.mVariant, -1);
    EXPECT_FALSE(none.mScanFlag);

    // Made at load time from the shared constants, which must already exist.
    EXPECT_EQ(sScannerTable[0].mMakeAndModel, "HDR,Atelier");
    EXPECT_EQ(sScannerTable[0].mScannerId, "HDR Atelier");
    EXPECT_EQ(sScannerTable[0].mVariant, 3);
    EXPECT_TRUE(sScannerTable[1].mMakeAndModel.isEmpty());
    EXPECT_EQ(sScannerTable[1].mScannerId, "-1");

    const std::vector<CgwScannerInfo> rows = TableScanner().getScannerList();
    ASSERT_EQ(rows.size(), 1u) << "the end mark is no scanner";
    EXPECT_EQ(rows[0].mScannerId, "HDR Atelier");
    EXPECT_EQ(gwScannerTableRow("HDR Atelier"), 0);
    EXPECT_EQ(gwScannerTableRow("HDR,Atelier"), -1);
    EXPECT_EQ(gwScannerTableRow("-1"), -1);

    QReadLocker lock(&sScannerLock);
    EXPECT_THROW(sScannerInUse.at(2), std::out_of_range);
}

TEST(ScannerTable, InUseFlagsAreClearedByTheFirstScannerOnly)
{
    setRowBusy(true);
    gwClearScannerInUseOnce();
    {
        QReadLocker lock(&sScannerLock);
        EXPECT_FALSE(sScannerInUse.at(0));
    }
    setRowBusy(true);
    gwClearScannerInUseOnce();
    QReadLocker lock(&sScannerLock);
    EXPECT_TRUE(sScannerInUse.at(0));
    lock.unlock();
    setRowBusy(false);
}

TEST_F(ConnectionWait, FreeRowConnectsAtOnce)
{
    TableScanner scanner;
    const WaitResult r = wait(scanner, nullptr, 0.0);
    EXPECT_TRUE(r.connected);
    EXPECT_EQ(scanner.attempts, 1);
    EXPECT_EQ(r.started, 0);
    EXPECT_EQ(r.finished, 1);
    EXPECT_TRUE(r.finishedWith);
}

TEST_F(ConnectionWait, BusyRowSpendsItsBudgetAndGivesUp)
{
    // A limited budget falls by a second for every 10 ms slept.
    const struct {
        const char* name;
        bool withFlag;
        double timeout;
        int attempts;
        qint64 minMs, maxMs;
    } cases[] = {
        {"no flag, default ten seconds: ten sleeps, two retries", false, 0.0, 3, 95, 1000},
        {"no flag, two seconds: two sleeps, one retry", false, 2.0, 2, 19, 500},
        {"flag already set: no sleep at all", true, 0.0, 1, 0, 10},
    };
    for (const auto& c : cases) {
        setRowBusy(true);
        TableScanner scanner;
        bool abort = true;
        const WaitResult r = wait(scanner, c.withFlag ? &abort : nullptr, c.timeout);
        EXPECT_FALSE(r.connected) << c.name;
        EXPECT_EQ(scanner.attempts, c.attempts) << c.name;
        EXPECT_GE(r.ms, c.minMs) << c.name;
        EXPECT_LT(r.ms, c.maxMs) << c.name;
        EXPECT_EQ(r.started, 1) << c.name;
        EXPECT_EQ(r.finished, 1) << c.name;
        EXPECT_FALSE(r.finishedWith) << c.name;
    }
}

TEST_F(ConnectionWait, WithAbortFlagTheWaitIsUnlimitedUntilTheRowFrees)
{
    setRowBusy(true);
    TableScanner scanner;
    bool abort = false;
    QThread* freer = QThread::create([] {
        QThread::msleep(300); // longer than any limited wait would last
        setRowBusy(false);
    });
    freer->start();
    const WaitResult r = wait(scanner, &abort, 0.0);
    freer->wait();
    delete freer;
    EXPECT_TRUE(r.connected);
    EXPECT_GE(r.ms, 290);
    EXPECT_TRUE(r.finishedWith);
}

TEST_F(ConnectionWait, UnlimitedWaitEndsWhenTheFlagIsSet)
{
    setRowBusy(true);
    TableScanner scanner;
    bool abort = false;
    QThread* aborter = QThread::create([&abort] {
        QThread::msleep(150);
        gwRequestAbort(&abort);
    });
    aborter->start();
    const WaitResult r = wait(scanner, &abort, 0.0);
    aborter->wait();
    delete aborter;
    EXPECT_FALSE(r.connected);
    EXPECT_GE(r.ms, 140);
    EXPECT_LT(r.ms, 2000);
}

TEST_F(ConnectionWait, ConnectorsOwnSignalsStaySilent)
{
    setRowBusy(true);
    TableScanner scanner;
    CgwScannerConnector connector;
    QSignalSpy started(&connector, &CgwScannerConnector::signalWaitingStarted);
    QSignalSpy finished(&connector, &CgwScannerConnector::signalWaitingFinished);
    QSignalSpy scannerFinished(&scanner, &CgwScannerBase::signalConnectorWaitingFinished);
    EXPECT_FALSE(connector.waitForConnection(scanner, 1.0));
    EXPECT_EQ(started.count(), 0);
    EXPECT_EQ(finished.count(), 0);
    EXPECT_EQ(scannerFinished.count(), 1);
}
