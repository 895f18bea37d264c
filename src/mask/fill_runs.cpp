#include "mask/fill_runs.h"

#include "mask/color_match.h"

namespace vistrane::mask {

std::uint32_t OpenBitsRef(const RowTest& test, const BYTE* sourceRow, const BYTE* maskRow, int x,
                          int count) {
    std::uint32_t bits = 0;
    for (int i = 0; i < count; ++i) {
        const BYTE* pixel = sourceRow + static_cast<std::ptrdiff_t>(x + i) * test.bytesPerPixel;
        const BYTE* color = test.bytesPerPixel == 3 ? pixel : &test.colors[*pixel].rgbBlue;
        if (maskRow[x + i] == 0 && MatchColor(color, *test.data)) {
            bits |= std::uint32_t{1} << i;
        }
    }
    return bits;
}

std::uint32_t OpenBitsIndexed(const RowTest& test, const BYTE* sourceRow, const BYTE* maskRow,
                              int x, int count) {
    std::uint32_t bits = 0;
    for (int i = 0; i < count; ++i) {
        if (maskRow[x + i] == 0 && test.indexAccept[sourceRow[x + i]] != 0) {
            bits |= std::uint32_t{1} << i;
        }
    }
    return bits;
}

std::uint32_t OpenBitsRgb24(const RowTest& test, const BYTE* sourceRow, const BYTE* maskRow, int x,
                            int count) {
    const unsigned char* accept = test.data->m_Accept;
    const BYTE* pixel = sourceRow + static_cast<std::ptrdiff_t>(x) * 3;
    std::uint32_t bits = 0;
    for (int i = 0; i < count; ++i, pixel += 3) {
        if (maskRow[x + i] == 0 && accept[pixel[2]] != 0 && accept[256 + pixel[1]] != 0 &&
            accept[512 + pixel[0]] != 0) {
            bits |= std::uint32_t{1} << i;
        }
    }
    return bits;
}

namespace {

// The accepted entries of one 256-entry table as one inclusive range. An empty table gives the
// range 1..0, which no byte satisfies. False when the entries are not one range.
bool AcceptedRange(const unsigned char* accept, BYTE& low, BYTE& high) {
    int first = -1;
    int last = -1;
    for (int i = 0; i < 256; ++i) {
        if (accept[i] != 0) {
            if (first < 0) {
                first = i;
            } else if (last != i - 1) {
                return false;
            }
            last = i;
        }
    }
    low = static_cast<BYTE>(first < 0 ? 1 : first);
    high = static_cast<BYTE>(first < 0 ? 0 : last);
    return true;
}

}  // namespace

RowTest ChooseRowTest(const S_ColorMatchData& data, const image::ConstPixelView& source,
                      RowKernels kernels) {
    RowTest test;
    test.data = &data;
    test.colors = source.colors;
    test.bytesPerPixel = source.bytesPerPixel;
    test.openBits = OpenBitsRef;
    if (kernels == RowKernels::Reference) {
        return test;
    }
    if (source.bytesPerPixel == 1) {
        for (int i = 0; i < 256; ++i) {
            test.indexAccept[i] = MatchColor(&source.colors[i].rgbBlue, data) ? 1 : 0;
        }
        test.openBits = OpenBitsIndexed;
        return test;
    }
    if (data.m_Mode != COLOR_MATCH_RGB) {
        return test;
    }
    test.openBits = OpenBitsRgb24;
    // Table order is red, green, blue; pixel order blue, green, red.
    BYTE low[3];
    BYTE high[3];
    const bool ranges = AcceptedRange(data.m_Accept + 512, low[0], high[0]) &&
                        AcceptedRange(data.m_Accept + 256, low[1], high[1]) &&
                        AcceptedRange(data.m_Accept, low[2], high[2]);
#if VISTRANE_X86_KERNELS
    if (kernels == RowKernels::Best && cpu::Best() == cpu::InstructionSet::kAvx2 && ranges) {
        for (int part = 0; part < 3; ++part) {
            for (int k = 0; k < 32; ++k) {
                const int channel = (32 * part + k) % 3;
                test.rangeBounds[2 * part][k] = low[channel];
                test.rangeBounds[2 * part + 1][k] = high[channel];
            }
        }
        test.openBits = OpenBitsRgb24Avx2;
    }
#else
    (void)ranges;
#endif
    return test;
}

}  // namespace vistrane::mask
