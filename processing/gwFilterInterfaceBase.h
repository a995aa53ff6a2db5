#pragma once

#include "Sourcen/Image/gwColorMode.h"
#include "processing/gwFilterBase.h"
#include "settings/gwParameterSet.h"

#include <QObject>

class QUndoStack;

// The user-interface half of a filter. It borrows its filter, hands it the
// values a control changed, and re-reads the filter after a change.
class CgwFilterInterfaceBase : public QObject
{
    Q_OBJECT

public:
    explicit CgwFilterInterfaceBase(CgwFilterBase* filter);
    ~CgwFilterInterfaceBase() override;

    // Virtual operations, in slot order.
public slots:
    virtual void slotAllowUserInteraction(bool allowUserInteraction);
    virtual void slotPrescanStateChanged(bool isPrescanRunning);
public:
    virtual void setDefaultsAndUpdate();
    virtual void getFilterParameters(CgwParameterSet& params) const;
public slots:
    virtual void slotToggleExpert(int expertLevel);
    virtual void slotColorModeChanged(EgwColorMode colorMode);
public:
    virtual void operation7();
public slots:
    virtual void slotPerformAction(const QString& inControlIdRef, const SgwFilterActionRequest& request);
    virtual void slotSetParams(const QString& filterId, const CgwParameterSet& inParamSetRef);
public:
    virtual void operation10();
    virtual void updateFromFilter();
    virtual void operation12();
    virtual void operation13();
    // False for the keys whose change needs a new image from the source.
    virtual bool isSizeIndependentParameter(const QString& key) const;

    CgwFilterBase* filter() const { return mFilter; }
    bool allowsUserInteraction() const { return mAllowUserInteraction; }
    bool isPrescanRunning() const { return mPrescanRunning; }

signals:
    void signalUpdate();
    void signalRegisterFilterAction(const QString& controlId);
    void signalExpertToggled(int expertLevel);
    void signalFilterParameterChanged(CgwParameterSet params);
    void signalPrepareUndoFilter();
    void signalPrepareUndoCloneProtocol(int pathIndex, bool activeState);
    void signalSendParamForUndoFilter();
    void signalHistThumbNotNeededAnymore();
    void signalNegaTuneCurveEditHasStarted(QUndoStack* const stack);
    void signalNegaTuneCurveEditHasEnded();

public slots:
    void slotUpdateUIAndImageFromFilter(const CgwParameterSet& paramSet);
    void slotUpdateParameterInSaveMenu(CgwParameterSet& params);
    void slotSetAuto100pPreview(bool auto100p);
    void slotSetMaskID(qint32 maskId);
    void slotEditStarted();
    void slotEditEnded();
    void slotSendParamAtStartEdit();

protected:
    bool mAllowUserInteraction = true;
    bool mPrescanRunning = false;
    CgwFilterBase* mFilter = nullptr; // borrowed
    CgwParameterSet mParams;
};
