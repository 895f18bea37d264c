#pragma once

// C_SnapshotHistory: the undo history of a frame's geometry. A fixed array of Capacity + 1
// snapshots with a position and a count: up to Capacity undo steps plus the state to come back
// to. A frame records the geometry as it was when an edit began; undoing stores the current
// geometry at the position, so that it can be redone, and hands back the one before it.
//
// Snapshot is a plain copyable value (the frame's points). Nothing allocates.

#include <array>

template <typename Snapshot, int Capacity>
class C_SnapshotHistory {
    static_assert(Capacity > 0, "a history holds at least one step");

  public:
    int CanUndo() const { return m_Position > 0 ? 1 : 0; }
    int CanRedo() const { return m_Position < m_Count ? 1 : 0; }
    int GetPosition() const { return m_Position; }
    int GetCount() const { return m_Count; }

    // Records the geometry as it was when an edit began. The redo tail is dropped; a full
    // history drops its oldest step.
    void Record(const Snapshot& before) {
        if (m_Position < m_Count) {
            m_Count = m_Position;
        }
        if (m_Position == Capacity) {
            for (int i = 0; i < Capacity; ++i) {
                m_Snapshots[i] = m_Snapshots[i + 1];
            }
            --m_Position;
            --m_Count;
        }
        m_Snapshots[m_Position] = before;
        ++m_Position;
        m_Count = m_Position;
    }

    // Replaces *current with the step before it and keeps *current for Redo. False, with
    // *current untouched, when there is nothing to undo.
    bool Undo(Snapshot* current) {
        if (CanUndo() == 0) {
            return false;
        }
        m_Snapshots[m_Position] = *current;
        --m_Position;
        *current = m_Snapshots[m_Position];
        return true;
    }

    // The inverse of Undo; false, with *current untouched, when there is nothing to redo.
    bool Redo(Snapshot* current) {
        if (CanRedo() == 0) {
            return false;
        }
        m_Snapshots[m_Position] = *current;
        ++m_Position;
        *current = m_Snapshots[m_Position];
        return true;
    }

  private:
    std::array<Snapshot, Capacity + 1> m_Snapshots{};
    int m_Position = 0;
    int m_Count = 0;
};
