#include "filter/exact_divide.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <random>

namespace vistrane::filter {
namespace {

// Dividends around the rounding edges of every quotient: multiples of d and their neighbours,
// zero, and both ends of the range.
TEST(ExactDivider, MatchesTruncatingDivisionForManyDivisorsAndDividends) {
    std::mt19937 engine(2024);
    std::vector<std::int32_t> divisors = {1,   -1,      2,          -2,      3,          -3, 7,
                                          -7,  9,       25,         49,      -49,        98, 255,
                                          641, 1 << 20, -(1 << 20), INT_MAX, INT_MIN + 1};
    for (int i = 0; i < 200; ++i) {
        std::int32_t d = static_cast<std::int32_t>(engine());
        d = d == 0 ? 5 : d;
        divisors.push_back(i % 2 == 0 ? d : d % 5000 + (d % 5000 == 0));
    }
    for (const std::int32_t d : divisors) {
        const ExactDivider divider(d);
        std::vector<std::int32_t> dividends = {0, 1, -1, INT_MAX, INT_MIN + 1, d, -d};
        for (int k = -40; k <= 40; ++k) {
            const std::int64_t base = static_cast<std::int64_t>(d) * k * 12345;
            for (int e = -1; e <= 1; ++e) {
                const std::int64_t n = base + e;
                if (n > INT_MIN && n <= INT_MAX) {
                    dividends.push_back(static_cast<std::int32_t>(n));
                }
            }
        }
        for (int i = 0; i < 2000; ++i) {
            const std::int32_t n = static_cast<std::int32_t>(engine());
            dividends.push_back(n == INT_MIN ? 0 : n);
            dividends.push_back(static_cast<std::int32_t>(engine() % 200001) - 100000);
        }
        for (const std::int32_t n : dividends) {
            ASSERT_EQ(divider.Divide(n), n / d) << n << " / " << d;
        }
    }
}

// The filter's own range exhaustively for its usual divisors: every sum a kernel of weights
// -16..16 can reach on 49 taps.
TEST(ExactDivider, ExhaustiveOverTheFilterSumRange) {
    for (const std::int32_t d : {2, 3, 6, 9, 16, 25, 49, 98, 100, -1, -7, 7, 1000}) {
        const ExactDivider divider(d);
        for (std::int32_t n = -49 * 16 * 255; n <= 49 * 16 * 255; ++n) {
            ASSERT_EQ(divider.Divide(n), n / d) << n << " / " << d;
        }
    }
}

}  // namespace
}  // namespace vistrane::filter
