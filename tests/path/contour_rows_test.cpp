#include <gtest/gtest.h>

#include "support/instruction_sets.h"

#include <random>
#include <vector>

#include "path/contour_rows.h"

namespace {

constexpr unsigned char kGuard = 0x5a;
constexpr long kGuards = 16;

// Mostly 0 and 255 with some other bytes, so that runs of both and stray labels occur.
std::vector<unsigned char> BiasedBytes(std::mt19937& rng, long n) {
    std::uniform_int_distribution<int> pick(0, 9);
    std::uniform_int_distribution<int> any(0, 255);
    std::vector<unsigned char> out(static_cast<size_t>(n));
    for (unsigned char& b : out) {
        const int k = pick(rng);
        b = static_cast<unsigned char>(k < 4 ? 0 : (k < 8 ? 255 : any(rng)));
    }
    return out;
}

std::vector<long> Widths() {
    std::vector<long> widths;
    for (long w = 1; w <= 67; ++w) {
        widths.push_back(w);
    }
    for (long w = 4090; w <= 4100; ++w) {
        widths.push_back(w);
    }
    return widths;
}

}  // namespace

TEST(ContourRows, FastEdgeRowsMatchReferenceOnAwkwardWidthsAndRanges) {
    for (const vistrane::cpu::InstructionSet set : vistrane::test::FastSets()) {
        const auto& kernels = vistrane::path::ContourRowKernelsFor(set);
        for (const long width : Widths()) {
            const unsigned seed = static_cast<unsigned>(width);
            std::mt19937 rng(seed);
            const std::vector<unsigned char> row = BiasedBytes(rng, width);
            const std::vector<unsigned char> up = BiasedBytes(rng, width);
            const std::vector<unsigned char> down = BiasedBytes(rng, width);
            std::uniform_int_distribution<long> cut(0, width);
            for (int round = 0; round < 8; ++round) {
                long x0 = round == 0 ? 0 : cut(rng);
                long x1 = round == 0 ? width : cut(rng);
                if (x0 > x1) {
                    std::swap(x0, x1);
                }
                std::vector<unsigned char> ref(static_cast<size_t>(width + kGuards), kGuard);
                std::vector<unsigned char> fast = ref;
                const long refEdges = vistrane::path::MarkEdgeRowRef(
                    row.data(), up.data(), down.data(), ref.data(), x0, x1, width);
                const long fastEdges = kernels.markEdgeRow(row.data(), up.data(), down.data(),
                                                           fast.data(), x0, x1, width);
                ASSERT_EQ(refEdges, fastEdges) << "seed " << seed << " range " << x0 << ".." << x1;
                for (size_t i = 0; i < ref.size(); ++i) {
                    ASSERT_EQ(ref[i], fast[i])
                        << "seed " << seed << " range " << x0 << ".." << x1 << " x " << i;
                }
            }
        }
    }
}

TEST(ContourRows, FastKeepEdgesMatchReferenceAndStopsAtTheEnd) {
    for (const vistrane::cpu::InstructionSet set : vistrane::test::FastSets()) {
        const auto& kernels = vistrane::path::ContourRowKernelsFor(set);
        for (const long n : Widths()) {
            const unsigned seed = static_cast<unsigned>(n) + 1000;
            std::mt19937 rng(seed);
            std::vector<unsigned char> ref = BiasedBytes(rng, n);
            ref.insert(ref.end(), kGuards, kGuard);
            std::vector<unsigned char> fast = ref;
            vistrane::path::KeepEdgesRef(ref.data(), n);
            kernels.keepEdges(fast.data(), n);
            for (size_t i = 0; i < ref.size(); ++i) {
                ASSERT_EQ(ref[i], fast[i]) << "seed " << seed << " n " << n << " i " << i;
            }
            for (long g = 0; g < kGuards; ++g) {
                ASSERT_EQ(fast[static_cast<size_t>(n + g)], kGuard) << "seed " << seed;
            }
        }
    }
}
