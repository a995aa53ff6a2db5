#pragma once

// Block transfer between bitmaps, split over the worker pool by row ranges.
// Included by the files that instantiate the bitmaps.

#include "Sourcen/Image/gwBitmapT_core.h"

#include <atomic>

namespace {
// One axis of a transfer: a negative corner skips that much of the source,
// and what passes the target's edge is cut.
inline void gwClipAxis(int corner, int count, int targetLength, int& src, int& dst, int& length)
{
    src = 0;
    dst = corner;
    length = count;
    if (dst < 0) {
        src = -dst;
        length -= src;
        dst = 0;
    }
    length = std::min(length, targetLength - dst);
}

inline bool gwIsGreyExpansion(int sourceMode, int targetMode)
{
    return sourceMode == EgwColorModeGrey
           && (targetMode == EgwColorModeRGB || targetMode == EgwColorModeCMY || targetMode == EgwColorModeCMYK
               || targetMode == EgwColorModeRGBA);
}
} // namespace

template <class Pixel>
bool CgwBitmapT<Pixel>::blockGeometry(const QPoint& leftTop, const CgwBitmapBase& source, SgwBlockGeometry& g) const
{
    QSize count = source.size();
    if (size().width() < count.width()) {
        gwDebug("CgwBitmapT::setBlock: hint for x %i < %i", size().width(), count.width());
        count.setWidth(size().width());
    }
    if (size().height() < count.height()) {
        gwDebug("CgwBitmapT::setBlock: hint for y %i < %i", size().height(), count.height());
        count.setHeight(size().height());
    }
    if (!isInitialized() || !source.isInitialized())
        return false;
    gwClipAxis(leftTop.x(), count.width(), size().width(), g.srcX, g.dstX, g.width);
    gwClipAxis(leftTop.y(), count.height(), size().height(), g.srcY, g.dstY, g.height);
    g.sourceMode = source.colorMode();
    g.targetMode = colorMode();
    return g.width > 0 && g.height > 0;
}

template <class Pixel>
template <class Src>
bool CgwBitmapT<Pixel>::setThreadedBlockFromOtherTypeBmpT(QPair<int, int> rows, const SgwBlockGeometry& g,
                                                          const CgwBitmapT<Src>& source)
{
    const bool equalModes = g.sourceMode == g.targetMode;
    if (!equalModes && !gwIsGreyExpansion(g.sourceMode, g.targetMode)) {
        gwDebugString(QStringLiteral("CgwBitmapT::setThreadedBlockFromOtherTypeBmpT : Error: Incompatible color modes!"));
        return false;
    }
    const bool zeroFourth = g.targetMode == EgwColorModeCMYK || g.targetMode == EgwColorModeRGBA;
    try {
        for (int r = rows.first; r < rows.second; ++r) {
            const CgwArrayT<Src> in = source.line(g.srcY + r);
            const CgwArrayT<Pixel> out = line(g.dstY + r);
            if (in.isEmpty() || out.isEmpty()) {
                gwDebugString(QStringLiteral("CgwBitmapT::setBlock() Target-data not available"));
                return false;
            }
            const Src* s = &in[g.srcX];
            Pixel* d = &out[g.dstX];
            if constexpr (std::is_same_v<Src, Pixel>) {
                if (equalModes) {
                    std::memcpy(d, s, size_t(g.width) * sizeof(Pixel));
                    continue;
                }
            }
            if (equalModes) {
                for (int x = 0; x < g.width; ++x)
                    gwConvertPixel<Src, Pixel>(s[x], d[x]);
            } else {
                for (int x = 0; x < g.width; ++x)
                    gwConvertGreyPixel<Src, Pixel>(s[x], d[x], zeroFourth);
            }
        }
    } catch (...) {
        gwDebug("CgwBitmapT::setBlock() Exception for leftTop.x, startX, lineSize: %i %i %i", g.dstX, g.srcX, g.width);
        return false;
    }
    return true;
}

template <class Pixel>
template <class Src>
bool CgwBitmapT<Pixel>::runTransfer(const SgwBlockGeometry& g, const CgwBitmapT<Src>& source)
{
    std::atomic<bool> ok{true};
    gwRunOverRows(0, g.height, [&](int first, int end) {
        if (!setThreadedBlockFromOtherTypeBmpT(qMakePair(first, end), g, source))
            ok = false;
    });
    return ok;
}

template <class Pixel>
bool CgwBitmapT<Pixel>::setBlock(const QPoint& leftTop, const CgwBitmapBase& source)
{
    SgwBlockGeometry g;
    if (!blockGeometry(leftTop, source, g))
        return false;
    const auto* same = dynamic_cast<const CgwBitmapT<Pixel>*>(&source);
    if (!same)
        return setBlockFromOtherTypeBmp(g, source);
    if (g.sourceMode == EgwColorModeUnknown) {
        gwDebugString(QStringLiteral("CgwBitmapT::setBlock : Error: Input color mode unknown!"));
        return false;
    }
    if (g.targetMode == EgwColorModeUnknown) {
        gwDebugString(QStringLiteral("CgwBitmapT::setBlock : Error: Output color mode unknown!"));
        return false;
    }
    if (g.sourceMode != g.targetMode && !gwIsGreyExpansion(g.sourceMode, g.targetMode)) {
        gwDebugString(QStringLiteral("CgwBitmapT::setBlock : Error: Incompatible color modes!"));
        return false;
    }
    return runTransfer(g, *same);
}

template <class Pixel>
bool CgwBitmapT<Pixel>::setBlockFromOtherTypeBmp(const SgwBlockGeometry& g, const CgwBitmapBase& source)
{
    if (g.sourceMode == EgwColorModeUnknown) {
        gwDebugString(QStringLiteral("CgwBitmapT::setBlockFromOtherTypeBmp : Error: Input color mode unknown!"));
        return false;
    }
    if (g.targetMode == EgwColorModeUnknown) {
        gwDebugString(QStringLiteral("CgwBitmapT::setBlockFromOtherTypeBmp : Error: Output color mode unknown!"));
        return false;
    }
    // Modes that do not go together copy nothing, and that is no failure.
    if (g.sourceMode != g.targetMode && !gwIsGreyExpansion(g.sourceMode, g.targetMode))
        return true;
    bool result = false;
    const bool known = gwDispatchPixelType(source.pixelType(), [&](auto pixel) {
        using Src = decltype(pixel);
        result = runTransfer(g, static_cast<const CgwBitmapT<Src>&>(source));
    });
    if (!known)
        gwDebugString(QStringLiteral("CgwBitmapT::setBlockFromOtherTypeBmp : Error: Unsupported input pixel type!"));
    return known && result;
}

template <class Pixel>
CgwBitmapBase* CgwBitmapT<Pixel>::getBlock(const CgwRectT<int>& rect, int filterRadius) const
{
    const int w = size().width();
    const int h = size().height();
    if (!isInitialized() || rect.isEmpty() || rect.right <= -kBorder || rect.left >= w + kBorder
        || rect.bottom <= -kBorder || rect.top >= h + kBorder)
        return nullptr;
    auto* retVal = static_cast<CgwBitmapT<Pixel>*>(createEmptyCopy());
    if (!retVal) {
        GW_BADPTR(retVal);
        return nullptr;
    }
    if (!retVal->createBitmap(QSize(rect.width(), rect.height()), colorMode(), unsigned(filterRadius)))
        return retVal;
    const CgwRectT<int>& bounds = mHead.mBounds;
    retVal->mHead.mBounds = CgwRectT<int>(bounds.left + rect.left, bounds.top + rect.top, bounds.left + rect.right,
                                          bounds.top + rect.bottom);
    // Rows and columns of the copy, its border included, that the source has.
    const int r = filterRadius;
    const int firstX = std::max(-r, -kBorder - rect.left);
    const int endX = std::min(rect.width() + r, w + kBorder - rect.left);
    gwRunOverRows(-r, rect.height() + r, [&](int first, int end) {
        for (int y = first; y < end && firstX < endX; ++y) {
            const CgwArrayT<Pixel> in = line(rect.top + y);
            const CgwArrayT<Pixel> out = retVal->line(y);
            if (!in.isEmpty() && !out.isEmpty())
                std::memcpy(&out[firstX], &in[rect.left + firstX], size_t(endX - firstX) * sizeof(Pixel));
        }
    });
    return retVal;
}

template <class Pixel>
CgwBitmapBase* CgwBitmapT<Pixel>::getBlockBlink(const CgwRectT<int>& rect) const
{
    if (!isInitialized())
        return nullptr;
    const int first = std::max(0, rect.top);
    const int end = std::min(size().height(), rect.bottom);
    if (first >= end)
        return nullptr;
    return new CgwBitmapBlinkT<Pixel>(*this, first, end);
}
