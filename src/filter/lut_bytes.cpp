#include "filter/lut_bytes.h"

#include <bit>
#include <cstring>

namespace vistrane::filter {

void LutBytesRef(BYTE* bytes, int count, const BYTE* table) {
    for (int i = 0; i < count; ++i) {
        bytes[i] = table[bytes[i]];
    }
}

void FillBgrLut(BgrLut& lut, const BYTE* blue, const BYTE* green, const BYTE* red) {
    const BYTE* tables[3] = {blue, green, red};
    for (int c = 0; c < 3; ++c) {
        for (int i = 0; i < 256; ++i) {
            lut.entries[c][i] = tables[c][i];
        }
    }
}

void LutBgrRef(BYTE* pixels, int count, const BgrLut& lut) {
    for (int i = 0; i < count; ++i) {
        BYTE* p = pixels + 3 * i;
        for (int c = 0; c < 3; ++c) {
            p[c] = static_cast<BYTE>(lut.entries[c][p[c]]);
        }
    }
}

void LutBgrWords(BYTE* pixels, int count, const BgrLut& lut) {
    static_assert(std::endian::native == std::endian::little);
    const std::uint32_t* blue = lut.entries[0];
    const std::uint32_t* green = lut.entries[1];
    const std::uint32_t* red = lut.entries[2];
    int i = 0;
    for (; i + 4 <= count; i += 4) {
        BYTE* p = pixels + 3 * i;
        // Bytes 0..11 are B G R B | G R B G | R B G R; word j holds bytes 4 j .. 4 j + 3,
        // lowest first.
        const std::uint32_t w0 = blue[p[0]] | green[p[1]] << 8 | red[p[2]] << 16 | blue[p[3]] << 24;
        const std::uint32_t w1 =
            green[p[4]] | red[p[5]] << 8 | blue[p[6]] << 16 | green[p[7]] << 24;
        const std::uint32_t w2 =
            red[p[8]] | blue[p[9]] << 8 | green[p[10]] << 16 | red[p[11]] << 24;
        std::memcpy(p, &w0, 4);
        std::memcpy(p + 4, &w1, 4);
        std::memcpy(p + 8, &w2, 4);
    }
    if (i < count) {
        LutBgrRef(pixels + 3 * i, count - i, lut);
    }
}

LutBytesFn LutBytesFor(cpu::InstructionSet set) {
#if VISTRANE_X86_KERNELS
    if (set == cpu::InstructionSet::kAvx2) {
        return LutBytesAvx2;
    }
#else
    (void)set;
#endif
    return LutBytesRef;
}

}  // namespace vistrane::filter
