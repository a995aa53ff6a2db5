#include "Sourcen/Image/gwColorMath.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float kWhiteX = 95.047f;
constexpr float kWhiteY = 100.0f;
constexpr float kWhiteZ = 108.883f;

float clamp01(float v)
{
    return std::min(1.0f, std::max(0.0f, v));
}

float labF(float t)
{
    return t > 0.008856f ? std::cbrt(t) : 7.787f * t + 0.13793103f;
}

float labFInverse(float f)
{
    const float cube = f * f * f;
    return cube > 0.008856f ? cube : (f - 0.13793103f) / 7.787f;
}

float toLinear(float v)
{
    return v <= 0.04045f ? v / 12.92f : std::pow((v + 0.055f) / 1.055f, 2.4f);
}

float fromLinear(float v)
{
    return v <= 0.0031308f ? v * 12.92f : 1.055f * std::pow(v, 1.0f / 2.4f) - 0.055f;
}

} // namespace

void gwRgbToLab(const float rgb[3], float lab[3])
{
    const float r = toLinear(rgb[0]) * 100.0f;
    const float g = toLinear(rgb[1]) * 100.0f;
    const float b = toLinear(rgb[2]) * 100.0f;
    const float x = (0.4124f * r + 0.3576f * g + 0.1805f * b) / kWhiteX;
    const float y = (0.2126f * r + 0.7152f * g + 0.0722f * b) / kWhiteY;
    const float z = (0.0193f * r + 0.1192f * g + 0.9505f * b) / kWhiteZ;
    const float fx = labF(x);
    const float fy = labF(y);
    const float fz = labF(z);
    lab[0] = clamp01((116.0f * fy - 16.0f) / 100.0f);
    lab[1] = clamp01((500.0f * (fx - fy) + 128.0f) / 255.0f);
    lab[2] = clamp01((200.0f * (fy - fz) + 128.0f) / 255.0f);
}

void gwLabToRgb(const float lab[3], float rgb[3])
{
    const float l = lab[0] * 100.0f;
    const float a = lab[1] * 255.0f - 128.0f;
    const float bb = lab[2] * 255.0f - 128.0f;
    const float fy = (l + 16.0f) / 116.0f;
    const float x = labFInverse(fy + a / 500.0f) * kWhiteX / 100.0f;
    const float y = labFInverse(fy) * kWhiteY / 100.0f;
    const float z = labFInverse(fy - bb / 200.0f) * kWhiteZ / 100.0f;
    // The inverse of the sRGB primaries above.
    const float r = 3.2406f * x - 1.5372f * y - 0.4986f * z;
    const float g = -0.9689f * x + 1.8758f * y + 0.0415f * z;
    const float b = 0.0557f * x - 0.2040f * y + 1.0570f * z;
    rgb[0] = clamp01(fromLinear(clamp01(r)));
    rgb[1] = clamp01(fromLinear(clamp01(g)));
    rgb[2] = clamp01(fromLinear(clamp01(b)));
}

void gwRgbToCmyk(const float rgb[3], float cmyk[4])
{
    float cmy[3] = {1.0f - rgb[0], 1.0f - rgb[1], 1.0f - rgb[2]};
    const float k = std::min({cmy[0], cmy[1], cmy[2]});
    for (float& v : cmy)
        v = k < 1.0f ? (v - k) / (1.0f - k) : 0.0f;
    for (int c = 0; c < 3; ++c)
        cmyk[c] = clamp01(1.0f - cmy[c]);
    cmyk[3] = clamp01(1.0f - k);
}

void gwCmykToRgb(const float cmyk[4], float rgb[3])
{
    const float f = 1.0f - cmyk[3];
    const float g = 1.0f - f;
    for (int c = 0; c < 3; ++c)
        rgb[c] = clamp01(1.0f - ((1.0f - cmyk[c]) * g + f));
}
