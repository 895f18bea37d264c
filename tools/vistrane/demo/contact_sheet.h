#pragma once

// The demo's contact sheet: every picture the tour wrote, shrunk onto one 24-bit sheet, so a
// person can judge the whole tour from a single file.

#include <string>
#include <vector>

class C_Image;
class CFont;
class C_PointPath;

namespace vistrane::cli {

// Lays the PNG pictures among `paths` out in rows of four cells, each picture fitted into
// its cell keeping its proportions, with its file name as a caption under it. Other files (BMP
// copies, paths, SVG) are passed over. Returns an empty string, or why the sheet could not be made.
// The font captions are set in (DejaVu Sans, 20 pixels); false when it is not installed.
bool CreateCaptionFont(CFont& font);

// Draws `caption` with its text cell's top-left at (x, y): the engine's text outlines, stroked
// in a light colour by its software device. With plateWidth > 0 a dark plate that wide goes
// under it first, so that it reads over any picture.
bool DrawCaption(C_Image& image, CFont& font, long x, long y, const std::string& caption,
                 int plateWidth);

// Strokes every sub-path of `path` over the image, three pixels wide, curves as chords.
bool DrawPathOutline(C_Image& image, const C_PointPath& path, unsigned long colour);

std::string MakeContactSheet(const std::vector<std::string>& paths, C_Image& sheet);

}  // namespace vistrane::cli
