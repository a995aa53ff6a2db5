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

TEST(ScannerBase, DefaultsOfTheUnnamedOperations)
{
    TableScanner scanner;
    EXPECT_FALSE(scanner.setImageSource("file:/x.tif"));
    for (bool value : {scanner.queryFlag10(), scanner.queryFlag11(), scanner.queryFlag14(), scanner.queryFlag15(),
                       scanner.queryFlag16(), scanner.queryFlag17(), scanner.queryFlag24(), scanner.queryFlag25(),
                       scanner.queryFlag26(), scanner.queryFlag27()})
        EXPECT_FALSE(value);
    EXPECT_TRUE(scanner.queryFlag21());
    EXPECT_TRUE(scanner.queryFlag22());
    EXPECT_EQ(scanner.queryInteger23(), 1);

    const CgwScannerDefaults d = scanner.getScannerDefaults();
    EXPECT_EQ(d.mValue0, 0);
    EXPECT_EQ(d.mValue1, 0);
    EXPECT_EQ(d.mValue2, 0);
    EXPECT_EQ(d.mValue3, 1);
    EXPECT_EQ(d.mValue4, 1);
    EXPECT_EQ(d.mValue5, 1);
    EXPECT_EQ(d.mValue6, 0);
    EXPECT_EQ(d.mValue7, 1);
    EXPECT_EQ(d.mValue8, 1.0);
    EXPECT_EQ(d.mValue9, 1);
    EXPECT_EQ(d.mValue10, 1);
    EXPECT_EQ(d.mValue11, 0);
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

TEST_F(ConnectionWait, BusyRowWithoutAbortFlagGivesUpAfterTwoRetries)
{
    setRowBusy(true);
    TableScanner scanner;
    const WaitResult r = wait(scanner, nullptr, 0.0);
    EXPECT_FALSE(r.connected);
    EXPECT_EQ(scanner.attempts, 3) << "the first attempt and two retries";
    EXPECT_GE(r.ms, 95) << "ten sleeps of 10 ms";
    EXPECT_LT(r.ms, 1000) << "the nominal ten seconds are not waited";
    EXPECT_EQ(r.started, 1);
    EXPECT_EQ(r.finished, 1);
    EXPECT_FALSE(r.finishedWith);
}

TEST_F(ConnectionWait, ExplicitTimeoutShrinksTheBudget)
{
    setRowBusy(true);
    TableScanner scanner;
    const WaitResult r = wait(scanner, nullptr, 2.0); // two sleeps, one retry
    EXPECT_FALSE(r.connected);
    EXPECT_EQ(scanner.attempts, 2);
    EXPECT_GE(r.ms, 19);
    EXPECT_LT(r.ms, 500);
}

TEST_F(ConnectionWait, AbortFlagAlreadySetReturnsWithoutSleeping)
{
    setRowBusy(true);
    TableScanner scanner;
    bool abort = true;
    const WaitResult r = wait(scanner, &abort, 0.0);
    EXPECT_FALSE(r.connected);
    EXPECT_EQ(scanner.attempts, 1);
    EXPECT_LT(r.ms, 10);
    EXPECT_EQ(r.started, 1);
    EXPECT_EQ(r.finished, 1);
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
