#include "platform/device_path.h"

#include <vistrane/platform/dc.h>

namespace vistrane::platform {

void DevicePath::Begin() {
    m_Points.clear();
    m_Types.clear();
    m_State = State::kRecording;
    m_FigureOpen = false;
}

bool DevicePath::End() {
    if (m_State != State::kRecording) {
        return false;
    }
    m_State = State::kFinished;
    m_FigureOpen = false;
    return true;
}

void DevicePath::Abort() {
    m_Points.clear();
    m_Types.clear();
    m_State = State::kNone;
    m_FigureOpen = false;
}

void DevicePath::StartFigureAt(POINT from) {
    if (!m_FigureOpen) {
        m_Points.push_back(from);
        m_Types.push_back(PT_MOVETO);
        m_FigureOpen = true;
    }
}

void DevicePath::AddLine(POINT from, POINT to) {
    StartFigureAt(from);
    m_Points.push_back(to);
    m_Types.push_back(PT_LINETO);
}

void DevicePath::AddBezier(POINT from, const POINT* points) {
    StartFigureAt(from);
    for (int k = 0; k < 3; ++k) {
        m_Points.push_back(points[k]);
        m_Types.push_back(PT_BEZIERTO);
    }
}

bool DevicePath::CloseFigure() {
    if (!m_FigureOpen) {
        return false;
    }
    m_Types.back() |= PT_CLOSEFIGURE;
    m_FigureOpen = false;
    return true;
}

}  // namespace vistrane::platform
