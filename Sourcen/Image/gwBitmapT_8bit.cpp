#include "Sourcen/Image/gwBitmapT_instances.h"

GW_INSTANTIATE_BITMAP(CgwPixel8x4)
GW_INSTANTIATE_BITMAP(CgwPixelGrey8)
GW_INSTANTIATE_BITMAP(CgwPixelLineArt)
GW_INSTANTIATE_BITMAP(CgwPixel8x2)
