#pragma once

// What the free transform frame's tests share: the 200 x 120 frame they drag, its points, the
// modifier keys and a fixture that presses, moves and releases.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numbers>

#include <vistrane/frame/free_xform_frame.h>
#include <vistrane/platform/keyboard.h>

#include "support/geometry_print.h"

namespace vistrane::test {

using Corners = std::array<CPoint, 4>;

// The frame most tests drag: 200 x 120, so every handle lies more than 50 pixels from the centre
// and the centre's own hit zone does not cover them.
//   TL (100,100)   T (200,100)   TR (300,100)
//   L  (100,160)   C (200,160)   R  (300,160)
//   BL (100,220)   B (200,220)   BR (300,220)
inline const CRect kRect(100, 100, 300, 220);

inline Corners CornersOf(const C_FreeXFormFrame& frame) {
    CPoint pts[10];
    frame.GetDrawPoints(pts);
    return {pts[FXF_TopLeft], pts[FXF_TopRight], pts[FXF_BottomRight], pts[FXF_BottomLeft]};
}

inline CPoint PointOf(const C_FreeXFormFrame& frame, FXF_PointCodes code) {
    CPoint pts[10];
    frame.GetDrawPoints(pts);
    return pts[code];
}

inline void SetKeys(bool shift, bool ctrl, bool alt) {
    SetKeyState(VK_SHIFT, shift);
    SetKeyState(VK_CONTROL, ctrl);
    SetKeyState(VK_MENU, alt);
}

// The modifier state is process-wide: every test starts and ends with all keys up.
class FreeXFormFrame : public ::testing::Test {
  protected:
    void SetUp() override { SetKeys(false, false, false); }
    void TearDown() override { SetKeys(false, false, false); }

    // A press, one move and a release; the description of the move.
    S_FXFHitTestDescription Drag(CPoint from, CPoint to) {
        S_FXFHitTestDescription d;
        m_Frame.MouseButtonDown(from, &d);
        m_Frame.MouseMove(to, &d);
        m_Frame.MouseButtonUp(to);
        return d;
    }

    S_FXFHitTestDescription Hit(CPoint p) {
        S_FXFHitTestDescription d;
        m_Frame.HitTestPointer(p, &d);
        return d;
    }

    C_FreeXFormFrame m_Frame{kRect};
};

// Checks that the clone vertex and the mid-points are derived from the corners.
inline void ExpectDerivedPointsConsistent(const C_FreeXFormFrame& frame) {
    CPoint p[10];
    frame.GetDrawPoints(p);
    EXPECT_EQ(p[FXF_CloneVertex], p[FXF_TopLeft]);
    for (int m = 1; m < 8; m += 2) {
        EXPECT_EQ(p[m], CPoint((p[m - 1].x + p[m + 1].x) / 2, (p[m - 1].y + p[m + 1].y) / 2))
            << "mid-point " << m;
    }
}

}  // namespace vistrane::test
