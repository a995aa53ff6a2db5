#pragma once

#include <memory>

// Logs an index into an empty CgwArrayT.
void gwReportEmptyArrayAccess();

// A view on a run of pixels, usually one bitmap row with its border. The owner
// keeps the storage behind the pointer alive and mapped while the view exists.
template <class Pixel>
class CgwArrayT
{
public:
    CgwArrayT() = default;
    CgwArrayT(std::shared_ptr<void> owner, Pixel* data, int offset, int count)
        : mOwner(std::move(owner)), mData(data), mOffset(offset), mCount(count)
    {
    }

    bool isEmpty() const { return mData == nullptr || mCount <= 0; }
    int count() const { return mCount; }
    // The index of x = 0 within the run.
    int offset() const { return mOffset; }
    Pixel* data() const { return mData; }
    const std::shared_ptr<void>& owner() const { return mOwner; }

    // x counts from the image's first column, so the border has negative x.
    Pixel& operator[](int x) const
    {
        if (isEmpty()) {
            gwReportEmptyArrayAccess();
            thread_local Pixel sScratch;
            sScratch = Pixel{};
            return sScratch;
        }
        return mData[mOffset + x];
    }

private:
    std::shared_ptr<void> mOwner;
    Pixel* mData = nullptr;
    int mOffset = 0;
    int mCount = 0;
};

// The same for one pixel.
template <class Pixel>
class CgwSmartPixelPointer
{
public:
    CgwSmartPixelPointer() = default;
    CgwSmartPixelPointer(std::shared_ptr<void> owner, Pixel* pixel) : mOwner(std::move(owner)), mPixel(pixel) {}

    bool isNull() const { return mPixel == nullptr; }
    Pixel* get() const { return mPixel; }
    Pixel& operator*() const { return *mPixel; }
    Pixel* operator->() const { return mPixel; }

private:
    std::shared_ptr<void> mOwner;
    Pixel* mPixel = nullptr;
};
