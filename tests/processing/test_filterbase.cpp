// The filter framework: run order, parameter binding and the interface's
// rules for passing parameters on, seen through a filter made for the test.

#include "support/gwTestEnv.h"

#include "processing/gwFilterBase.h"
#include "processing/gwFilterInterfaceBase.h"
#include "settings/gwParamKeys.h"

#include <QSignalSpy>
#include <QStringList>

#include <gtest/gtest.h>

#include <tuple>

namespace {

// Records its stages; `failAt` makes that stage answer false. It takes any
// non-empty set without the auto mode key as a change (an automatic filter
// whose result stayed).
class CgwRecordingFilter : public CgwFilterBase
{
public:
    CgwRecordingFilter(bool* abortFlag, QString failAt = {}) : CgwFilterBase("gwTestFilter", abortFlag), mFailAt(failAt) {}

    bool setParameterHelper(const CgwParameterSet& params, bool) override
    {
        return !params.isEmpty() && !params.hasKey(GgwParam_IsAutoMode);
    }
    void setDefaults() override {}
    CgwFilterBase* clone() const override { return nullptr; }
    bool prepareRun(const CgwBitmapList&) override { return stage("prepareRun"); }
    bool prepareExecute(const CgwBitmapList&, const CgwBitmapList&) override { return stage("prepareExecute"); }
    bool executeMain(const CgwBitmapList&, const CgwBitmapList&) override { return stage("executeMain"); }
    bool finishExecute(const CgwBitmapList& in, const CgwBitmapList& out) override
    {
        return stage("finishExecute") && CgwFilterBase::finishExecute(in, out);
    }
    void endRun() override { stage("endRun"); }
    void setParameters(const CgwParameterSet& params) override
    {
        if (setParameterHelper(params, false))
            setChanged(true);
    }
    void getParameters(CgwParameterSet&) const override {}
    bool isNeeded() const override { return true; }
    quint32 typeCodeFor(const CgwBitmapBase*) const override { return 0; }
    quint32 typeCode() const override { return 0; }

    bool stage(const QString& name)
    {
        mStages << name;
        return name != mFailAt;
    }

    QString mFailAt;
    QStringList mStages;
};

class CgwRecordingInterface : public CgwFilterInterfaceBase
{
public:
    using CgwFilterInterfaceBase::CgwFilterInterfaceBase;
    void updateFromFilter() override { ++mUpdates; }
    int mUpdates = 0;
};

CgwParameterSet setOf(const QStringList& keys)
{
    CgwParameterSet params;
    for (const QString& key : keys)
        params.setDouble(key, 1.5);
    return params;
}

} // namespace

TEST(FilterBase, StagesRunInOrderAndTheRunEndsEvenAfterAFailure)
{
    const struct { const char* failAt; bool result; QStringList stages; } cases[] = {
        {"", true, {"prepareRun", "prepareExecute", "executeMain", "finishExecute", "endRun"}},
        {"prepareRun", false, {"prepareRun", "endRun"}},
        {"prepareExecute", false, {"prepareRun", "prepareExecute", "endRun"}},
        {"executeMain", false, {"prepareRun", "prepareExecute", "executeMain", "endRun"}},
    };
    for (const auto& c : cases) {
        CgwRecordingFilter filter(nullptr, c.failAt);
        EXPECT_EQ(filter.run({}, {}), c.result) << c.failAt;
        EXPECT_EQ(filter.mStages, c.stages) << c.failAt;
    }
}

TEST(FilterBase, FinishExecuteKeepsTheChangedFlagOnlyWhenAborted)
{
    bool abort = false;
    const struct { bool* flag; bool up, changed; } cases[] = {
        {nullptr, false, false}, {&abort, false, false}, {&abort, true, true}};
    for (const auto& c : cases) {
        abort = c.up;
        CgwRecordingFilter filter(c.flag);
        filter.setChanged(true);
        EXPECT_TRUE(filter.finishExecute({}, {}));
        EXPECT_EQ(filter.isChanged(), c.changed) << c.up;
    }
}

TEST(FilterBase, SetParamsPassesChangesOnByTheKeysTheSetHolds)
{
    // A lone key that needs no new image sends no parameter signal; a lone
    // copy-only key no update. An unchanged set with the mode key still has
    // the interface reread the filter. Sets for another filter are ignored.
    const struct { const char* id; QStringList keys; bool changed; int parameterSignals, updates, rereads; } cases[] = {
        {"gwOther", {"GammaIn"}, false, 0, 0, 0}, {"gwTestFilter", {}, false, 0, 0, 0},
        {"gwTestFilter", {"GammaIn"}, true, 0, 1, 1}, {"gwTestFilter", {"FilterNewSizeFull"}, true, 1, 1, 1},
        {"gwTestFilter", {"FilterCopyOnly"}, true, 0, 0, 0}, {"gwTestFilter", {"GammaIn", "GammaOut"}, true, 1, 1, 1},
        {"gwTestFilter", {"FilterCopyOnly", "GammaIn"}, true, 1, 1, 1},
        {"gwTestFilter", {GgwParam_IsAutoMode}, false, 0, 0, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(qPrintable(c.id + QStringLiteral(" ") + c.keys.join(',')));
        CgwRecordingFilter filter(nullptr);
        CgwRecordingInterface ui(&filter);
        QSignalSpy parameterChanged(&ui, &CgwFilterInterfaceBase::signalFilterParameterChanged);
        QSignalSpy updated(&ui, &CgwFilterInterfaceBase::signalUpdate);
        ui.slotSetParams(c.id, setOf(c.keys));
        EXPECT_EQ(filter.isChanged(), c.changed);
        EXPECT_EQ(std::make_tuple(parameterChanged.count(), updated.count(), ui.mUpdates),
                  std::make_tuple(c.parameterSignals, c.updates, c.rereads));
    }
}

TEST(FilterBase, RatioToleranceOfFloatingPointParameters)
{
    const struct { double oldValue, newValue; bool differs; } cases[] = {
        {2.2, 2.2, false}, {2.2, 2.2002, false}, {2.2, 2.2003, true}, {1.0, 0.9998, true},
        {0.0, 0.0, false}, {1.0, 0.0, true}, {0.0, 1.0, true},
    };
    for (const auto& c : cases)
        EXPECT_EQ(CgwFilterBase::differsByRatio(c.oldValue, c.newValue), c.differs) << c.oldValue << " " << c.newValue;
}
