#pragma once

#include "Sourcen/Image/gwBitmapMM.h"

#include <cstdlib>
#include <vector>

// Pixels in memory, allocated in stripes of at most 128 rows so that a huge
// image needs no single contiguous block.
template <class Pixel>
class CgwBitmapMM_InMem : public CgwBitmapMM_Base<Pixel>
{
public:
    static constexpr int mStripeRows = 128;

    explicit CgwBitmapMM_InMem(const QSize& size) : CgwBitmapMM_Base<Pixel>(size)
    {
        try {
            mRows.resize(size_t(size.height()), nullptr);
        } catch (...) {
            throw kGwRowTableAllocationFailed;
        }
        const size_t rowPixels = size_t(size.width());
        for (int y = 0; y < size.height(); y += mStripeRows) {
            const size_t rows = size_t(std::min(mStripeRows, size.height() - y));
            // calloc: zeroed, and for large stripes zeroed lazily by the system.
            auto* stripe = static_cast<Pixel*>(std::calloc(rows * rowPixels, sizeof(Pixel)));
            if (!stripe) {
                freeStripes();
                throw kGwStorageAllocationFailed;
            }
            gwAdviseHugePages(stripe, rows * rowPixels * sizeof(Pixel));
            for (size_t r = 0; r < rows; ++r)
                mRows[size_t(y) + r] = stripe + r * rowPixels;
        }
    }

    ~CgwBitmapMM_InMem() override { freeStripes(); }

    // One table look-up, no lock.
    CgwArrayT<Pixel> getLine(int y) override
    {
        if (y < 0 || y >= int(mRows.size()))
            return CgwArrayT<Pixel>();
        return CgwArrayT<Pixel>(nullptr, mRows[size_t(y)], kBorderPixels, this->mSize.width());
    }

private:
    static constexpr int kBorderPixels = 23;

    void freeStripes()
    {
        for (size_t y = 0; y < mRows.size(); y += mStripeRows)
            std::free(mRows[y]);
        mRows.clear();
    }

    std::vector<Pixel*> mRows;
};
