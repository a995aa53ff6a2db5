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

CgwParameterSet gammas(double in, double out)
{
    CgwParameterSet params;
    params.setDouble(GgwParam_GammaIn, in);
    params.setDouble(GgwParam_GammaOut, out);
    return params;
}

std::unique_ptr<CgwBitmapBase> bitmapOfType(int pixelType, const QSize& size)
{
    std::unique_ptr<CgwBitmapBase> bitmap;
    gwDispatchPixelType(pixelType, [&](auto pixel) {
        using Pixel = decltype(pixel);
        auto* typed = new CgwBitmapT<Pixel>();
        const int mode = Pixel::kChannels == 1   ? EgwColorModeGrey
                         : Pixel::kChannels == 2 ? EgwColorModeTwoChannel
                                                 : EgwColorModeRGB;
        typed->createBitmap(size, mode, 0);
        bitmap.reset(typed);
    });
    return bitmap;
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

template <class Pixel>
QByteArray samplesOf(const CgwBitmapT<Pixel>& bitmap)
{
    return bitmap.getData();
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
        const bool runs = type == 0 || type == 1 || type == 3 || type == 4 || type == 5;
        std::unique_ptr<CgwBitmapBase> in = bitmapOfType(type, size);
        std::unique_ptr<CgwBitmapBase> out = bitmapOfType(type, size);
        ASSERT_TRUE(in && out && in->isInitialized()) << type;
        gwDispatchPixelType(type, [&](auto pixel) {
            using Pixel = decltype(pixel);
            fillPattern(static_cast<CgwBitmapT<Pixel>&>(*in));
        });
        CgwFilterGamma filter;
        filter.setParameters(gammas(1.0, 2.2));
        const int before = gwLogLineCount();
        const bool done = filter.run({in.get()}, {out.get()});
        EXPECT_EQ(done, runs) << type;
        if (!runs) {
            // Float types are declined before a table is made; the others
            // run no loop and say nothing.
            EXPECT_LE(gwLogLineCount(), before + (type == 6 || type == 7 ? 1 : 0)) << type;
            continue;
        }
        EXPECT_EQ(out->gamma(), 2.2f) << type;
        const std::vector<int> lut(filter.lut(), filter.lut() + filter.lutSteps());
        gwDispatchPixelType(type, [&](auto pixel) {
            using Pixel = decltype(pixel);
            const auto& from = static_cast<const CgwBitmapT<Pixel>&>(*in);
            const auto& to = static_cast<const CgwBitmapT<Pixel>&>(*out);
            for (int y = 0; y < size.height(); ++y)
                for (int x = 0; x < size.width(); ++x)
                    for (int c = 0; c < Pixel::kChannels; ++c)
                        ASSERT_EQ(int(to.line(y)[x].s[c]), lut[size_t(from.line(y)[x].s[c])])
                            << "type " << type << " at " << x << "," << y << " channel " << c;
        });
    }
}

TEST(GammaRun, SixteenBitEndsMapToThemselvesInPlace)
{
    CgwBitmapT<CgwPixel16x3> bitmap;
    bitmap.createBitmap(QSize(2, 1), EgwColorModeRGB, 0);
    bitmap.line(0)[0] = CgwPixel16x3{{0, 65535, 32768}};
    bitmap.line(0)[1] = CgwPixel16x3{{65535, 0, 1}};
    CgwFilterGamma filter;
    filter.setParameters(gammas(2.2, 1.0));
    ASSERT_TRUE(filter.run({&bitmap}, {&bitmap}));
    EXPECT_EQ(filter.lutSteps(), 65536u);
    EXPECT_EQ(bitmap.line(0)[0].s[0], 0);
    EXPECT_EQ(bitmap.line(0)[0].s[1], 65535);
    EXPECT_EQ(bitmap.line(0)[1].s[0], 65535);
    // Linearising darkens the middle: 32768 ^ 2.2.
    EXPECT_EQ(bitmap.line(0)[0].s[2], 14263);
    EXPECT_EQ(bitmap.gamma(), 1.0f);
}

TEST(GammaRun, EqualGammasCopyWithoutATable)
{
    CgwBitmapT<CgwPixel16x3> in;
    CgwBitmapT<CgwPixel16x3> out;
    in.createBitmap(QSize(31, 7), EgwColorModeRGB, 0);
    out.createBitmap(QSize(31, 7), EgwColorModeRGB, 0);
    fillPattern(in);
    const QByteArray original = samplesOf(in);
    CgwFilterGamma filter;
    filter.setParameters(gammas(2.2, 2.2002));
    EXPECT_FALSE(filter.isNeeded());
    ASSERT_TRUE(filter.run({&in}, {&out}));
    EXPECT_EQ(filter.lutSteps(), 0u);
    EXPECT_EQ(samplesOf(out), original);
    ASSERT_TRUE(filter.run({&in}, {&in}));
    EXPECT_EQ(samplesOf(in), original);
}

TEST(GammaRun, TheBitmapsOwnGammaIsTheSourceWhenAsked)
{
    CgwBitmapT<CgwPixelGrey8> bitmap;
    bitmap.createBitmap(QSize(1, 1), EgwColorModeGrey, 0);
    bitmap.line(0)[0].s[0] = 186;
    bitmap.setGamma(2.2f);
    CgwFilterGamma filter;
    CgwParameterSet params = gammas(1.0, 1.0);
    params.setBool(GgwParam_UseBmpGamma, true);
    filter.setParameters(params);
    ASSERT_TRUE(filter.run({&bitmap}, {&bitmap}));
    EXPECT_EQ(bitmap.line(0)[0].s[0], 127);
    EXPECT_EQ(bitmap.gamma(), 1.0f);
}

TEST(GammaRun, AnAbortFlagUpBeforeTheFirstRowStopsEveryRow)
{
    CgwBitmapT<CgwPixelGrey8> bitmap;
    bitmap.createBitmap(QSize(16, 64), EgwColorModeGrey, 0);
    fillPattern(bitmap);
    const QByteArray original = samplesOf(bitmap);
    bool abort = true;
    CgwFilterGamma filter("gwGamma", &abort);
    filter.setParameters(gammas(1.0, 2.2));
    filter.setChanged(false);
    EXPECT_FALSE(filter.run({&bitmap}, {&bitmap}));
    EXPECT_EQ(samplesOf(bitmap), original);

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
    const auto touched = [&](int y) { return bitmap.line(y)[size.width() - 1].s[0] != 128; };
    bool allRows = true;
    for (int y = 0; y < size.height(); ++y)
        allRows = allRows && touched(y);
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
