#include "Sourcen/Image/gwBitmapHead.h"

#include "Sourcen/Image/gwColorMode.h"

CgwBitmapHead::CgwBitmapHead(const CgwBitmapHead& other)
{
    copyFields(other);
    mLegalBottom = other.legalBottom();
}

CgwBitmapHead& CgwBitmapHead::operator=(const CgwBitmapHead& other)
{
    if (this == &other)
        return *this;
    copyFields(other);
    // One lock at a time: read the source's, then write our own.
    setLegalBottom(other.legalBottom());
    return *this;
}

CgwBitmapHead::~CgwBitmapHead() = default;

void CgwBitmapHead::copyFields(const CgwBitmapHead& o)
{
    mBitDepth = o.mBitDepth;
    mChannels = o.mChannels;
    mColorMode = o.mColorMode;
    mSize = o.mSize;
    mResolution = o.mResolution;
    mScanRect = o.mScanRect;
    mBounds = o.mBounds;
    mMakerNote = o.mMakerNote;
    mExif = o.mExif;
    mIptc = o.mIptc;
    mProfile = o.mProfile;
    mGamma = o.mGamma;
    mScannerMode = o.mScannerMode;
    mParameters = o.mParameters;
    mScanSize = o.mScanSize;
    mHeadFlag = o.mHeadFlag;
    mHeadValue = o.mHeadValue;
}

bool CgwBitmapHead::isEmpty() const
{
    return legalBottom() == -1 && mBitDepth == 0 && mChannels == 0 && mColorMode == 0 && mSize.width() == 0
           && mSize.height() == 0 && mMakerNote.isEmpty() && mExif.isEmpty() && mIptc.isEmpty()
           && mGamma == 0.0f && mScannerMode == 0 && mParameters.isEmpty() && mResolution.x() == 0.0
           && mResolution.y() == 0.0;
}

bool CgwBitmapHead::setColorMode(int colorMode)
{
    const int channels = gwColorModeChannels(colorMode);
    if (channels < 0 || channels >= 5)
        return false;
    mColorMode = colorMode;
    mChannels = static_cast<quint8>(channels);
    return true;
}

int CgwBitmapHead::scanKind() const
{
    if (!mExif.hasTag(CgwMakerNote::kExifTag) || mExif.getGWMakerNotValueByTag(0xC005) == 0.0f)
        return 1;
    if (mExif.getGWMakerNotValueByTag(0xC010) != 0.0f)
        return 2;
    if (mExif.getGWMakerNotValueByTag(0xC00F) != 0.0f)
        return 3;
    return 1;
}

int CgwBitmapHead::legalBottom() const
{
    QReadLocker lock(&mLock);
    return mLegalBottom;
}

void CgwBitmapHead::setLegalBottom(int rows)
{
    QWriteLocker lock(&mLock);
    mLegalBottom = rows;
}
