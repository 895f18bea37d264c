#pragma once

// C_FreeXFormFrame: the on-screen frame of the free transform tool. A quadrilateral with four
// corner handles, four edge mid-point handles and a movable rotation centre, which the user
// drags with SHIFT, CTRL and ALT changing what a drag does. The frame only edits its own
// geometry; when the user confirms, the host hands the four corners (GetDrawPoints, codes 0, 2,
// 4 and 6) to C_Image::MaskFreeXForm or to a path transform.
//
// Usage: make the frame from the selection's bounds; forward mouse events with points in image
// coordinates (MouseButtonDown, MouseMove, MouseButtonUp), show the cursor that the returned
// description names, and feed the modifier keys to SetKeyState. HitTestPointer answers the same
// question for a hovering pointer without changing anything.
//
// Modifiers (read with GetKeyState when a drag starts and at every move, so pressing or
// releasing one mid-drag changes the operation; the handle taken stays):
//   corner    none: the adjacent corners follow, keeping the edge directions (stretch)
//             SHIFT: along the diagonal (keeps the aspect)   CTRL: only this corner
//             ALT: the opposite corner mirrors the motion    SHIFT + CTRL: along one edge
//   mid-point none: the edge moves across    CTRL: the edge moves freely
//             ALT: the opposite edge mirrors  SHIFT + CTRL: skew along the edge (+ ALT: both)
//   centre    moves the rotation centre; it is caught by the central position and the frame
//             points within 50 pixels; SHIFT: in steps of 45 degrees
//   inside    moves the frame (SHIFT: in steps of 45 degrees); with ALT rotates
//   outside   rotates about the centre (SHIFT: in steps of 15 degrees); with ALT moves
//
// Every completed drag and every numeric entry is one undo step; the last 32 are kept.

#include <array>

#include <vistrane/export.h>
#include <vistrane/frame/free_xform_codes.h>
#include <vistrane/frame/free_xform_numeric.h>
#include <vistrane/frame/modal_frame.h>
#include <vistrane/frame/snapshot_history.h>
#include <vistrane/platform/geometry.h>

class C_Image;
class CDC;

class VISTRANE_API C_FreeXFormFrame : public C_ModalFrame {
  public:
    static constexpr int kPointCount = 10;
    static constexpr int kHistoryCapacity = 32;
    using S_FXFPoints = std::array<CPoint, kPointCount>;

    // The default frame is the empty rectangle at the origin.
    C_FreeXFormFrame();
    explicit C_FreeXFormFrame(CRect r);
    C_FreeXFormFrame(const C_FreeXFormFrame&) = default;
    C_FreeXFormFrame& operator=(const C_FreeXFormFrame&) = default;
    ~C_FreeXFormFrame() override;

    // Corners on the rectangle's corners (right and bottom taken as given), the centre at the
    // central position, an empty history. The rectangle becomes the numeric reference.
    void Init(CRect r);

    // Describes what a press at p would do; the frame is not changed.
    void HitTestPointer(CPoint p, S_FXFHitTestDescription* d);
    // Starts a drag. d (may be null) receives the description.
    void MouseButtonDown(CPoint p, S_FXFHitTestDescription* d);
    // Recomputes the geometry from its state at mouse-down for the pointer at p. Nothing
    // without a drag. d (may be null) receives the description with the current operation.
    void MouseMove(CPoint p, S_FXFHitTestDescription* d);
    // Ends the drag and records the geometry from before it as one undo step.
    void MouseButtonUp(CPoint p);

    // The rotation centre; a host may place it. Where it sits relative to the frame decides
    // whether it follows later edits (see GetCenterPosition).
    CPoint& CenterPoint() { return m_Points[FXF_Center]; }
    // FXF_Center when the centre is on the central position, else the first frame point
    // (0..8) it lies on, else FXF_NoPoint (free: it stays where it is when the frame changes).
    FXF_PointCodes GetCenterPosition() const;
    // Copies the ten frame points, in FXF_PointCodes order.
    void GetDrawPoints(CPoint* ten) const;

    // Deliberately not a rectangle: left and top receive the smallest corner x and y, right the
    // width and bottom the height of the corners' bounding box. Returns 1.
    int GetBoundingRect(CRect* rect) override;
    int CanUndo() override;
    int CanRedo() override;
    void Undo() override;
    void Redo() override;

    // Numeric entry (see FXF_NumericParams); one undo step. Null does nothing.
    void SetNumericParams(const FXF_NumericParams* params);
    // The inverse: every group enabled, read back from the corners against the reference. A
    // frame has only two axis directions, so the reading puts all turning into the rotation
    // and the departure from square into m_SkewY (m_SkewX = 0); applying the reading rebuilds
    // the same corners. An axis that is null in the reference reads as 100 percent, unturned.
    void GetNumericParams(FXF_NumericParams* params) const;

    // Draws the outline, the eight handles as 7 x 7 squares and the centre as a circle with a
    // cross, in `colour`, shifted by minus the clip rectangle's top-left. With xorMode set the
    // pixels are XOR-ed, so a second identical call erases the frame.
    void DoShowOnDC(CDC* dc, CRect* clip, unsigned long colour, int xorMode);
    // The host's everyday call: the frame XOR-ed in mid-grey, which shows on light and dark
    // pictures alike and is erased by calling again. `image` is the picture under the frame,
    // which XOR drawing does not need to read.
    void ShowOnDC(CDC* dc, CRect* clip, C_Image* image);

  private:
    void SetDrawPoints(const S_FXFPoints& points);
    void Describe(CPoint p, S_FXFHitTestDescription* d) const;
    void ApplyOperation(CPoint p);

    S_FXFPoints m_Points{};
    S_FXFPoints m_StartPoints{};
    S_FXFHitTestDescription m_Hit;
    bool m_Dragging = false;
    CRect m_Reference;
    C_SnapshotHistory<S_FXFPoints, kHistoryCapacity> m_History;
};
