#include "filter/grey_bgr.h"

#include "support/random_bytes.h"

#include <gtest/gtest.h>

#include <vector>

namespace vistrane::filter {
namespace {

// Every width 0..100 and around 4096, guard bytes after the row that must stay untouched.
TEST(GreyBgr, EverySetMatchesTheReferenceOnAwkwardWidths) {
    test::RandomBytes random(23);
    std::vector<int> widths;
    for (int n = 0; n <= 100; ++n) {
        widths.push_back(n);
    }
    for (int n = 4090; n <= 4100; ++n) {
        widths.push_back(n);
    }
    for (const cpu::InstructionSet set : cpu::Available()) {
        for (const int width : widths) {
            std::vector<BYTE> expected = random.Fill(3 * static_cast<std::size_t>(width) + 16);
            std::vector<BYTE> actual = expected;
            GreyBgrRef(expected.data(), width);
            GreyBgrFor(set)(actual.data(), width);
            ASSERT_EQ(actual, expected) << cpu::Name(set) << " width " << width;
        }
    }
}

// All sums 0..765 reach the division: pixels (s / 3, s / 3, s - 2 (s / 3)) and their rotations.
TEST(GreyBgr, EverySumDividesExactly) {
    std::vector<BYTE> row;
    std::vector<int> sums;
    for (int s = 0; s <= 765; ++s) {
        const int a = s / 3;
        const int c = s - 2 * a;
        if (c > 255) {
            continue;
        }
        row.insert(row.end(), {static_cast<BYTE>(a), static_cast<BYTE>(c), static_cast<BYTE>(a)});
        sums.push_back(s);
    }
    GreyBgrFor(cpu::Best())(row.data(), static_cast<int>(sums.size()));
    for (std::size_t i = 0; i < sums.size(); ++i) {
        ASSERT_EQ(row[3 * i], sums[i] / 3) << sums[i];
        ASSERT_EQ(row[3 * i + 2], sums[i] / 3) << sums[i];
    }
}

}  // namespace
}  // namespace vistrane::filter
