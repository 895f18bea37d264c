#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include <vistrane/path/point_path.h>

#include "support/path_support.h"

using vistrane::test::FillSubPath;

namespace {

// The editing modes that set append mode and the magnetic setting are not part of the path
// container; the tests set those members directly.
class EditedPath : public C_PointPath {
  public:
    void EnterMagneticAppend(C_SubPath* sub) {
        m_AppendSubPath = sub;
        m_MagSnapSetting = 1;
    }
};

// Adds a sub-path of anchors (x, 0) for each x in `xs`, at the head.
C_SubPath* AddLine(C_PointPath* path, std::vector<LONG> xs) {
    std::vector<CPoint> anchors;
    for (LONG x : xs) {
        anchors.emplace_back(x, 0);
    }
    EXPECT_EQ(path->CreateNewSubPath(), 1);
    FillSubPath(path->GetFirstSubPath(), anchors);
    return path->GetFirstSubPath();
}

// The x of every anchor, sub-path by sub-path from the head.
std::vector<std::vector<LONG>> Xs(const C_PointPath& path) {
    std::vector<std::vector<LONG>> out;
    for (const C_SubPath* s = path.GetFirstSubPath(); s != nullptr; s = s->GetNext()) {
        out.emplace_back();
        for (int i = 0; i < s->GetCount(); ++i) {
            out.back().push_back(s->GetPoints()[i].m_Anchor.x);
        }
    }
    return out;
}

}  // namespace

TEST(C_PointPath, SubPathsGoToTheHeadAndUnlinkCleanly) {
    C_PointPath path;
    EXPECT_EQ(path.GetNSubPaths(), 0);
    C_SubPath* p = AddLine(&path, {1});
    C_SubPath* q = AddLine(&path, {2});
    C_SubPath* r = AddLine(&path, {3});
    EXPECT_EQ(Xs(path), (std::vector<std::vector<LONG>>{{3}, {2}, {1}}));
    EXPECT_EQ(r->GetPrev(), nullptr);
    EXPECT_EQ(q->GetPrev(), r);
    EXPECT_EQ(p->GetNext(), nullptr);

    path.DeleteSubPath(q);
    EXPECT_EQ(r->GetNext(), p);
    EXPECT_EQ(p->GetPrev(), r);
    path.DeleteSubPath(r);
    EXPECT_EQ(path.GetFirstSubPath(), p);
    EXPECT_EQ(p->GetPrev(), nullptr);

    const CRect sel(1, 2, 3, 4);
    path.SetSelRect(&sel);
    path.DeleteSubPath(p);
    EXPECT_EQ(path.GetFirstSubPath(), nullptr);
    CRect kept;
    path.GetSelRect(&kept);
    EXPECT_EQ(kept, sel);
}

TEST(C_PointPath, WholePathFlagQueries) {
    C_PointPath path;
    AddLine(&path, {1, 2})->FlagsAll(0);
    AddLine(&path, {3})->FlagsAll(0);
    EXPECT_EQ(path.HasSubPathWithSelectedAnchors(), 0);
    path.SelectAll(1);
    EXPECT_EQ(path.HasSubPathWithSelectedAnchors(), 1);
    path.FlagAll(PPF_SELECTED, 0);
    EXPECT_EQ(path.HasSubPathWithSelectedAnchors(), 0);
    EXPECT_EQ(path.HasSubPathWithAnchorsVisible(), 0);
    path.GetFirstSubPath()->GetNext()->SetAnchorsVisible(1);
    EXPECT_EQ(path.HasSubPathWithAnchorsVisible(), 1);
}

TEST(C_PointPath, CloneKeepsOrderAndRestoresMovedPoints) {
    C_PointPath path;
    AddLine(&path, {1, 2, 3})->Close(1);
    AddLine(&path, {4, 5});
    path.GetFirstSubPath()->SetAnchorsVisible(1);
    const CRect sel(5, 6, 7, 8);
    path.SetSelRect(&sel);

    std::unique_ptr<C_PointPath> plain(path.CreateClone(0));
    ASSERT_NE(plain, nullptr);
    EXPECT_EQ(Xs(*plain), Xs(path));
    EXPECT_EQ(plain->GetFirstSubPath()->GetNext()->IsClosed(), 1);
    EXPECT_EQ(plain->GetFirstSubPath()->AreAnchorsVisible(), 0);
    CRect r;
    plain->GetSelRect(&r);
    EXPECT_EQ(r, CRect());

    std::unique_ptr<C_PointPath> withSel(path.CreateClone(1));
    ASSERT_NE(withSel, nullptr);
    withSel->GetSelRect(&r);
    EXPECT_EQ(r, sel);

    // A transform step: move the path, then start again from the untouched clone.
    const std::vector<std::vector<LONG>> before = Xs(path);
    for (C_SubPath* s = path.GetFirstSubPath(); s != nullptr; s = s->GetNext()) {
        s->OffSetAnchors(CSize(10, 0));
    }
    EXPECT_NE(Xs(path), before);
    path.CopyFromClone(plain.get());
    EXPECT_EQ(Xs(path), before);

    C_PointPath empty;
    std::unique_ptr<C_PointPath> emptyClone(empty.CreateClone(1));
    ASSERT_NE(emptyClone, nullptr);
    EXPECT_EQ(emptyClone->GetNSubPaths(), 0);
}

TEST(C_PointPath, DeleteSplitsAClosedSubPathIntoOpenPieces) {
    C_PointPath path;
    C_SubPath* untouched = AddLine(&path, {100, 101, 102});
    C_SubPath* edited = AddLine(&path, {0, 1, 2, 3});
    edited->Close(1);
    edited->SetAnchorsVisible(1);
    edited->SelectAll(0);
    edited->GetPoints()[1].m_Flags |= PPF_SELECTED;
    path.OnDelete();
    // Pieces at the head: the run after the last selected point was added last.
    EXPECT_EQ(Xs(path), (std::vector<std::vector<LONG>>{{2, 3}, {0}, {100, 101, 102}}));
    const C_SubPath* piece = path.GetFirstSubPath();
    EXPECT_EQ(piece->IsClosed(), 0);
    EXPECT_EQ(piece->AreAnchorsVisible(), 1);
    EXPECT_EQ(piece->GetPoints()[0].m_Flags, PPF_SELECTED);
    EXPECT_EQ(piece->GetPoints()[0].m_Attributes, PPA_LINKED_DIRECTIONS);
    EXPECT_EQ(path.GetFirstSubPath()->GetNext()->GetNext(), untouched);
}

TEST(C_PointPath, DeleteRemovesAnEditedSubPathWithNothingSelected) {
    C_PointPath path;
    AddLine(&path, {7, 8});
    C_SubPath* edited = AddLine(&path, {0, 1, 2});
    edited->SetAnchorsVisible(1);
    edited->SelectAll(0);
    path.OnDelete();
    EXPECT_EQ(Xs(path), (std::vector<std::vector<LONG>>{{7, 8}}));

    // No anchors visible anywhere: everything goes.
    path.OnDelete();
    EXPECT_EQ(path.GetNSubPaths(), 0);
}

TEST(C_PointPath, DeleteDuringAMagneticRunRemovesOnlyTheLastRun) {
    EditedPath path;
    C_SubPath* run = AddLine(&path, {0, 1, 2, 3, 4, 5});
    S_PathPoint* p = run->GetPoints();
    p[3].m_Attributes |= PPA_SERIAL;
    p[4].m_Attributes |= PPA_SERIAL;
    p[5].m_Attributes |= PPA_SERIAL;
    p[2].m_NextDirection = CPoint(4, 4);
    path.EnterMagneticAppend(run);
    path.OnDelete();
    EXPECT_EQ(Xs(path), (std::vector<std::vector<LONG>>{{0, 1, 2}}));
    EXPECT_EQ(run->GetPoints()[2].m_NextDirection, CPoint(0, 0));
    EXPECT_EQ(path.InAppendMode(), 1);

    // One run left: the path is reduced to segments, the run's anchors shown, and since
    // nothing is selected the run itself is removed.
    AddLine(&path, {50, 51})->SetAnchorsVisible(0);
    path.OnDelete();
    EXPECT_EQ(path.InAppendMode(), 0);
    EXPECT_EQ(Xs(path), (std::vector<std::vector<LONG>>{{50, 51}}));
}
