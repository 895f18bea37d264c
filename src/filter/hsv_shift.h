#pragma once

// The HSV shift of C_Helper::OffsetHSV for whole rows: the same integer rules, with the two
// run-time divisions of the forward conversion (saturation by the maximum, hue position by
// twice the chroma) read from tables built once per operation. Every other division is by a
// constant. Gives C_Helper::OffsetHSV's bytes for every colour and shift.

#include <vistrane/platform/types.h>

#include <cstdint>
#include <vector>

namespace vistrane::filter {

class HsvShifter {
  public:
    HsvShifter(int hueShift, int saturationShift, int valueShift);

    // Shifts `count` pixels (blue, green, red) in place.
    void Apply(BYTE* pixels, int count) const;

  private:
    int m_HueShift;
    int m_SaturationShift;
    int m_ValueShift;
    std::vector<BYTE> m_Saturation;  // [max * 256 + delta]: (255 delta + max / 2) / max
    std::vector<std::int8_t> m_Hue;  // [delta * 511 + difference + 255]: position in a sector
};

}  // namespace vistrane::filter
