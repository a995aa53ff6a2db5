#include "Sourcen/Image/gwBitmapT_instances.h"

GW_INSTANTIATE_BITMAP(CgwPixelFloat4)
GW_INSTANTIATE_BITMAP(CgwPixelGreyFloat)
// The float pixels of resampling, with the integer ranges kept in the samples.
GW_INSTANTIATE_BITMAP(CgwPixelFloat1x255)
GW_INSTANTIATE_BITMAP(CgwPixelFloat1x65535)
GW_INSTANTIATE_BITMAP(CgwPixelFloat2x255)
GW_INSTANTIATE_BITMAP(CgwPixelFloat2x65535)
GW_INSTANTIATE_BITMAP(CgwPixelFloat3x65535)
GW_INSTANTIATE_BITMAP(CgwPixelFloat4x255)
GW_INSTANTIATE_BITMAP(CgwPixelFloat4x65535)
