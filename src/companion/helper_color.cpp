// Colour-space conversions of the companion object. Everything is integer arithmetic with
// explicit rounding, so the same colour gives the same bytes on every machine and the bulk
// colour operations can call these per pixel without touching floating point.

#include <vistrane/companion/helper.h>

#include <algorithm>

namespace {

constexpr int ClampByte(int v) {
    return v < 0 ? 0 : (v > 255 ? 255 : v);
}

// Floor division for a positive divisor; C++ division truncates toward zero instead.
constexpr int FloorDiv(int numerator, int divisor) {
    return numerator >= 0 ? numerator / divisor : -((-numerator + divisor - 1) / divisor);
}

// Hue of a colour with chroma delta > 0 on a circle of `steps` units (360 for HSV, 240 for
// HSL), rounded to nearest. Each 60-degree sector is steps / 6 units; within a sector the
// position is (difference of the two other channels) / delta.
int HueOnCircle(int r, int g, int b, int maxC, int delta, int steps) {
    const int sector = steps / 6;
    int base;
    int difference;
    if (maxC == r) {
        base = 0;
        difference = g - b;
    } else if (maxC == g) {
        base = 2 * sector;
        difference = b - r;
    } else {
        base = 4 * sector;
        difference = r - g;
    }
    // round(base + sector * difference / delta) = floor((2 * sector * difference + delta) /
    // (2 * delta)) + base.
    int hue = base + FloorDiv(2 * sector * difference + delta, 2 * delta);
    hue %= steps;
    return hue < 0 ? hue + steps : hue;
}

// Fixed-point weights (scaled by 2^16) of full-range BT.601. The forward rows of U and V sum
// to zero, the Y row to 65536, so greys map to (Y, 128, 128) exactly.
constexpr int kYr = 19595, kYg = 38470, kYb = 7471;
constexpr int kUr = -11059, kUg = -21709, kUb = 32768;
constexpr int kVr = 32768, kVg = -27439, kVb = -5329;
constexpr int kRv = 91881;               // 1.402
constexpr int kGu = 22554, kGv = 46802;  // 0.344136, 0.714136
constexpr int kBu = 116130;              // 1.772
constexpr int kHalf = 32768;
constexpr int kChromaBias = 128 << 16;

}  // namespace

void C_Helper::HSVFromRGB(BYTE red, BYTE green, BYTE blue, int* hue, BYTE* saturation,
                          BYTE* value) const {
    const int maxC = std::max({red, green, blue});
    const int minC = std::min({red, green, blue});
    const int delta = maxC - minC;
    *value = static_cast<BYTE>(maxC);
    if (delta == 0) {
        *hue = 0;
        *saturation = 0;
        return;
    }
    *saturation = static_cast<BYTE>((255 * delta + maxC / 2) / maxC);
    *hue = HueOnCircle(red, green, blue, maxC, delta, 360);
}

void C_Helper::RGBFromHSV(int hue, BYTE saturation, BYTE value, BYTE* red, BYTE* green,
                          BYTE* blue) const {
    if (saturation == 0) {
        *red = *green = *blue = value;
        return;
    }
    hue %= 360;
    if (hue < 0) {
        hue += 360;
    }
    const int sector = hue / 60;
    const int f = hue % 60;
    const int v = value;
    const int s = saturation;
    // p = v (1 - s), q = v (1 - s f / 60), t = v (1 - s (60 - f) / 60), with s on 0..255:
    // the products are at most 255 * 255 * 60 and are rounded by adding half the divisor.
    constexpr int kDen = 255 * 60;
    const int p = (v * (255 - s) + 127) / 255;
    const int q = (v * (kDen - s * f) + kDen / 2) / kDen;
    const int t = (v * (kDen - s * (60 - f)) + kDen / 2) / kDen;
    int r, g, b;
    switch (sector) {
        case 0:
            r = v, g = t, b = p;
            break;
        case 1:
            r = q, g = v, b = p;
            break;
        case 2:
            r = p, g = v, b = t;
            break;
        case 3:
            r = p, g = q, b = v;
            break;
        case 4:
            r = t, g = p, b = v;
            break;
        default:
            r = v, g = p, b = q;
            break;
    }
    *red = static_cast<BYTE>(r);
    *green = static_cast<BYTE>(g);
    *blue = static_cast<BYTE>(b);
}

void C_Helper::HSLFromRGB(WORD red, WORD green, WORD blue, BYTE* hue, BYTE* saturation,
                          BYTE* lightness) const {
    const int r = std::min<int>(red, 255);
    const int g = std::min<int>(green, 255);
    const int b = std::min<int>(blue, 255);
    const int maxC = std::max({r, g, b});
    const int minC = std::min({r, g, b});
    const int sum = maxC + minC;
    const int delta = maxC - minC;
    // L = 240 * sum / 510 rounded.
    *lightness = static_cast<BYTE>((240 * sum + 255) / 510);
    if (delta == 0) {
        *hue = 255;
        *saturation = 0;
        return;
    }
    const int span = sum <= 255 ? sum : 510 - sum;
    *saturation = static_cast<BYTE>((240 * delta + span / 2) / span);
    *hue = static_cast<BYTE>(HueOnCircle(r, g, b, maxC, delta, 240));
}

void C_Helper::RGBFromHSL(WORD hue, WORD saturation, WORD lightness, BYTE* red, BYTE* green,
                          BYTE* blue) const {
    const int l = std::min<int>(lightness, 240);
    const int s = std::min<int>(saturation, 240);
    if (hue == 255 || s == 0) {
        *red = *green = *blue = static_cast<BYTE>((l * 255 + 120) / 240);
        return;
    }
    const int h = hue % 240;
    // Work in units of 1/(240 * 240) of the byte range, so that m1 and m2 (the channel minimum
    // and maximum) stay exact integers: m2 = l + s - l s / 240 or l (1 + s / 240).
    const int m2 = l <= 120 ? l * (240 + s) : (l + s) * 240 - l * s;
    const int m1 = 2 * l * 240 - m2;
    // One channel value for a hue position on the 240 circle, still scaled by 240 * 240; the
    // rises and falls are linear over one 40-unit sector.
    auto channel = [&](int position) {
        position %= 240;
        if (position < 0) {
            position += 240;
        }
        int scaled;
        if (position < 40) {
            scaled = m1 * 40 + (m2 - m1) * position;
        } else if (position < 120) {
            scaled = m2 * 40;
        } else if (position < 160) {
            scaled = m1 * 40 + (m2 - m1) * (160 - position);
        } else {
            scaled = m1 * 40;
        }
        // scaled is the level times 240 * 240 * 40 / 255; round to a byte.
        constexpr long long kDen = 240LL * 240 * 40;
        return static_cast<BYTE>(
            ClampByte(static_cast<int>((static_cast<long long>(scaled) * 255 + kDen / 2) / kDen)));
    };
    *red = channel(h + 80);
    *green = channel(h);
    *blue = channel(h - 80);
}

BYTE C_Helper::YFromRGB(BYTE red, BYTE green, BYTE blue) const {
    return static_cast<BYTE>((kYr * red + kYg * green + kYb * blue + kHalf) >> 16);
}

void C_Helper::YUVFromRGB(BYTE red, BYTE green, BYTE blue, BYTE* y, BYTE* u, BYTE* v) const {
    *y = YFromRGB(red, green, blue);
    // The sums are positive (the bias outweighs the negative weights), so the shift is a floor
    // and with kHalf a rounding; pure blue and pure red reach 255.5 and are clamped.
    *u = static_cast<BYTE>(
        ClampByte((kUr * red + kUg * green + kUb * blue + kChromaBias + kHalf) >> 16));
    *v = static_cast<BYTE>(
        ClampByte((kVr * red + kVg * green + kVb * blue + kChromaBias + kHalf) >> 16));
}

void C_Helper::RGBFromYUV(BYTE y, BYTE u, BYTE v, BYTE* red, BYTE* green, BYTE* blue) const {
    const int du = u - 128;
    const int dv = v - 128;
    // Each channel is Y plus one rounded fixed-point term; >> on a negative int is a floor, so
    // adding kHalf first rounds to nearest. The green term is negated before the shift so that
    // it rounds the same way as the others.
    *red = static_cast<BYTE>(ClampByte(y + ((kRv * dv + kHalf) >> 16)));
    *green = static_cast<BYTE>(ClampByte(y + ((-kGu * du - kGv * dv + kHalf) >> 16)));
    *blue = static_cast<BYTE>(ClampByte(y + ((kBu * du + kHalf) >> 16)));
}

void C_Helper::OffsetHSV(BYTE* pixel, int hueShift, int saturationShift, int valueShift) const {
    int hue;
    BYTE s;
    BYTE v;
    HSVFromRGB(pixel[2], pixel[1], pixel[0], &hue, &s, &v);
    RGBFromHSV(hue + hueShift, static_cast<BYTE>(ClampByte(s + saturationShift)),
               static_cast<BYTE>(ClampByte(v + valueShift)), &pixel[2], &pixel[1], &pixel[0]);
}

void C_Helper::OffsetYUV(BYTE* pixel, int yShift, int uShift, int vShift) const {
    BYTE y;
    BYTE u;
    BYTE v;
    YUVFromRGB(pixel[2], pixel[1], pixel[0], &y, &u, &v);
    RGBFromYUV(static_cast<BYTE>(ClampByte(y + yShift)), static_cast<BYTE>(ClampByte(u + uShift)),
               static_cast<BYTE>(ClampByte(v + vShift)), &pixel[2], &pixel[1], &pixel[0]);
}

void C_Helper::ChangeRGBQHSV(RGBQUAD* colors, int count, int hueShift, int saturationShift,
                             int valueShift) const {
    for (int i = 0; i < count; ++i) {
        OffsetHSV(&colors[i].rgbBlue, hueShift, saturationShift, valueShift);
    }
}

void C_Helper::ChangeRGBQYUV(RGBQUAD* colors, int count, int yShift, int uShift, int vShift) const {
    for (int i = 0; i < count; ++i) {
        OffsetYUV(&colors[i].rgbBlue, yShift, uShift, vShift);
    }
}
