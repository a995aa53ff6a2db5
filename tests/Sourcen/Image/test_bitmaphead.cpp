// The bitmap head: emptiness, copies under the lock, colour modes, and the
// scan kind read from the maker note.

#include "Sourcen/Image/gwBitmapHead.h"

#include <QDataStream>
#include <QThread>

#include <functional>
#include <tuple>

#include <gtest/gtest.h>

namespace {

struct Rec {
    quint16 tag;
    quint8 format;
    qint32 value;
};

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
    const auto fields = [](const CgwBitmapHead& h) {
        return std::make_tuple(h.legalBottom(), h.mBitDepth, h.mChannels, h.mColorMode, h.mSize, h.mResolution,
                               h.mScanRect, h.mBounds, h.mMakerNote, h.mExif, h.mIptc, h.mGamma, h.mScannerMode,
                               h.mParameters, h.mScanSize, h.mHeadFlag, h.mHeadValue);
    };
    const struct {
        const char* name;
        std::function<void(CgwBitmapHead&)> change;
        bool countsForEmptiness;
    } changes[] = {
        {"legal bottom", [](CgwBitmapHead& h) { h.setLegalBottom(0); }, true},
        {"bit depth", [](CgwBitmapHead& h) { h.mBitDepth = 8; }, true},
        {"channels", [](CgwBitmapHead& h) { h.mChannels = 1; }, true},
        {"colour mode", [](CgwBitmapHead& h) { h.mColorMode = 3; }, true},
        {"width", [](CgwBitmapHead& h) { h.mSize.setWidth(1); }, true},
        {"height", [](CgwBitmapHead& h) { h.mSize.setHeight(1); }, true},
        {"maker note", [](CgwBitmapHead& h) { h.mMakerNote = CgwMakerNote(makerNote({})); }, true},
        {"exif", [](CgwBitmapHead& h) { h.mExif = exifWithNote(makerNote({{0xC005, 0, 1}})); }, true},
        {"iptc", [](CgwBitmapHead& h) { h.mIptc.setValue(0x0219, QStringLiteral("keyword")); }, true},
        {"gamma", [](CgwBitmapHead& h) { h.mGamma = 2.2f; }, true},
        {"scanner mode", [](CgwBitmapHead& h) { h.mScannerMode = 9; }, true},
        {"parameters", [](CgwBitmapHead& h) { h.mParameters.setBool(QStringLiteral("IsHDR"), true); }, true},
        {"x resolution", [](CgwBitmapHead& h) { h.mResolution.setX(300.0); }, true},
        {"y resolution", [](CgwBitmapHead& h) { h.mResolution.setY(300.0); }, true},
        {"scan rectangle", [](CgwBitmapHead& h) { h.mScanRect = QRectF(1.5, 2.5, 30.0, 40.0); }, false},
        {"bounds", [](CgwBitmapHead& h) { h.mBounds = CgwRectT<int>(1, 2, 3, 4); }, false},
        {"scan size", [](CgwBitmapHead& h) { h.mScanSize = QSize(10, 20); }, false},
        {"head flag", [](CgwBitmapHead& h) { h.mHeadFlag = true; }, false},
        {"head value", [](CgwBitmapHead& h) { h.mHeadValue = 1ll << 40; }, false},
    };
    EXPECT_TRUE(CgwBitmapHead().isEmpty());
    for (const auto& c : changes) {
        SCOPED_TRACE(c.name);
        CgwBitmapHead head;
        c.change(head);
        EXPECT_EQ(head.isEmpty(), !c.countsForEmptiness);
        const CgwBitmapHead copy(head);
        CgwBitmapHead assigned;
        assigned = head;
        EXPECT_TRUE(fields(copy) == fields(head));
        EXPECT_TRUE(fields(assigned) == fields(head));
    }
    CgwBitmapHead self;
    self.setLegalBottom(123);
    self = self; // self-assignment must not lock against itself
    EXPECT_EQ(self.legalBottom(), 123);
}

TEST(BitmapHead, SetColorModeRefusesUnknownModesAndKeepsTheOldOne)
{
    CgwBitmapHead head;
    EXPECT_TRUE(head.setColorMode(7)) << "the last mode of the table";
    EXPECT_EQ(head.mChannels, 4);
    for (int bad : {8, -1, 100}) {
        EXPECT_FALSE(head.setColorMode(bad)) << bad;
        EXPECT_EQ(std::make_pair(int(head.mColorMode), int(head.mChannels)), std::make_pair(7, 4)) << bad;
    }
}

TEST(BitmapHead, ScanKindFollowsTheMakerNote)
{
    const struct {
        const char* name;
        QByteArray note; // empty: no tag 0x927C at all
        int kind;
    } cases[] = {
        {"no maker note", QByteArray(), 1},
        {"empty note", makerNote({}), 1},
        {"HDR flag zero", makerNote({{0xC005, 0, 0}, {0xC010, 0, 1}}), 1},
        {"HDR only", makerNote({{0xC005, 0, 1}}), 1},
        {"HDR and second flag", makerNote({{0xC005, 0, 1}, {0xC010, 0, 1}, {0xC00F, 1, 1}}), 2},
        // The negative flag is stored as a raw 1 under format 1: it reads 0.0001, not zero.
        {"HDR negative", makerNote({{0xC00F, 1, 1}, {0xC005, 0, 1}}), 3},
        {"foreign note", makerNote({{0xC005, 0, 1}, {0xC010, 0, 1}}, "XXXX"), 1},
    };
    for (const auto& c : cases) {
        CgwBitmapHead head;
        if (!c.note.isEmpty())
            head.mExif = exifWithNote(c.note);
        EXPECT_EQ(head.scanKind(), c.kind) << c.name;
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
    EXPECT_FALSE(note.record(3, &record));
    EXPECT_FALSE(CgwMakerNote(QByteArray("NVI")).record(0, &record));
}

TEST(BitmapHead, LegalBottomIsSharedBetweenLoaderAndViewer)
{
    CgwBitmapHead head;
    head.setLegalBottom(0);
    constexpr int kRows = 20000;
    QThread* loader = QThread::create([&head] {
        for (int row = 1; row <= kRows; ++row)
            head.setLegalBottom(row);
    });
    loader->start();
    int last = 0;
    bool monotonic = true;
    while (last < kRows) {
        const int now = CgwBitmapHead(head).legalBottom(); // the copy reads under the source's lock
        monotonic = monotonic && now >= last;
        last = now;
    }
    loader->wait();
    delete loader;
    EXPECT_TRUE(monotonic);
}
