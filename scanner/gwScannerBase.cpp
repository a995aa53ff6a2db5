#include "scanner/gwScannerBase.h"

#include "scanner/gwScannerConnector.h"

CgwScannerBase::CgwScannerBase(QObject* parent) : QObject(parent) {}

CgwScannerBase::~CgwScannerBase() = default;

bool CgwScannerBase::queryFlag10() { return false; }
bool CgwScannerBase::queryFlag11() { return false; }
bool CgwScannerBase::setImageSource(const QString&) { return false; }
void CgwScannerBase::setPreloadedBitmap(CgwBitmapBase*) {}
bool CgwScannerBase::queryFlag14() { return false; }
bool CgwScannerBase::queryFlag15() { return false; }
bool CgwScannerBase::queryFlag16() { return false; }
bool CgwScannerBase::queryFlag17() { return false; }
void CgwScannerBase::operation18() {}
void CgwScannerBase::operation19() {}
bool CgwScannerBase::queryFlag21() { return true; }
bool CgwScannerBase::queryFlag22() { return true; }
int CgwScannerBase::queryInteger23() { return 1; }
bool CgwScannerBase::queryFlag24() { return false; }
bool CgwScannerBase::queryFlag25() { return false; }
bool CgwScannerBase::queryFlag26() { return false; }
bool CgwScannerBase::queryFlag27() { return false; }
void CgwScannerBase::slotEmitProgress(int) {}

CgwScannerDefaults CgwScannerBase::getScannerDefaults()
{
    CgwScannerDefaults d;
    d.mValue0 = 0;
    d.mValue1 = 0;
    d.mValue2 = 0;
    d.mValue3 = 1;
    d.mValue4 = 1;
    d.mValue5 = 1;
    d.mValue6 = 0;
    d.mValue7 = 1;
    d.mValue8 = 1.0;
    d.mValue9 = 1;
    d.mValue10 = 1;
    d.mValue11 = 0;
    return d;
}

bool CgwScannerBase::connectWithWait(bool* abortFlag, double timeoutSeconds)
{
    CgwScannerConnector connector(abortFlag);
    return connector.waitForConnection(*this, timeoutSeconds);
}
