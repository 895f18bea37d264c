// Tone tables of the companion object: 256-entry curves mapping an input level to an output
// level. The curves are evaluated in double precision once per entry (256 evaluations per
// table, negligible next to the pixels they are applied to) and rounded half up.

#include <vistrane/companion/helper.h>

#include <algorithm>
#include <cmath>

namespace {

BYTE RoundToByte(double level) {
    return static_cast<BYTE>(std::clamp(std::floor(level + 0.5), 0.0, 255.0));
}

// Fills a table that is symmetric about mid-grey: x = (i - 127.5) / 127.5 runs over -1..1 and
// shape(x) gives the curve on the same scale.
template <typename Shape>
void FillAboutMidGrey(BYTE* table, Shape shape) {
    for (int i = 0; i < 256; ++i) {
        const double x = (i - 127.5) / 127.5;
        table[i] = RoundToByte(127.5 + 127.5 * shape(x));
    }
}

}  // namespace

void C_Helper::FillRGBOffTable(BYTE* table, int offset) const {
    for (int i = 0; i < 256; ++i) {
        table[i] = static_cast<BYTE>(std::clamp(i + offset, 0, 255));
    }
}

void C_Helper::FillGammaTable(BYTE* table, double gamma) const {
    const double exponent = 1.0 / (gamma > 0.01 ? gamma : 0.01);
    for (int i = 0; i < 256; ++i) {
        table[i] = RoundToByte(255.0 * std::pow(i / 255.0, exponent));
    }
}

double C_Helper::GetGammaFromRatio(double ratio) const {
    const double clamped = std::clamp(ratio, 1.0 / 1024.0, 1023.0 / 1024.0);
    // 0.5^(1 / gamma) = 1 - ratio  =>  gamma = log(0.5) / log(1 - ratio).
    return std::log(0.5) / std::log(1.0 - clamped);
}

void C_Helper::FillContrastTable(BYTE* table, int contrast) const {
    const int c = std::clamp(contrast, -64, 64);
    if (c == 64) {
        // The limit of the slope 64 / (64 - c): a threshold at mid-grey.
        for (int i = 0; i < 256; ++i) {
            table[i] = i < 128 ? 0 : 255;
        }
        return;
    }
    const double slope = c <= 0 ? (64.0 + c) / 64.0 : 64.0 / (64.0 - c);
    FillAboutMidGrey(table, [slope](double x) { return x * slope; });
}

void C_Helper::FillLogContrastTable(BYTE* table, int contrast) const {
    const double k = std::clamp(contrast, 0, 200) / 10.0;
    if (k == 0.0) {
        FillAboutMidGrey(table, [](double x) { return x; });
        return;
    }
    const double norm = std::log1p(k);
    FillAboutMidGrey(table, [k, norm](double x) {
        const double magnitude = std::log1p(k * std::fabs(x)) / norm;
        return x < 0 ? -magnitude : magnitude;
    });
}

void C_Helper::FillSineHContrastTable(BYTE* table, int contrast) const {
    const double k = std::clamp(contrast, 0, 99) / 10.0;
    if (k == 0.0) {
        FillAboutMidGrey(table, [](double x) { return x; });
        return;
    }
    const double norm = std::asinh(k);
    FillAboutMidGrey(table, [k, norm](double x) { return std::asinh(k * x) / norm; });
}

void C_Helper::FillExpContrastTable(BYTE* table, int contrast) const {
    const int power = std::clamp(contrast, 0, 5) + 1;
    FillAboutMidGrey(table, [power](double x) {
        const double magnitude = 1.0 - std::pow(1.0 - std::fabs(x), power);
        return x < 0 ? -magnitude : magnitude;
    });
}
