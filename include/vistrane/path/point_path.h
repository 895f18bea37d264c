#pragma once

// C_PointPath: the path object a host holds. A doubly linked list of C_SubPath objects, which
// it owns, plus the selection rectangle kept for the host and the state that the interactive
// editing modes share. New sub-paths always go to the head of the list.
//
// Assignment is a shallow member copy (both paths then share one list, and only one of them
// may be destroyed with it); CreateClone duplicates.
//
// Failures follow the engine's one error contract (README, "When a call fails").
//
// Path file ("Vistrane Path 1.0", little-endian):
//   0   18        "Vistrane Path 1.0" and a zero byte
//   18  4         number of sub-paths N, signed
//   22  ...       N sub-path records, from the head of the list:
//                   0  4   closed flag, signed (m_Closed as it stands)
//                   4  4   point count M, signed
//                   8  28M point records: m_PrevDirection x, y; m_NextDirection x, y;
//                          m_Anchor x, y (signed 32-bit each); m_Attributes (1 byte);
//                          3 zero bytes
// Flags are editing state and are not stored: loaded points have m_Flags 0 and loaded
// sub-paths hidden anchors. Loading adds each sub-path at the head, so a saved and reloaded
// path has its sub-paths in reverse order.

#include <vistrane/export.h>
#include <vistrane/path/sub_path.h>
#include <vistrane/platform/geometry.h>
#include <vistrane/platform/text.h>

class CFont;
class C_Image;

class VISTRANE_API C_PointPath {
  public:
    C_PointPath() = default;
    ~C_PointPath();
    C_PointPath(const C_PointPath&) = delete;
    C_PointPath& operator=(const C_PointPath&) = default;

    // Inserts `sub` at the head; the path owns it from then on.
    void AddSubPath(C_SubPath* sub);
    // A new empty sub-path at the head (GetFirstSubPath); 0 when it cannot be allocated.
    int CreateNewSubPath();
    // Unlinks and destroys `sub`; deleting the last one resets the path.
    void DeleteSubPath(C_SubPath* sub);
    C_SubPath* GetFirstSubPath() const { return m_FirstSubPath; }
    int GetNSubPaths() const;
    // Destroys every sub-path and leaves append mode; the selection rectangle stays.
    void Reset();

    void SelectAll(int select);
    void FlagAll(PathPointFlags flags, int set);
    int HasSubPathWithSelectedAnchors() const;
    int HasSubPathWithAnchorsVisible() const;
    void ReduceAllSubPathsToSegments();

    void GetSelRect(CRect* rect) const { *rect = m_SelRect; }
    void SetSelRect(const CRect* rect) { m_SelRect = *rect; }

    int InAppendMode() const { return m_AppendSubPath != nullptr ? 1 : 0; }
    // Leaves append mode; the sub-path that was being extended stays in the list.
    void ExitAppendMode() { m_AppendSubPath = nullptr; }

    // A new heap path with clones of every sub-path in the same order (anchors hidden in the
    // copies), and with the selection rectangle and its state word when `copySelRect` is
    // non-zero; null when any allocation fails.
    C_PointPath* CreateClone(int copySelRect) const;
    // Copies the point records of `clone` over this path's, sub-path by sub-path. The clone
    // must have this path's structure (made by CreateClone and only moved since); nothing is
    // allocated and no count changes.
    void CopyFromClone(const C_PointPath* clone);
    // The Delete key. During a magnetic run removes the last run only. Otherwise every
    // sub-path whose anchors are visible is split at its selected points into open pieces
    // (one with nothing selected is removed whole); with no anchors visible anywhere the whole
    // path is emptied. Empty sub-paths are removed at the end.
    void OnDelete();

    // Writes the path file. 1 on success, and also when the file cannot be opened; 0 when a
    // write fails, in which case the partial file is deleted.
    int SaveToFile(const char* fileName);
    // Reads a path file, after a Reset unless `append` is non-zero. 0 on any failure (missing
    // file, wrong magic, N < 1, a damaged record); sub-paths read before the failure stay.
    int LoadFromFile(const char* fileName, int append);

    // Traces every outline of the 8-bit `mask` (non-zero selected), fits each with
    // Simplify(tolerance) (tolerance clamped to 0.5 .. 10.0 pixels), moves it by `offset` and
    // closes it when it keeps 3 or more anchors; after a Reset unless `append` is non-zero.
    // Outer outlines and holes are both sub-paths. 0 when the mask has no image or no selected
    // pixel, or memory runs out (outlines traced before that stay, unfitted).
    int CreateFromMask(C_Image* mask, CSize offset, double tolerance, int append);
    // The outlines of `text` set in `font`, with the text cell's top-left at `origin`, as
    // sub-paths of lines and cubic segments (the device path is not flattened), after a Reset
    // unless `append` is non-zero. New sub-paths go to the head, so the figures stand in reverse
    // order. 1 on success, also for a text without outlines (spaces); 0 when the device, the
    // font or an allocation fails.
    int CreateFromText(CString& text, CFont* font, CPoint origin, int append);
    // Turns a device path (points with PT_MOVETO, PT_LINETO, PT_BEZIERTO types, PT_CLOSEFIGURE
    // or-ed in) into sub-paths, after a Reset unless `append` is non-zero. Each PT_MOVETO starts
    // a new sub-path at the head; a closed figure is closed when it has 3 or more anchors. New
    // points have flags 0x07 and attributes PPA_LINKED_DIRECTIONS. 0 when a sub-path cannot be
    // allocated (the loop stops there).
    int AddSubPathsFromGDICurves(tagPOINT* points, unsigned char* types, int n, int append);

  protected:
    C_SubPath* m_FirstSubPath = nullptr;
    C_SubPath* m_AppendSubPath = nullptr;  // set by the editing modes
    CRect m_SelRect;
    int m_SelRectState = 0;
    int m_EditState = 0;
    int m_MagSnapSetting = 0;  // non-zero while a magnetic run is being built
};
