// The frame's undo history, shared by drags and numeric entries, and copies of a frame.

#include <gtest/gtest.h>

#include "frame/free_xform_frame_support.h"

namespace vistrane::test {

TEST_F(FreeXFormFrame, NumericEntriesShareTheHistoryOfDrags) {
    FXF_NumericParams params;
    params.m_UseTranslation = 1;
    for (int step = 1; step <= 33; ++step) {
        params.m_TranslateX = step;
        m_Frame.SetNumericParams(&params);
    }
    EXPECT_EQ(CornersOf(m_Frame)[0], CPoint(133, 100));
    m_Frame.UndoRedoOp(MODAL_UndoAll);
    EXPECT_EQ(CornersOf(m_Frame)[0], CPoint(101, 100)) << "33 entries keep the newest 32";
    m_Frame.UndoRedoOp(MODAL_Redo);
    EXPECT_EQ(m_Frame.CanRedo(), 1);
    m_Frame.SetNumericParams(&params);
    EXPECT_EQ(m_Frame.CanRedo(), 0) << "a new entry clears redo";
    m_Frame.Undo();
    EXPECT_EQ(CornersOf(m_Frame)[0], CPoint(102, 100));
    Drag({150, 130}, {150, 140});
    EXPECT_EQ(m_Frame.CanRedo(), 0) << "and so does a drag";
    EXPECT_EQ(CornersOf(m_Frame)[0], CPoint(102, 110));
}

TEST_F(FreeXFormFrame, MouseEventsWithoutAPressChangeNothing) {
    S_FXFHitTestDescription d;
    m_Frame.MouseMove(CPoint(340, 250), &d);
    m_Frame.MouseButtonUp(CPoint(340, 250));
    EXPECT_EQ(CornersOf(m_Frame), (Corners{{{100, 100}, {300, 100}, {300, 220}, {100, 220}}}));
    EXPECT_EQ(m_Frame.CanUndo(), 0);
}

TEST_F(FreeXFormFrame, HistoryKeepsTheNewest32Steps) {
    for (int step = 1; step <= 33; ++step) {
        Drag({150, 130}, {151, 130});
    }
    EXPECT_EQ(CornersOf(m_Frame)[0], CPoint(133, 100));
    int undone = 0;
    while (m_Frame.CanUndo() != 0) {
        m_Frame.Undo();
        ++undone;
    }
    EXPECT_EQ(undone, 32);
    EXPECT_EQ(CornersOf(m_Frame)[0], CPoint(101, 100)) << "the first step is gone";
    C_ModalFrame& base = m_Frame;
    base.UndoRedoOp(MODAL_RedoAll);
    EXPECT_EQ(CornersOf(m_Frame)[0], CPoint(133, 100));
    EXPECT_EQ(m_Frame.CanRedo(), 0);
    base.UndoRedoOp(MODAL_Undo);
    EXPECT_EQ(CornersOf(m_Frame)[0], CPoint(132, 100));
    EXPECT_EQ(m_Frame.CenterPoint(), CPoint(232, 160)) << "the centre comes back with the step";
}

TEST_F(FreeXFormFrame, NewEditAfterUndoClearsRedo) {
    Drag({150, 130}, {160, 130});
    Drag({150, 130}, {160, 130});
    m_Frame.UndoRedoOp(MODAL_Undo);
    EXPECT_EQ(m_Frame.CanRedo(), 1);
    Drag({310, 220}, {340, 250});
    EXPECT_EQ(m_Frame.CanRedo(), 0);
    m_Frame.UndoRedoOp(MODAL_UndoAll);
    EXPECT_EQ(CornersOf(m_Frame), (Corners{{{100, 100}, {300, 100}, {300, 220}, {100, 220}}}));
    m_Frame.UndoRedoOp(MODAL_Redo);
    EXPECT_EQ(CornersOf(m_Frame)[0], CPoint(110, 100));
}

TEST_F(FreeXFormFrame, CopiesCarryTheWholeState) {
    Drag({150, 130}, {160, 130});
    C_FreeXFormFrame copy(m_Frame);
    copy.Undo();
    EXPECT_EQ(CornersOf(copy)[0], CPoint(100, 100));
    EXPECT_EQ(CornersOf(m_Frame)[0], CPoint(110, 100));
    C_FreeXFormFrame assigned;
    assigned = m_Frame;
    EXPECT_EQ(assigned.CanUndo(), 1);
}

}  // namespace vistrane::test
