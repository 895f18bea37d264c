#include <vistrane/companion/line.h>

void C_Line::Init(CPoint start, CPoint end) {
    m_Start = start;
    m_End = end;
}

int C_Line::IntersectWith(const C_Line& other, double& t, double& u) const {
    // Cramer's rule on start + t * d = other.start + u * e, in doubles: the products of 32-bit
    // differences need more than 32 bits, and the parameters are fractions anyway.
    const double dx = static_cast<double>(m_End.x) - m_Start.x;
    const double dy = static_cast<double>(m_End.y) - m_Start.y;
    const double ex = static_cast<double>(other.m_End.x) - other.m_Start.x;
    const double ey = static_cast<double>(other.m_End.y) - other.m_Start.y;
    const double denominator = dx * ey - dy * ex;
    if (denominator == 0.0) {
        return 0;
    }
    const double sx = static_cast<double>(other.m_Start.x) - m_Start.x;
    const double sy = static_cast<double>(other.m_Start.y) - m_Start.y;
    t = (sx * ey - sy * ex) / denominator;
    u = (sx * dy - sy * dx) / denominator;
    return 1;
}
