#include <vistrane/path/sub_path.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#include "path/bezier_eval.h"

namespace {

constexpr unsigned char kNewPointFlags =
    PPF_SELECTED | PPF_PREV_DIRECTION_VISIBLE | PPF_NEXT_DIRECTION_VISIBLE;

S_PathPoint* AllocPoints(int n) {
    return static_cast<S_PathPoint*>(std::malloc(static_cast<size_t>(n) * sizeof(S_PathPoint)));
}

S_PathPoint* CallocPoints(int n) {
    return static_cast<S_PathPoint*>(std::calloc(static_cast<size_t>(n), sizeof(S_PathPoint)));
}

void CopyPoints(S_PathPoint* dst, const S_PathPoint* src, int n) {
    if (n > 0) {
        std::memcpy(dst, src, static_cast<size_t>(n) * sizeof(S_PathPoint));
    }
}

// The box starts inverted so that the first anchor sets it; an empty sub-path keeps it.
constexpr LONG kBoxStart = 0x40000000;

void Widen(CRect* box, CPoint p) {
    if (p.x < box->left) {
        box->left = p.x;
    }
    if (p.y < box->top) {
        box->top = p.y;
    }
    if (p.x > box->right) {
        box->right = p.x;
    }
    if (p.y > box->bottom) {
        box->bottom = p.y;
    }
}

}  // namespace

C_SubPath::~C_SubPath() {
    Reset();
    m_Prev = nullptr;
    m_Next = nullptr;
}

C_SubPath* C_SubPath::SetNext(C_SubPath* next) {
    return std::exchange(m_Next, next);
}

C_SubPath* C_SubPath::SetPrev(C_SubPath* prev) {
    return std::exchange(m_Prev, prev);
}

int C_SubPath::AddPoint(int index, const S_PathPoint* point) {
    if (m_Count == INT_MAX) {
        return 0;
    }
    S_PathPoint* grown = AllocPoints(m_Count + 1);
    if (grown == nullptr) {
        return 0;
    }
    CopyPoints(grown, m_Points, index);
    grown[index] = *point;
    CopyPoints(grown + index + 1, m_Points + index, m_Count - index);
    std::free(m_Points);
    m_Points = grown;
    ++m_Count;
    return 1;
}

int C_SubPath::AddPoint(int index, CPoint anchor) {
    S_PathPoint point{};
    point.m_Anchor = anchor;
    point.m_Flags = kNewPointFlags;
    point.m_Attributes = PPA_LINKED_DIRECTIONS;
    return AddPoint(index, &point);
}

int C_SubPath::AddBlankPoints(int n, int reset) {
    if (n < 0) {
        return 0;
    }
    if (reset != 0) {
        Reset();
        if (n == 0) {
            return 1;
        }
        m_Points = CallocPoints(n);
        if (m_Points == nullptr) {
            return 0;
        }
        m_Count = n;
        return 1;
    }
    if (n > INT_MAX - m_Count) {
        return 0;
    }
    S_PathPoint* grown = CallocPoints(m_Count + n);
    if (grown == nullptr) {
        return 0;
    }
    CopyPoints(grown, m_Points, m_Count);
    if (m_Count > 0) {
        std::free(m_Points);
    }
    m_Points = grown;
    m_Count += n;
    return 1;
}

int C_SubPath::AppendSubPath(const C_SubPath* other) {
    if (other->m_Count < 1) {
        return 1;
    }
    const int oldCount = m_Count;
    if (AddBlankPoints(other->m_Count, 0) == 0) {
        return 0;
    }
    CopyPoints(m_Points + oldCount, other->m_Points, other->m_Count);
    return 1;
}

void C_SubPath::DelPoints(int first, int n) {
    const int tail = m_Count - first - n;
    if (tail > 0) {
        std::memmove(m_Points + first, m_Points + first + n,
                     static_cast<size_t>(tail) * sizeof(S_PathPoint));
    }
    m_Count -= n;
}

int C_SubPath::DelSelectedPoints() {
    int selected = 0;
    for (int i = 0; i < m_Count; ++i) {
        if ((m_Points[i].m_Flags & PPF_SELECTED) != 0) {
            ++selected;
        }
    }
    if (selected == 0) {
        return 1;
    }
    if (selected == m_Count) {
        Reset();
        return 1;
    }
    const int survivors = m_Count - selected;
    S_PathPoint* kept = AllocPoints(survivors);
    if (kept == nullptr) {
        return 0;
    }
    int k = 0;
    for (int i = 0; i < m_Count; ++i) {
        if ((m_Points[i].m_Flags & PPF_SELECTED) == 0) {
            kept[k++] = m_Points[i];
        }
    }
    std::free(m_Points);
    m_Points = kept;
    m_Count = survivors;
    if (m_Count < 3) {
        Close(0);
    }
    return 1;
}

void C_SubPath::Reset() {
    std::free(m_Points);
    m_Points = nullptr;
    m_Count = 0;
    m_Closed = 0;
}

C_SubPath* C_SubPath::Clone() const {
    C_SubPath* copy = new (std::nothrow) C_SubPath;
    if (copy == nullptr) {
        return nullptr;
    }
    if (copy->AddBlankPoints(m_Count, 1) == 0) {
        delete copy;
        return nullptr;
    }
    CopyPoints(copy->m_Points, m_Points, m_Count);
    copy->m_Closed = m_Closed;
    return copy;
}

int C_SubPath::TryToClose() {
    Close(m_Count >= 3 ? 1 : 0);
    return IsClosed();
}

void C_SubPath::Reverse() {
    for (int k = 0; k < m_Count / 2; ++k) {
        std::swap(m_Points[k], m_Points[m_Count - 1 - k]);
    }
    // The direction-visible flags are deliberately left where they were.
    for (int i = 0; i < m_Count; ++i) {
        std::swap(m_Points[i].m_PrevDirection, m_Points[i].m_NextDirection);
    }
}

void C_SubPath::FlagAll(PathPointFlags flags, int set) {
    for (int i = 0; i < m_Count; ++i) {
        if (set != 0) {
            m_Points[i].m_Flags |= flags;
        } else {
            m_Points[i].m_Flags &= static_cast<unsigned char>(~flags);
        }
    }
}

void C_SubPath::FlagsAll(unsigned char value) {
    for (int i = 0; i < m_Count; ++i) {
        m_Points[i].m_Flags = value;
    }
}

int C_SubPath::FlagAIfBIsSetToVal(PathPointFlags a, int set, PathPointFlags b, int value) {
    int matched = 0;
    for (int i = 0; i < m_Count; ++i) {
        S_PathPoint& p = m_Points[i];
        // A raw bit-pattern comparison: value 1 never matches b = 0x04.
        if ((p.m_Flags & b) == value) {
            ++matched;
            if (set != 0) {
                p.m_Flags |= a;
            } else {
                p.m_Flags &= static_cast<unsigned char>(~a);
            }
        }
    }
    return matched;
}

void C_SubPath::SelectAll(int select) {
    FlagAll(PPF_SELECTED, select);
}

void C_SubPath::InvertSelection() {
    for (int i = 0; i < m_Count; ++i) {
        m_Points[i].m_Flags ^= PPF_SELECTED;
    }
}

void C_SubPath::SelectPointsInRect(CRect rect, PTSEL_OPERATION op) {
    for (int i = 0; i < m_Count; ++i) {
        unsigned char& flags = m_Points[i].m_Flags;
        if (rect.PtInRect(m_Points[i].m_Anchor)) {
            if (op == PTSEL_SUBTRACT) {
                flags &= static_cast<unsigned char>(~PPF_SELECTED);
            } else {
                flags |= PPF_SELECTED;
            }
        } else if (op == PTSEL_REPLACE) {
            flags &= static_cast<unsigned char>(~PPF_SELECTED);
        }
    }
}

void C_SubPath::SetAllSerial(int on) {
    for (int i = 0; i < m_Count; ++i) {
        if (on != 0) {
            m_Points[i].m_Attributes |= PPA_SERIAL;
        } else {
            m_Points[i].m_Attributes &= static_cast<unsigned char>(~PPA_SERIAL);
        }
    }
}

void C_SubPath::ReduceToSegments() {
    FlagsAll(0);
    SetAnchorsVisible(0);
}

void C_SubPath::SetSegmentDirectionsVisible(int from, int to, int exclusive) {
    if (exclusive != 0) {
        FlagsAll(0);
    }
    m_Points[from].m_Flags |= PPF_NEXT_DIRECTION_VISIBLE;
    m_Points[to].m_Flags |= PPF_PREV_DIRECTION_VISIBLE;
}

void C_SubPath::SetAnchorAdjacentSegmentsDirectionsVisible(int i, int exclusive, int select) {
    if (exclusive != 0) {
        FlagsAll(0);
    }
    m_Points[i].m_Flags |=
        select != 0 ? kNewPointFlags : PPF_PREV_DIRECTION_VISIBLE | PPF_NEXT_DIRECTION_VISIBLE;
    const int before = i >= 1 ? i - 1 : (m_Closed != 0 ? m_Count - 1 : -1);
    const int after = i < m_Count - 1 ? i + 1 : (m_Closed != 0 ? 0 : -1);
    if (before >= 0) {
        m_Points[before].m_Flags |= PPF_NEXT_DIRECTION_VISIBLE;
    }
    if (after >= 0) {
        m_Points[after].m_Flags |= PPF_PREV_DIRECTION_VISIBLE;
    }
}

int C_SubPath::HasSelectedAnchors() const {
    for (int i = 0; i < m_Count; ++i) {
        if ((m_Points[i].m_Flags & PPF_SELECTED) != 0) {
            return 1;
        }
    }
    return 0;
}

int C_SubPath::SameAnchorsAndDirections(const C_SubPath* other) const {
    if (m_Count != other->m_Count) {
        return 0;
    }
    for (int i = 0; i < m_Count; ++i) {
        const S_PathPoint& a = m_Points[i];
        const S_PathPoint& b = other->m_Points[i];
        if (a.m_Anchor != b.m_Anchor || a.m_PrevDirection != b.m_PrevDirection ||
            a.m_NextDirection != b.m_NextDirection) {
            return 0;
        }
    }
    return 1;
}

void C_SubPath::OffSetAnchors(CSize d) {
    for (int i = 0; i < m_Count; ++i) {
        m_Points[i].m_Anchor.Offset(d.cx, d.cy);
    }
}

void C_SubPath::OffSetSelectedAnchors(CSize d) {
    for (int i = 0; i < m_Count; ++i) {
        if ((m_Points[i].m_Flags & PPF_SELECTED) != 0) {
            m_Points[i].m_Anchor.Offset(d.cx, d.cy);
        }
    }
}

C_2DVector C_SubPath::BezierCurvePoint(int i, int j, double t) const {
    return vistrane::path::EvalCubic(vistrane::path::SegmentControls(m_Points[i], m_Points[j]), t);
}

C_2DVector C_SubPath::GetCenterTangent(int i) const {
    const C_2DVector fallback(1e-05, 1e-05);
    if (m_Count < 3 || i >= m_Count) {
        return fallback;
    }
    const int prev = i == 0 ? m_Count - 1 : i - 1;
    const int next = i == m_Count - 1 ? 0 : i + 1;
    const C_2DVector a(m_Points[i].m_Anchor);
    const C_2DVector t =
        ((C_2DVector(m_Points[prev].m_Anchor) - a) + (a - C_2DVector(m_Points[next].m_Anchor))) *
        0.5;
    return t.IsNull() ? fallback : t;
}

void C_SubPath::GetBoundingRect(CRect* rect) const {
    CRect box(kBoxStart, kBoxStart, -kBoxStart, -kBoxStart);
    for (int i = 0; i < m_Count; ++i) {
        Widen(&box, m_Points[i].m_Anchor);
        const int j = i < m_Count - 1 ? i + 1 : (m_Closed != 0 ? 0 : -1);
        if (j < 0) {
            continue;
        }
        // Accumulated in double, as the sampling has always been done: the samples are 0.05
        // .. 0.95, nineteen of them, and 1.0 is not reached.
        for (double t = 0.05; t < 1.0; t += 0.05) {
            Widen(&box, BezierCurvePoint(i, j, t));
        }
    }
    *rect = box;
}
