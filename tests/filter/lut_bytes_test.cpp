#include "filter/lut_bytes.h"

#include "support/random_bytes.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace vistrane::filter {
namespace {

// Every length 0..100 and around 4096 at every offset 0..3, random tables, guard bytes after the
// span that must stay untouched.
TEST(LutBytes, EverySetMatchesTheReferenceOnAwkwardSpans) {
    test::RandomBytes random(17);
    std::vector<int> lengths;
    for (int n = 0; n <= 100; ++n) {
        lengths.push_back(n);
    }
    for (int n = 4090; n <= 4100; ++n) {
        lengths.push_back(n);
    }
    for (const cpu::InstructionSet set : cpu::Available()) {
        for (const int length : lengths) {
            const std::vector<BYTE> table = random.Fill(256);
            for (int offset = 0; offset < 4; ++offset) {
                std::vector<BYTE> expected = random.Fill(static_cast<std::size_t>(length) + 8);
                std::vector<BYTE> actual = expected;
                const int span = length - offset < 0 ? 0 : length - offset;
                LutBytesRef(expected.data() + offset, span, table.data());
                LutBytesFor(set)(actual.data() + offset, span, table.data());
                ASSERT_EQ(actual, expected)
                    << cpu::Name(set) << " length " << length << " offset " << offset;
            }
        }
    }
}

// Three random tables over every pixel count 0..67 and around 4096, starting at every byte
// offset 0..2, with guard bytes on both sides that must stay untouched; the reference itself is
// checked against the three tables applied by hand, then the word row against it.
TEST(LutBgr, FastRowsMatchTheReferenceOnAwkwardSpans) {
    test::RandomBytes random(19);
    std::vector<int> counts;
    for (int n = 0; n <= 67; ++n) {
        counts.push_back(n);
    }
    for (int n = 4090; n <= 4100; ++n) {
        counts.push_back(n);
    }
    for (const int count : counts) {
        const std::vector<BYTE> blue = random.Fill(256), green = random.Fill(256),
                                red = random.Fill(256);
        auto lut = std::make_unique<BgrLut>();
        FillBgrLut(*lut, blue.data(), green.data(), red.data());
        for (int offset = 0; offset < 3; ++offset) {
            const std::vector<BYTE> before = random.Fill(static_cast<std::size_t>(count) * 3 + 16);
            std::vector<BYTE> byHand = before;
            for (int i = 0; i < count; ++i) {
                BYTE* p = byHand.data() + offset + 3 * i;
                p[0] = blue[p[0]], p[1] = green[p[1]], p[2] = red[p[2]];
            }
            std::vector<BYTE> expected = before;
            LutBgrRef(expected.data() + offset, count, *lut);
            ASSERT_EQ(expected, byHand) << "count " << count << " offset " << offset;
            std::vector<BYTE> words = before;
            LutBgrWords(words.data() + offset, count, *lut);
            ASSERT_EQ(words, expected) << "words, count " << count << " offset " << offset;
        }
    }
}

// All 256 byte values through a table with distinct entries.
TEST(LutBytes, EveryByteValueFindsItsEntry) {
    std::vector<BYTE> table(256), bytes(256);
    for (int i = 0; i < 256; ++i) {
        table[i] = static_cast<BYTE>(i * 7 + 3);
        bytes[i] = static_cast<BYTE>(i);
    }
    LutBytesFor(cpu::Best())(bytes.data(), 256, table.data());
    for (int i = 0; i < 256; ++i) {
        ASSERT_EQ(bytes[i], table[i]) << i;
    }
}

}  // namespace
}  // namespace vistrane::filter
