// Gamma runs over bitmaps: every pixel type, the copy without a table, the
// abort flag, and edits from another thread while a run is under way.

#include "support/gwTestEnv.h"

#include "Sourcen/Image/gwAbortFlag.h"
#include "Sourcen/Image/gwBitmapT.h"
#include "processing/gwFilterGamma.h"
#include "processing/gwFilterInterfaceGamma.h"
#include "settings/gwParamKeys.h"

#include <QtConcurrent>

#include <gtest/gtest.h>

#include <memory>

namespace {

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
    for (int y = 0; y < bitmap.size().height(); ++y) {
        const auto row = bitmap.line(y);
        for (int x = 0; x < bitmap.size().width(); ++x)
            for (int c = 0; c < Pixel::kChannels; ++c)
                row[x].s[c] = Sample((x * 251 + y * 97 + c * 13) % (Pixel::kMax + 1));
    }
}

} // namespace

TEST(GammaRun, ExecuteMainRefusesMissingBitmapsWithItsMessages)
{
    CgwFilterGamma filter;
    filter.setParameters(gammas(2.2, 1.0));
    CgwBitmapT<CgwPixelGrey8> bitmap;
    bitmap.createBitmap(QSize(4, 4), EgwColorModeGrey, 0);
    const struct {
        CgwBitmapList in, out;
        const char* message;
    } cases[] = {
        {{}, {&bitmap}, "gwDebug: CgwFilterGamma::executeMain error: no input bitmap"},
        {{&bitmap}, {}, "gwDebug: CgwFilterGamma::executeMain error: not output bitmap"},
        {{nullptr}, {&bitmap}, "gwDebug: CgwFilterGamma::executeMain error: in- or outbitmap is null"},
        {{&bitmap}, {nullptr}, "gwDebug: CgwFilterGamma::executeMain error: in- or outbitmap is null"},
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
    in.createBitmap(QSize(31, 7), EgwColorModeRGB, 0);
    out.createBitmap(QSize(31, 7), EgwColorModeRGB, 0);
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
