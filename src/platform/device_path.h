#pragma once

// The path recorder of a device: the points and types between BeginPath and EndPath. Kept apart
// from the rest of the device so that pixel drawing can grow beside it.

#include <vector>

#include <vistrane/platform/geometry.h>

namespace vistrane::platform {

class DevicePath {
  public:
    // Discards any path and starts recording.
    void Begin();
    // Stops recording; false when no path was being recorded.
    bool End();
    void Abort();
    bool IsRecording() const { return m_State == State::kRecording; }
    bool IsFinished() const { return m_State == State::kFinished; }

    // The next segment starts a new figure (at `from`, the device's current position).
    void BreakFigure() { m_FigureOpen = false; }
    void AddLine(POINT from, POINT to);
    // Three points: two control points and the end.
    void AddBezier(POINT from, const POINT* points);
    // Flags the figure's last point; false when no figure is open.
    bool CloseFigure();

    int Count() const { return static_cast<int>(m_Points.size()); }
    const std::vector<POINT>& Points() const { return m_Points; }
    const std::vector<BYTE>& Types() const { return m_Types; }

  private:
    enum class State { kNone, kRecording, kFinished };

    void StartFigureAt(POINT from);

    std::vector<POINT> m_Points;
    std::vector<BYTE> m_Types;
    State m_State = State::kNone;
    bool m_FigureOpen = false;
};

}  // namespace vistrane::platform
