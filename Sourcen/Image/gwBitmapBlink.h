#pragma once

#include "Sourcen/Image/gwBitmapT_core.h"

template <class Pixel>
CgwBitmapBlinkT<Pixel>::CgwBitmapBlinkT(const CgwBitmapT<Pixel>& source, int firstRow, int endRow)
{
    int offset = 0;
    if (const auto* band = dynamic_cast<const CgwBitmapBlinkT<Pixel>*>(&source))
        offset = band->mFirstRow;
    mFirstRow = offset + firstRow;
    mEndRow = offset + endRow;
    this->mStorage = source.mStorage;
    this->mHead = source.mHead;
    this->mHead.mSize = QSize(source.size().width(), endRow - firstRow);
    this->mHead.setLegalBottom(-1);
    this->mFilterRadius = source.filterRadius();
}

template <class Pixel>
CgwBitmapBlinkT<Pixel>::~CgwBitmapBlinkT() = default;

template <class Pixel>
bool CgwBitmapBlinkT<Pixel>::createStorage(const QSize& size, int colorMode)
{
    if (!CgwBitmapT<Pixel>::createBitmap(size, colorMode, 0))
        return false;
    mFirstRow = 0;
    mEndRow = size.height();
    return true;
}

template <class Pixel>
void CgwBitmapBlinkT<Pixel>::reset(bool freeAll)
{
    CgwBitmapT<Pixel>::reset(freeAll);
    mFirstRow = mEndRow = 0;
}

template <class Pixel>
CgwArrayT<Pixel> CgwBitmapBlinkT<Pixel>::line(int y) const
{
    const int bandHeight = mEndRow - mFirstRow;
    if (y >= bandHeight && this->mNext) {
        if (const auto* next = dynamic_cast<const CgwBitmapT<Pixel>*>(this->mNext))
            return next->line(y - bandHeight);
    }
    if (!this->mStorage || y < -CgwBitmapBase::kBorder || y >= bandHeight + CgwBitmapBase::kBorder)
        return CgwArrayT<Pixel>();
    return this->storage()->getLine(mFirstRow + y + CgwBitmapBase::kBorder);
}
