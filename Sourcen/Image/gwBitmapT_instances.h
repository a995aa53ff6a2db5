#pragma once

// Everything a file that instantiates bitmaps needs.
#include "Sourcen/Image/gwBitmapBlink.h"
#include "Sourcen/Image/gwBitmapDerived.h"

#define GW_INSTANTIATE_BITMAP(Pixel)        \
    template class CgwBitmapT<Pixel>;       \
    template class CgwBitmapBlinkT<Pixel>;
