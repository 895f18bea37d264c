#pragma once

// Seeded random bytes for fast-against-reference tests, biased towards 0x00 and 0xFF where the
// rounding and clamping edges are.

#include <cstdint>
#include <random>
#include <vector>

namespace vistrane::test {

class RandomBytes {
  public:
    explicit RandomBytes(std::uint32_t seed) : engine_(seed) {}

    std::uint8_t Next() {
        const std::uint32_t pick = engine_();
        switch (pick % 8) {
            case 0:
                return 0x00;
            case 1:
                return 0xFF;
            default:
                return static_cast<std::uint8_t>(pick >> 8);
        }
    }

    std::vector<std::uint8_t> Fill(std::size_t n) {
        std::vector<std::uint8_t> v(n);
        for (auto& b : v) {
            b = Next();
        }
        return v;
    }

    int Below(int n) { return static_cast<int>(engine_() % static_cast<std::uint32_t>(n)); }

  private:
    std::mt19937 engine_;
};

}  // namespace vistrane::test
