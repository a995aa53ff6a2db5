#pragma once

#include <algorithm>
#include <cstring>
#include <vector>

// A growable buffer for building binary blocks; its capacity grows in steps
// of 0x400 elements.
template <typename T>
class CgwMemBufferT
{
public:
    static constexpr size_t kGrowth = 0x400;

    size_t size() const { return mData.size(); }
    bool isEmpty() const { return mData.empty(); }
    T* data() { return mData.data(); }
    const T* data() const { return mData.data(); }
    void clear() { mData.clear(); }

    void append(const T* items, size_t n) { insertAt(mData.size(), items, n); }
    void append(T item) { append(&item, 1); }

    // Inserts n items at `offset`, shifting the tail up; false past the end.
    bool insertAt(size_t offset, const T* items, size_t n)
    {
        if (offset > mData.size())
            return false;
        reserveFor(mData.size() + n);
        mData.insert(mData.begin() + std::ptrdiff_t(offset), items, items + n);
        return true;
    }

    // Removes the items from `first` up to, not including, `last`.
    bool removeRange(size_t first, size_t last)
    {
        if (first > last || last > mData.size())
            return false;
        mData.erase(mData.begin() + std::ptrdiff_t(first), mData.begin() + std::ptrdiff_t(last));
        return true;
    }

private:
    void reserveFor(size_t needed)
    {
        if (needed > mData.capacity())
            mData.reserve((needed + kGrowth - 1) / kGrowth * kGrowth);
    }

    std::vector<T> mData;
};
