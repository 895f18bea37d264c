// Numeric entry of the free transform frame: corners rebuilt from the reference rectangle's
// centre and half-axes, and read back from them. Half-axes in doubles, from the exact centres
// of the edges rather than the frame's truncated mid-points, so that the identity entry gives
// back the reference corners of any rectangle, odd sizes included.

#include <cmath>

#include <vistrane/companion/2dvector.h>
#include <vistrane/frame/free_xform_frame.h>

#include "frame/free_xform_operations.h"

namespace {

struct FrameAxes {
    C_2DVector m_Centre;
    C_2DVector m_AxisX;  // centre to the middle of the right edge
    C_2DVector m_AxisY;  // centre to the middle of the bottom edge
};

FrameAxes AxesOfCorners(CPoint tl, CPoint tr, CPoint br, CPoint bl) {
    const C_2DVector a(tl), b(tr), c(br), d(bl);
    return {(a + b + c + d) * 0.25, ((b + c) - (a + d)) * 0.25, ((d + c) - (a + b)) * 0.25};
}

FrameAxes AxesOfRect(const CRect& r) {
    return AxesOfCorners(CPoint(r.left, r.top), CPoint(r.right, r.top), CPoint(r.right, r.bottom),
                         CPoint(r.left, r.bottom));
}

double Cross(const C_2DVector& a, const C_2DVector& b) {
    return a.m_X * b.m_Y - a.m_Y * b.m_X;
}

// The angle that RotateByRadAngle turns `from` by to point along `to`, in (-180, 180] degrees.
double TurnDegrees(const C_2DVector& from, const C_2DVector& to) {
    return C_2DVector::RadToDeg(std::atan2(Cross(from, to), from.DotProduct(to)));
}

double WrapDegrees(double a) {
    while (a > 180.0) {
        a -= 360.0;
    }
    while (a <= -180.0) {
        a += 360.0;
    }
    return a;
}

}  // namespace

void C_FreeXFormFrame::SetNumericParams(const FXF_NumericParams* params) {
    if (params == nullptr) {
        return;
    }
    m_StartPoints = m_Points;
    m_History.Record(m_StartPoints);

    const FrameAxes ref = AxesOfRect(m_Reference);
    C_2DVector axisX = ref.m_AxisX;
    C_2DVector axisY = ref.m_AxisY;
    C_2DVector centre = ref.m_Centre;
    if (params->m_UseScale != 0) {
        axisX.MultByScalar(params->m_ScaleX * 0.01);
        axisY.MultByScalar(params->m_ScaleY * 0.01);
    }
    if (params->m_UseRotation != 0) {
        const double turn = C_2DVector::DegToRad(params->m_Rotation);
        axisX.RotateByRadAngle(turn);
        axisY.RotateByRadAngle(turn);
    }
    if (params->m_UseSkew != 0) {
        axisX.RotateByRadAngle(C_2DVector::DegToRad(params->m_SkewX));
        axisY.RotateByRadAngle(-C_2DVector::DegToRad(params->m_SkewY));
    }
    if (params->m_UseTranslation != 0) {
        centre += C_2DVector(params->m_TranslateX, params->m_TranslateY);
    }
    m_Points[FXF_TopLeft] = centre - axisX - axisY;
    m_Points[FXF_TopRight] = centre + axisX - axisY;
    m_Points[FXF_BottomRight] = centre + axisX + axisY;
    m_Points[FXF_BottomLeft] = centre - axisX + axisY;
    vistrane::frame::UpdateDerivedPoints(m_Points);
    m_Points[FXF_Center] = vistrane::frame::CentralPosition(m_Points);
}

void C_FreeXFormFrame::GetNumericParams(FXF_NumericParams* params) const {
    if (params == nullptr) {
        return;
    }
    const FrameAxes ref = AxesOfRect(m_Reference);
    const FrameAxes now = AxesOfCorners(m_Points[FXF_TopLeft], m_Points[FXF_TopRight],
                                        m_Points[FXF_BottomRight], m_Points[FXF_BottomLeft]);
    *params = FXF_NumericParams();
    params->m_UseTranslation = 1;
    params->m_UseScale = 1;
    params->m_UseSkew = 1;
    params->m_UseRotation = 1;

    const CPoint shift = now.m_Centre - ref.m_Centre;
    params->m_TranslateX = shift.x;
    params->m_TranslateY = shift.y;
    if (ref.m_AxisX.IsNull() || ref.m_AxisY.IsNull()) {
        return;
    }
    params->m_ScaleX = 100.0 * now.m_AxisX.Magnitude() / ref.m_AxisX.Magnitude();
    params->m_ScaleY = 100.0 * now.m_AxisY.Magnitude() / ref.m_AxisY.Magnitude();
    // A frame turned inside out (one axis mirrored) reads as a negative vertical scale, so
    // that the skew stays within a quarter turn.
    C_2DVector axisY = now.m_AxisY;
    if (Cross(now.m_AxisX, now.m_AxisY) * Cross(ref.m_AxisX, ref.m_AxisY) < 0.0) {
        params->m_ScaleY = -params->m_ScaleY;
        axisY = -axisY;
    }
    const double rotation = now.m_AxisX.IsNull() ? 0.0 : TurnDegrees(ref.m_AxisX, now.m_AxisX);
    const double turnY = axisY.IsNull() ? rotation : TurnDegrees(ref.m_AxisY, axisY);
    params->m_Rotation = rotation;
    params->m_SkewY = WrapDegrees(rotation - turnY);
}
