#pragma once

// C_SubPath: one open or closed chain of cubic Bezier segments, held as an exact-size array of
// S_PathPoint records. It offers the editing primitives of the path tools, the curve fitter
// (Simplify) and one record of the path file.
//
// Ownership: the sub-path owns its array, which lives on the C heap (malloc/calloc/free) and
// has no spare capacity: every insertion reallocates and copies. Bulk builders call
// AddBlankPoints and fill the records in place. Assignment is a deliberate shallow member copy:
// both objects then share one array, and only one of them may free it (assign an empty
// sub-path to the other to let go). Clone duplicates.
//
// Index arguments are not range-checked. Operations that grow the array return 1, or 0 when
// the allocation fails, leaving the sub-path exactly as it was.

#include <vistrane/companion/2dvector.h>
#include <vistrane/export.h>
#include <vistrane/path/path_point.h>
#include <vistrane/platform/geometry.h>

class CFile;

class VISTRANE_API C_SubPath {
  public:
    C_SubPath() = default;
    // Reset, then clears both links.
    ~C_SubPath();
    C_SubPath(const C_SubPath&) = delete;
    C_SubPath& operator=(const C_SubPath&) = default;

    S_PathPoint* GetPoints() const { return m_Points; }
    int GetCount() const { return m_Count; }
    C_SubPath* GetNext() const { return m_Next; }
    C_SubPath* GetPrev() const { return m_Prev; }
    int IsClosed() const { return m_Closed; }
    int AreAnchorsVisible() const { return m_AnchorsVisible; }
    int GetWillXForm() const { return m_WillXForm; }
    // Each returns the link it replaced.
    C_SubPath* SetNext(C_SubPath* next);
    C_SubPath* SetPrev(C_SubPath* prev);
    void SetAnchorsVisible(int visible) { m_AnchorsVisible = visible; }
    void SetWillXForm(int willXForm) { m_WillXForm = willXForm; }
    void Close(int closed) { m_Closed = closed; }

    // Point storage.
    // Inserts a copy of *point before `index` (m_Count appends).
    int AddPoint(int index, const S_PathPoint* point);
    // Inserts a new point at `anchor`: no direction offsets, flags 0x07 (selected, both
    // directions visible), attributes PPA_LINKED_DIRECTIONS.
    int AddPoint(int index, CPoint anchor);
    int AppendPoint(const S_PathPoint* point) { return AddPoint(m_Count, point); }
    // n zero-filled records: the whole sub-path after a Reset when `reset` is non-zero,
    // otherwise appended behind the existing ones.
    int AddBlankPoints(int n, int reset);
    // Appends copies of other's points; the closed flags do not change.
    int AppendSubPath(const C_SubPath* other);
    // Removes n records from `first` on without shrinking the array.
    void DelPoints(int first, int n);
    // Removes the selected points: all selected empties and opens the sub-path; fewer than
    // three survivors open it. 0 only when the survivors' array cannot be allocated.
    int DelSelectedPoints();
    // Frees the array: no points, open. Links and the other flags stay.
    void Reset();
    // A new heap sub-path with copies of the points and the closed flag, no links, anchors
    // hidden; null when an allocation fails.
    C_SubPath* Clone() const;

    // Closes with three or more points, otherwise opens; returns the closed flag.
    int TryToClose();

    // Reverses the point order and exchanges each point's two directions; flags and
    // attributes stay with their record, so the direction-visible bits are not exchanged.
    void Reverse();

    // Flags of every point.
    void FlagAll(PathPointFlags flags, int set);
    void FlagsAll(unsigned char value);
    // Sets or clears `a` on every point whose (m_Flags & b) equals `value` exactly, as a bit
    // pattern: to match points with 0x04 set pass 0x04, not 1. Returns the number matched.
    int FlagAIfBIsSetToVal(PathPointFlags a, int set, PathPointFlags b, int value);
    void SelectAll(int select);
    void InvertSelection();
    // Inside is left <= x < right and top <= y < bottom.
    void SelectPointsInRect(CRect rect, PTSEL_OPERATION op);
    void SetAllSerial(int on);
    // No flags on any point and anchors hidden; geometry and attributes stay.
    void ReduceToSegments();

    // Direction display. Both clear every flag first when `exclusive` is non-zero.
    // Shows the two directions that shape the segment from -> to.
    void SetSegmentDirectionsVisible(int from, int to, int exclusive);
    // Shows both directions of point i (selecting it when `select` is non-zero) and the
    // directions of its neighbours that face it.
    void SetAnchorAdjacentSegmentsDirectionsVisible(int i, int exclusive, int select);

    int HasSelectedAnchors() const;
    // 1 when the counts match and every anchor and direction offset is equal; flags,
    // attributes and the closed flag are not compared.
    int SameAnchorsAndDirections(const C_SubPath* other) const;

    void OffSetAnchors(CSize d);
    void OffSetSelectedAnchors(CSize d);

    // The point at t (not clamped) of the cubic from point i to point j, by de Casteljau.
    C_2DVector BezierCurvePoint(int i, int j, double t) const;
    // 0.5 * ((A[prev] - A[i]) + (A[i] - A[next])) with wrap-around, not normalised;
    // (1e-05, 1e-05) for fewer than 3 points, i out of range or a null result, so that a
    // caller can always normalise it.
    C_2DVector GetCenterTangent(int i) const;
    // The box of the anchors and of 19 samples (t = 0.05 .. 0.95) of every segment, each
    // rounded to pixels, with right and bottom the maxima (inclusive). An empty sub-path gives
    // (2^30, 2^30, -2^30, -2^30).
    void GetBoundingRect(CRect* rect) const;

    // Replaces the points first..last (last -1: to the end) by cubic segments that stay within
    // `error` pixels of them (least-squares fitting with Newton-Raphson reparametrisation and
    // splitting at the largest error). The selection is used as the fit's bookkeeping and is
    // cleared on return; anchors are hidden afterwards.
    void Simplify(double error, int first, int last);

    // One record of the path file at the file's position; 1, or 0 when the file failed.
    int SaveToCFile(CFile* file) const;
    // Reads one record into this empty sub-path; 1, or 0 after a Reset on a short read, a
    // count below 1 or beyond what the file holds, a failed allocation or a file error.
    int CreateFromCFile(CFile* file);

    static C_2DVector BezierCurveVelocity(const C_2DVector* v, double t);
    static C_2DVector BezierCurveAcceleration(const C_2DVector* v, double t);

  private:
    void FitCurve(int first, int last);
    void FitCubic(int first, int last, C_2DVector tHat1, C_2DVector tHat2, int depth);
    void GenerateBezier(int first, int last, C_2DVector tHat1, C_2DVector tHat2);
    void Parametrize(int first, int last);
    void ReParametrize(int first, int last);
    void NewtonRaphsonRootFind(int first, int last, double* u, const S_PathPoint* p) const;
    double ComputeMaxError(int first, int last, int* split) const;
    // The same, returning as soon as a squared distance reaches `stopAt`.
    double ComputeMaxError(int first, int last, int* split, double stopAt) const;
    C_2DVector ComputeLeftTangent(int i) const;
    C_2DVector ComputeRightTangent(int i) const;

    S_PathPoint* m_Points = nullptr;
    int m_Count = 0;
    C_SubPath* m_Prev = nullptr;
    C_SubPath* m_Next = nullptr;
    int m_Closed = 0;
    double* m_FitParams = nullptr;  // the fitter's work area, valid only inside Simplify
    double m_FitSqError = 0.0;
    int m_AnchorsVisible = 0;
    // Not part of the constructor's contract: its users set it before they read it.
    int m_WillXForm = 0;
};
