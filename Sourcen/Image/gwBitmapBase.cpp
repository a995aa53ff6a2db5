#include "Sourcen/Image/gwBitmapBase.h"

#include "diagnostics/gwDebug.h"

CgwBitmapBase::CgwBitmapBase(int pixelType) : mPixelType(pixelType) {}

CgwBitmapBase::~CgwBitmapBase() = default;

int CgwBitmapBase::chainIndex() const
{
    return mNext ? mChainIndex : 0;
}

void CgwBitmapBase::setChainIndex(int index)
{
    mChainIndex = mNext ? index : 0;
}

int CgwBitmapBase::totalChainIndex() const
{
    int total = 0;
    for (const CgwBitmapBase* b = this; b; b = b->mNext)
        total += b->chainIndex();
    return total;
}

bool CgwBitmapBase::isBlink() const
{
    return false;
}

void CgwBitmapBase::setColorMode(int colorMode)
{
    mHead.setColorMode(colorMode);
}

int CgwBitmapBase::pixelType() const
{
    return mPixelType;
}

bool CgwBitmapBase::isLegalPosition(const QPoint& p) const
{
    return isInitialized() && p.x() >= -kBorder && p.x() < mHead.mSize.width() + kBorder && p.y() >= -kBorder
           && p.y() < mHead.mSize.height() + kBorder;
}

bool CgwBitmapBase::isInitialized() const
{
    return mStorage != nullptr;
}

void CgwBitmapBase::setFilterRadius(int radius)
{
    if (radius < 0 || radius > kBorder) {
        gwDebugString(QStringLiteral("CgwBitmapBase::setFilterRadius : Error: Given radius is out of range!"));
        return;
    }
    mFilterRadius = radius;
}

void CgwBitmapBase::swap(CgwBitmapBase& other)
{
    if (&other == this || other.pixelType() != pixelType())
        return;
    std::swap(mStorage, other.mStorage);
    std::swap(mFilterRadius, other.mFilterRadius);
    std::swap(mCompanion, other.mCompanion);
    std::swap(mChainIndex, other.mChainIndex);
    std::swap(mNext, other.mNext);
    const CgwBitmapHead head = mHead;
    mHead = other.mHead;
    other.mHead = head;
}

bool CgwBitmapBase::exchangePixels(CgwBitmapBase& source)
{
    if (&source == this || source.pixelType() != pixelType() || source.size() != size() || !isInitialized()
        || !source.isInitialized() || mNext || source.mNext) // a chain holds its rows in several members
        return false;
    std::swap(mStorage, source.mStorage);
    return true;
}

QPixmap CgwBitmapBase::toQPixmap()
{
    return QPixmap::fromImage(toQImage(0.0));
}

const CgwBitmapBase* CgwBitmapBase::chainEnd() const
{
    const CgwBitmapBase* b = this;
    while (b->mNext)
        b = b->mNext;
    return b;
}

bool CgwBitmapBase::hasSameStorage(const CgwBitmapBase& other) const
{
    const CgwBitmapBase* mine = chainEnd();
    const CgwBitmapBase* theirs = other.chainEnd();
    return mine->mStorage != nullptr && mine->mStorage == theirs->mStorage;
}

void CgwBitmapBase::setGamma(float gamma)
{
    if (gamma < 0.0f) {
        gwDebugString(QStringLiteral("CgwBitmapBase::setGamma error: inGamma input not valid! Setting to 0."));
        gamma = 0.0f;
    }
    mHead.mGamma = gamma;
}

void CgwBitmapBase::setLegalRectBottom(int rows)
{
    mHead.setLegalBottom(rows);
}

int CgwBitmapBase::getLegalRectBottom() const
{
    try {
        const int rows = mHead.legalBottom();
        mLastLegalBottom = rows;
        return rows;
    } catch (...) {
        gwDebugString(QStringLiteral("CgwBitmapBase::getLegalRectBottom(): exception caught"));
        return mLastLegalBottom;
    }
}
