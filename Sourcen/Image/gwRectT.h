#pragma once

#include <utility>

// Left, top, right, bottom; right and bottom are exclusive.
template <typename T>
struct CgwRectT {
    T left = 0;
    T top = 0;
    T right = 0;
    T bottom = 0;

    constexpr CgwRectT() = default;
    constexpr CgwRectT(T l, T t, T r, T b) : left(l), top(t), right(r), bottom(b) {}

    constexpr T width() const { return right - left; }
    constexpr T height() const { return bottom - top; }
    constexpr bool isEmpty() const { return right <= left || bottom <= top; }

    void normalize()
    {
        if (left > right)
            std::swap(left, right);
        if (top > bottom)
            std::swap(top, bottom);
    }
    CgwRectT normalized() const
    {
        CgwRectT r = *this;
        r.normalize();
        return r;
    }
    constexpr bool operator==(const CgwRectT& o) const
    {
        return left == o.left && top == o.top && right == o.right && bottom == o.bottom;
    }
    constexpr bool operator!=(const CgwRectT& o) const { return !(*this == o); }
};
