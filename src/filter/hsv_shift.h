#pragma once

// The HSV shift of C_Helper::OffsetHSV for whole rows: the same integer rules, with the two
// run-time divisions of the forward conversion (saturation by the maximum, hue position by
// twice the chroma) read from tables built once per operation. Every other division is by a
// constant. Gives C_Helper::OffsetHSV's bytes for every colour and shift.
//
// ApplyRef is the plain rule and defines the bytes; Apply runs the AVX2 row of
// hsv_shift_avx2.cpp when the instruction set given at construction is AVX2, which does the same
// integer arithmetic eight pixels at a time and hands the last pixels of a row to ApplyRef.

#include <vistrane/platform/types.h>

#include "platform/cpu_features.h"

#include <cstdint>
#include <vector>

namespace vistrane::filter {

class HsvShifter {
  public:
    HsvShifter(int hueShift, int saturationShift, int valueShift,
               cpu::InstructionSet set = cpu::Best());

    // Shifts `count` pixels (blue, green, red) in place.
    void Apply(BYTE* pixels, int count) const;
    void ApplyRef(BYTE* pixels, int count) const;

    int HueShift() const { return m_HueShift; }
    int SaturationShift() const { return m_SaturationShift; }
    int ValueShift() const { return m_ValueShift; }

  private:
    void (*m_Fast)(BYTE* pixels, int count, const HsvShifter& shifter) = nullptr;
    int m_HueShift;
    int m_SaturationShift;
    int m_ValueShift;
    std::vector<BYTE> m_Saturation;  // [max * 256 + delta]: (255 delta + max / 2) / max
    std::vector<std::int8_t> m_Hue;  // [delta * 511 + difference + 255]: position in a sector
};

// Defined in hsv_shift_avx2.cpp; call only when the CPU has AVX2. Gives ApplyRef's bytes.
void ShiftHsvAvx2(BYTE* pixels, int count, const HsvShifter& shifter);

}  // namespace vistrane::filter
