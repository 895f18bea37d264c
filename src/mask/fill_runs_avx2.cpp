// The row test of RGB fills on 3-byte sources, 32 pixels at a time. Built with AVX2 and BMI2;
// chosen only for the AVX2 instruction set, which includes BMI2.

#include <immintrin.h>

#include "mask/fill_kernels.h"

namespace vistrane::mask {

namespace {

// 0xFF in each byte within low..high (inclusive, unsigned), as a 32-bit movemask.
std::uint32_t InRange(__m256i v, __m256i low, __m256i high) {
    const __m256i aboveLow = _mm256_cmpeq_epi8(_mm256_max_epu8(v, low), v);
    const __m256i belowHigh = _mm256_cmpeq_epi8(_mm256_min_epu8(v, high), v);
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_and_si256(aboveLow, belowHigh)));
}

}  // namespace

std::uint32_t OpenBitsRgb24Avx2(const RowTest& test, const BYTE* sourceRow, const BYTE* maskRow,
                                int x, int count) {
    if (count < 32) {
        return OpenBitsRgb24(test, sourceRow, maskRow, x, count);
    }
    const auto bound = [&test](int i) {
        return _mm256_load_si256(reinterpret_cast<const __m256i*>(test.rangeBounds[i]));
    };
    const BYTE* p = sourceRow + static_cast<std::ptrdiff_t>(x) * 3;
    const std::uint64_t b0 =
        InRange(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)), bound(0), bound(1));
    const std::uint64_t b1 =
        InRange(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + 32)), bound(2), bound(3));
    const std::uint64_t b2 =
        InRange(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + 64)), bound(4), bound(5));
    // One 96-bit flag string, bit 3 i + c for channel c of pixel i: `lo` bits 0..63, `hi` bits
    // 64..95. A pixel passes when its three bits do; its verdict lands on bit 3 i.
    const std::uint64_t lo = b0 | b1 << 32;
    const std::uint64_t hi = b2;
    const std::uint64_t loAll = lo & (lo >> 1 | hi << 63) & (lo >> 2 | hi << 62);
    const std::uint64_t hiAll = hi & hi >> 1 & hi >> 2;
    // Pixels 0..21 sit on bits 0, 3 .. 63 of lo; pixels 22..31 on bits 2, 5 .. 29 of hi.
    const std::uint32_t colors =
        static_cast<std::uint32_t>(_pext_u64(loAll, 0x9249249249249249ULL)) |
        static_cast<std::uint32_t>(_pext_u64(hiAll, 0x24924924ULL)) << 22;
    const __m256i mask = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(maskRow + x));
    const auto unselected = static_cast<std::uint32_t>(
        _mm256_movemask_epi8(_mm256_cmpeq_epi8(mask, _mm256_setzero_si256())));
    return colors & unselected;
}

}  // namespace vistrane::mask
