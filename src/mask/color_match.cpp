#include "mask/color_match.h"

#include <vistrane/companion/helper.h>

#include <algorithm>
#include <cstring>

namespace vistrane::mask {

namespace {

// The companion's HSV hue, so that colour matching agrees with every other hue of the engine
// (the HSV shift, sorting colours by hue). It lies in 0..359 for every colour, greys included
// (they report 0), which is what keeps it inside the 360-entry table.
int HueOf(const BYTE* bgr) {
    int hue = 0;
    BYTE saturation = 0;
    BYTE value = 0;
    C_Helper().HSVFromRGB(bgr[2], bgr[1], bgr[0], &hue, &saturation, &value);
    return hue;
}

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
            MarkHue(data->m_Accept, HueOf(bgr), tolerance);
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
            return data.m_Accept[HueOf(bgr)] != 0;
        case COLOR_MATCH_INTENSITY:
            return data.m_Accept[(bgr[0] + bgr[1] + bgr[2]) / 3] != 0;
        default:
            return true;
    }
}

}  // namespace vistrane::mask
