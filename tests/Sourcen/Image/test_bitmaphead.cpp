// The bitmap head (emptiness, copies under the lock, colour modes, the scan
// kind read from the maker note), pixel types, rectangles and pixel views.

#include "Sourcen/Image/gwArrayT.h"
#include "Sourcen/Image/gwBitmapHead.h"
#include "Sourcen/Image/gwPixelT.h"
#include "Sourcen/Image/gwRectT.h"
#include "support/gwTestEnv.h"

#include <QDataStream>
#include <QThread>

#include <functional>
#include <memory>
#include <tuple>

#include <gtest/gtest.h>

namespace {

struct Rec { quint16 tag; quint8 format; qint32 value; };

// The suite's maker note: signature, record count, eight-byte records, "NORD"; big-endian.
QByteArray makerNote(std::initializer_list<Rec> records, const char* signature = "NVI1")
{
    QByteArray block(signature, 4);
    QDataStream out(&block, QIODevice::Append);
    out << quint16(records.size());
    for (const Rec& r : records)
        out << r.tag << r.format << quint8(1) << r.value;
    out.writeRawData("NORD", 4);
    return block;
}

CgwExif exifWithNote(const QByteArray& note)
{
    CgwExif exif;
    exif.setValue(0x927C, CgwExifValue{7, quint32(note.size()), note});
    return exif;
}

} // namespace

TEST(BitmapHead, EveryFieldCountsForEmptinessAndComesAlongInCopies)
{
    // Copying is written out by hand because of the lock: each field must be
    // in the copy, and in isEmpty where it counts.
    using H = CgwBitmapHead;
    const auto fields = [](const H& h) {
        return std::make_tuple(h.legalBottom(), h.mBitDepth, h.mChannels, h.mColorMode, h.mSize, h.mResolution,
                               h.mScanRect, h.mBounds, h.mMakerNote, h.mExif, h.mIptc, h.mGamma, h.mScannerMode,
                               h.mParameters, h.mScanSize, h.mHeadFlag, h.mHeadValue);
    };
    const std::pair<std::function<void(H&)>, bool> changes[] = { // the change, whether it counts for emptiness
        {[](H& h) { h.setLegalBottom(0); }, true}, {[](H& h) { h.mBitDepth = 8; }, true},
        {[](H& h) { h.mChannels = 1; }, true}, {[](H& h) { h.mColorMode = 3; }, true},
        {[](H& h) { h.mSize.setWidth(1); }, true}, {[](H& h) { h.mSize.setHeight(1); }, true},
        {[](H& h) { h.mMakerNote = CgwMakerNote(makerNote({})); }, true},
        {[](H& h) { h.mExif = exifWithNote(makerNote({{0xC005, 0, 1}})); }, true},
        {[](H& h) { h.mIptc.setValue(0x0219, QStringLiteral("keyword")); }, true},
        {[](H& h) { h.mGamma = 2.2f; }, true}, {[](H& h) { h.mScannerMode = 9; }, true},
        {[](H& h) { h.mParameters.setBool(QStringLiteral("IsHDR"), true); }, true},
        {[](H& h) { h.mResolution.setX(300.0); }, true}, {[](H& h) { h.mResolution.setY(300.0); }, true},
        {[](H& h) { h.mScanRect = QRectF(1.5, 2.5, 30.0, 40.0); }, false},
        {[](H& h) { h.mBounds = CgwRectT<int>(1, 2, 3, 4); }, false}, {[](H& h) { h.mScanSize = QSize(1, 2); }, false},
        {[](H& h) { h.mHeadFlag = true; }, false}, {[](H& h) { h.mHeadValue = 1ll << 40; }, false},
    };
    EXPECT_TRUE(H().isEmpty());
    for (size_t i = 0; i < std::size(changes); ++i) {
        H head, assigned;
        changes[i].first(head);
        EXPECT_EQ(head.isEmpty(), !changes[i].second) << "change " << i;
        assigned = head;
        EXPECT_TRUE(fields(H(head)) == fields(head) && fields(assigned) == fields(head)) << "change " << i;
    }
    H self;
    self.setLegalBottom(123);
    self = self; // self-assignment must not lock against itself
    EXPECT_EQ(self.legalBottom(), 123);
}

TEST(BitmapHead, SetColorModeRefusesUnknownModesAndKeepsTheOldOne)
{
    CgwBitmapHead head;
    EXPECT_TRUE(head.setColorMode(7)) << "the last mode of the table";
    for (int bad : {8, -1, 100}) {
        EXPECT_FALSE(head.setColorMode(bad)) << bad;
        EXPECT_EQ(std::make_pair(int(head.mColorMode), int(head.mChannels)), std::make_pair(7, 4)) << bad;
    }
}

TEST(BitmapHead, ScanKindFollowsTheMakerNote)
{
    // An empty note stands for no tag 0x927C at all.
    const std::pair<QByteArray, int> cases[] = {
        {QByteArray(), 1}, {makerNote({}), 1}, {makerNote({{0xC005, 0, 0}, {0xC010, 0, 1}}), 1},
        {makerNote({{0xC005, 0, 1}}), 1}, {makerNote({{0xC005, 0, 1}, {0xC010, 0, 1}, {0xC00F, 1, 1}}), 2},
        // The negative flag is stored as a raw 1 under format 1: it reads 0.0001, not zero.
        {makerNote({{0xC00F, 1, 1}, {0xC005, 0, 1}}), 3},
        {makerNote({{0xC005, 0, 1}, {0xC010, 0, 1}}, "XXXX"), 1}, // a foreign maker's note
    };
    for (const auto& [note, kind] : cases) {
        CgwBitmapHead head;
        if (!note.isEmpty())
            head.mExif = exifWithNote(note);
        EXPECT_EQ(head.scanKind(), kind) << note.toHex().constData();
    }
}

TEST(BitmapHead, MakerNoteFirstRecordWinsAndACountPastTheBlockStops)
{
    bool found = false;
    const CgwExif exif = exifWithNote(makerNote({{0xC001, 1, 22000}, {0xC008, 0, 4000}, {0xC001, 1, 10000}}));
    EXPECT_FLOAT_EQ(exif.getGWMakerNotValueByTag(0xC001, &found), 2.2f);
    EXPECT_TRUE(found);
    EXPECT_FLOAT_EQ(exif.getGWMakerNotValueByTag(0xC008, &found), 4000.0f);

    QByteArray truncated = makerNote({{0xC005, 0, 1}});
    truncated[5] = 3; // claims three records, holds one
    CgwMakerNote::Record record;
    const CgwMakerNote note(truncated);
    EXPECT_TRUE(note.record(0, &record));
    EXPECT_EQ(record.tag, 0xC005);
    EXPECT_FALSE(note.record(1, &record));
    EXPECT_FALSE(CgwMakerNote(QByteArray("NVI")).record(0, &record));
}

TEST(BitmapHead, LegalBottomIsSharedBetweenLoaderAndViewer)
{
    CgwBitmapHead head;
    head.setLegalBottom(0);
    constexpr int kRows = 20000;
    std::unique_ptr<QThread> loader(QThread::create([&head] {
        for (int row = 1; row <= kRows; ++row)
            head.setLegalBottom(row);
    }));
    loader->start();
    bool monotonic = true;
    for (int last = 0, now = 0; last < kRows; last = now) {
        now = CgwBitmapHead(head).legalBottom(); // the copy reads under the source's lock
        monotonic = monotonic && now >= last;
    }
    loader->wait();
    EXPECT_TRUE(monotonic);
}

TEST(PixelTypes, DispatchReachesThePackedTypeOfEachIdentifier)
{
    for (int id = 0; id < kGwPixelTypeCount; ++id) {
        int seen = -2;
        EXPECT_TRUE(gwDispatchPixelType(id, [&](auto pixel) {
            using Pixel = decltype(pixel);
            seen = gwPixelTypeId<Pixel>();
            // Rows are copied as raw bytes: no padding between samples.
            EXPECT_EQ(sizeof(Pixel), Pixel::kChannels * sizeof(typename Pixel::SampleType)) << id;
        }));
        EXPECT_EQ(seen, id);
    }
    EXPECT_FALSE(gwDispatchPixelType(kGwPixelTypeCount, [](auto) {}));
    EXPECT_FALSE(gwDispatchPixelType(-1, [](auto) {}));
    EXPECT_EQ(gwPixelTypeId<CgwPixelFloat4x65535>(), -1) << "resampling types stay outside the dispatched set";
}

TEST(PixelTypes, RectsNormaliseAndRowViewsIndexFromColumnZero)
{
    CgwRectT<int> r(10, 20, 2, 5);
    EXPECT_TRUE(r.isEmpty());
    r.normalize();
    EXPECT_EQ(r, CgwRectT<int>(2, 5, 10, 20));
    EXPECT_TRUE(CgwRectT<int>(3, 3, 3, 9).isEmpty()) << "the right edge is exclusive";

    auto row = std::make_shared<std::vector<CgwPixelGrey8>>(10);
    for (int i = 0; i < 10; ++i)
        (*row)[i].s[0] = static_cast<unsigned char>(i);
    const CgwArrayT<CgwPixelGrey8> view(row, row->data(), 3, 10); // three border pixels before column 0
    EXPECT_EQ(std::vector<int>({view[-3].s[0], view[0].s[0], view[6].s[0]}), (std::vector<int>{0, 3, 9}));
    EXPECT_EQ(CgwArrayT<CgwPixelGrey8>()[5].s[0], 0);
    EXPECT_EQ(gwLastLogLine(), "gwDebug: CgwArrayT::operator[] : not allowed to access an empty array");
}
