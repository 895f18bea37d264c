#pragma once

// The process-wide blend tables.
//
// Nine tables of 256 x 256 bytes turn the products and quotients of the blend modes into look-ups.
// Each is a pointer to 256 rows of 256 bytes, null while it is not built; entry [a][b] is the
// byte at a * 256 + b and is read as (*glb_MultiplyLUT)[a][b]. The blend kernels index them with
// the source channel as the row and the destination channel as the entry. All divisions below
// truncate.
//
//   glb_DistancesLUT    min(255, trunc(sqrt(a^2 + b^2)))
//   glb_MultiplyLUT     a b / 255
//   glb_ScreenLUT       255 - (255 - a)(255 - b) / 255
//   glb_OverlayLUT      b <= 128: a b / 128;  b >= 129: 255 - (255 - a)(255 - b) / 128
//   glb_HardLightLUT    the same bytes as glb_OverlayLUT (the two modes blend alike)
//   glb_ColorDodgeLUT   a = 255: 255;  else min(255, 255 b / (255 - a))
//   glb_ColorBurnLUT    a = 0: 0 (also for b = 255);  else max(0, 255 - 255 (255 - b) / a)
//   glb_ExclusionLUT    a + b - 2 a b / 255
//   glb_GammaTableLUT   row a is C_Helper::FillGammaTable of the gamma
//                       C_Helper::GetGammaFromRatio(1 - (a + 0.5) / 256); b is the input level
//
// The host builds them once with glb_CreateImageLUTs() before the first painting or blending
// call, may check glb_LUTsCreatedOK(), and frees them with glb_ReleaseImageLUTs() at shut-down;
// nothing in the library builds them on its own. A table whose 65,536 bytes cannot be allocated
// stays null and the others are still built. Calling glb_CreateImageLUTs twice leaks the first
// set. Once built the tables are read-only, so any thread may read them.

#include <vistrane/blend/gray_palette.h>
#include <vistrane/export.h>
#include <vistrane/platform/types.h>

VISTRANE_API extern BYTE (*glb_DistancesLUT)[256][256];
VISTRANE_API extern BYTE (*glb_MultiplyLUT)[256][256];
VISTRANE_API extern BYTE (*glb_ScreenLUT)[256][256];
VISTRANE_API extern BYTE (*glb_OverlayLUT)[256][256];
VISTRANE_API extern BYTE (*glb_HardLightLUT)[256][256];
VISTRANE_API extern BYTE (*glb_ColorDodgeLUT)[256][256];
VISTRANE_API extern BYTE (*glb_ColorBurnLUT)[256][256];
VISTRANE_API extern BYTE (*glb_ExclusionLUT)[256][256];
VISTRANE_API extern BYTE (*glb_GammaTableLUT)[256][256];

// Builds the nine tables, in the order listed above.
VISTRANE_API void glb_CreateImageLUTs();
// 1 when all nine tables are built, else 0.
VISTRANE_API int glb_LUTsCreatedOK();
// Frees the tables that are built and sets all nine pointers to null; safe to call twice.
VISTRANE_API void glb_ReleaseImageLUTs();

// An S-shaped opacity curve indexed by a level 0..255 for the brush tips. Its low end dips from
// 8 to 3 before rising, on purpose.
VISTRANE_API extern const BYTE glb_BrushOpacities[256];
