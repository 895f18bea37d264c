#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <vector>

#include <vistrane/platform/file.h>

namespace {

std::string TempPath(const char* name) {
    return testing::TempDir() + "vistrane_file_test_" + std::to_string(getpid()) + "_" + name;
}

std::vector<BYTE> Pattern(size_t n) {
    std::vector<BYTE> bytes(n);
    for (size_t i = 0; i < n; ++i) {
        bytes[i] = static_cast<BYTE>(i * 7 + i / 251);
    }
    return bytes;
}

}  // namespace

TEST(CFile, WriteReadAndSeekRoundTrip) {
    const std::string path = TempPath("round_trip");
    const std::vector<BYTE> data = Pattern(10000);
    {
        CFile file(path.c_str(), CFile::modeCreate | CFile::modeReadWrite);
        file.Write(data.data(), static_cast<UINT>(data.size()));
        EXPECT_EQ(file.GetLength(), 10000u);
        EXPECT_EQ(file.Seek(-100, CFile::end), 9900u);
        std::vector<BYTE> tail(200);
        EXPECT_EQ(file.Read(tail.data(), 200), 100u);
        EXPECT_TRUE(std::equal(tail.begin(), tail.begin() + 100, data.end() - 100));
        EXPECT_EQ(file.Read(tail.data(), 200), 0u);
        EXPECT_EQ(file.Seek(-5000, CFile::current), 5000u);
        file.Close();
    }
    {
        // Without modeNoTruncate, modeCreate would empty the file here.
        CFile file(path.c_str(), CFile::modeCreate | CFile::modeNoTruncate | CFile::modeWrite);
        file.Write(data.data() + 10, 4);
    }
    CFile file;
    ASSERT_TRUE(file.Open(path.c_str(), CFile::modeRead));
    std::vector<BYTE> back(10000);
    EXPECT_EQ(file.Read(back.data(), 10000), 10000u);
    EXPECT_TRUE(std::equal(data.begin() + 10, data.begin() + 14, back.begin()));
    EXPECT_TRUE(std::equal(data.begin() + 4, data.end(), back.begin() + 4));
    EXPECT_THROW(file.Write(data.data(), 1), CFileException);
    file.Close();
    EXPECT_EQ(CFile(path.c_str(), CFile::modeCreate | CFile::modeWrite).GetLength(), 0u);
    CFile::Remove(path.c_str());
}

TEST(CFile, MissingFileReportsFileNotFound) {
    const std::string path = TempPath("missing");
    CFile file;
    CFileException error;
    EXPECT_FALSE(file.Open(path.c_str(), CFile::modeRead, &error));
    EXPECT_EQ(error.m_cause, CFileException::fileNotFound);
    EXPECT_EQ(error.m_lOsError, ENOENT);
    EXPECT_EQ(error.m_strFileName, CString(path));
    try {
        CFile::Remove(path.c_str());
        ADD_FAILURE() << "removing a missing file did not throw";
    } catch (const CFileException& e) {
        EXPECT_EQ(e.m_cause, CFileException::fileNotFound);
    }
    EXPECT_THROW(CFile(path.c_str(), CFile::modeRead), CFileException);
}

TEST(CFile, FailedSeekAndWriteThrowTheirCause) {
    const std::string path = TempPath("seek");
    CFile file(path.c_str(), CFile::modeCreate | CFile::modeReadWrite);
    try {
        file.Seek(-1, CFile::begin);
        ADD_FAILURE() << "seeking before the start did not throw";
    } catch (const CFileException& e) {
        EXPECT_EQ(e.m_cause, CFileException::badSeek);
    }
    file.Close();
    CFile::Remove(path.c_str());

    CFile full;
    if (!full.Open("/dev/full", CFile::modeWrite)) {
        GTEST_SKIP() << "no /dev/full to fill";
    }
    const std::vector<BYTE> data = Pattern(100);
    try {
        full.Write(data.data(), 100);
        ADD_FAILURE() << "writing to a full device did not throw";
    } catch (const CFileException& e) {
        EXPECT_EQ(e.m_cause, CFileException::diskFull);
        EXPECT_EQ(e.m_lOsError, ENOSPC);
    }
}
