#include <vistrane/frame/modal_frame.h>

C_ModalFrame::~C_ModalFrame() = default;

int C_ModalFrame::GetBoundingRect(CRect* /*rect*/) {
    return 0;
}

int C_ModalFrame::CanUndo() {
    return 0;
}

int C_ModalFrame::CanRedo() {
    return 0;
}

void C_ModalFrame::Undo() {}

void C_ModalFrame::Redo() {}

void C_ModalFrame::UndoAll() {
    while (CanUndo() != 0) {
        Undo();
    }
}

void C_ModalFrame::RedoAll() {
    while (CanRedo() != 0) {
        Redo();
    }
}

void C_ModalFrame::UndoRedoOp(MODAL_UndoRedoOp op) {
    switch (op) {
        case MODAL_Undo:
            Undo();
            break;
        case MODAL_Redo:
            Redo();
            break;
        case MODAL_UndoAll:
            UndoAll();
            break;
        case MODAL_RedoAll:
            RedoAll();
            break;
    }
}
