#include "Sourcen/Image/gwColorMode.h"

int gwColorModeChannels(int colorMode)
{
    static const int channels[8] = {0, 1, 2, 3, 3, 3, 4, 4};
    return (colorMode >= 0 && colorMode < 8) ? channels[colorMode] : -1;
}
