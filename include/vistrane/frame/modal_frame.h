#pragma once

// C_ModalFrame: the common base of the interactive frames that a user drags while a modal
// transform is in progress. It fixes one interface, the frame's bounding rectangle and a
// four-way undo/redo protocol, so that a host can drive any frame's undo buttons without knowing
// its kind. The base holds no data and its operations do nothing; each frame keeps its own
// history (see C_SnapshotHistory).
//
// The virtual operations keep this order in every frame, after the destructor:
// GetBoundingRect, CanUndo, CanRedo, Undo, Redo, UndoAll, RedoAll.

#include <vistrane/export.h>
#include <vistrane/platform/geometry.h>

// The operations a host's undo and redo buttons ask of a frame.
enum MODAL_UndoRedoOp : int {
    MODAL_Undo = 0,
    MODAL_Redo = 1,
    MODAL_UndoAll = 2,
    MODAL_RedoAll = 3,
};

class VISTRANE_API C_ModalFrame {
  public:
    C_ModalFrame() = default;
    C_ModalFrame(const C_ModalFrame&) = default;
    C_ModalFrame& operator=(const C_ModalFrame&) = default;
    virtual ~C_ModalFrame();

    // 1 with the frame's extent in *rect; the base has none and returns 0, leaving *rect as it
    // was. A frame states what the rectangle's fields hold.
    virtual int GetBoundingRect(CRect* rect);
    // Non-zero when a step can be undone or redone; the base answers 0.
    virtual int CanUndo();
    virtual int CanRedo();
    // One step back or forward; nothing when there is no such step.
    virtual void Undo();
    virtual void Redo();
    // Every step back or forward: Undo (Redo) while CanUndo (CanRedo) answers non-zero, so a
    // frame that implements the single steps gets these for free.
    virtual void UndoAll();
    virtual void RedoAll();

    // MODAL_Undo, MODAL_Redo, MODAL_UndoAll and MODAL_RedoAll call the operation of that name,
    // through the virtual table so that the frame's own version runs; other values are ignored.
    void UndoRedoOp(MODAL_UndoRedoOp op);
};
