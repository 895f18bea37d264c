#pragma once

// Values the subcommands read from the command line, and the one check they share on mask
// files. Each parser takes the whole text and returns false unless all of it was understood,
// so that "12px" or "3,4,5" for a point is a usage error rather than a silent 12 or (3, 4).

#include <string>
#include <string_view>

#include <vistrane/mask/color_match.h>
#include <vistrane/platform/geometry.h>

class C_Image;

namespace vistrane::cli {

// A whole decimal number within lo..hi.
bool ParseNumber(const std::string& text, long lo, long hi, long& value);
// "X,Y", each within -1000000..1000000.
bool ParsePoint(const std::string& text, CPoint& point);
// "L,T,R,B", each within -1000000..1000000 (right and bottom exclusive).
bool ParseRect(const std::string& text, CRect& rect);
// "RRGGBB" in hexadecimal, optionally after a '#'; the result is a COLORREF (0x00BBGGRR).
bool ParseColor(std::string_view text, unsigned long& colorRef);
// Why `text` is not a colour, in the words every subcommand uses.
std::string ColorError(const std::string& text);
// "rgb", "hue", "intensity" or "any".
bool ParseMatchMode(const std::string& text, COLOR_MATCH_MODE& mode);

// The text in single quotes, as messages show what was given.
std::string Quote(const std::string& text);

// Loads a selection mask: an 8-bit image with the grey colour table (a grey PNG, or a BMP the
// tool wrote). Returns an empty string, or why the file cannot be used.
std::string LoadMaskFile(const std::string& path, C_Image& mask);
// LoadMaskFile, and the mask must have the picture's size: the one rule for every --mask.
std::string LoadMaskFor(const std::string& path, const C_Image& picture, C_Image& mask);

}  // namespace vistrane::cli
