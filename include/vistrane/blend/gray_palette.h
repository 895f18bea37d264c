#pragma once

// The grey colour table: entry i is blue i, green i, red i, reserved 0. It is the colour table of
// every selection mask; an 8-bit image whose 256 entries equal it word for word is a mask.

#include <vistrane/export.h>
#include <vistrane/platform/types.h>

extern VISTRANE_API const RGBQUAD (&glb_GrayPalette)[256];
