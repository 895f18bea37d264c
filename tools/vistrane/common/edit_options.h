#pragma once

// What the editing subcommands (filter, color, paint, stats, palette) share: blend-mode names,
// whole-number option parsing with ranges, and loading an optional mask of the image's size.

#include <string>

#include <vistrane/blend/blend_modes.h>
#include <vistrane/image/image.h>

#include "args.h"

namespace vistrane::cli {

// "normal", "multiply", ... "smudge"; the list for help texts.
bool BlendModeFromName(const std::string& name, BLENDMODES& mode);
std::string BlendModeNames();
const char* BlendModeName(int mode);

// Parses `text` as a whole number in first..last; otherwise writes why into `error`.
bool ParseInt(const std::string& text, int first, int last, const char* what, int& value,
              std::string& error);

// Loads the file named by --mask into `mask` as an 8-bit grey image of the image's size.
// Returns false with `error` set when it cannot be read or has another size.
bool LoadMaskOption(const ParsedArgs& args, C_Image& image, C_Image& mask, bool& hasMask,
                    std::string& error);
// Loads the first positional argument into `image`, then --mask as above.
bool LoadPictureAndMask(const ParsedArgs& args, C_Image& image, C_Image& mask, bool& hasMask,
                        std::string& error);

// The grey, red, green and blue histograms as four bands of 256 x 100 pixels, top to bottom,
// each bin a column scaled to its band's highest bin. false when the picture cannot be made.
bool RenderHistogramPlot(const S_Histogram& h, C_Image& plot);

}  // namespace vistrane::cli
