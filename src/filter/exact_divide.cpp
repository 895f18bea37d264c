#include "filter/exact_divide.h"

#include <cassert>

namespace vistrane::filter {

ExactDivider::ExactDivider(std::int32_t d) : m_Divisor(d) {
    assert(d != 0);
    if (d == 1 || d == -1) {
        m_Trivial = d;
        return;
    }
    // Hacker's Delight figure 10-1: the smallest p >= 32 with 2^p > nc * (d - 2^p mod d), where
    // nc is the largest n (of the dividend's sign) with n mod d = d - 1.
    constexpr std::uint32_t two31 = 0x80000000u;
    const std::uint32_t ad =
        d < 0 ? 0u - static_cast<std::uint32_t>(d) : static_cast<std::uint32_t>(d);
    const std::uint32_t t = two31 + (static_cast<std::uint32_t>(d) >> 31);
    const std::uint32_t anc = t - 1 - t % ad;
    int p = 31;
    std::uint32_t q1 = two31 / anc;
    std::uint32_t r1 = two31 - q1 * anc;
    std::uint32_t q2 = two31 / ad;
    std::uint32_t r2 = two31 - q2 * ad;
    std::uint32_t delta = 0;
    do {
        ++p;
        q1 *= 2;
        r1 *= 2;
        if (r1 >= anc) {
            ++q1;
            r1 -= anc;
        }
        q2 *= 2;
        r2 *= 2;
        if (r2 >= ad) {
            ++q2;
            r2 -= ad;
        }
        delta = ad - r2;
    } while (q1 < delta || (q1 == delta && r1 == 0));
    std::uint32_t magic = q2 + 1;
    if (d < 0) {
        magic = 0u - magic;
    }
    m_Magic = static_cast<std::int32_t>(magic);
    m_Shift = p - 32;
    if (d > 0 && m_Magic < 0) {
        m_Correction = 1;
    } else if (d < 0 && m_Magic > 0) {
        m_Correction = -1;
    }
}

}  // namespace vistrane::filter
