#pragma once

#include "Sourcen/Image/gwRectT.h"
#include "colour/gwProfileBase.h"
#include "metadata/gwExif.h"
#include "metadata/gwIptc.h"
#include "metadata/gwMakerNote.h"
#include "settings/gwParameterSet.h"

#include <QPointF>
#include <QReadWriteLock>
#include <QRectF>
#include <QSize>

// The metadata of an image: what a format reports for a file and what a
// bitmap carries. A value; copies take the source's legal bottom under its
// lock and store it under their own.
class CgwBitmapHead
{
public:
    CgwBitmapHead() = default;
    CgwBitmapHead(const CgwBitmapHead& other);
    CgwBitmapHead& operator=(const CgwBitmapHead& other);
    virtual ~CgwBitmapHead();

    bool isEmpty() const;

    // Stores mode and its channel count together; refuses modes of five or
    // more channels and values outside the table.
    bool setColorMode(int colorMode);

    // 1 plain, 2 and 3 the two HDR kinds, read from the maker note.
    int scanKind() const;

    // Rows delivered so far; -1 means all of them. Written by the loading
    // thread while a viewer reads it.
    int legalBottom() const;
    void setLegalBottom(int rows);

    quint8 mBitDepth = 0;
    quint8 mChannels = 0;
    qint32 mColorMode = 0;
    QSize mSize{0, 0};
    QPointF mResolution{0.0, 0.0}; // 0.0 = unknown
    QRectF mScanRect;
    CgwRectT<int> mBounds;
    CgwMakerNote mMakerNote;
    CgwExif mExif;
    CgwIptc mIptc;
    CgwProfileBase mProfile; // the ICC profile the file carries, if any
    float mGamma = 0.0f; // 0.0 = not known; never negative
    qint32 mScannerMode = 0; // 9 is the file import mode
    CgwParameterSet mParameters;
    QSize mScanSize{0, 0};
    bool mHeadFlag = false;
    qint64 mHeadValue = 0;

private:
    void copyFields(const CgwBitmapHead& other);

    int mLegalBottom = -1;
    mutable QReadWriteLock mLock;
};
