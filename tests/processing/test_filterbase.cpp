// The filter framework: run order, parameter binding and the interface's
// rules for passing parameters on, seen through a filter made for the test.

#include "support/gwTestEnv.h"

#include "processing/gwFilterGamma.h"
#include "processing/gwFilterIds.h"
#include "processing/gwFilterInterfaceBase.h"
#include "settings/gwParamKeys.h"

#include <QSignalSpy>
#include <QStringList>

#include <gtest/gtest.h>

namespace {

// Records its stages; `failAt` makes that stage answer false. It takes any
// key as a change and has no setParameterHelper of its own when `plain`.
class CgwRecordingFilter : public CgwFilterBase
{
public:
    CgwRecordingFilter(bool* abortFlag, QString failAt = {}) : CgwFilterBase("gwTestFilter", abortFlag), mFailAt(failAt) {}

    bool setParameterHelper(const CgwParameterSet& params, bool direct) override
    {
        if (mPlain)
            return CgwFilterBase::setParameterHelper(params, direct);
        mSeen = params;
        return !params.isEmpty();
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
            mChanged = true;
    }
    void getParameters(CgwParameterSet& params) const override { params = mSeen; }
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
    CgwParameterSet mSeen;
    bool mPlain = false;
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
    const struct {
        const char* failAt;
        bool result;
        QStringList stages;
    } cases[] = {
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
    const struct {
        bool* flag;
        bool up;
        bool changed;
    } cases[] = {{nullptr, false, false}, {&abort, false, false}, {&abort, true, true}};
    for (const auto& c : cases) {
        abort = c.up;
        CgwRecordingFilter filter(c.flag);
        filter.setChanged(true);
        EXPECT_TRUE(filter.finishExecute({}, {}));
        EXPECT_EQ(filter.isChanged(), c.changed);
    }
}

TEST(FilterBase, AFilterWithoutParameterHelperWarnsWithItsIdAndKeepsItsState)
{
    CgwRecordingFilter filter(nullptr);
    filter.mPlain = true;
    filter.setParameters(setOf({GgwParam_GammaIn}));
    EXPECT_FALSE(filter.isChanged());
    EXPECT_EQ(gwLastLogLine(), "gwDebug: CgwFilterBase::setParameterHelper : Warning: Method is not implemented in "
                               "sub class for filter with ID \"gwTestFilter\".");

    CgwFilterInterfaceBase plainInterface(&filter);
    plainInterface.updateFromFilter();
    EXPECT_EQ(gwLastLogLine(), "gwDebug: CgwFilterInterfaceBase::updateFromFilter : Warning: Method is not "
                               "implemented in sub class for filter with ID \"gwTestFilter\".");
    plainInterface.slotPerformAction("control", SgwFilterActionRequest{});
    EXPECT_TRUE(gwLastLogLine().startsWith("gwDebug: CgwFilterInterfaceBase::slotPerformAction : Warning:"));
}

TEST(FilterBase, BaseAnswersOfTheSlotsKeptForOtherFilters)
{
    CgwRecordingFilter filter(nullptr);
    bool hasOwnDialog = true;
    EXPECT_TRUE(filter.hasDialog(hasOwnDialog));
    EXPECT_FALSE(hasOwnDialog);
    EXPECT_EQ(filter.filterKind(), -1);
    EXPECT_EQ(filter.displayName(), "gwTestFilter");
    EXPECT_EQ(filter.supportedBitmapRange(), qMakePair(0, 0));
    EXPECT_TRUE(filter.isNeededForBitmap(nullptr));
    EXPECT_FALSE(filter.isNotNeeded());
    EXPECT_EQ(filter.filterInterface(), nullptr);
}

TEST(FilterBase, SetParamsPassesChangesOnByTheKeysTheSetHolds)
{
    const struct {
        const char* filterId;
        QStringList keys;
        bool changed;
        int parameterSignals;
        int updates;
    } cases[] = {
        {"gwOther", {"GammaIn"}, false, 0, 0},
        {"gwTestFilter", {}, false, 0, 0},
        {"gwTestFilter", {"GammaIn"}, true, 0, 1},
        {"gwTestFilter", {"FilterNewSizeFull"}, true, 1, 1},
        {"gwTestFilter", {"FilterNewColorMode"}, true, 1, 1},
        {"gwTestFilter", {"FilterNewPixelType"}, true, 1, 1},
        {"gwTestFilter", {"FilterCopyOnly"}, true, 0, 0},
        {"gwTestFilter", {"GammaIn", "GammaOut"}, true, 1, 1},
        {"gwTestFilter", {"FilterCopyOnly", "GammaIn"}, true, 1, 1},
    };
    for (const auto& c : cases) {
        CgwRecordingFilter filter(nullptr);
        CgwRecordingInterface ui(&filter);
        QSignalSpy parameterChanged(&ui, &CgwFilterInterfaceBase::signalFilterParameterChanged);
        QSignalSpy updated(&ui, &CgwFilterInterfaceBase::signalUpdate);
        ui.slotSetParams(c.filterId, setOf(c.keys));
        const QString what = c.filterId + QStringLiteral(" ") + c.keys.join(',');
        EXPECT_EQ(filter.isChanged(), c.changed) << qPrintable(what);
        EXPECT_EQ(parameterChanged.count(), c.parameterSignals) << qPrintable(what);
        EXPECT_EQ(updated.count(), c.updates) << qPrintable(what);
        EXPECT_EQ(ui.mUpdates, c.updates) << qPrintable(what);
    }
}

TEST(FilterBase, AnUnchangedAutoOrNeutraliseSetStillRereadsTheFilter)
{
    CgwFilterGamma filter;
    CgwRecordingInterface ui(&filter);
    for (const QString& key : {GgwParam_IsAutoMode, GgwParam_IsNeutralizeMode}) {
        ui.mUpdates = 0;
        CgwParameterSet params;
        params.setBool(key, true);
        ui.slotSetParams("gwGamma", params);
        EXPECT_EQ(ui.mUpdates, 1) << qPrintable(key);
    }
}

TEST(FilterBase, RatioToleranceOfFloatingPointParameters)
{
    const struct {
        double oldValue, newValue;
        bool differs;
    } cases[] = {
        {2.2, 2.2, false}, {2.2, 2.2002, false}, {2.2, 2.2003, true}, {1.0, 0.9998, true},
        {0.0, 0.0, false}, {1.0, 0.0, true}, {0.0, 1.0, true},
    };
    for (const auto& c : cases)
        EXPECT_EQ(CgwFilterBase::differsByRatio(c.oldValue, c.newValue), c.differs) << c.oldValue << " " << c.newValue;
}

TEST(FilterBase, IdAndNameTables)
{
    const CgwRecordingFilter filter(nullptr); // registers the request type
    EXPECT_EQ(gwFilterIds().size(), 34);
    EXPECT_EQ(gwFilterIds().indexOf(gwGammaFilterId()), 7);
    EXPECT_EQ(gwFilterIds().last(), "gwGradManPip");
    EXPECT_EQ(gwFilterDisplayNames().size(), 21);
    EXPECT_TRUE(gwFilterDisplayNames().contains("Grain and Noise Elemination"));
    EXPECT_EQ(QMetaType::type("SgwFilterActionRequest"), qMetaTypeId<SgwFilterActionRequest>());
}
