#include "filter/hsv_shift.h"

#include "support/instruction_sets.h"
#include "support/random_bytes.h"

#include <vistrane/companion/helper.h>

#include <gtest/gtest.h>

#include <vector>

namespace vistrane::filter {
namespace {

// The table-driven shift against C_Helper::OffsetHSV, which defines the bytes: greys, the
// colour-cube edges, and random colours, for shifts across their whole ranges.
TEST(HsvShifter, MatchesTheCompanionShiftPixelForPixel) {
    test::RandomBytes random(41);
    std::vector<BYTE> pixels;
    for (int level = 0; level < 256; ++level) {
        const BYTE l = static_cast<BYTE>(level);
        pixels.insert(pixels.end(), {l, l, l, 0, l, 255, l, 0, 0, 255, 255, l});
    }
    const std::vector<BYTE> noise = random.Fill(3 * 40000);
    pixels.insert(pixels.end(), noise.begin(), noise.end());
    const int count = static_cast<int>(pixels.size() / 3);
    const int shifts[][3] = {{0, 0, 0},      {30, 0, 0},       {-359, -255, -255}, {359, 255, 255},
                             {180, 40, -20}, {-90, -100, 100}, {1, 1, 1},          {0, 255, 0}};
    const C_Helper helper;
    for (const auto& shift : shifts) {
        std::vector<BYTE> expected = pixels;
        for (int i = 0; i < count; ++i) {
            helper.OffsetHSV(&expected[3 * i], shift[0], shift[1], shift[2]);
        }
        const HsvShifter shifter(shift[0], shift[1], shift[2]);
        std::vector<BYTE> reference = pixels;
        shifter.ApplyRef(reference.data(), count);
        std::vector<BYTE> actual = pixels;
        shifter.Apply(actual.data(), count);
        for (int i = 0; i < count; ++i) {
            for (int c = 0; c < 3; ++c) {
                ASSERT_EQ(reference[3 * i + c], expected[3 * i + c])
                    << "reference, pixel " << i << " (" << int(pixels[3 * i]) << ", "
                    << int(pixels[3 * i + 1]) << ", " << int(pixels[3 * i + 2]) << ") channel " << c
                    << " shift " << shift[0] << " " << shift[1] << " " << shift[2];
                ASSERT_EQ(actual[3 * i + c], expected[3 * i + c])
                    << "pixel " << i << " (" << int(pixels[3 * i]) << ", " << int(pixels[3 * i + 1])
                    << ", " << int(pixels[3 * i + 2]) << ") channel " << c << " shift " << shift[0]
                    << " " << shift[1] << " " << shift[2];
            }
        }
    }
}

// The first pixel of two equal-length spans whose bytes differ, or -1.
int FirstDifference(const std::vector<BYTE>& expected, const std::vector<BYTE>& actual) {
    for (std::size_t i = 0; i < expected.size(); ++i) {
        if (expected[i] != actual[i]) {
            return static_cast<int>(i / 3);
        }
    }
    return -1;
}

// Every one of the 2^24 colours through the AVX2 row and the reference, for shifts at the ends
// of their ranges and in between: the float divisions of the vector form are exact only by an
// argument about the numerators' size, and this checks it for every numerator that occurs.
TEST(HsvShifter, FastSetsMatchTheReferenceOnEveryColour) {
    constexpr int kColours = 1 << 24;
    std::vector<BYTE> all(static_cast<std::size_t>(kColours) * 3);
    for (int c = 0; c < kColours; ++c) {
        all[3 * c] = static_cast<BYTE>(c), all[3 * c + 1] = static_cast<BYTE>(c >> 8);
        all[3 * c + 2] = static_cast<BYTE>(c >> 16);
    }
    const int shifts[][3] = {{30, 0, 0}, {-359, -255, -255}, {359, 255, 255}, {-200, 77, -33}};
    for (const cpu::InstructionSet set : test::FastSets()) {
        for (const auto& shift : shifts) {
            const HsvShifter shifter(shift[0], shift[1], shift[2], set);
            std::vector<BYTE> expected = all;
            shifter.ApplyRef(expected.data(), kColours);
            std::vector<BYTE> actual = all;
            shifter.Apply(actual.data(), kColours);
            const int at = FirstDifference(expected, actual);
            ASSERT_EQ(at, -1) << cpu::Name(set) << " colour 0x" << std::hex << at << std::dec
                              << " shift " << shift[0] << " " << shift[1] << " " << shift[2]
                              << ": expected (" << int(expected[3 * at]) << ", "
                              << int(expected[3 * at + 1]) << ", " << int(expected[3 * at + 2])
                              << "), got (" << int(actual[3 * at]) << ", "
                              << int(actual[3 * at + 1]) << ", " << int(actual[3 * at + 2]) << ")";
        }
    }
}

// Random shifts on random spans of every length 0..67 and around 4096, starting at every byte
// offset 0..2, with guard bytes on both sides that must stay untouched.
TEST(HsvShifter, FastSetsMatchTheReferenceOnAwkwardSpans) {
    test::RandomBytes random(43);
    std::vector<int> lengths;
    for (int n = 0; n <= 67; ++n) {
        lengths.push_back(n);
    }
    for (int n = 4090; n <= 4100; ++n) {
        lengths.push_back(n);
    }
    for (const cpu::InstructionSet set : test::FastSets()) {
        for (const int length : lengths) {
            for (int offset = 0; offset < 3; ++offset) {
                const HsvShifter shifter(random.Below(719) - 359, random.Below(511) - 255,
                                         random.Below(511) - 255, set);
                std::vector<BYTE> expected = random.Fill(static_cast<std::size_t>(length) * 3 + 16);
                std::vector<BYTE> actual = expected;
                shifter.ApplyRef(expected.data() + offset, length);
                shifter.Apply(actual.data() + offset, length);
                ASSERT_EQ(actual, expected)
                    << cpu::Name(set) << " length " << length << " offset " << offset << " shift "
                    << shifter.HueShift() << " " << shifter.SaturationShift() << " "
                    << shifter.ValueShift();
            }
        }
    }
}

}  // namespace
}  // namespace vistrane::filter
