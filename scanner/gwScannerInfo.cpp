#include "scanner/gwScannerInfo.h"

// The identifiers are defined here, ahead of the table, because the table's
// strings are copies of them and static objects of one file are made in order.
const QString GgwScannerHDRMakeAndModel = QStringLiteral("HDR,Atelier");
const QString GgwScannerHDRId = QStringLiteral("HDR Atelier");
const QString GgwNoScannerId = QStringLiteral("-1");

CgwScannerInfo sScannerTable[kGwScannerTableRows] = {
    {0, GgwScannerHDRMakeAndModel, GgwScannerHDRId, 3, QString(), false},
    {0, QString(), GgwNoScannerId, -1, QString(), false},
};

std::array<bool, kGwScannerTableRows> sScannerInUse = {false, false};
QReadWriteLock sScannerLock;

namespace {
bool sScannerInUseCleared = false;
}

void gwClearScannerInUseOnce()
{
    QWriteLocker lock(&sScannerLock);
    if (sScannerInUseCleared)
        return;
    sScannerInUse.fill(false);
    sScannerInUseCleared = true;
}

std::vector<CgwScannerInfo> gwScannerTableRows()
{
    std::vector<CgwScannerInfo> rows;
    for (int row = 0; row < kGwScannerTableRows && !sScannerTable[row].mMakeAndModel.isEmpty(); ++row)
        rows.push_back(sScannerTable[row]);
    return rows;
}

int gwScannerTableRow(const QString& id)
{
    for (int row = 0; row < kGwScannerTableRows && !sScannerTable[row].mMakeAndModel.isEmpty(); ++row) {
        if (sScannerTable[row].mScannerId == id)
            return row;
    }
    return -1;
}
