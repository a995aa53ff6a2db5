// The gamma filter's table, parameters and states.

#include "support/gwTestEnv.h"

#include "Sourcen/Image/gwBitmapT.h"
#include "processing/gwFilterGamma.h"
#include "processing/gwFilterInterfaceGamma.h"
#include "settings/gwFilterOptions.h"
#include "settings/gwParamKeys.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

std::vector<int> lutOf(quint64 steps, double gamma, quint64 outSteps = 0)
{
    int* lut = nullptr;
    CgwFilterGamma::fillGammaLutT(steps, gamma, true, lut, outSteps);
    std::vector<int> table(lut, lut + steps);
    delete[] lut;
    return table;
}

CgwParameterSet gammas(double in, double out, bool useBmp = false)
{
    CgwParameterSet params;
    params.setDouble(GgwParam_GammaIn, in);
    params.setDouble(GgwParam_GammaOut, out);
    params.setBool(GgwParam_UseBmpGamma, useBmp);
    return params;
}

} // namespace

TEST(GammaLut, KnownEntriesFromTheSharedCache)
{
    // Neighbouring cases differ in steps or gamma only, and the table runs
    // twice: the shared cache must hand out the table asked for every time.
    const struct {
        quint64 steps;
        double gamma;
        quint64 outSteps;
        std::vector<std::pair<int, int>> entries; // index, value
    } cases[] = {
        {256, 1.0, 0, {{0, 0}, {128, 128}, {255, 255}}},
        // Mid grey of linear data encoded for a display of gamma 2.2.
        {256, 2.2, 0, {{0, 0}, {128, 186}, {255, 255}}},
        {65536, 2.2, 0, {{0, 0}, {1, 424}, {65535, 65535}}},
        {65536, 1.0, 0, {{0, 0}, {32768, 32768}, {65535, 65535}}},
        // Fewer output steps: a 16-bit index giving 8-bit values.
        {65536, 1.0, 256, {{0, 0}, {32896, 128}, {65535, 255}}},
        // Decoding the other way darkens.
        {256, 1.0 / 2.2, 0, {{0, 0}, {186, 127}, {255, 255}}},
        {256, 1.8, 0, {{128, 174}}},
    };
    for (int round = 0; round < 2; ++round) {
        for (const auto& c : cases) {
            const std::vector<int> lut = lutOf(c.steps, c.gamma, c.outSteps);
            for (const auto& [index, value] : c.entries)
                EXPECT_EQ(lut[size_t(index)], value) << c.steps << " steps, gamma " << c.gamma << ", entry " << index;
        }
    }
}

TEST(GammaLut, SixteenBitTableRisesMonotonically)
{
    const std::vector<int> encode = lutOf(65536, 2.2);
    for (size_t i = 1; i < encode.size(); ++i)
        ASSERT_LE(encode[i - 1], encode[i]) << i;
}

TEST(GammaLut, MoreOutputThanInputStepsFallsBackWithAWarning)
{
    EXPECT_EQ(lutOf(256, 1.0, 65536)[255], 255);
    EXPECT_EQ(gwLastLogLine(), "gwDebug: CgwFilterGamma::fillGammaLutT : Warning: Output- higher than input- step "
                               "count. Currently not supported, using input step count.");
}

TEST(GammaFilter, ParametersRoundTripAndSmallChangesAreNoChange)
{
    CgwFilterGamma filter;
    filter.setParameters(gammas(2.2, 1.0, true));
    EXPECT_TRUE(filter.isChanged());
    CgwParameterSet read;
    filter.getParameters(read);
    CgwFilterGamma copy;
    copy.setParameters(read);
    EXPECT_NEAR(copy.gammaIn(), 2.2, 1e-6);
    EXPECT_EQ(copy.gammaOut(), 1.0);
    EXPECT_TRUE(copy.useBmpGamma());

    // Within the tolerance nothing changes; a missing key keeps its value.
    EXPECT_FALSE(filter.setParameterHelper(gammas(2.2001, 1.00005, true), false));
    CgwParameterSet onlyOut;
    onlyOut.setDouble(GgwParam_GammaOut, 1.8);
    EXPECT_TRUE(filter.setParameterHelper(onlyOut, true));
    EXPECT_EQ(filter.gammaIn(), 2.2);
    EXPECT_EQ(filter.gammaOut(), 1.8);
}

TEST(GammaFilter, OutOfRangeValuesAreMendedOneAtATime)
{
    CgwFilterOptions::instance().setGamma(2.2);
    CgwFilterGamma filter;
    const int before = gwLogLineCount();
    filter.setParameters(gammas(7.0, 0.1));
    EXPECT_EQ(filter.gammaIn(), 1.0);
    EXPECT_EQ(filter.gammaOut(), 0.1);
    EXPECT_EQ(gwLogLineCount(), before + 1);
    EXPECT_EQ(gwLastLogLine(), "gwDebug: Warning: CgwFilterGamma has reset input gamma value to default.");

    CgwFilterOptions::instance().setGamma(1.8);
    filter.validateParameters();
    EXPECT_EQ(filter.gammaOut(), 1.8) << "the target falls back to the options' gamma";
    EXPECT_EQ(gwLastLogLine(), "gwDebug: Warning: CgwFilterGamma has reset target gamma value to default.");

    // Both ends of the range are allowed.
    const int quiet = gwLogLineCount();
    filter.setParameters(gammas(0.2, 5.0));
    EXPECT_EQ(filter.gammaIn(), 0.2);
    EXPECT_EQ(filter.gammaOut(), 5.0);
    EXPECT_EQ(gwLogLineCount(), quiet);
}

TEST(GammaFilter, IsNeededLiveAndFrozen)
{
    // Live, the bitmap's gamma is not known yet; frozen, it is compared.
    const struct {
        double in, out;
        bool useBmp;
        float bitmapGamma;
        bool live, frozen;
    } cases[] = {
        {2.2, 2.2, false, 1.0f, false, false},
        {2.2, 1.0, false, 1.0f, true, true},
        {1.0, 1.0, true, 1.0f, true, false},
        {1.0, 1.0, true, 2.2f, true, true},
        {1.0, 2.2, true, 2.2f, true, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.in << " " << c.out << " bitmap " << c.bitmapGamma);
        CgwFilterGamma filter;
        filter.setParameters(gammas(c.in, c.out, c.useBmp));
        EXPECT_EQ(filter.isNeeded(), c.live);
        CgwBitmapT<CgwPixelGrey8> bitmap;
        bitmap.createBitmap(QSize(2, 2), EgwColorModeGrey, 0);
        bitmap.setGamma(c.bitmapGamma);
        filter.prepareRun({&bitmap});
        EXPECT_EQ(filter.isNeeded(), c.frozen);
        filter.endRun();
        EXPECT_FALSE(filter.isFrozen());
    }
}

TEST(GammaFilter, WhileFrozenTheSetComparesAgainstTheRunsValues)
{
    CgwFilterGamma filter;
    filter.setParameters(gammas(2.2, 1.0));
    filter.prepareRun({});
    // The user interface edits the live values; the run keeps its own.
    EXPECT_TRUE(filter.setParameterHelper(gammas(1.8, 1.0), true));
    CgwParameterSet seen;
    filter.getParameters(seen);
    EXPECT_NEAR(seen.doubleValue(GgwParam_GammaIn, 0), 2.2, 1e-6);
    // The non-direct way compares with the frozen 2.2 and stores both.
    EXPECT_TRUE(filter.setParameterHelper(gammas(1.8, 1.0), false));
    filter.getParameters(seen);
    EXPECT_NEAR(seen.doubleValue(GgwParam_GammaIn, 0), 1.8, 1e-6);
    filter.endRun();
}

TEST(GammaFilter, CloneCarriesValuesTableAndState)
{
    bool abort = false;
    CgwFilterGamma filter("gwGamma", &abort);
    filter.setParameters(gammas(2.2, 1.0));
    CgwBitmapT<CgwPixelGrey8> bitmap;
    bitmap.createBitmap(QSize(4, 1), EgwColorModeGrey, 0);
    ASSERT_TRUE(filter.prepareRun({&bitmap}) && filter.prepareExecute({&bitmap}, {&bitmap}));
    std::unique_ptr<CgwFilterGamma> copy(static_cast<CgwFilterGamma*>(filter.clone()));
    EXPECT_EQ(copy->abortFlag(), &abort);
    EXPECT_TRUE(copy->isFrozen());
    EXPECT_EQ(copy->gammaIn(), 2.2);
    ASSERT_EQ(copy->lutSteps(), 256u);
    EXPECT_EQ(std::vector<int>(copy->lut(), copy->lut() + 256), std::vector<int>(filter.lut(), filter.lut() + 256));
}

TEST(GammaFilter, InterfaceEditsTheFilterAndShowsTheBitmapsGamma)
{
    CgwFilterGamma filter;
    auto* ui = static_cast<CgwFilterInterfaceGamma*>(filter.filterInterface());
    ASSERT_NE(ui, nullptr);
    QSignalSpy gammaIn(ui, &CgwFilterInterfaceGamma::signalSetGammaIn);
    QSignalSpy bitmapGamma(ui, &CgwFilterInterfaceGamma::signalInBmpGammaToGUI);
    ui->slotGammaInChanged(1.8);
    EXPECT_EQ(filter.gammaIn(), 1.8);
    EXPECT_TRUE(filter.isChanged());
    ASSERT_EQ(gammaIn.count(), 1);
    EXPECT_EQ(gammaIn.first().first().toDouble(), 1.8);
    ui->slotChooseBmpGamma(true);
    EXPECT_TRUE(filter.useBmpGamma());

    CgwBitmapT<CgwPixelGrey8> bitmap;
    bitmap.createBitmap(QSize(2, 2), EgwColorModeGrey, 0);
    bitmap.setGamma(2.2f);
    filter.prepareRun({&bitmap});
    filter.prepareExecute({&bitmap}, {&bitmap});
    filter.endRun();
    ASSERT_EQ(bitmapGamma.count(), 1);
    EXPECT_EQ(bitmapGamma.first().first().toString(), "2.20");
}
