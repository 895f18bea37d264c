#include <new>
#include <vector>

#include <vistrane/path/point_path.h>
#include <vistrane/platform/dc.h>

namespace {

constexpr unsigned char kNewPointFlags =
    PPF_SELECTED | PPF_PREV_DIRECTION_VISIBLE | PPF_NEXT_DIRECTION_VISIBLE;

// The number of anchors of the figure that starts at `first`: its move, its lines and every
// third Bezier point, up to the close or the next move.
int CountFigureAnchors(const unsigned char* types, int first, int n) {
    int anchors = 1;
    int bezier = 0;
    if ((types[first] & PT_CLOSEFIGURE) != 0) {
        return anchors;
    }
    for (int i = first + 1; i < n; ++i) {
        const unsigned char t = types[i] & static_cast<unsigned char>(~PT_CLOSEFIGURE);
        if (t == PT_MOVETO) {
            break;
        }
        if (t == PT_LINETO) {
            ++anchors;
            bezier = 0;
        } else if (t == PT_BEZIERTO) {
            bezier = (bezier + 1) % 3;
            if (bezier == 0) {
                ++anchors;
            }
        }
        if ((types[i] & PT_CLOSEFIGURE) != 0) {
            break;
        }
    }
    return anchors;
}

void SetNewPoint(S_PathPoint* p, POINT anchor) {
    *p = S_PathPoint{};
    p->m_Anchor = CPoint(anchor);
    p->m_Flags = kNewPointFlags;
    p->m_Attributes = PPA_LINKED_DIRECTIONS;
}

}  // namespace

int C_PointPath::AddSubPathsFromGDICurves(tagPOINT* points, unsigned char* types, int n,
                                          int append) {
    if (append == 0) {
        Reset();
    }
    int result = 1;
    int bezier = 0;
    // The figure is filled in place: its anchors are counted first and allocated at once.
    C_SubPath* current = nullptr;
    int filled = 0;
    for (int i = 0; i < n && result != 0; ++i) {
        const unsigned char t = types[i] & static_cast<unsigned char>(~PT_CLOSEFIGURE);
        if (t == PT_MOVETO) {
            current = nullptr;
            if (CreateNewSubPath() == 0 ||
                GetFirstSubPath()->AddBlankPoints(CountFigureAnchors(types, i, n), 1) == 0) {
                result = 0;
            } else {
                current = GetFirstSubPath();
                SetNewPoint(&current->GetPoints()[0], points[i]);
                filled = 1;
            }
            bezier = 0;
        } else if (current != nullptr && t == PT_LINETO) {
            SetNewPoint(&current->GetPoints()[filled++], points[i]);
            bezier = 0;
        } else if (current != nullptr && t == PT_BEZIERTO) {
            if (bezier == 0) {
                S_PathPoint& last = current->GetPoints()[filled - 1];
                last.m_NextDirection = CPoint(points[i]) - last.m_Anchor;
                bezier = 1;
            } else if (bezier == 1) {
                bezier = 2;
            } else {
                S_PathPoint& end = current->GetPoints()[filled++];
                SetNewPoint(&end, points[i]);
                end.m_PrevDirection = CPoint(points[i - 1]) - CPoint(points[i]);
                bezier = 0;
            }
        }
        if (current != nullptr && (types[i] & PT_CLOSEFIGURE) != 0) {
            current->TryToClose();
            current = nullptr;
        }
    }
    return result;
}

int C_PointPath::CreateFromText(CString& text, CFont* font, CPoint origin, int append) {
    CDC dc;
    if (dc.CreateCompatibleDC(nullptr) == 0) {
        return 0;
    }
    CFont* previous = dc.SelectObject(font);
    dc.SetBkMode(TRANSPARENT);
    int result = 0;
    if (dc.BeginPath() != 0 && dc.TextOut(origin.x, origin.y, text) != 0 && dc.EndPath() != 0) {
        const int n = dc.GetPath(nullptr, nullptr, 0);
        if (n <= 0) {
            result = 1;
        } else {
            std::vector<POINT> points;
            std::vector<BYTE> types;
            try {
                points.resize(static_cast<size_t>(n));
                types.resize(static_cast<size_t>(n));
            } catch (const std::bad_alloc&) {
                points.clear();
            }
            if (!points.empty() && dc.GetPath(points.data(), types.data(), n) == n) {
                result = AddSubPathsFromGDICurves(points.data(), types.data(), n, append);
            }
        }
    }
    dc.SelectObject(previous);
    dc.DeleteDC();
    return result;
}
