// User colour curves of the companion object: control points to 256-entry tables.
//
// Interpolation is the monotone piecewise cubic Hermite scheme of Fritsch and Carlson (SIAM J.
// Numer. Anal. 17, 1980): secant slopes between points, the end tangents equal to the end secants
// and interior tangents the weighted harmonic mean of the neighbouring secants (0 where the data
// turns), which keeps every segment monotone and so inside the box of its two end points. Cost: a
// few operations per table entry.

#include <vistrane/companion/helper.h>
#include <vistrane/companion/user_curve.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

// 0 when the curve is acceptable, else the error code with the offending point in *point.
int ValidateCurve(const S_UserCurve& curve, int* point) {
    if (curve.nPoints < 0 || curve.nPoints > kUserCurveMaxPoints) {
        *point = -1;
        return USERCURVE_ERROR_POINT_COUNT;
    }
    for (int i = 1; i < curve.nPoints; ++i) {
        if (curve.input[i] <= curve.input[i - 1]) {
            *point = i;
            return USERCURVE_ERROR_NOT_INCREASING;
        }
    }
    return USERCURVE_ERROR_NONE;
}

std::array<BYTE, 256> CurveTable(const S_UserCurve& curve) {
    std::array<BYTE, 256> table{};
    const int n = curve.nPoints;
    if (n == 0) {
        for (int i = 0; i < 256; ++i) {
            table[i] = static_cast<BYTE>(i);
        }
        return table;
    }
    std::array<double, kUserCurveMaxPoints> x{};
    std::array<double, kUserCurveMaxPoints> y{};
    for (int i = 0; i < n; ++i) {
        x[i] = curve.input[i];
        y[i] = curve.output[i];
    }
    std::array<double, kUserCurveMaxPoints> secant{};
    for (int i = 0; i + 1 < n; ++i) {
        secant[i] = (y[i + 1] - y[i]) / (x[i + 1] - x[i]);
    }
    std::array<double, kUserCurveMaxPoints> tangent{};
    if (n >= 2) {
        tangent[0] = secant[0];
        tangent[n - 1] = secant[n - 2];
    }
    for (int i = 1; i + 1 < n; ++i) {
        const double left = secant[i - 1];
        const double right = secant[i];
        if (left * right <= 0.0) {
            tangent[i] = 0.0;
        } else {
            // Weighted harmonic mean (Fritsch and Butland): never more than three times the
            // smaller secant, which is inside Fritsch and Carlson's monotone region.
            const double h0 = x[i] - x[i - 1];
            const double h1 = x[i + 1] - x[i];
            const double w0 = 2.0 * h1 + h0;
            const double w1 = h1 + 2.0 * h0;
            tangent[i] = (w0 + w1) / (w0 / left + w1 / right);
        }
    }
    int segment = 0;
    for (int level = 0; level < 256; ++level) {
        double v;
        if (level <= x[0]) {
            v = y[0];
        } else if (level >= x[n - 1]) {
            v = y[n - 1];
        } else {
            while (level > x[segment + 1]) {
                ++segment;
            }
            const double h = x[segment + 1] - x[segment];
            const double t = (level - x[segment]) / h;
            const double t2 = t * t;
            const double t3 = t2 * t;
            v = (2 * t3 - 3 * t2 + 1) * y[segment] + (t3 - 2 * t2 + t) * h * tangent[segment] +
                (-2 * t3 + 3 * t2) * y[segment + 1] + (t3 - t2) * h * tangent[segment + 1];
        }
        table[level] = static_cast<BYTE>(std::clamp(std::floor(v + 0.5), 0.0, 255.0));
    }
    return table;
}

}  // namespace

int C_Helper::FillUserColorOperLUTs(const S_OneUserColorOper* oper, S_CalcColorError* error,
                                    BYTE* red, BYTE* green, BYTE* blue) const {
    auto report = [error](int code, int channel, int point) {
        if (error != nullptr) {
            error->code = code;
            error->channel = channel;
            error->point = point;
        }
    };
    if (oper == nullptr || red == nullptr || green == nullptr || blue == nullptr) {
        report(USERCURVE_ERROR_NULL_ARGUMENT, -1, -1);
        return 0;
    }
    const S_UserCurve* curves[4] = {&oper->master, &oper->red, &oper->green, &oper->blue};
    for (int channel = 0; channel < 4; ++channel) {
        int point = 0;
        const int code = ValidateCurve(*curves[channel], &point);
        if (code != USERCURVE_ERROR_NONE) {
            report(code, channel, point);
            return 0;
        }
    }
    const std::array<BYTE, 256> master = CurveTable(oper->master);
    BYTE* outputs[3] = {red, green, blue};
    for (int channel = 0; channel < 3; ++channel) {
        const std::array<BYTE, 256> own = CurveTable(*curves[channel + 1]);
        for (int i = 0; i < 256; ++i) {
            outputs[channel][i] = master[own[i]];
        }
    }
    report(USERCURVE_ERROR_NONE, 0, 0);
    return 1;
}
