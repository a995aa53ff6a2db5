#pragma once

#include <QReadWriteLock>
#include <QString>

#include <array>
#include <vector>

// Describes one scanner: a row of the scanner table, and what the host hands
// to the factory.
struct CgwScannerInfo {
    qint32 mScannerClass = 0;
    QString mMakeAndModel;                    // maker and model, one comma between
    QString mScannerId = QStringLiteral("-1"); // "-1" is the system's word for "no scanner"
    qint32 mVariant = -1;
    QString mReserved;
    bool mScanFlag = false;
};

extern const QString GgwScannerHDRMakeAndModel; // "HDR,Atelier"
extern const QString GgwScannerHDRId;           // "HDR Atelier"
extern const QString GgwNoScannerId;            // "-1"

constexpr int kGwScannerTableRows = 2;

// The scanners of this plug-in; the row whose make and model is empty ends it.
extern CgwScannerInfo sScannerTable[kGwScannerTableRows];

// One in-use flag a table row, guarded by sScannerLock; at() throws
// std::out_of_range for a row of 2 or more.
extern std::array<bool, kGwScannerTableRows> sScannerInUse;
extern QReadWriteLock sScannerLock;

// The first scanner object ever made clears the in-use flags; later ones
// leave them alone. Takes the write lock.
void gwClearScannerInUseOnce();

// The table's rows before the end mark.
std::vector<CgwScannerInfo> gwScannerTableRows();

// The row whose identifier is `id`, or -1.
int gwScannerTableRow(const QString& id);
