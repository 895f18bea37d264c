#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

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

TEST(SharedSection, AReusedSectionReadsAsZero) {
    constexpr DWORD kBytes = 3u << 20;
    void* view = nullptr;
    const HANDLE first = CreateSharedSection(kBytes, &view);
    ASSERT_NE(first, 0);
    std::memset(view, 0x5A, kBytes);
    ASSERT_EQ(CloseSharedSection(first), 1);

    const HANDLE second = CreateSharedSection(kBytes, &view);
    ASSERT_NE(second, 0);
    EXPECT_NE(second, first);
    const auto* bytes = static_cast<const BYTE*>(view);
    DWORD nonZero = 0;
    for (DWORD i = 0; i < kBytes; ++i) {
        nonZero += bytes[i] != 0 ? 1 : 0;
    }
    EXPECT_EQ(nonZero, 0u);
    EXPECT_EQ(CloseSharedSection(second), 1);
    ReleaseRecycledSections();
}

TEST(SharedSection, ASectionWhoseDescriptorWasHandedOutIsNeverReused) {
    constexpr DWORD kBytes = 2u << 20;
    void* view = nullptr;
    const HANDLE shared = CreateSharedSection(kBytes, &view);
    ASSERT_NE(shared, 0);
    const int fd = SectionFileDescriptor(shared);
    if (fd < 0) {
        CloseSharedSection(shared);
        GTEST_SKIP() << "memfd_create is unavailable; the section is an anonymous mapping";
    }
    // The host keeps its own reference, as a compositor would.
    const int hostFd = dup(fd);
    ASSERT_GE(hostFd, 0);
    ASSERT_EQ(CloseSharedSection(shared), 1);

    const HANDLE next = CreateSharedSection(kBytes, &view);
    ASSERT_NE(next, 0);
    static_cast<BYTE*>(view)[100] = 0x77;
    void* hostView = mmap(nullptr, kBytes, PROT_READ, MAP_SHARED, hostFd, 0);
    ASSERT_NE(hostView, MAP_FAILED);
    EXPECT_EQ(static_cast<const BYTE*>(hostView)[100], 0);
    munmap(hostView, kBytes);
    close(hostFd);
    EXPECT_EQ(CloseSharedSection(next), 1);
    ReleaseRecycledSections();
}
