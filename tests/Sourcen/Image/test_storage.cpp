// Where pixels live: memory under the limit, mapped temporary files above it.

#include "Sourcen/Image/gwBitmapMM_MMF.h"
#include "Sourcen/Image/gwBitmapT.h"
#include "settings/gwFilterOptions.h"
#include "settings/gwParamKeys.h"
#include "support/gwTestEnv.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace {

// Sets the memory limit for one test and puts the usual 1024 MiB back, also
// when an assertion leaves the test early.
struct RamLimit {
    explicit RamLimit(int megabytes) { CgwFilterOptions::instance().setOption(GgwParam_MMFRamLimit, megabytes); }
    ~RamLimit() { CgwFilterOptions::instance().setOption(GgwParam_MMFRamLimit, 1024); }
};

QStringList tempFiles()
{
    return QDir(CgwFilterOptions::instance().selectedTempPath()).entryList({"hdr8_*.tmp"}, QDir::Files);
}

// Resident anonymous memory of this process, in bytes.
qint64 anonymousMemory()
{
    for (const QByteArray& line : gwReadFile(QStringLiteral("/proc/self/status")).split('\n')) {
        if (line.startsWith("RssAnon:"))
            return line.mid(8).trimmed().split(' ').first().toLongLong() * 1024;
    }
    return -1;
}

} // namespace

TEST(Storage, SmallAndThumbnailSizesStayInMemoryAtLimitZero)
{
    const RamLimit limit(0);
    const struct {
        QSize size;
        bool inMemory;
    } cases[] = {{QSize(1, 1), true}, {QSize(256, 256), true}, {QSize(2, 2), false}, {QSize(256, 255), false}};
    for (const auto& c : cases) {
        const quint64 before = gwAccountedBitmapBytes();
        CgwBitmapT<CgwPixel16x3> bitmap;
        ASSERT_TRUE(bitmap.createBitmap(c.size, EgwColorModeRGB, 0));
        const quint64 bordered = quint64(c.size.width() + 46) * quint64(c.size.height() + 46) * 6;
        EXPECT_EQ(gwAccountedBitmapBytes() - before, c.inMemory ? bordered : 0) << c.size.width();
        EXPECT_EQ(tempFiles().size(), c.inMemory ? 0 : 1) << c.size.width();
    }
    EXPECT_TRUE(tempFiles().isEmpty()) << "the temporary file goes with its bitmap";
}

TEST(Storage, AccountingFollowsTheLimit)
{
    const RamLimit limit(1);
    const quint64 before = gwAccountedBitmapBytes();
    auto first = std::make_unique<CgwBitmapT<CgwPixelGrey8>>();
    ASSERT_TRUE(first->createBitmap(QSize(700, 700), EgwColorModeGrey, 0)); // fits under 1 MiB
    EXPECT_EQ(tempFiles().size(), 0);
    CgwBitmapT<CgwPixelGrey8> second;
    ASSERT_TRUE(second.createBitmap(QSize(700, 700), EgwColorModeGrey, 0)); // does not fit any more
    EXPECT_EQ(tempFiles().size(), 1);
    first.reset();
    EXPECT_EQ(gwAccountedBitmapBytes(), before) << "memory storage gives its bytes back";
}

TEST(Storage, MappedViewsCoverTheFileAndOutliveTheCache)
{
    // Views of 8 MiB: 3759 rows of 2232 bytes, three views with a shorter
    // last one; or rows longer than a view, one row each.
    const struct {
        int width, height, rowsPerView;
    } cases[] = {{512 + 46, 10000, 3759}, {8388608 / 4 + 10, 3, 1}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.width);
        CgwBitmapMM_MMF<CgwPixel8x4> storage(QSize(c.width, c.height));
        EXPECT_EQ(storage.rowsPerMapping(), c.rowsPerView);
        CgwArrayT<CgwPixel8x4> held = storage.getLine(0);
        held[0].s[0] = 7;
        for (int y = 0; y < c.height; ++y) {
            CgwArrayT<CgwPixel8x4> row = storage.getLine(y);
            ASSERT_FALSE(row.isEmpty()) << y;
            row[c.width - 24].s[1] = static_cast<unsigned char>(y + 1);
        }
        EXPECT_EQ(held[0].s[0], 7) << "the held view stayed mapped while the cache moved on";
        held[5].s[2] = 9;
        EXPECT_EQ(storage.getLine(0)[5].s[2], 9) << "both views show the same pages";
        for (int y = c.height - 1; y >= 0; y -= 997)
            EXPECT_EQ(storage.getLine(y)[c.width - 24].s[1], static_cast<unsigned char>(y + 1)) << y;
        EXPECT_TRUE(storage.getLine(c.height).isEmpty());
    }
}

TEST(Storage, BitmapOfSeveralGibibytesLivesInAFile)
{
    const RamLimit limit(64);
    const qint64 anonymousBefore = anonymousMemory();
    CgwBitmapT<CgwPixel16x3> bitmap;
    const QSize size(24000, 18000); // 432 million pixels, 2.4 GiB with the border
    ASSERT_TRUE(bitmap.createBitmap(size, EgwColorModeRGB, 0));
    ASSERT_EQ(tempFiles().size(), 1);
    for (int y = 0; y < size.height(); ++y) {
        const CgwArrayT<CgwPixel16x3> row = bitmap.line(y);
        for (int x = 0; x < size.width(); x += 1000)
            row[x] = CgwPixel16x3{{quint16(y), quint16(x), quint16(x ^ y)}};
    }
    for (int y = 0; y < size.height(); y += 7) {
        const CgwArrayT<CgwPixel16x3> row = bitmap.line(y);
        for (int x = 0; x < size.width(); x += 1000) {
            ASSERT_EQ(row[x].s[0], quint16(y));
            ASSERT_EQ(row[x].s[2], quint16(x ^ y));
        }
    }
    const qint64 growth = anonymousMemory() - anonymousBefore;
    EXPECT_LT(growth, 256ll << 20) << "anonymous memory grew by " << (growth >> 20) << " MiB";
}
