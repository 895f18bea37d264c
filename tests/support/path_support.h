#pragma once

// Helpers for the path tests: building sub-paths from anchor lists and measuring how far a
// point lies from the curves of a sub-path.

#include <algorithm>
#include <initializer_list>
#include <limits>
#include <vector>

#include <vistrane/companion/2dvector.h>
#include <vistrane/path/sub_path.h>

namespace vistrane::test {

// A sub-path whose points are bare anchors (directions (0, 0), flags 0x07, linked).
inline void FillSubPath(C_SubPath* sub, const std::vector<CPoint>& anchors) {
    sub->AddBlankPoints(static_cast<int>(anchors.size()), 1);
    for (size_t i = 0; i < anchors.size(); ++i) {
        S_PathPoint& p = sub->GetPoints()[i];
        p.m_Anchor = anchors[i];
        p.m_Flags = PPF_SELECTED | PPF_PREV_DIRECTION_VISIBLE | PPF_NEXT_DIRECTION_VISIBLE;
        p.m_Attributes = PPA_LINKED_DIRECTIONS;
    }
}

// Samples of every segment of the sub-path (closing segment included when closed), as a
// polyline per segment, `steps` chords each.
inline std::vector<std::vector<C_2DVector>> SampleSegments(const C_SubPath& sub, int steps) {
    std::vector<std::vector<C_2DVector>> out;
    const int n = sub.GetCount();
    const int segments = sub.IsClosed() ? n : n - 1;
    for (int i = 0; i < segments; ++i) {
        std::vector<C_2DVector> poly;
        for (int k = 0; k <= steps; ++k) {
            poly.push_back(sub.BezierCurvePoint(i, (i + 1) % n, static_cast<double>(k) / steps));
        }
        out.push_back(std::move(poly));
    }
    if (n == 1) {
        out.push_back({C_2DVector(sub.GetPoints()[0].m_Anchor)});
    }
    return out;
}

inline double DistanceToSamples(const std::vector<std::vector<C_2DVector>>& samples, C_2DVector p) {
    double best = std::numeric_limits<double>::infinity();
    for (const auto& poly : samples) {
        if (poly.size() == 1) {
            best = std::min(best, p.PointDistance(poly[0]));
        }
        for (size_t k = 0; k + 1 < poly.size(); ++k) {
            best = std::min(best, p.DistanceFromSegToPoint(poly[k], poly[k + 1]).Magnitude());
        }
    }
    return best;
}

}  // namespace vistrane::test
