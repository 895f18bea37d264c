// The AVX2 row kernel of FlipHorizontal. Built with -mavx2 on its own and called only when the
// CPU reports AVX2 (BestFlipRow in rotate.cpp).
//
// Both ends of the row are reversed a block at a time and swapped, so the row is read and
// written once; the middle that is left (fewer than two blocks) goes to FlipRowRef, which
// reverses it in place and so completes the mirror. Byte moves only: the result is FlipRowRef's
// by construction.

#include <immintrin.h>

#include <cstdint>

#include "xform/xform_kernels.h"

namespace vistrane::xform {

namespace {

// One pixel run of 32 grey bytes: byte reversal within each 128-bit lane, then the lanes
// swapped (0x4E = lanes 1, 0).
inline __m256i Reverse32(__m256i v) {
    const __m256i lanes = _mm256_setr_epi8(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0, 15,
                                           14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
    return _mm256_permute4x64_epi64(_mm256_shuffle_epi8(v, lanes), 0x4E);
}

// Sixteen 3-byte pixels in three registers (bytes 0..15, 16..31, 32..47). Output byte j is
// input byte 3 * (15 - j / 3) + j % 3; an output register can draw on all three inputs, so it
// is three shuffles (index -1 gives zero) ORed.
class Reverse48 {
  public:
    Reverse48() {
        for (int o = 0; o < 3; ++o) {
            for (int i = 0; i < 3; ++i) {
                alignas(16) std::int8_t m[16];
                for (int k = 0; k < 16; ++k) {
                    const int j = o * 16 + k;
                    const int source = 3 * (15 - j / 3) + j % 3;
                    m[k] = static_cast<std::int8_t>(source / 16 == i ? source % 16 : -1);
                }
                m_Masks[o][i] = _mm_load_si128(reinterpret_cast<const __m128i*>(m));
            }
        }
    }

    void Apply(const BYTE* in, __m128i out[3]) const {
        __m128i v[3];
        for (int i = 0; i < 3; ++i) {
            v[i] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + 16 * i));
        }
        for (int o = 0; o < 3; ++o) {
            out[o] = _mm_or_si128(_mm_or_si128(_mm_shuffle_epi8(v[0], m_Masks[o][0]),
                                               _mm_shuffle_epi8(v[1], m_Masks[o][1])),
                                  _mm_shuffle_epi8(v[2], m_Masks[o][2]));
        }
    }

  private:
    __m128i m_Masks[3][3];
};

void Store48(BYTE* out, const __m128i v[3]) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), v[0]);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 16), v[1]);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 32), v[2]);
}

}  // namespace

void FlipRowAvx2(BYTE* row, int count, int bytesPerPixel) {
    int done = 0;  // pixels already swapped at each end
    if (bytesPerPixel == 1) {
        for (; count - 2 * done >= 64; done += 32) {
            BYTE* left = row + done;
            BYTE* right = row + count - done - 32;
            const __m256i l = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(left));
            const __m256i r = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(right));
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(left), Reverse32(r));
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(right), Reverse32(l));
        }
    } else if (bytesPerPixel == 3) {
        static const Reverse48 reverse;
        for (; count - 2 * done >= 32; done += 16) {
            BYTE* left = row + static_cast<std::ptrdiff_t>(done) * 3;
            BYTE* right = row + static_cast<std::ptrdiff_t>(count - done - 16) * 3;
            __m128i l[3];
            __m128i r[3];
            reverse.Apply(left, l);
            reverse.Apply(right, r);
            Store48(left, r);
            Store48(right, l);
        }
    }
    FlipRowRef(row + static_cast<std::ptrdiff_t>(done) * bytesPerPixel, count - 2 * done,
               bytesPerPixel);
}

}  // namespace vistrane::xform
