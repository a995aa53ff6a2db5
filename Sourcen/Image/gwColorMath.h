#pragma once

// Colour formulas of the mode conversions, on samples scaled to 0..1.
// Lab is held as L / 100 and (a + 128) / 255, (b + 128) / 255.

void gwRgbToLab(const float rgb[3], float lab[3]);
void gwLabToRgb(const float lab[3], float rgb[3]);
// CMYK as the suite holds it: the samples stay in the sense of RGB.
void gwRgbToCmyk(const float rgb[3], float cmyk[4]);
void gwCmykToRgb(const float cmyk[4], float rgb[3]);
