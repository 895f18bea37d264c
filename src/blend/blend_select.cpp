// The selectors' tables of which modes each image kind gets.

#include "blend/blend_select.h"

#include <vistrane/blend/blend_modes.h>

namespace vistrane::blend {
namespace {

bool InRange(int mode, int first, int last) {
    return mode >= first && mode <= last;
}

}  // namespace

int FillSelectorMode(int mode, ImageKind kind) {
    switch (kind) {
        case ImageKind::kTrueColor:
            return InRange(mode, BLENDMODE_DISSOLVE, BLENDMODE_DESATURATE) ? mode
                                                                           : BLENDMODE_NORMAL;
        case ImageKind::kGreyEditable:
            return InRange(mode, BLENDMODE_DISSOLVE, BLENDMODE_EXCLUSION) ? mode : BLENDMODE_NORMAL;
        case ImageKind::kPalette:
            break;
    }
    return mode == BLENDMODE_DISSOLVE ? mode : BLENDMODE_NORMAL;
}

// Modes 11, 12, 19 and 20 are not offered to the filters: stepping a pixel by 8 or moving its
// saturation says nothing about the filtered colour.
int FilterSelectorMode(int mode, ImageKind kind) {
    switch (kind) {
        case ImageKind::kTrueColor:
            return InRange(mode, BLENDMODE_DISSOLVE, BLENDMODE_LIGHTEN) ||
                           InRange(mode, BLENDMODE_DIFFERENCE, BLENDMODE_LUMINOSITY)
                       ? mode
                       : BLENDMODE_NORMAL;
        case ImageKind::kGreyEditable:
            return InRange(mode, BLENDMODE_DISSOLVE, BLENDMODE_LIGHTEN) ||
                           InRange(mode, BLENDMODE_DIFFERENCE, BLENDMODE_EXCLUSION)
                       ? mode
                       : BLENDMODE_NORMAL;
        case ImageKind::kPalette:
            break;
    }
    return kKeepKernel;
}

int PaintSelectorMode(int mode, ImageKind kind) {
    if (kind != ImageKind::kPalette && InRange(mode, BLENDMODE_FILTER1, BLENDMODE_SMUDGE)) {
        return mode;
    }
    return FillSelectorMode(mode, kind);
}

int FillSelectorOption(int option) {
    return option == 100 ? 50 : option;
}

}  // namespace vistrane::blend
