// The bitmap head: emptiness, copies under the lock, colour modes, and the
// scan kind read from the maker note.

#include "Sourcen/Image/gwBitmapHead.h"

#include <QThread>
#include <QtEndian>

#include <functional>

#include <gtest/gtest.h>

namespace {

struct Rec {
    quint16 tag;
    quint8 format;
    qint32 value;
};

QByteArray makerNote(std::initializer_list<Rec> records, const char* signature = "NVI1")
{
    QByteArray block(signature, 4);
    char be[4];
    qToBigEndian<quint16>(quint16(records.size()), be);
    block.append(be, 2);
    for (const Rec& r : records) {
        qToBigEndian<quint16>(r.tag, be);
        block.append(be, 2);
        block.append(char(r.format));
        block.append(char(1));
        qToBigEndian<qint32>(r.value, be);
        block.append(be, 4);
    }
    return block + "NORD";
}

CgwExif exifWithNote(const QByteArray& note)
{
    CgwExif exif;
    exif.setValue(0x927C, CgwExifValue{7, quint32(note.size()), note});
    return exif;
}

} // namespace

TEST(BitmapHead, FreshHeadIsEmptyAndEveryFieldCounts)
{
    EXPECT_TRUE(CgwBitmapHead().isEmpty());
    const std::pair<const char*, std::function<void(CgwBitmapHead&)>> changes[] = {
        {"legal bottom", [](CgwBitmapHead& h) { h.setLegalBottom(0); }},
        {"bit depth", [](CgwBitmapHead& h) { h.mBitDepth = 8; }},
        {"channels", [](CgwBitmapHead& h) { h.mChannels = 1; }},
        {"colour mode", [](CgwBitmapHead& h) { h.mColorMode = 3; }},
        {"width", [](CgwBitmapHead& h) { h.mSize.setWidth(1); }},
        {"height", [](CgwBitmapHead& h) { h.mSize.setHeight(1); }},
        {"maker note", [](CgwBitmapHead& h) { h.mMakerNote = CgwMakerNote(makerNote({})); }},
        {"exif", [](CgwBitmapHead& h) { h.mExif.setValue(0x0100, CgwExifValue{3, 1, QByteArray(2, 0)}); }},
        {"iptc", [](CgwBitmapHead& h) { h.mIptc.setValue(0x0219, QStringLiteral("keyword")); }},
        {"gamma", [](CgwBitmapHead& h) { h.mGamma = 2.2f; }},
        {"scanner mode", [](CgwBitmapHead& h) { h.mScannerMode = 9; }},
        {"parameters", [](CgwBitmapHead& h) { h.mParameters.setBool(QStringLiteral("IsHDR"), true); }},
        {"x resolution", [](CgwBitmapHead& h) { h.mResolution.setX(300.0); }},
        {"y resolution", [](CgwBitmapHead& h) { h.mResolution.setY(300.0); }},
    };
    for (const auto& change : changes) {
        CgwBitmapHead head;
        change.second(head);
        EXPECT_FALSE(head.isEmpty()) << change.first;
    }
}

TEST(BitmapHead, CopiesCarryEveryFieldAndTheLegalBottom)
{
    CgwBitmapHead source;
    source.mBitDepth = 16;
    source.setColorMode(3);
    source.mSize = QSize(640, 480);
    source.mResolution = QPointF(4000.0, 3999.0);
    source.mScanRect = QRectF(1.5, 2.5, 30.0, 40.0);
    source.mBounds = CgwRectT<int>(1, 2, 3, 4);
    source.mExif = exifWithNote(makerNote({{0xC005, 0, 1}}));
    source.mGamma = 1.8f;
    source.mScannerMode = 9;
    source.mParameters.setLongLong(QStringLiteral("MaxResAllowed"), 144);
    source.mScanSize = QSize(10, 20);
    source.mHeadFlag = true;
    source.mHeadValue = 1ll << 40;
    source.setLegalBottom(123);

    const CgwBitmapHead copy(source);
    CgwBitmapHead assigned;
    assigned = source;
    for (const CgwBitmapHead* h : {&copy, static_cast<const CgwBitmapHead*>(&assigned)}) {
        EXPECT_EQ(h->legalBottom(), 123);
        EXPECT_EQ(h->mBitDepth, 16);
        EXPECT_EQ(h->mChannels, 3);
        EXPECT_EQ(h->mSize, QSize(640, 480));
        EXPECT_EQ(h->mResolution, QPointF(4000.0, 3999.0));
        EXPECT_EQ(h->mScanRect, QRectF(1.5, 2.5, 30.0, 40.0));
        EXPECT_EQ(h->mBounds, CgwRectT<int>(1, 2, 3, 4));
        EXPECT_EQ(h->mExif, source.mExif);
        EXPECT_EQ(h->mGamma, 1.8f);
        EXPECT_EQ(h->mScannerMode, 9);
        EXPECT_EQ(h->mParameters, source.mParameters);
        EXPECT_EQ(h->mScanSize, QSize(10, 20));
        EXPECT_TRUE(h->mHeadFlag);
        EXPECT_EQ(h->mHeadValue, 1ll << 40);
    }
    assigned = assigned; // self-assignment must not lock against itself
    EXPECT_EQ(assigned.legalBottom(), 123);
}

TEST(BitmapHead, SetColorModeStoresModeAndChannelsOrNothing)
{
    const int channels[] = {0, 1, 2, 3, 3, 3, 4, 4};
    for (int mode = 0; mode < 8; ++mode) {
        CgwBitmapHead head;
        head.setColorMode(5);
        EXPECT_TRUE(head.setColorMode(mode));
        EXPECT_EQ(head.mColorMode, mode);
        EXPECT_EQ(head.mChannels, channels[mode]);
    }
    for (int bad : {8, -1, 100}) {
        CgwBitmapHead head;
        head.setColorMode(6);
        EXPECT_FALSE(head.setColorMode(bad));
        EXPECT_EQ(head.mColorMode, 6);
        EXPECT_EQ(head.mChannels, 4);
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

TEST(BitmapHead, MakerNoteRecordsReadBigEndianWithFixedPoint)
{
    const CgwExif exif = exifWithNote(makerNote({{0xC001, 1, 22000}, {0xC008, 0, 4000}, {0xC001, 1, 10000}}));
    bool found = false;
    EXPECT_FLOAT_EQ(exif.getGWMakerNotValueByTag(0xC001, &found), 2.2f);
    EXPECT_TRUE(found) << "the first record of a tag wins";
    EXPECT_FLOAT_EQ(exif.getGWMakerNotValueByTag(0xC008, &found), 4000.0f);
    EXPECT_FLOAT_EQ(exif.getGWMakerNotValueByTag(0xC009, &found), 0.0f);
    EXPECT_FALSE(found);

    const CgwMakerNote empty(makerNote({}));
    EXPECT_EQ(empty.block().size(), 10);
    EXPECT_EQ(empty.valueByTag(0xC001, &found), 0.0f);
    EXPECT_FALSE(found);

    // A count that claims more records than the block holds stops at the block's end.
    QByteArray truncated = makerNote({{0xC005, 0, 1}});
    truncated[5] = 3;
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
        const CgwBitmapHead snapshot = head; // copies read under the source's lock
        const int now = snapshot.legalBottom();
        monotonic = monotonic && now >= last;
        last = now;
    }
    loader->wait();
    delete loader;
    EXPECT_TRUE(monotonic);
}
