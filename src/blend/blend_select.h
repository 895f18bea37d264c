#pragma once

// Which rule each blend selector gives an image, shared by C_Image's stored-kernel selectors
// and by the bulk operations that pick a row routine instead, so both always agree.

namespace vistrane::blend {

enum class ImageKind {
    kTrueColor,     // 24 bits
    kGreyEditable,  // 8-bit mask: each byte is a grey level
    kPalette,       // 8-bit indices into a colour table
};

// The mode whose rule the selector installs; BLENDMODE_NORMAL where the selector offers the
// normal rule instead. kKeepKernel: the filter selector leaves a palette image's kernel alone.
constexpr int kKeepKernel = -1;
int FillSelectorMode(int mode, ImageKind kind);
int FilterSelectorMode(int mode, ImageKind kind);
int PaintSelectorMode(int mode, ImageKind kind);

// The fill and painting selectors store an option of exactly 100 as 50.
int FillSelectorOption(int option);

}  // namespace vistrane::blend
