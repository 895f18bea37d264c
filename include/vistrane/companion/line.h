#pragma once

// C_Line: the infinite line through two points.

#include <vistrane/export.h>
#include <vistrane/platform/geometry.h>

class VISTRANE_API C_Line {
  public:
    C_Line() = default;
    C_Line(CPoint start, CPoint end) : m_Start(start), m_End(end) {}
    void Init(CPoint start, CPoint end);

    // Non-zero when the two lines cross in one point (neither parallel nor degenerate). Then
    // `t` and `u` locate the crossing as parameters along this line and along `other`:
    // start + t * (end - start), 0 at the start and 1 at the end. On 0 both are left unchanged.
    int IntersectWith(const C_Line& other, double& t, double& u) const;

    CPoint m_Start;
    CPoint m_End;
};
