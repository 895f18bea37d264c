#pragma once

// Signed 32-bit division by a run-time constant without a divide instruction, giving exactly
// the truncating quotient of n / d for every n (Hacker's Delight, 2nd ed., section 10-4:
// "Signed division by divisors >= 2", and 10-6 for negative divisors). A hardware division
// costs 20-40 cycles; this costs a 64-bit multiply, two shifts and an add.
//
//   q = high 32 bits of (M * n), corrected by +n or -n when M's sign differs from d's,
//   q >>= s (arithmetic), then q += 1 when q < 0 (moves the floor to truncation).

#include <cstdint>

namespace vistrane::filter {

class ExactDivider {
  public:
    // d must not be 0.
    explicit ExactDivider(std::int32_t d);

    std::int32_t Divide(std::int32_t n) const {
        if (m_Trivial != 0) {
            return m_Trivial * n;
        }
        std::int32_t q = static_cast<std::int32_t>((static_cast<std::int64_t>(m_Magic) * n) >> 32);
        q += m_Correction * n;
        q >>= m_Shift;
        return q + static_cast<std::int32_t>(static_cast<std::uint32_t>(q) >> 31);
    }

    std::int32_t Divisor() const { return m_Divisor; }

    // The parts of the rule, for vector forms of Divide.
    std::int32_t Magic() const { return m_Magic; }
    std::int32_t Shift() const { return m_Shift; }
    std::int32_t Correction() const { return m_Correction; }
    std::int32_t Trivial() const { return m_Trivial; }

  private:
    std::int32_t m_Divisor = 0;
    std::int32_t m_Magic = 0;
    std::int32_t m_Shift = 0;
    std::int32_t m_Correction = 0;  // +1, -1 or 0: the n added after the high multiply
    std::int32_t m_Trivial = 0;     // 1 or -1 for d = 1 or d = -1, else 0
};

}  // namespace vistrane::filter
