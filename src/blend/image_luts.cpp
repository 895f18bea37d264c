// Builders of the process-wide blend tables. Each table is filled row by row from its rule in
// 32-bit signed arithmetic (the largest product, 2 * 255 * 255 in the exclusion rule, is far
// below 2^31); the rules are the contract in image_luts.h and the tests check every entry.

#include <vistrane/blend/image_luts.h>
#include <vistrane/companion/helper.h>

#include <algorithm>
#include <cmath>

using Lut = BYTE[256][256];

Lut* glb_DistancesLUT = nullptr;
Lut* glb_MultiplyLUT = nullptr;
Lut* glb_ScreenLUT = nullptr;
Lut* glb_OverlayLUT = nullptr;
Lut* glb_HardLightLUT = nullptr;
Lut* glb_ColorDodgeLUT = nullptr;
Lut* glb_ColorBurnLUT = nullptr;
Lut* glb_ExclusionLUT = nullptr;
Lut* glb_GammaTableLUT = nullptr;

namespace {

Lut** const kAllTables[] = {&glb_DistancesLUT, &glb_MultiplyLUT,  &glb_ScreenLUT,
                            &glb_OverlayLUT,   &glb_HardLightLUT, &glb_ColorDodgeLUT,
                            &glb_ColorBurnLUT, &glb_ExclusionLUT, &glb_GammaTableLUT};

// Allocates one table; on failure the pointer stays null and the table is skipped.
template <typename Rule>
void BuildTable(Lut** table, Rule rule) {
    C_Helper helper;
    *table = static_cast<Lut*>(helper.SafeVirtualAlloc(sizeof(Lut)));
    if (*table == nullptr) {
        return;
    }
    for (int a = 0; a < 256; ++a) {
        for (int b = 0; b < 256; ++b) {
            (**table)[a][b] = static_cast<BYTE>(rule(a, b));
        }
    }
}

int OverlayRule(int a, int b) {
    return b <= 128 ? (a * b) / 128 : 255 - ((255 - a) * (255 - b)) / 128;
}

void BuildGammaTable() {
    C_Helper helper;
    Lut* table = static_cast<Lut*>(helper.SafeVirtualAlloc(sizeof(Lut)));
    glb_GammaTableLUT = table;
    if (table == nullptr) {
        return;
    }
    for (int a = 0; a < 256; ++a) {
        const double ratio = 1.0 - (a + 0.5) * 0.00390625;
        helper.FillGammaTable((*table)[a], helper.GetGammaFromRatio(ratio));
    }
}

}  // namespace

void glb_CreateImageLUTs() {
    for (Lut** table : kAllTables) {
        *table = nullptr;
    }
    BuildTable(&glb_DistancesLUT, [](int a, int b) {
        return std::min(255, static_cast<int>(std::sqrt(static_cast<double>(a * a + b * b))));
    });
    BuildTable(&glb_MultiplyLUT, [](int a, int b) { return (a * b) / 255; });
    BuildTable(&glb_ScreenLUT, [](int a, int b) { return 255 - ((255 - a) * (255 - b)) / 255; });
    BuildTable(&glb_OverlayLUT, OverlayRule);
    BuildTable(&glb_HardLightLUT, OverlayRule);
    BuildTable(&glb_ColorDodgeLUT,
               [](int a, int b) { return a == 255 ? 255 : std::min(255, (255 * b) / (255 - a)); });
    BuildTable(&glb_ColorBurnLUT,
               [](int a, int b) { return a == 0 ? 0 : std::max(0, 255 - (255 * (255 - b)) / a); });
    BuildTable(&glb_ExclusionLUT, [](int a, int b) { return a + b - (2 * a * b) / 255; });
    BuildGammaTable();
}

int glb_LUTsCreatedOK() {
    for (Lut** table : kAllTables) {
        if (*table == nullptr) {
            return 0;
        }
    }
    return 1;
}

void glb_ReleaseImageLUTs() {
    C_Helper helper;
    for (Lut** table : kAllTables) {
        if (*table != nullptr) {
            helper.SafeVirtualFree(*table);
            *table = nullptr;
        }
    }
}
