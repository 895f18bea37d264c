#include <vistrane/frame/free_xform_frame.h>

#include <algorithm>

#include <vistrane/companion/geom.h>
#include <vistrane/platform/keyboard.h>

#include "frame/free_xform_operations.h"

namespace {

using vistrane::frame::FramePoints;

// The pointer takes the centre within this many pixels; it is tested before the handles, so on
// a small frame the centre wins over a corner under the pointer.
constexpr long kCenterHitPx = 50;
// A handle is hit when its squared distance is below this: within about 7 pixels.
constexpr LONG kHandleHitSqPx = 51;

bool KeyDown(int virtualKey) {
    return GetKeyState(virtualKey) < 0;
}

FXF_OperationCodes OperationFromKeys(FXF_EditingCodes editing) {
    return vistrane::frame::OperationFor(editing, KeyDown(VK_SHIFT), KeyDown(VK_CONTROL),
                                         KeyDown(VK_MENU));
}

// The handle among `first`, first + 2, first + 4, first + 6 nearest to p, a later one winning
// only when strictly nearer; -1 when even that one is not hit.
int NearestHandle(const FramePoints& pts, int first, CPoint p) {
    C_Geom geom;
    int best = first;
    LONG bestSq = geom.SqPointDistance(pts[first], p);
    for (int k = first + 2; k < FXF_CloneVertex; k += 2) {
        const LONG sq = geom.SqPointDistance(pts[k], p);
        if (sq < bestSq) {
            best = k;
            bestSq = sq;
        }
    }
    return bestSq < kHandleHitSqPx ? best : -1;
}

// The cursor of an operation on the handle `pointCode`, from the handle's outward direction.
FXF_MovementOrientation OperationOrientation(const FramePoints& pts, int pointCode,
                                             FXF_OperationCodes op) {
    const FXF_MovementOrientation handle = vistrane::frame::HandleOrientation(pts, pointCode);
    switch (op) {
        case FXF_OP_VertexFree:
        case FXF_OP_MidPointFree:
            return FXF_MO_None;
        case FXF_OP_MidPointAlong:
        case FXF_OP_MidPointAlongSymmetric:
            return vistrane::frame::InvertOrientation(handle);
        default:
            return handle;
    }
}

FXF_RotateOctant OctantAroundCenter(const FramePoints& pts, CPoint p) {
    C_Geom geom;
    return static_cast<FXF_RotateOctant>(geom.GetPointDisplacementOctant(pts[FXF_Center], p));
}

}  // namespace

C_FreeXFormFrame::C_FreeXFormFrame() {
    Init(CRect());
}

C_FreeXFormFrame::C_FreeXFormFrame(CRect r) {
    Init(r);
}

C_FreeXFormFrame::~C_FreeXFormFrame() = default;

void C_FreeXFormFrame::Init(CRect r) {
    m_Points[FXF_TopLeft] = CPoint(r.left, r.top);
    m_Points[FXF_TopRight] = CPoint(r.right, r.top);
    m_Points[FXF_BottomRight] = CPoint(r.right, r.bottom);
    m_Points[FXF_BottomLeft] = CPoint(r.left, r.bottom);
    vistrane::frame::UpdateDerivedPoints(m_Points);
    m_Points[FXF_Center] = vistrane::frame::CentralPosition(m_Points);
    m_StartPoints = m_Points;
    m_Hit = S_FXFHitTestDescription();
    m_Dragging = false;
    m_Reference = r;
    m_History = C_SnapshotHistory<S_FXFPoints, kHistoryCapacity>();
}

FXF_PointCodes C_FreeXFormFrame::GetCenterPosition() const {
    return vistrane::frame::CenterPositionCode(m_Points);
}

void C_FreeXFormFrame::GetDrawPoints(CPoint* ten) const {
    std::copy(m_Points.begin(), m_Points.end(), ten);
}

void C_FreeXFormFrame::SetDrawPoints(const S_FXFPoints& points) {
    m_Points = points;
    m_StartPoints = points;
}

void C_FreeXFormFrame::Describe(CPoint p, S_FXFHitTestDescription* d) const {
    C_Geom geom;
    d->m_StartPoint = p;
    d->m_CenterPosition = GetCenterPosition();
    d->m_RotateOctant = OctantAroundCenter(m_Points, p);
    d->m_PointCode = FXF_NoPoint;
    if (geom.IsPointCloseToPoint(m_Points[FXF_Center], p, kCenterHitPx) != 0) {
        d->m_EditingCode = FXF_EditCenter;
        d->m_PointCode = FXF_Center;
    } else if (const int corner = NearestHandle(m_Points, FXF_TopLeft, p); corner >= 0) {
        d->m_EditingCode = FXF_EditVertex;
        d->m_PointCode = static_cast<FXF_PointCodes>(corner);
    } else if (const int mid = NearestHandle(m_Points, FXF_TopMid, p); mid >= 0) {
        d->m_EditingCode = FXF_EditMidPoint;
        d->m_PointCode = static_cast<FXF_PointCodes>(mid);
    } else {
        const bool inside = geom.IsPointInsidePoly(p, m_Points.data(), FXF_CloneVertex) != 0;
        d->m_EditingCode = inside != KeyDown(VK_MENU) ? FXF_EditFrameMove : FXF_EditFrameRotate;
    }
    d->m_Operation = OperationFromKeys(d->m_EditingCode);
    d->m_Orientation = OperationOrientation(m_Points, d->m_PointCode, d->m_Operation);
}

void C_FreeXFormFrame::HitTestPointer(CPoint p, S_FXFHitTestDescription* d) {
    Describe(p, d);
}

void C_FreeXFormFrame::MouseButtonDown(CPoint p, S_FXFHitTestDescription* d) {
    Describe(p, &m_Hit);
    m_StartPoints = m_Points;
    if (m_Hit.m_EditingCode == FXF_EditCenter) {
        m_Hit.m_StartPoint = m_Points[FXF_Center];
    }
    m_Dragging = true;
    if (d != nullptr) {
        *d = m_Hit;
    }
}

void C_FreeXFormFrame::MouseMove(CPoint p, S_FXFHitTestDescription* d) {
    if (m_Dragging) {
        m_Hit.m_Operation = OperationFromKeys(m_Hit.m_EditingCode);
        m_Hit.m_Orientation =
            OperationOrientation(m_StartPoints, m_Hit.m_PointCode, m_Hit.m_Operation);
        m_Points = m_StartPoints;
        ApplyOperation(p);
    }
    if (d != nullptr) {
        *d = m_Hit;
    }
}

void C_FreeXFormFrame::ApplyOperation(CPoint p) {
    namespace fr = vistrane::frame;
    const CPoint start = m_Hit.m_StartPoint;
    bool centreFollows = true;
    switch (m_Hit.m_EditingCode) {
        case FXF_EditVertex: {
            const int neighbour =
                fr::DragVertex(m_Points, m_StartPoints, m_Hit.m_PointCode, m_Hit.m_Operation, p);
            if (neighbour >= 0) {
                C_Geom geom;
                m_Hit.m_Orientation = fr::OrientationFromOctant(
                    geom.GetPointDisplacementOctant(m_StartPoints[neighbour], p));
            }
            break;
        }
        case FXF_EditMidPoint:
            fr::DragMidPoint(m_Points, m_StartPoints, m_Hit.m_PointCode, m_Hit.m_Operation, p);
            break;
        case FXF_EditCenter: {
            const CPoint target =
                m_Hit.m_Operation == FXF_OP_CenterMove45 ? fr::SnapToDegree(p, 3, start) : p;
            m_Points[FXF_Center] = fr::CatchCenter(m_Points, target);
            centreFollows = false;
            break;
        }
        case FXF_EditFrameMove: {
            const CPoint to =
                m_Hit.m_Operation == FXF_OP_FrameMove45 ? fr::SnapToDegree(p, 3, start) : p;
            fr::MoveFrame(m_Points, m_StartPoints, to - start);
            break;
        }
        case FXF_EditFrameRotate: {
            const CPoint centre = m_StartPoints[FXF_Center];
            const bool snap = m_Hit.m_Operation == FXF_OP_FrameRotate15;
            fr::RotateFrame(m_Points, m_StartPoints,
                            snap ? fr::SnapToDegree(start, 1, centre) : start,
                            snap ? fr::SnapToDegree(p, 1, centre) : p);
            // On the centre itself there is no direction; the rotate cursor then points up.
            m_Hit.m_RotateOctant = p == centre ? FXF_RO_Up : OctantAroundCenter(m_StartPoints, p);
            centreFollows = false;
            break;
        }
        default:
            return;
    }
    fr::UpdateDerivedPoints(m_Points);
    if (centreFollows) {
        fr::RepositionCenter(m_Points, m_Hit.m_CenterPosition);
    }
}

void C_FreeXFormFrame::MouseButtonUp(CPoint /*p*/) {
    if (!m_Dragging) {
        return;
    }
    m_Dragging = false;
    if (m_Hit.m_CenterPosition != FXF_NoPoint && m_Hit.m_EditingCode != FXF_EditCenter) {
        vistrane::frame::RepositionCenter(m_Points, m_Hit.m_CenterPosition);
    }
    m_History.Record(m_StartPoints);
}

int C_FreeXFormFrame::GetBoundingRect(CRect* rect) {
    LONG minX = m_Points[FXF_TopLeft].x;
    LONG maxX = minX;
    LONG minY = m_Points[FXF_TopLeft].y;
    LONG maxY = minY;
    for (int k = FXF_TopRight; k < FXF_CloneVertex; k += 2) {
        minX = std::min(minX, m_Points[k].x);
        maxX = std::max(maxX, m_Points[k].x);
        minY = std::min(minY, m_Points[k].y);
        maxY = std::max(maxY, m_Points[k].y);
    }
    // Width and height in right and bottom: hosts of this frame read them that way.
    *rect = CRect(minX, minY, maxX - minX, maxY - minY);
    return 1;
}

int C_FreeXFormFrame::CanUndo() {
    return m_History.CanUndo();
}

int C_FreeXFormFrame::CanRedo() {
    return m_History.CanRedo();
}

void C_FreeXFormFrame::Undo() {
    S_FXFPoints points = m_Points;
    if (m_History.Undo(&points)) {
        SetDrawPoints(points);
    }
}

void C_FreeXFormFrame::Redo() {
    S_FXFPoints points = m_Points;
    if (m_History.Redo(&points)) {
        SetDrawPoints(points);
    }
}
