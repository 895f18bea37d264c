#include "filter/filter_rows.h"

#include <algorithm>
#include <cstdint>

namespace vistrane::filter {

// Sums are made in chunks that stay in the first-level cache, tap by tap.
void ConvolveBytesRef(const BYTE* const* tapRows, const int* weights, int nTaps, int start, int end,
                      const ExactDivider& divider, int offset, BYTE* out) {
    constexpr int kChunk = 512;
    std::int32_t sums[kChunk];
    for (int from = start; from < end; from += kChunk) {
        const int n = std::min(kChunk, end - from);
        std::fill(sums, sums + n, 0);
        for (int t = 0; t < nTaps; ++t) {
            const BYTE* p = tapRows[t] + from;
            const std::int32_t w = weights[t];
            for (int i = 0; i < n; ++i) {
                sums[i] += w * p[i];
            }
        }
        for (int i = 0; i < n; ++i) {
            out[from + i] = static_cast<BYTE>(std::clamp(divider.Divide(sums[i]) + offset, 0, 255));
        }
    }
}

ConvolveBytesFn ConvolveBytesFor(cpu::InstructionSet set) {
#if VISTRANE_X86_KERNELS
    if (set == cpu::InstructionSet::kAvx2) {
        return ConvolveBytesAvx2;
    }
#else
    (void)set;
#endif
    return ConvolveBytesRef;
}

}  // namespace vistrane::filter
