#include <vistrane/companion/2dvector.h>

#include <cmath>
#include <cstdint>
#include <numbers>

C_2DVector& C_2DVector::operator=(const CPoint& p) {
    m_X = p.x;
    m_Y = p.y;
    return *this;
}

C_2DVector& C_2DVector::operator+=(const C_2DVector& v) {
    m_X += v.m_X;
    m_Y += v.m_Y;
    return *this;
}

C_2DVector& C_2DVector::operator-=(const C_2DVector& v) {
    m_X -= v.m_X;
    m_Y -= v.m_Y;
    return *this;
}

C_2DVector& C_2DVector::MultByScalar(double s) {
    m_X *= s;
    m_Y *= s;
    return *this;
}

C_2DVector& C_2DVector::MultByVector(const C_2DVector& v) {
    m_X *= v.m_X;
    m_Y *= v.m_Y;
    return *this;
}

C_2DVector& C_2DVector::Normalize() {
    const double len = Magnitude();
    if (len > 0.0) {
        m_X /= len;
        m_Y /= len;
    }
    return *this;
}

C_2DVector& C_2DVector::ScaleToLen(double len) {
    Normalize();
    return MultByScalar(len);
}

C_2DVector& C_2DVector::RotateByRadAngle(double angle) {
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const double x = m_X * c - m_Y * s;
    m_Y = m_X * s + m_Y * c;
    m_X = x;
    return *this;
}

double C_2DVector::Magnitude() const {
    return std::sqrt(SelfDotProduct());
}

double C_2DVector::PointDistance(const C_2DVector& v) const {
    return (*this - v).Magnitude();
}

double C_2DVector::RadAngleWithVector(const C_2DVector& v) const {
    const double lengths = Magnitude() * v.Magnitude();
    if (lengths == 0.0) {
        return 0.0;
    }
    // Rounding can push the cosine just past +-1, where acos has no value.
    const double cosine = std::fmax(-1.0, std::fmin(1.0, DotProduct(v) / lengths));
    return std::acos(cosine);
}

C_2DVector C_2DVector::NormalVector(int side) const {
    return side != 0 ? C_2DVector(-m_Y, m_X) : C_2DVector(m_Y, -m_X);
}

C_2DVector C_2DVector::ProjectOn(const C_2DVector& v) const {
    const double vv = v.SelfDotProduct();
    if (vv == 0.0) {
        return {};
    }
    return v * (DotProduct(v) / vv);
}

C_2DVector C_2DVector::DistanceFromSegToPoint(const C_2DVector& a, const C_2DVector& b) const {
    const C_2DVector ab = b - a;
    const double abab = ab.SelfDotProduct();
    double t = abab == 0.0 ? 0.0 : (*this - a).DotProduct(ab) / abab;
    t = std::fmax(0.0, std::fmin(1.0, t));
    return *this - (a + ab * t);
}

bool C_2DVector::HasSameDirectionAs(const C_2DVector& v) const {
    if (IsNull() || v.IsNull()) {
        return false;
    }
    // A relative tolerance: the components are usually results of arithmetic, not exact.
    const double cross = m_X * v.m_Y - m_Y * v.m_X;
    return std::fabs(cross) <= 1e-12 * Magnitude() * v.Magnitude() && DotProduct(v) > 0.0;
}

double C_2DVector::DegToRad(double degrees) {
    return degrees * (std::numbers::pi / 180.0);
}

double C_2DVector::RadToDeg(double radians) {
    return radians * (180.0 / std::numbers::pi);
}

namespace {

LONG RoundToLong(double v) {
    if (std::isnan(v)) {
        return 0;
    }
    // std::round rounds halves away from zero; the clamp keeps the cast defined.
    const double r = std::round(v);
    if (r >= static_cast<double>(INT32_MAX)) {
        return INT32_MAX;
    }
    if (r <= static_cast<double>(INT32_MIN)) {
        return INT32_MIN;
    }
    return static_cast<LONG>(r);
}

}  // namespace

C_2DVector::operator CPoint() const {
    return {RoundToLong(m_X), RoundToLong(m_Y)};
}
