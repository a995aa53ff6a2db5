#pragma once

#include "settings/gwParameterSet.h"

#include <QList>
#include <QMetaType>
#include <QMutex>
#include <QObject>
#include <QPair>
#include <QString>
#include <QVariant>

#include <atomic>

class CgwBitmapBase;
class CgwFilterInterfaceBase;

using CgwBitmapList = QList<CgwBitmapBase*>;

// Logs "<where> : Warning: Method is not implemented in sub class for filter
// with ID "<id>"." for the slots a subclass has left to the base.
void gwLogFilterNotImplemented(const char* where, const QString& id);

// What a control of a filter's user interface asks the filter to do.
struct SgwFilterActionRequest {
    QString action;
    QVariant value;
};
Q_DECLARE_METATYPE(SgwFilterActionRequest)

// The processing half of a filter: named by its id, set by a parameter set,
// run over lists of bitmaps in the stages prepareRun, prepareExecute,
// executeMain, finishExecute, endRun. A filter never throws: a stage logs
// and answers false, and the run stops there.
class CgwFilterBase : public QObject
{
    Q_OBJECT

public:
    CgwFilterBase(const QString& id, bool* abortFlag, qint32 maskId = 0);
    ~CgwFilterBase() override;

    // Virtual operations, in slot order.
    virtual bool setParameterHelper(const CgwParameterSet& params, bool direct);
    virtual void validateParameters();
    virtual void setDefaults() = 0;
    virtual CgwFilterBase* clone() const = 0;
    virtual bool prepareRun(const CgwBitmapList& inBitmaps);
    virtual bool prepareExecute(const CgwBitmapList& inBitmaps, const CgwBitmapList& outBitmaps) = 0;
    virtual bool executeMain(const CgwBitmapList& inBitmaps, const CgwBitmapList& outBitmaps) = 0;
    virtual bool operation8(const CgwBitmapList& inBitmaps, const CgwBitmapList& outBitmaps);
    virtual bool finishExecute(const CgwBitmapList& inBitmaps, const CgwBitmapList& outBitmaps);
    virtual void endRun();
    virtual void setParameters(const CgwParameterSet& params) = 0;
    virtual void getParameters(CgwParameterSet& params) const = 0;
    virtual void operation13();
    virtual bool isNeededForBitmap(const CgwBitmapBase* bitmap) const;
    virtual bool isNeeded() const = 0;
    virtual bool isNotNeeded() const;
    virtual int filterKind() const;
    virtual quint32 typeCodeFor(const CgwBitmapBase* bitmap) const = 0;
    virtual quint32 typeCode() const = 0;
    virtual CgwFilterInterfaceBase* filterInterface();
    // Capability queries of the suite's other filters; this base answers no.
    virtual bool queryFlag21() const { return false; }
    virtual bool queryFlag22() const { return false; }
    virtual bool queryFlag23() const { return false; }
    virtual bool queryFlag24() const { return false; }
    virtual bool queryFlag25() const { return false; }
    virtual bool queryFlag26() const { return false; }
    virtual bool queryFlag27() const { return false; }
    virtual bool queryFlag28() const { return false; }
    virtual bool queryFlag29() const { return false; }
    virtual bool hasDialog(bool& hasOwnDialog) const;
    virtual QString displayName() const;
    virtual QPair<int, int> supportedBitmapRange() const;

    // All stages in their order; endRun follows every run that was prepared,
    // so a failed run does not leave the filter frozen.
    bool run(const CgwBitmapList& inBitmaps, const CgwBitmapList& outBitmaps);

    const QString& id() const { return mId; }
    bool* abortFlag() const { return mAbortFlag; }
    bool isChanged() const { return mChanged.load(); }
    void setChanged(bool changed) { mChanged.store(changed); }
    bool isInitialised() const { return mInitialised.load(); }
    qint32 maskId() const { return mMaskId; }
    void setMaskId(qint32 maskId) { mMaskId = maskId; }

    // Floating-point parameters count as changed when they differ by more
    // than this ratio.
    static constexpr double kRatioTolerance = 0.0001;
    static bool differsByRatio(double oldValue, double newValue);

signals:
    void signalFilterProgressUpdate(int percentage);

public slots:
    void slotAlgorithmProgress(int progressUpdate);

protected:
    bool abortRequested() const;

    std::atomic<bool> mInitialised{false};
    std::atomic<bool> mChanged{false}; // the filter must run again
    qint32 mMaskId = 0;
    void* mMask = nullptr;
    QMutex mMutex;
    QString mId;
    bool* mAbortFlag = nullptr; // owned by the caller
    CgwFilterInterfaceBase* mInterface = nullptr; // owned, made by filterInterface()
};
