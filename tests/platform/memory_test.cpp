#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include <vistrane/platform/memory.h>

TEST(GlobalAlloc, ZeroInitBlockReadsAsZerosAndKeepsItsSize) {
    HGLOBAL block = GlobalAlloc(GHND, 4096);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(GlobalSize(block), 4096u);
    const BYTE zeros[4096] = {};
    EXPECT_EQ(std::memcmp(GlobalLock(block), zeros, sizeof(zeros)), 0);
    GlobalUnlock(block);
    EXPECT_EQ(GlobalFree(block), nullptr);
}

TEST(GlobalAlloc, UnlockReportsWhetherLocksRemain) {
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, 16);
    ASSERT_NE(block, nullptr);
    void* first = GlobalLock(block);
    EXPECT_EQ(GlobalLock(block), first);
    EXPECT_NE(GlobalUnlock(block), 0);
    EXPECT_EQ(GlobalUnlock(block), 0);
    EXPECT_EQ(GlobalUnlock(block), 0);
    GlobalFree(block);
}

TEST(GlobalAlloc, NullHandlesAndImpossibleSizesFailQuietly) {
    EXPECT_EQ(GlobalAlloc(GHND, std::numeric_limits<std::size_t>::max()), nullptr);
    EXPECT_EQ(GlobalAlloc(GMEM_FIXED, std::numeric_limits<std::size_t>::max() / 2 + 1), nullptr);
    EXPECT_EQ(GlobalLock(nullptr), nullptr);
    EXPECT_EQ(GlobalSize(nullptr), 0u);
    EXPECT_EQ(GlobalFree(nullptr), nullptr);
    HGLOBAL empty = GlobalAlloc(GMEM_FIXED, 0);
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(GlobalSize(empty), 0u);
    EXPECT_NE(GlobalLock(empty), nullptr);
    GlobalFree(empty);
}
