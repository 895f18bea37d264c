#include "filter/hsv_shift.h"

#include <vistrane/companion/helper.h>

#include <algorithm>

namespace vistrane::filter {
namespace {

constexpr int kSector = 60;  // degrees per sector of the 360-degree hue circle

constexpr int FloorDiv(int numerator, int divisor) {
    return numerator >= 0 ? numerator / divisor : -((-numerator + divisor - 1) / divisor);
}

constexpr int ClampByte(int v) {
    return v < 0 ? 0 : (v > 255 ? 255 : v);
}

}  // namespace

HsvShifter::HsvShifter(int hueShift, int saturationShift, int valueShift, cpu::InstructionSet set)
    : m_HueShift(hueShift),
      m_SaturationShift(saturationShift),
      m_ValueShift(valueShift),
      m_Saturation(256 * 256),
      m_Hue(256 * 511) {
    for (int maxC = 1; maxC < 256; ++maxC) {
        for (int delta = 0; delta <= maxC; ++delta) {
            m_Saturation[maxC * 256 + delta] = static_cast<BYTE>((255 * delta + maxC / 2) / maxC);
        }
    }
    // The rounded position base + 60 difference / delta, as the companion's HSVFromRGB has it:
    // floor((2 * 60 * difference + delta) / (2 * delta)), in -60..60.
    for (int delta = 1; delta < 256; ++delta) {
        for (int difference = -delta; difference <= delta; ++difference) {
            m_Hue[delta * 511 + difference + 255] =
                static_cast<std::int8_t>(FloorDiv(2 * kSector * difference + delta, 2 * delta));
        }
    }
#if VISTRANE_X86_KERNELS
    if (set == cpu::InstructionSet::kAvx2) {
        m_Fast = ShiftHsvAvx2;
    }
#else
    (void)set;
#endif
}

void HsvShifter::Apply(BYTE* pixels, int count) const {
    if (m_Fast != nullptr) {
        m_Fast(pixels, count, *this);
    } else {
        ApplyRef(pixels, count);
    }
}

void HsvShifter::ApplyRef(BYTE* pixels, int count) const {
    for (int i = 0; i < count; ++i) {
        BYTE* px = pixels + 3 * i;
        const int r = px[2], g = px[1], b = px[0];
        const int maxC = std::max({r, g, b});
        const int delta = maxC - std::min({r, g, b});
        int hue = 0;
        int saturation = 0;
        if (delta != 0) {
            saturation = m_Saturation[maxC * 256 + delta];
            int base;
            int difference;
            if (maxC == r) {
                base = 0, difference = g - b;
            } else if (maxC == g) {
                base = 2 * kSector, difference = b - r;
            } else {
                base = 4 * kSector, difference = r - g;
            }
            hue = base + m_Hue[delta * 511 + difference + 255];
            hue %= 360;
            hue = hue < 0 ? hue + 360 : hue;
        }
        const int s = ClampByte(saturation + m_SaturationShift);
        const int v = ClampByte(maxC + m_ValueShift);
        // The inverse is the companion's own; only the forward half is sped up by tables.
        BYTE nr = 0;
        BYTE ng = 0;
        BYTE nb = 0;
        C_Helper().RGBFromHSV(hue + m_HueShift, static_cast<BYTE>(s), static_cast<BYTE>(v), &nr,
                              &ng, &nb);
        px[0] = nb;
        px[1] = ng;
        px[2] = nr;
    }
}

}  // namespace vistrane::filter
