#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <vector>

#include <vistrane/platform/archive.h>

namespace {

// Records the size of every write that reaches the file, to see how the archive batches them.
class RecordingFile : public CMemFile {
  public:
    void Write(const void* buffer, UINT count) override {
        writes.push_back(count);
        CMemFile::Write(buffer, count);
    }
    std::vector<UINT> writes;
};

std::vector<BYTE> Pattern(size_t n, int seed) {
    std::vector<BYTE> bytes(n);
    for (size_t i = 0; i < n; ++i) {
        bytes[i] = static_cast<BYTE>(seed + i * 13 + i / 256);
    }
    return bytes;
}

void ExpectCause(const std::function<void()>& action, int cause) {
    try {
        action();
        ADD_FAILURE() << "no CArchiveException";
    } catch (const CArchiveException& e) {
        EXPECT_EQ(e.m_cause, cause);
    }
}

}  // namespace

TEST(CArchive, MixedValuesRoundTripAsLittleEndian) {
    CMemFile file;
    {
        CArchive ar(&file, CArchive::store);
        ar << BYTE{0xAB} << WORD{0x1234} << SHORT{-2} << LONG{-123456} << DWORD{0xDEADBEEF} << 1.5f
           << -0.1;
    }
    const BYTE expectedHead[] = {0xAB, 0x34, 0x12, 0xFE, 0xFF, 0xC0, 0x1D, 0xFE, 0xFF,
                                 0xEF, 0xBE, 0xAD, 0xDE, 0x00, 0x00, 0xC0, 0x3F};
    ASSERT_EQ(file.GetLength(), sizeof(expectedHead) + 8);
    EXPECT_EQ(std::memcmp(file.Data(), expectedHead, sizeof(expectedHead)), 0);

    file.SeekToBegin();
    CArchive ar(&file, CArchive::load);
    BYTE b = 0;
    WORD w = 0;
    SHORT s = 0;
    LONG l = 0;
    DWORD d = 0;
    float f = 0;
    double x = 0;
    ar >> b >> w >> s >> l >> d >> f >> x;
    EXPECT_EQ(b, 0xAB);
    EXPECT_EQ(w, 0x1234);
    EXPECT_EQ(s, -2);
    EXPECT_EQ(l, -123456);
    EXPECT_EQ(d, 0xDEADBEEFu);
    EXPECT_EQ(f, 1.5f);
    EXPECT_EQ(x, -0.1);
}

TEST(CArchive, BlocksOfEverySizeRoundTripAroundTheBuffer) {
    const std::vector<UINT> sizes = {1, 63, 64, 65, 1000, 3, 128, 5000, 2, 64, 4096};
    for (int bufferSize : {16, 64, 4096}) {
        CMemFile file;
        std::vector<BYTE> all;
        {
            CArchive ar(&file, CArchive::store, bufferSize);
            for (size_t i = 0; i < sizes.size(); ++i) {
                const std::vector<BYTE> block = Pattern(sizes[i], static_cast<int>(i));
                ar.Write(block.data(), sizes[i]);
                all.insert(all.end(), block.begin(), block.end());
            }
        }
        ASSERT_EQ(file.GetLength(), all.size()) << "buffer " << bufferSize;
        file.SeekToBegin();
        // Read back in another split, so that reads straddle the writer's block edges.
        CArchive ar(&file, CArchive::load, bufferSize);
        std::vector<BYTE> back(all.size());
        size_t done = 0;
        for (UINT step : {7u, 300u, 1u, 64u, 6000u}) {
            ar.Read(back.data() + done, step);
            done += step;
        }
        ar.Read(back.data() + done, static_cast<UINT>(all.size() - done));
        EXPECT_EQ(back, all) << "buffer " << bufferSize;
    }
}

TEST(CArchive, LargeWritesGoStraightToTheFile) {
    RecordingFile file;
    const std::vector<BYTE> image = Pattern(4096 * 3 * 7, 1);
    {
        CArchive ar(&file, CArchive::store, 4096);
        ar << DWORD{7};
        ar.Write(image.data(), static_cast<UINT>(image.size()));
        ar << WORD{1};
    }
    EXPECT_EQ(file.writes, (std::vector<UINT>{4, static_cast<UINT>(image.size()), 2}));
    EXPECT_EQ(std::memcmp(file.Data() + 4, image.data(), image.size()), 0);
}

TEST(CArchive, TruncatedStreamThrowsEndOfFile) {
    BYTE bytes[6] = {1, 2, 3, 4, 5, 6};
    for (int bufferSize : {4, 4096}) {
        CMemFile file(bytes, sizeof(bytes));
        CArchive ar(&file, CArchive::load, bufferSize);
        LONG first = 0;
        ar >> first;
        EXPECT_EQ(first, 0x04030201);
        ExpectCause([&] { ar >> first; }, CArchiveException::endOfFile);
    }
    CMemFile file(bytes, sizeof(bytes));
    CArchive ar(&file, CArchive::load);
    std::vector<BYTE> big(100000);
    ExpectCause([&] { ar.Read(big.data(), static_cast<UINT>(big.size())); },
                CArchiveException::endOfFile);
}

TEST(CArchive, WrongDirectionAndClosedArchivesThrow) {
    CMemFile file;
    CArchive storing(&file, CArchive::store);
    BYTE byte = 0;
    ExpectCause([&] { storing >> byte; }, CArchiveException::writeOnly);
    storing << byte;
    storing.Close();
    EXPECT_EQ(file.GetLength(), 1u);
    ExpectCause([&] { storing << byte; }, CArchiveException::genericException);

    file.SeekToBegin();
    CArchive loading(&file, CArchive::load);
    ExpectCause([&] { loading << byte; }, CArchiveException::readOnly);
}

TEST(CArchive, DestructorFlushesUnlessToldNotToAndNeverThrows) {
    BYTE staging[32] = {};  // a caller's buffer must be used, and not freed
    CMemFile file;
    {
        CArchive ar(&file, CArchive::store, sizeof(staging), staging);
        ar << WORD{0xBEEF};
        EXPECT_EQ(staging[0], 0xEF);
        EXPECT_EQ(file.GetLength(), 0u);
    }
    EXPECT_EQ(file.GetLength(), 2u);
    {
        CArchive ar(&file, CArchive::store | CArchive::bNoFlushOnDelete);
        ar << DWORD{1};
    }
    EXPECT_EQ(file.GetLength(), 2u);

    BYTE fixed[2];
    CMemFile small(fixed, sizeof(fixed));
    EXPECT_NO_THROW({
        CArchive ar(&small, CArchive::store);
        ar << DWORD{1};
    });
}

TEST(CArchive, LoadingFlushHandsTheReadAheadBackToTheFile) {
    BYTE bytes[10] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
    CMemFile file(bytes, sizeof(bytes));
    CArchive ar(&file, CArchive::load);
    WORD w = 0;
    ar >> w;
    ar.Flush();
    EXPECT_EQ(file.GetPosition(), 2u);
    BYTE next = 0;
    ar >> next;
    EXPECT_EQ(next, 2);
}
