#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cstring>

#include <vistrane/platform/section.h>

TEST(SharedSection, BytesAreSharedWithAnotherMappingOfItsDescriptor) {
    constexpr DWORD kBytes = 3 * 4096 + 5;
    void* view = nullptr;
    const HANDLE section = CreateSharedSection(kBytes, &view);
    ASSERT_NE(section, 0);
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(SectionView(section), view);
    EXPECT_EQ(SectionSize(section), kBytes);
    auto* bytes = static_cast<BYTE*>(view);
    EXPECT_EQ(bytes[0], 0);
    EXPECT_EQ(bytes[kBytes - 1], 0);

    const int fd = SectionFileDescriptor(section);
    if (fd < 0) {
        CloseSharedSection(section);
        GTEST_SKIP() << "memfd_create is unavailable; the section is an anonymous mapping";
    }
    void* other = mmap(nullptr, kBytes, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    ASSERT_NE(other, MAP_FAILED);
    auto* otherBytes = static_cast<BYTE*>(other);
    bytes[kBytes - 1] = 0xA5;
    EXPECT_EQ(otherBytes[kBytes - 1], 0xA5);
    otherBytes[4096] = 0x3C;
    EXPECT_EQ(bytes[4096], 0x3C);
    munmap(other, kBytes);
    EXPECT_EQ(CloseSharedSection(section), 1);
}

TEST(SharedSection, CloseInvalidatesTheHandleForGoodAndEmptyRequestsFail) {
    void* view = nullptr;
    const HANDLE first = CreateSharedSection(100, &view);
    ASSERT_NE(first, 0);
    EXPECT_EQ(CloseSharedSection(first), 1);
    EXPECT_EQ(SectionView(first), nullptr);
    EXPECT_EQ(SectionSize(first), 0u);
    EXPECT_EQ(SectionFileDescriptor(first), -1);
    EXPECT_EQ(CloseSharedSection(first), 0);

    const HANDLE second = CreateSharedSection(100, &view);
    ASSERT_NE(second, 0);
    EXPECT_NE(second, first);
    EXPECT_EQ(SectionView(first), nullptr);
    EXPECT_EQ(CloseSharedSection(second), 1);

    view = &view;
    EXPECT_EQ(CreateSharedSection(0, &view), 0);
    EXPECT_EQ(view, nullptr);
    EXPECT_EQ(CloseSharedSection(0), 0);
}
