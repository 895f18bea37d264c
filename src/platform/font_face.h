#pragma once

// The FreeType face behind a CFont. Each font has its own FreeType library instance, so no
// state is shared between fonts or threads.

#include <ft2build.h>
#include FT_FREETYPE_H

#include "platform/device_path.h"

namespace vistrane::platform {

struct FontFace {
    FT_Library m_Library = nullptr;
    FT_Face m_Face = nullptr;
    int m_PixelSize = 0;
};

// Adds the outlines of the UTF-8 `text` (length bytes) to `path`, one closed figure per glyph
// contour, with the text cell's top-left at `origin`. Glyph outlines are unhinted; quadratic
// arcs become cubics with control points P0 + 2/3 (Q - P0) and P2 + 2/3 (Q - P2), computed
// from the unrounded outline and rounded to pixels last. False when a glyph cannot be loaded.
bool AddTextOutlines(DevicePath* path, const FontFace& face, POINT origin, const char* text,
                     int length);

}  // namespace vistrane::platform
