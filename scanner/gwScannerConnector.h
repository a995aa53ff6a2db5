#pragma once

#include <QObject>

class CgwScannerBase;

// Waits for a scanner's table row on behalf of one connection attempt. Lives
// on the stack; reports through the scanner's signals.
class CgwScannerConnector : public QObject
{
    Q_OBJECT

public:
    explicit CgwScannerConnector(bool* abortFlag = nullptr) : mAbortFlag(abortFlag) {}

    // A timeout of 0 or less means 10 seconds without an abort flag and an
    // unlimited wait with one. The budget falls by one second for every 10 ms
    // slept: a limited wait costs a tenth of its nominal time.
    bool waitForConnection(CgwScannerBase& scanner, double timeoutSeconds);

Q_SIGNALS:
    void signalWaitingStarted();
    void signalWaitingFinished(bool connected);

private:
    bool* mAbortFlag; // the caller's, may be null
};
