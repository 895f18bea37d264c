// The contour follower: a backtracking bug that walks around the edge pixels of a working mask.
// On a background pixel it takes the forward step of its direction; on a contour pixel it takes
// the turning step after a move that came off the object, otherwise the forward step. It stops
// back on the start pixel in direction 0. Each pass costs a few steps per contour pixel.

#include <vistrane/path/contour_bug.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <vector>

#include <vistrane/path/point_path.h>

#include "path/contour_rows.h"
#include "path/contour_trace.h"

namespace {

constexpr unsigned char kEdge = 255;
constexpr unsigned char kFirstLabel = 254;

}  // namespace

void C_ContourBug::FillDirectionOffsets(long scan) {
    const long forward[4] = {-scan, scan, -1, 1};
    const CPoint forwardStep[4] = {{0, 1}, {0, -1}, {-1, 0}, {1, 0}};
    const int afterForward[4] = {2, 3, 1, 0};
    const long turn[4] = {-1, 1, scan, -scan};
    const CPoint turnStep[4] = {{-1, 0}, {1, 0}, {0, -1}, {0, 1}};
    const int afterTurn[4] = {1, 0, 3, 2};
    for (int d = 0; d < 4; ++d) {
        m_ForwardOffset[d] = forward[d];
        m_ForwardStep[d] = forwardStep[d];
        m_AfterForward[d] = afterForward[d];
        m_TurnOffset[d] = turn[d];
        m_TurnStep[d] = turnStep[d];
        m_AfterTurn[d] = afterTurn[d];
    }
}

long C_ContourBug::BackTrackFollowThisContour(unsigned char* start, unsigned char label) {
    *start = label;
    long count = 1;
    unsigned char* last = start;
    unsigned char* pos = start + m_TurnOffset[0];
    int d = 1;
    bool leftObject = false;
    for (;;) {
        if (*pos != kEdge && *pos != label) {
            pos += m_ForwardOffset[d];
            d = m_AfterForward[d];
            leftObject = true;
            continue;
        }
        if (pos == start && d == 0) {
            break;
        }
        if (pos != last) {
            *pos = label;
            ++count;
            last = pos;
        }
        if (leftObject) {
            pos += m_TurnOffset[d];
            d = m_AfterTurn[d];
        } else {
            pos += m_ForwardOffset[d];
            d = m_AfterForward[d];
        }
        leftObject = false;
    }
    m_ContourLength = count;
    return count;
}

long C_ContourBug::BackTrackFollowThisContour(unsigned char* start, S_PathPoint* points, long x,
                                              long y, unsigned char label) {
    const long length = m_ContourLength;
    points[0] = S_PathPoint{};
    points[0].m_Anchor = CPoint(static_cast<LONG>(x), static_cast<LONG>(y));
    long count = 1;
    unsigned char* last = start;
    unsigned char* pos = start + m_TurnOffset[0];
    x += m_TurnStep[0].x;
    y += m_TurnStep[0].y;
    int d = 1;
    bool leftObject = false;
    for (;;) {
        if (*pos != kEdge && *pos != label) {
            pos += m_ForwardOffset[d];
            x += m_ForwardStep[d].x;
            y += m_ForwardStep[d].y;
            d = m_AfterForward[d];
            leftObject = true;
            continue;
        }
        if (pos == start && d == 0) {
            break;
        }
        if (pos != last) {
            if (count >= length) {
                break;
            }
            *pos = label;
            points[count] = S_PathPoint{};
            points[count].m_Anchor = CPoint(static_cast<LONG>(x), static_cast<LONG>(y));
            ++count;
            last = pos;
        }
        if (leftObject) {
            pos += m_TurnOffset[d];
            x += m_TurnStep[d].x;
            y += m_TurnStep[d].y;
            d = m_AfterTurn[d];
        } else {
            pos += m_ForwardOffset[d];
            x += m_ForwardStep[d].x;
            y += m_ForwardStep[d].y;
            d = m_AfterForward[d];
        }
        leftObject = false;
    }
    return count;
}

namespace vistrane::path {

long MarkEdgePixels(const unsigned char* mask, long maskScan, unsigned char* inner, long scan,
                    long width, long height) {
    // The same bytes as marking interior pixels 254 and edge pixels 255 in place and then
    // clearing everything below 255, computed in one pass from the source mask. The rows above
    // the first and below the last read as unselected.
    const MarkEdgeRowFunction markRow = ContourRowKernelsFor(cpu::Best()).markEdgeRow;
    std::vector<unsigned char> empty(static_cast<size_t>(width), 0);
    long edges = 0;
    for (long y = 0; y < height; ++y) {
        const unsigned char* row = mask - y * maskScan;
        const unsigned char* up = y > 0 ? row + maskScan : empty.data();
        const unsigned char* down = y + 1 < height ? row - maskScan : empty.data();
        edges += markRow(row, up, down, inner - y * scan, 0, width, width);
    }
    return edges;
}

CB_ContourFollowResult TraceEdgePixels(C_ContourBug* bug, unsigned char* inner, long scan,
                                       long width, long height, C_PointPath* path) {
    bug->FillDirectionOffsets(scan);
    unsigned char label = kFirstLabel;
    // Rows that may hold labels since the last clearing: labels are only written at or below
    // the row of the contour's start, since every pixel above it has been traced.
    long labelledTop = -1;
    long labelledBottom = -1;
    for (long y = 0; y < height; ++y) {
        unsigned char* row = inner - y * scan;
        for (long x = 0; x < width; ++x) {
            // Most of a row is empty: let memchr find the next untraced edge pixel.
            auto* found = static_cast<unsigned char*>(
                std::memchr(row + x, kEdge, static_cast<size_t>(width - x)));
            if (found == nullptr) {
                break;
            }
            x = found - row;
            unsigned char* start = found;
            const long length = bug->BackTrackFollowThisContour(start, label);
            if (labelledTop < 0) {
                labelledTop = y;
            }
            // A contour of up to 3 pixels reaches at most 2 rows below its start.
            long bottom = y + 2;
            if (length > 3) {
                C_SubPath* sub = new (std::nothrow) C_SubPath;
                if (sub == nullptr) {
                    return CB_OUT_OF_MEMORY;
                }
                if (sub->AddBlankPoints(static_cast<int>(length), 1) == 0) {
                    delete sub;
                    return CB_OUT_OF_MEMORY;
                }
                const long written =
                    bug->BackTrackFollowThisContour(start, sub->GetPoints(), x, y, label);
                for (long i = 0; i < written; ++i) {
                    bottom = std::max<long>(bottom, sub->GetPoints()[i].m_Anchor.y);
                }
                path->AddSubPath(sub);
            }
            labelledBottom = std::max(labelledBottom, std::min(bottom, height - 1));
            if (label == 1) {
                // Clear every label so that they can be used again; edge pixels stay. Rows
                // are stored bottom-up, so the rows labelledTop..labelledBottom (with their
                // border bytes) form one run of memory.
                unsigned char* first = inner - labelledBottom * scan - 1;
                unsigned char* end = inner - labelledTop * scan + width + 1;
                ContourRowKernelsFor(cpu::Best()).keepEdges(first, end - first);
                label = kFirstLabel;
                labelledTop = -1;
                labelledBottom = -1;
            } else {
                --label;
            }
        }
    }
    return CB_OK;
}

}  // namespace vistrane::path
