// The gamma filter: its table, parameters and states, and runs over bitmaps
// (every pixel type, the copy without a table, the abort flag, and edits from
// another thread while a run is under way).

#include "support/gwTestEnv.h"

#include "Sourcen/Image/gwAbortFlag.h"
#include "Sourcen/Image/gwBitmapT.h"
#include "processing/gwFilterGamma.h"
#include "processing/gwFilterInterfaceGamma.h"
#include "settings/gwFilterOptions.h"
#include "settings/gwParamKeys.h"

#include <QtConcurrent>

#include <gtest/gtest.h>

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

// Fills every sample with a pattern that reaches 0 and the type's maximum.
template <class Pixel>
void fillPattern(CgwBitmapT<Pixel>& bitmap)
{
    using Sample = typename Pixel::SampleType;
    for (int y = 0; y < bitmap.size().height(); ++y)
        for (int x = 0; x < bitmap.size().width(); ++x)
            for (int c = 0; c < Pixel::kChannels; ++c)
                bitmap.line(y)[x].s[c] = Sample((x * 251 + y * 97 + c * 13) % (Pixel::kMax + 1));
}

} // namespace

TEST(GammaLut, KnownEntriesFromTheSharedCache)
{
    // Neighbouring cases differ in steps or gamma only, and the table runs
    // twice: the shared cache must hand out the table asked for every time.
    // Entries are (index, value) pairs.
    const struct {
        quint64 steps; double gamma; quint64 outSteps; std::vector<std::pair<int, int>> entries;
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
    for (int round = 0; round < 2; ++round)
        for (const auto& c : cases) {
            const std::vector<int> lut = lutOf(c.steps, c.gamma, c.outSteps);
            for (const auto& [index, value] : c.entries)
                EXPECT_EQ(lut[size_t(index)], value) << c.steps << " steps, gamma " << c.gamma << ", entry " << index;
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
    CgwFilterGamma filter, copy;
    filter.setParameters(gammas(2.2, 1.0, true));
    EXPECT_TRUE(filter.isChanged());
    CgwParameterSet read;
    filter.getParameters(read);
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
    const struct { double in, out; bool useBmp; float bitmapGamma; bool live, frozen; } cases[] = {
        {2.2, 2.2, false, 1.0f, false, false}, {2.2, 1.0, false, 1.0f, true, true},
        {1.0, 1.0, true, 1.0f, true, false}, {1.0, 1.0, true, 2.2f, true, true}, {1.0, 2.2, true, 2.2f, true, false},
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

TEST(GammaRun, ExecuteMainRefusesMissingBitmapsWithItsMessages)
{
    CgwFilterGamma filter;
    filter.setParameters(gammas(2.2, 1.0));
    CgwBitmapT<CgwPixelGrey8> bitmap;
    bitmap.createBitmap(QSize(4, 4), EgwColorModeGrey, 0);
    const struct { CgwBitmapList in, out; const char* message; } cases[] = {
        {{}, {&bitmap}, "gwDebug: CgwFilterGamma::executeMain error: no input bitmap"},
        {{&bitmap}, {}, "gwDebug: CgwFilterGamma::executeMain error: not output bitmap"},
        {{nullptr}, {&bitmap}, "gwDebug: CgwFilterGamma::executeMain error: in- or outbitmap is null"},
    };
    filter.prepareRun({&bitmap});
    for (const auto& c : cases) {
        EXPECT_FALSE(filter.executeMain(c.in, c.out));
        EXPECT_EQ(gwLastLogLine(), c.message);
    }
    // A run that skipped prepareExecute has no table.
    EXPECT_FALSE(filter.executeMain({&bitmap}, {&bitmap}));
    EXPECT_EQ(gwLastLogLine(), "gwDebug: CgwFilterGamma::executeMain : Error: Gamma LUT is empty!");
}

TEST(GammaRun, EveryPixelTypeEitherRunsThroughTheTableOrIsDeclined)
{
    const QSize size(67, 9);
    for (int type = 0; type < kGwPixelTypeCount; ++type) {
        SCOPED_TRACE(testing::Message() << "pixel type " << type);
        gwDispatchPixelType(type, [&](auto pixel) {
            using Pixel = decltype(pixel);
            const int mode = Pixel::kChannels == 1 ? EgwColorModeGrey
                             : Pixel::kChannels == 2 ? EgwColorModeTwoChannel : EgwColorModeRGB;
            CgwBitmapT<Pixel> in, out;
            ASSERT_TRUE(in.createBitmap(size, mode, 0) && out.createBitmap(size, mode, 0));
            fillPattern(in);
            CgwFilterGamma filter;
            filter.setParameters(gammas(1.0, 2.2));
            const int before = gwLogLineCount();
            const bool runs = type == 0 || type == 1 || type == 3 || type == 4 || type == 5;
            EXPECT_EQ(filter.run({&in}, {&out}), runs);
            if (!runs) {
                // Float types are declined before a table is made; the others
                // run no loop and say nothing.
                EXPECT_LE(gwLogLineCount(), before + (type == 6 || type == 7 ? 1 : 0));
                return;
            }
            EXPECT_EQ(out.gamma(), 2.2f);
            ASSERT_EQ(filter.lutSteps(), quint64(Pixel::kMax) + 1) << "one entry for every sample value";
            for (int y = 0; y < size.height(); ++y)
                for (int x = 0; x < size.width(); ++x)
                    for (int c = 0; c < Pixel::kChannels; ++c)
                        ASSERT_EQ(int(out.line(y)[x].s[c]), filter.lut()[size_t(in.line(y)[x].s[c])])
                            << x << "," << y << " channel " << c;
        });
    }
}

TEST(GammaRun, EqualGammasCopyWithoutATable)
{
    CgwBitmapT<CgwPixel16x3> in, out;
    ASSERT_TRUE(in.createBitmap(QSize(31, 7), EgwColorModeRGB, 0));
    ASSERT_TRUE(out.createBitmap(QSize(31, 7), EgwColorModeRGB, 0));
    fillPattern(in);
    const QByteArray original = in.getData();
    CgwFilterGamma filter;
    filter.setParameters(gammas(2.2, 2.2002));
    ASSERT_TRUE(filter.run({&in}, {&out}));
    EXPECT_EQ(filter.lutSteps(), 0u);
    EXPECT_EQ(out.getData(), original);
    ASSERT_TRUE(filter.run({&in}, {&in}));
    EXPECT_EQ(in.getData(), original);
}

TEST(GammaRun, TheBitmapsOwnGammaIsTheSourceWhenAsked)
{
    CgwBitmapT<CgwPixelGrey8> bitmap;
    bitmap.createBitmap(QSize(1, 1), EgwColorModeGrey, 0);
    bitmap.line(0)[0].s[0] = 186;
    bitmap.setGamma(2.2f);
    CgwFilterGamma filter;
    filter.setParameters(gammas(1.0, 1.0, true));
    ASSERT_TRUE(filter.run({&bitmap}, {&bitmap}));
    EXPECT_EQ(bitmap.line(0)[0].s[0], 127);
    EXPECT_EQ(bitmap.gamma(), 1.0f);
}

TEST(GammaRun, AnAbortFlagUpBeforeTheFirstRowStopsEveryRow)
{
    CgwBitmapT<CgwPixelGrey8> bitmap;
    bitmap.createBitmap(QSize(16, 64), EgwColorModeGrey, 0);
    fillPattern(bitmap);
    const QByteArray original = bitmap.getData();
    bool abort = true;
    CgwFilterGamma filter("gwGamma", &abort);
    filter.setParameters(gammas(1.0, 2.2));
    filter.setChanged(false);
    EXPECT_FALSE(filter.run({&bitmap}, {&bitmap}));
    EXPECT_EQ(bitmap.getData(), original);

    // Run the stages by hand: finishExecute after an abort keeps the
    // filter marked for another run.
    ASSERT_TRUE(filter.prepareRun({&bitmap}) && filter.prepareExecute({&bitmap}, {&bitmap}));
    EXPECT_FALSE(filter.executeMain({&bitmap}, {&bitmap}));
    EXPECT_TRUE(filter.finishExecute({&bitmap}, {&bitmap}));
    EXPECT_TRUE(filter.isChanged());
    filter.endRun();
}

TEST(GammaRun, AnAbortDuringTheRunIsReportedTruthfully)
{
    // Whether the flag comes up before the last row or not, the result must
    // say truthfully whether every row was done.
    const QSize size(4096, 4096);
    CgwBitmapT<CgwPixelGrey8> bitmap;
    bitmap.createBitmap(size, EgwColorModeGrey, 0);
    const QByteArray grey(size.width() * size.height(), char(128));
    ASSERT_TRUE(bitmap.setBlock(grey));
    bool abort = false;
    CgwFilterGamma filter("gwGamma", &abort);
    filter.setParameters(gammas(1.0, 2.2));
    ASSERT_TRUE(filter.prepareRun({&bitmap}) && filter.prepareExecute({&bitmap}, {&bitmap}));
    QFuture<bool> running = QtConcurrent::run([&] { return filter.executeMain({&bitmap}, {&bitmap}); });
    QThread::msleep(2);
    gwRequestAbort(&abort);
    const bool done = running.result();
    filter.endRun();
    bool allRows = true;
    for (int y = 0; y < size.height(); ++y)
        allRows = allRows && bitmap.line(y)[size.width() - 1].s[0] != 128;
    EXPECT_EQ(done, allRows);
}

TEST(GammaRun, EditsFromAnotherThreadWaitForTheNextRun)
{
    CgwBitmapT<CgwPixel16x3> bitmap;
    bitmap.createBitmap(QSize(1024, 1024), EgwColorModeRGB, 0);
    CgwFilterGamma filter;
    filter.setParameters(gammas(2.2, 1.0));
    auto* ui = static_cast<CgwFilterInterfaceGamma*>(filter.filterInterface());
    QFuture<bool> running = QtConcurrent::run([&] {
        bool all = true;
        for (int i = 0; i < 4; ++i)
            all = filter.run({&bitmap}, {&bitmap}) && all;
        return all;
    });
    int edits = 0;
    while (!running.isFinished())
        ui->slotGammaOutChanged(edits++ % 2 ? 1.8 : 1.6);
    ASSERT_TRUE(running.result());
    // Every run finished on the values it froze, never a torn mixture; when
    // the live value moved on, the filter is marked to run again.
    const float finished = bitmap.gamma();
    EXPECT_TRUE(finished == 1.0f || finished == 1.8f || finished == 1.6f) << finished;
    if (float(filter.gammaOut()) != finished) {
        EXPECT_TRUE(filter.isChanged()) << edits << " edits";
    }
}
