#pragma once

#include <QObject>

// How a format reports percent done while it loads.
class CgwImportProgress : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    void signalNewImageData(int percent);
};
