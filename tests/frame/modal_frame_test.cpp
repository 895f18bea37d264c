#include <gtest/gtest.h>

#include <string>

#include <vistrane/frame/modal_frame.h>
#include <vistrane/frame/snapshot_history.h>

namespace {

// A frame whose geometry is one number and whose history holds three steps; it logs every
// operation that reaches it so that the dispatch can be checked.
class CountingFrame : public C_ModalFrame {
  public:
    int CanUndo() override { return m_History.CanUndo(); }
    int CanRedo() override { return m_History.CanRedo(); }
    void Undo() override {
        m_Log += 'u';
        m_History.Undo(&m_Value);
    }
    void Redo() override {
        m_Log += 'r';
        m_History.Redo(&m_Value);
    }
    void UndoAll() override {
        m_Log += 'U';
        C_ModalFrame::UndoAll();
    }
    void RedoAll() override {
        m_Log += 'R';
        C_ModalFrame::RedoAll();
    }
    void Edit(int value) {
        m_History.Record(m_Value);
        m_Value = value;
    }

    C_SnapshotHistory<int, 3> m_History;
    int m_Value = 0;
    std::string m_Log;
};

}  // namespace

TEST(C_ModalFrame, BareFrameHasNoRectangleAndNothingToUndo) {
    C_ModalFrame frame;
    CRect r(1, 2, 3, 4);
    EXPECT_EQ(frame.GetBoundingRect(&r), 0);
    EXPECT_EQ(r, CRect(1, 2, 3, 4));
    EXPECT_EQ(frame.CanUndo(), 0);
    EXPECT_EQ(frame.CanRedo(), 0);
    frame.UndoAll();
    frame.RedoAll();
    for (int op = -1; op <= 4; ++op) {
        frame.UndoRedoOp(static_cast<MODAL_UndoRedoOp>(op));
    }
}

TEST(C_ModalFrame, UndoRedoOpDispatchesThroughTheFramesOwnOperations) {
    CountingFrame frame;
    C_ModalFrame& base = frame;
    base.UndoRedoOp(MODAL_Undo);
    base.UndoRedoOp(MODAL_Redo);
    base.UndoRedoOp(MODAL_UndoAll);
    base.UndoRedoOp(MODAL_RedoAll);
    EXPECT_EQ(frame.m_Log, "urUR");
    frame.m_Log.clear();
    base.UndoRedoOp(static_cast<MODAL_UndoRedoOp>(4));
    base.UndoRedoOp(static_cast<MODAL_UndoRedoOp>(-1));
    EXPECT_EQ(frame.m_Log, "");
}

TEST(C_ModalFrame, GroupOperationsStepUntilNothingIsLeft) {
    CountingFrame frame;
    frame.Edit(1);
    frame.Edit(2);
    frame.UndoRedoOp(MODAL_UndoAll);
    EXPECT_EQ(frame.m_Log, "Uuu");
    EXPECT_EQ(frame.m_Value, 0);
    frame.m_Log.clear();
    frame.UndoRedoOp(MODAL_RedoAll);
    EXPECT_EQ(frame.m_Log, "Rrr");
    EXPECT_EQ(frame.m_Value, 2);
}

TEST(C_SnapshotHistory, UndoAndRedoWalkTheRecordedStates) {
    C_SnapshotHistory<int, 3> history;
    int value = 10;
    EXPECT_FALSE(history.Undo(&value));
    EXPECT_FALSE(history.Redo(&value));
    EXPECT_EQ(value, 10);

    history.Record(value);
    value = 11;
    history.Record(value);
    value = 12;
    ASSERT_TRUE(history.Undo(&value));
    EXPECT_EQ(value, 11);
    ASSERT_TRUE(history.Undo(&value));
    EXPECT_EQ(value, 10);
    EXPECT_FALSE(history.Undo(&value));
    ASSERT_TRUE(history.Redo(&value));
    EXPECT_EQ(value, 11);
    ASSERT_TRUE(history.Redo(&value));
    EXPECT_EQ(value, 12);
    EXPECT_FALSE(history.Redo(&value));
    EXPECT_EQ(value, 12);
}

TEST(C_SnapshotHistory, FullHistoryDropsTheOldestStep) {
    C_SnapshotHistory<int, 3> history;
    int value = 0;
    for (int step = 1; step <= 4; ++step) {
        history.Record(value);
        value = step;
    }
    EXPECT_EQ(history.GetPosition(), 3);
    EXPECT_EQ(history.GetCount(), 3);
    int undone = 0;
    while (history.Undo(&value)) {
        ++undone;
    }
    EXPECT_EQ(undone, 3);
    EXPECT_EQ(value, 1) << "state 0 was the oldest and is gone";
    while (history.Redo(&value)) {
    }
    EXPECT_EQ(value, 4);
}

TEST(C_SnapshotHistory, NewEditAfterUndoClearsRedo) {
    C_SnapshotHistory<int, 3> history;
    int value = 0;
    history.Record(value);
    value = 1;
    history.Record(value);
    value = 2;
    ASSERT_TRUE(history.Undo(&value));
    ASSERT_TRUE(history.Undo(&value));
    EXPECT_EQ(history.CanRedo(), 1);
    history.Record(value);
    value = 5;
    EXPECT_EQ(history.CanRedo(), 0);
    EXPECT_EQ(history.GetCount(), 1);
    ASSERT_TRUE(history.Undo(&value));
    EXPECT_EQ(value, 0);
    ASSERT_TRUE(history.Redo(&value));
    EXPECT_EQ(value, 5);
}
