#pragma once

// The demo's contact sheet: every picture the tour wrote, shrunk onto one 24-bit sheet, so a
// person can judge the whole tour from a single file.

#include <string>
#include <vector>

class C_Image;

namespace vistrane::cli {

// Lays the PNG pictures among `paths` out in rows of four cells, each picture fitted into
// its cell keeping its proportions. Other files (BMP copies, paths, SVG) are passed over.
// Returns an empty string, or why the sheet could not be made.
std::string MakeContactSheet(const std::vector<std::string>& paths, C_Image& sheet);

}  // namespace vistrane::cli
