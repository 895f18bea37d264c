#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <vistrane/path/point_path.h>

#include "support/path_support.h"

using vistrane::test::FillSubPath;

namespace {

std::string TempName(const char* leaf) {
    return ::testing::TempDir() + leaf;
}

std::vector<unsigned char> ReadAll(const std::string& name) {
    std::ifstream in(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void WriteAll(const std::string& name, const std::vector<unsigned char>& bytes) {
    std::ofstream out(name, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
}

void PutLE(std::vector<unsigned char>* v, long long x) {
    for (int k = 0; k < 4; ++k) {
        v->push_back(static_cast<unsigned char>(static_cast<unsigned long long>(x) >> (8 * k)));
    }
}

std::vector<unsigned char> Magic() {
    const char text[] = "Vistrane Path 1.0";
    return std::vector<unsigned char>(text, text + 18);
}

// Anchor x of the first point of every sub-path, from the head.
std::vector<LONG> FirstXs(const C_PointPath& path) {
    std::vector<LONG> out;
    for (const C_SubPath* s = path.GetFirstSubPath(); s != nullptr; s = s->GetNext()) {
        out.push_back(s->GetPoints()[0].m_Anchor.x);
    }
    return out;
}

}  // namespace

TEST(PathFile, SavedBytesAreExact) {
    C_PointPath path;
    ASSERT_EQ(path.CreateNewSubPath(), 1);
    C_SubPath* sub = path.GetFirstSubPath();
    FillSubPath(sub, {{0x01020304, -2}});
    S_PathPoint& p = sub->GetPoints()[0];
    p.m_PrevDirection = CPoint(-1, 5);
    p.m_NextDirection = CPoint(256, -256);
    p.m_Attributes = PPA_LINKED_DIRECTIONS | PPA_SERIAL;
    p.m_Flags = 0x07;  // editing state: not stored
    sub->Close(7);     // stored as it stands
    const std::string name = TempName("exact.path");
    ASSERT_EQ(path.SaveToFile(name.c_str()), 1);

    std::vector<unsigned char> expected = Magic();
    PutLE(&expected, 1);   // N
    PutLE(&expected, 7);   // closed
    PutLE(&expected, 1);   // M
    PutLE(&expected, -1);  // previous direction
    PutLE(&expected, 5);
    PutLE(&expected, 256);  // next direction
    PutLE(&expected, -256);
    PutLE(&expected, 0x01020304);  // anchor
    PutLE(&expected, -2);
    expected.insert(expected.end(), {0xC0, 0, 0, 0});  // attributes, 3 reserved zero bytes
    EXPECT_EQ(ReadAll(name), expected);
    std::remove(name.c_str());

    C_PointPath empty;
    ASSERT_EQ(empty.SaveToFile(name.c_str()), 1);
    EXPECT_EQ(ReadAll(name).size(), 22u);
    EXPECT_EQ(empty.LoadFromFile(name.c_str(), 0), 0);
    std::remove(name.c_str());
}

TEST(PathFile, LoadingReversesTheOrderAndClearsEditingState) {
    C_PointPath path;
    for (LONG x : {1, 2, 3}) {  // head first: R=3, Q=2, P=1
        ASSERT_EQ(path.CreateNewSubPath(), 1);
        FillSubPath(path.GetFirstSubPath(), {{x, 0}, {x, 10}, {x + 10, 10}});
        path.GetFirstSubPath()->SetAnchorsVisible(1);
    }
    path.GetFirstSubPath()->Close(1);
    path.GetFirstSubPath()->GetPoints()[1].m_Attributes = PPA_SERIAL;
    path.GetFirstSubPath()->GetPoints()[1].m_NextDirection = CPoint(-4, 9);
    const std::string name = TempName("order.path");
    ASSERT_EQ(path.SaveToFile(name.c_str()), 1);

    C_PointPath loaded;
    ASSERT_EQ(loaded.LoadFromFile(name.c_str(), 0), 1);
    EXPECT_EQ(FirstXs(loaded), (std::vector<LONG>{1, 2, 3}));
    const C_SubPath* last = loaded.GetFirstSubPath()->GetNext()->GetNext();
    EXPECT_EQ(last->SameAnchorsAndDirections(path.GetFirstSubPath()), 1);
    EXPECT_EQ(last->IsClosed(), 1);
    EXPECT_EQ(last->AreAnchorsVisible(), 0);
    EXPECT_EQ(last->GetPoints()[1].m_Attributes, PPA_SERIAL);
    EXPECT_EQ(last->GetPoints()[0].m_Attributes, PPA_LINKED_DIRECTIONS);
    EXPECT_EQ(loaded.HasSubPathWithSelectedAnchors(), 0);
    EXPECT_EQ(last->GetPoints()[0].m_Flags, 0);

    // Appending: the loaded ones reversed, in front of what was there.
    C_PointPath withD;
    ASSERT_EQ(withD.CreateNewSubPath(), 1);
    FillSubPath(withD.GetFirstSubPath(), {{99, 0}});
    ASSERT_EQ(withD.LoadFromFile(name.c_str(), 1), 1);
    EXPECT_EQ(FirstXs(withD), (std::vector<LONG>{1, 2, 3, 99}));
    // Without append the path is reset first.
    ASSERT_EQ(withD.LoadFromFile(name.c_str(), 0), 1);
    EXPECT_EQ(FirstXs(withD), (std::vector<LONG>{1, 2, 3}));
    std::remove(name.c_str());
}

TEST(PathFile, DamagedFilesAreRejectedWithoutOverreading) {
    const std::string name = TempName("damaged.path");
    std::vector<unsigned char> good = Magic();
    PutLE(&good, 2);
    for (int s = 0; s < 2; ++s) {
        PutLE(&good, 0);
        PutLE(&good, 1);
        for (int k = 0; k < 6; ++k) {
            PutLE(&good, 10 * s + k);
        }
        good.insert(good.end(), {0x80, 0xAA, 0xBB, 0xCC});  // reserved bytes are ignored
    }
    WriteAll(name, good);
    C_PointPath path;
    ASSERT_EQ(path.LoadFromFile(name.c_str(), 0), 1);
    EXPECT_EQ(path.GetNSubPaths(), 2);

    struct Case {
        const char* what;
        std::vector<unsigned char> bytes;
        int subPathsLeft;
    };
    std::vector<Case> cases;
    cases.push_back({"empty file", {}, 0});
    cases.push_back(
        {"short magic", std::vector<unsigned char>(good.begin(), good.begin() + 10), 0});
    auto version = good;
    version[16] = '1';  // "1.1"
    cases.push_back({"other version", version, 0});
    auto noZero = good;
    noZero[17] = ' ';
    cases.push_back({"18th byte not zero", noZero, 0});
    auto negative = Magic();
    PutLE(&negative, -3);
    cases.push_back({"negative count", negative, 0});
    cases.push_back({"no count", Magic(), 0});
    auto hugePoints = Magic();
    PutLE(&hugePoints, 1);
    PutLE(&hugePoints, 0);
    PutLE(&hugePoints, 0x7FFFFFFF);  // would be 60 GB of records
    cases.push_back({"huge point count", hugePoints, 0});
    auto zeroPoints = Magic();
    PutLE(&zeroPoints, 1);
    PutLE(&zeroPoints, 0);
    PutLE(&zeroPoints, 0);
    cases.push_back({"sub-path without points", zeroPoints, 0});
    auto truncated = good;
    truncated.resize(truncated.size() - 5);
    cases.push_back({"second record cut short", truncated, 1});
    auto moreThanThere = good;
    PutLE(&moreThanThere, 0);
    moreThanThere[18] = 3;  // N = 3 with two records
    cases.push_back({"count beyond the records", moreThanThere, 2});

    for (const Case& c : cases) {
        WriteAll(name, c.bytes);
        C_PointPath loaded;
        EXPECT_EQ(loaded.LoadFromFile(name.c_str(), 0), 0) << c.what;
        EXPECT_EQ(loaded.GetNSubPaths(), c.subPathsLeft) << c.what;
    }
    std::remove(name.c_str());
    C_PointPath missing;
    EXPECT_EQ(missing.LoadFromFile(TempName("does-not-exist.path").c_str(), 0), 0);
}

TEST(PathFile, UnopenableFilesCountAsSavedAndWriteErrorsRemoveThePartialFile) {
    C_PointPath path;
    ASSERT_EQ(path.CreateNewSubPath(), 1);
    FillSubPath(path.GetFirstSubPath(), {{1, 1}});
    EXPECT_EQ(path.SaveToFile("/nonexistent-dir/x.path"), 1);
    // /dev/full accepts the open and fails every write.
    if (std::FILE* probe = std::fopen("/dev/full", "r+")) {
        std::fclose(probe);
        const std::string link = TempName("full.path");
        std::remove(link.c_str());
        ASSERT_EQ(symlink("/dev/full", link.c_str()), 0);
        EXPECT_EQ(path.SaveToFile(link.c_str()), 0);
        EXPECT_FALSE(std::ifstream(link).good());  // the link was deleted
        std::remove(link.c_str());
    }
}
