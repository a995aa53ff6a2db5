#include "scanner/gwScannerConnector.h"

#include "Sourcen/Image/gwAbortFlag.h"
#include "scanner/gwScannerBase.h"

#include <QThread>

bool CgwScannerConnector::waitForConnection(CgwScannerBase& scanner, double timeoutSeconds)
{
    double timeout = timeoutSeconds;
    if (timeout <= 0.0)
        timeout = mAbortFlag ? 0.0 : 10.0;
    const bool limited = timeout > 0.0;
    double budget = limited ? timeout * 1000.0 : 0.0;

    if (!scanner.tryConnect()) {
        Q_EMIT scanner.signalConnectorWaitingStarted();
        if (!gwAbortRequested(mAbortFlag)) {
            while (!limited || budget > 0.0) {
                for (int round = 0; round < 5; ++round) {
                    if (gwAbortRequested(mAbortFlag) || (limited && budget <= 0.0))
                        break;
                    QThread::msleep(10);
                    if (limited)
                        budget -= 1000.0;
                }
                if (scanner.tryConnect() || gwAbortRequested(mAbortFlag))
                    break;
            }
        }
    }
    const bool result = scanner.isConnected();
    Q_EMIT scanner.signalConnectorWaitingFinished(result);
    return result;
}
