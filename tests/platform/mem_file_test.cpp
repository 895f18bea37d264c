#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <vector>

#include <vistrane/platform/file.h>

TEST(CMemFile, FixedBufferIsReadableAndOverflowThrowsDiskFull) {
    BYTE buffer[5] = {1, 2, 3, 4, 5};
    CMemFile file(buffer, sizeof(buffer));
    EXPECT_EQ(file.GetLength(), 5u);
    BYTE back[8] = {};
    EXPECT_EQ(file.Read(back, 8), 5u);
    EXPECT_EQ(std::memcmp(back, buffer, 5), 0);
    EXPECT_EQ(file.Read(back, 8), 0u);

    file.Seek(2, CFile::begin);
    file.Write(back, 3);
    try {
        file.Write(back, 1);
        ADD_FAILURE() << "writing past a fixed buffer did not throw";
    } catch (const CFileException& e) {
        EXPECT_EQ(e.m_cause, CFileException::diskFull);
    }
    EXPECT_EQ(file.GetLength(), 5u);
    EXPECT_EQ(file.Data(), buffer);
    EXPECT_EQ(buffer[4], 3);
}

TEST(CMemFile, GrowingAnAttachedBufferLeavesTheCallersBytesAlone) {
    BYTE buffer[4] = {1, 2, 3, 4};
    CMemFile file(buffer, sizeof(buffer), 16);
    const BYTE data[6] = {10, 11, 12, 13, 14, 15};
    file.Seek(2, CFile::begin);
    file.Write(data, 6);
    EXPECT_EQ(buffer[2], 3);
    const BYTE expected[8] = {1, 2, 10, 11, 12, 13, 14, 15};
    ASSERT_EQ(file.GetLength(), 8u);
    BYTE* owned = file.Detach();
    ASSERT_NE(owned, buffer);
    EXPECT_EQ(std::memcmp(owned, expected, 8), 0);
    EXPECT_EQ(file.GetLength(), 0u);
    std::free(owned);
}

TEST(CMemFile, GrowsPastInitialCapacityAndKeepsContents) {
    // Awkward piece sizes against a small growth step exercise many reallocations.
    CMemFile file(100);
    std::vector<BYTE> written;
    std::vector<BYTE> piece(4093);
    for (int round = 0; round < 300; ++round) {
        const UINT size = static_cast<UINT>(1 + (round * 37) % piece.size());
        for (UINT i = 0; i < size; ++i) {
            piece[i] = static_cast<BYTE>(round + i);
        }
        file.Write(piece.data(), size);
        written.insert(written.end(), piece.begin(), piece.begin() + size);
    }
    ASSERT_EQ(file.GetLength(), written.size());
    file.SeekToBegin();
    std::vector<BYTE> back(written.size());
    EXPECT_EQ(file.Read(back.data(), static_cast<UINT>(back.size())), back.size());
    EXPECT_EQ(back, written);
}

TEST(CMemFile, HolesReadBackAsZerosAndSeekBeforeStartThrows) {
    CMemFile file;
    const BYTE data[6] = {'a', 'b', 'c', 'd', 'e', 'f'};
    file.Write(data, 6);
    // Shrinking leaves the old bytes in the buffer; the hole must not expose them.
    file.SetLength(2);
    EXPECT_EQ(file.Seek(4, CFile::begin), 4u);
    file.Write(data + 5, 1);
    const BYTE expected[5] = {'a', 'b', 0, 0, 'f'};
    ASSERT_EQ(file.GetLength(), 5u);
    EXPECT_EQ(std::memcmp(file.Data(), expected, 5), 0);

    try {
        file.Seek(-6, CFile::end);
        ADD_FAILURE() << "seeking before the start did not throw";
    } catch (const CFileException& e) {
        EXPECT_EQ(e.m_cause, CFileException::badSeek);
    }
    EXPECT_EQ(file.GetPosition(), 5u);
    EXPECT_EQ(file.Seek(-5, CFile::end), 0u);
}
