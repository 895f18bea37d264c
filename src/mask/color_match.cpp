#include "mask/color_match.h"

#include <algorithm>
#include <cstring>

namespace vistrane::mask {

int HueDegrees(BYTE red, BYTE green, BYTE blue) {
    const int maxC = std::max({red, green, blue});
    const int minC = std::min({red, green, blue});
    const int delta = maxC - minC;
    if (delta == 0) {
        return 0;
    }
    // Sixty degrees per sector; the offset within the sector is rounded half up by adding half
    // the divisor before a floor division (the numerator may be negative).
    int base = 0;
    int numerator = 0;
    if (maxC == red) {
        numerator = green - blue;
    } else if (maxC == green) {
        base = 120;
        numerator = blue - red;
    } else {
        base = 240;
        numerator = red - green;
    }
    const int scaled = 120 * numerator + delta;
    const int divisor = 2 * delta;
    const int offset = scaled >= 0 ? scaled / divisor : -((-scaled + divisor - 1) / divisor);
    return (base + offset + 360) % 360;
}

namespace {

void MarkRange(unsigned char* accept, int lo, int hi) {
    lo = std::max(lo, 0);
    hi = std::min(hi, 255);
    if (lo <= hi) {
        std::memset(accept + lo, 1, static_cast<std::size_t>(hi - lo + 1));
    }
}

void MarkHue(unsigned char* accept, int hue, int tolerance) {
    int lo = hue - tolerance;
    int hi = hue + tolerance;
    if (lo < 0) {
        for (int i = 360 + lo; i <= 359; ++i) {
            accept[std::max(i, 0)] = 1;
        }
        lo = 0;
    }
    for (int i = lo; i <= hue; ++i) {
        accept[i] = 1;
    }
    if (hi > 359) {
        for (int i = 0; i <= hi - 360 && i <= 359; ++i) {
            accept[i] = 1;
        }
        hi = 359;
    }
    for (int i = hue; i <= hi; ++i) {
        accept[i] = 1;
    }
}

}  // namespace

void PrepareColorMatch(S_ColorMatchData* data, const BYTE* bgr, COLOR_MATCH_MODE mode,
                       int tolerance) {
    std::memset(data->m_Accept, 0, sizeof(data->m_Accept));
    // Past a whole circle every rule below marks all or nothing, so the bound changes no result
    // and keeps reference -/+ tolerance from overflowing.
    tolerance = std::clamp(tolerance, -360, 360);
    const int blue = bgr[0];
    const int green = bgr[1];
    const int red = bgr[2];
    switch (mode) {
        case COLOR_MATCH_RGB:
            data->m_Mode = mode;
            MarkRange(data->m_Accept, red - tolerance, red + tolerance);
            MarkRange(data->m_Accept + 256, green - tolerance, green + tolerance);
            MarkRange(data->m_Accept + 512, blue - tolerance, blue + tolerance);
            break;
        case COLOR_MATCH_HUE:
            data->m_Mode = mode;
            MarkHue(data->m_Accept, HueDegrees(bgr[2], bgr[1], bgr[0]), tolerance);
            break;
        case COLOR_MATCH_INTENSITY: {
            data->m_Mode = mode;
            const int intensity = (red + green + blue) / 3;
            MarkRange(data->m_Accept, intensity - tolerance, intensity + tolerance);
            break;
        }
        default:
            data->m_Mode = COLOR_MATCH_ANY;
            break;
    }
}

bool MatchColor(const BYTE* bgr, const S_ColorMatchData& data) {
    switch (data.m_Mode) {
        case COLOR_MATCH_RGB:
            return data.m_Accept[bgr[2]] != 0 && data.m_Accept[256 + bgr[1]] != 0 &&
                   data.m_Accept[512 + bgr[0]] != 0;
        case COLOR_MATCH_HUE:
            return data.m_Accept[HueDegrees(bgr[2], bgr[1], bgr[0])] != 0;
        case COLOR_MATCH_INTENSITY:
            return data.m_Accept[(bgr[0] + bgr[1] + bgr[2]) / 3] != 0;
        default:
            return true;
    }
}

}  // namespace vistrane::mask
