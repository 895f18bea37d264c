// Plain byte rows and the one-time choice of kernel set.

#include "blend/blend_dispatch.h"

#include <vistrane/blend/blend_modes.h>
#include <vistrane/blend/image_luts.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace vistrane::blend {
namespace {

using Lut = BYTE[256][256];

template <Lut** Table>
void TableBytes(const BYTE* s, const BYTE* d, BYTE* r, int bytes) {
    const Lut& lut = **Table;
    for (int i = 0; i < bytes; ++i) {
        r[i] = lut[s[i]][d[i]];
    }
}

void CopyBytes(const BYTE* s, const BYTE*, BYTE* r, int bytes) {
    std::memmove(r, s, bytes);
}

void DarkenBytes(const BYTE* s, const BYTE* d, BYTE* r, int bytes) {
    for (int i = 0; i < bytes; ++i) {
        r[i] = std::min(s[i], d[i]);
    }
}

void LightenBytes(const BYTE* s, const BYTE* d, BYTE* r, int bytes) {
    for (int i = 0; i < bytes; ++i) {
        r[i] = std::max(s[i], d[i]);
    }
}

void DifferenceBytes(const BYTE* s, const BYTE* d, BYTE* r, int bytes) {
    for (int i = 0; i < bytes; ++i) {
        r[i] = static_cast<BYTE>(std::abs(s[i] - d[i]));
    }
}

}  // namespace

ByteRowFn ByteRowFor(int mode, cpu::InstructionSet set) {
#if VISTRANE_X86_KERNELS
    if (set == cpu::InstructionSet::kAvx2) {
        if (ByteRowFn fast = Avx2ByteRow(mode)) {
            return fast;
        }
    }
#else
    (void)set;
#endif
    switch (mode) {
        case BLENDMODE_MULTIPLY:
            return TableBytes<&glb_MultiplyLUT>;
        case BLENDMODE_SCREEN:
            return TableBytes<&glb_ScreenLUT>;
        case BLENDMODE_OVERLAY:
            return TableBytes<&glb_OverlayLUT>;
        case BLENDMODE_HARDLIGHT:
            return TableBytes<&glb_HardLightLUT>;
        case BLENDMODE_DARKEN:
            return DarkenBytes;
        case BLENDMODE_LIGHTEN:
            return LightenBytes;
        case BLENDMODE_DIFFERENCE:
            return DifferenceBytes;
        case BLENDMODE_DISSOLVE:
        case BLENDMODE_SOFTLIGHT:
        case BLENDMODE_COLORDODGE:
        case BLENDMODE_COLORBURN:
        case BLENDMODE_RGBDARKEN:
        case BLENDMODE_RGBLIGHTEN:
        case BLENDMODE_EXCLUSION:
        case BLENDMODE_HUE:
        case BLENDMODE_SATURATION:
        case BLENDMODE_COLOR:
        case BLENDMODE_LUMINOSITY:
        case BLENDMODE_SATURATE:
        case BLENDMODE_DESATURATE:
            return nullptr;
        default:
            return CopyBytes;
    }
}

ByteRowFn FastByteRow(int mode) {
    return ByteRowFor(mode, cpu::Best());
}

MergeRowFn MergeRowFor(int bytesPerPixel, cpu::InstructionSet set) {
#if VISTRANE_X86_KERNELS
    if (set == cpu::InstructionSet::kAvx2) {
        if (MergeRowFn fast = Avx2MergeRow(bytesPerPixel)) {
            return fast;
        }
    }
#else
    (void)set;
#endif
    return bytesPerPixel == 3 ? MergeTrueColorRow : MergeGreyRow;
}

}  // namespace vistrane::blend
