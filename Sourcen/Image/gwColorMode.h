#pragma once

enum EgwColorMode {
    EgwColorModeUnknown = 0,
    EgwColorModeGrey = 1,
    EgwColorModeTwoChannel = 2,
    EgwColorModeRGB = 3,
    EgwColorModeCMY = 4,
    EgwColorModeLab = 5,
    EgwColorModeCMYK = 6,
    EgwColorModeRGBA = 7,
};

// Channels a colour mode occupies in a bitmap; -1 for a value outside the table.
int gwColorModeChannels(int colorMode);
