// The plain blend rules (the reference for every fast row) and the merge steps.

#include "blend/blend_kernels.h"

#include "blend/blend_dispatch.h"

#include <vistrane/blend/blend_modes.h>
#include <vistrane/blend/image_luts.h>

#include <algorithm>
#include <cstdlib>

namespace vistrane::blend {
namespace {

using Lut = BYTE[256][256];

template <int Channels>
void Normal(const BYTE* s, const BYTE*, BYTE* r, BlendContext&) {
    for (int c = 0; c < Channels; ++c) {
        r[c] = s[c];
    }
}

// One draw per pixel; n >= option keeps the destination in every channel.
template <int Channels>
void Dissolve(const BYTE* s, const BYTE* d, BYTE* r, BlendContext& context) {
    const BYTE* from = context.helper->Random0Max(100) >= context.option ? d : s;
    for (int c = 0; c < Channels; ++c) {
        r[c] = from[c];
    }
}

template <int Channels, Lut** Table>
void TableRule(const BYTE* s, const BYTE* d, BYTE* r, BlendContext&) {
    const Lut& lut = **Table;
    for (int c = 0; c < Channels; ++c) {
        r[c] = lut[s[c]][d[c]];
    }
}

// Soft light reads the gamma rows 64..191: row s / 2 + 64.
template <int Channels>
void SoftLight(const BYTE* s, const BYTE* d, BYTE* r, BlendContext&) {
    const Lut& lut = *glb_GammaTableLUT;
    for (int c = 0; c < Channels; ++c) {
        r[c] = lut[s[c] / 2 + 64][d[c]];
    }
}

template <int Channels, typename Op>
void PerChannel(const BYTE* s, const BYTE* d, BYTE* r, Op op) {
    for (int c = 0; c < Channels; ++c) {
        r[c] = static_cast<BYTE>(op(s[c], d[c]));
    }
}

template <int Channels>
void Darken(const BYTE* s, const BYTE* d, BYTE* r, BlendContext&) {
    PerChannel<Channels>(s, d, r, [](int a, int b) { return std::min(a, b); });
}
template <int Channels>
void Lighten(const BYTE* s, const BYTE* d, BYTE* r, BlendContext&) {
    PerChannel<Channels>(s, d, r, [](int a, int b) { return std::max(a, b); });
}
// The source is ignored on purpose: each dab steps the pixel by 8.
template <int Channels>
void RGBDarken(const BYTE* s, const BYTE* d, BYTE* r, BlendContext&) {
    PerChannel<Channels>(s, d, r, [](int, int b) { return std::max(b - 8, 0); });
}
template <int Channels>
void RGBLighten(const BYTE* s, const BYTE* d, BYTE* r, BlendContext&) {
    PerChannel<Channels>(s, d, r, [](int, int b) { return std::min(b + 8, 255); });
}
template <int Channels>
void Difference(const BYTE* s, const BYTE* d, BYTE* r, BlendContext&) {
    PerChannel<Channels>(s, d, r, [](int a, int b) { return std::abs(a - b); });
}

struct Hsl {
    BYTE h, s, l;
};

Hsl ToHsl(C_Helper& helper, const BYTE* bgr) {
    Hsl out;
    helper.HSLFromRGB(bgr[2], bgr[1], bgr[0], &out.h, &out.s, &out.l);
    return out;
}

void FromHsl(C_Helper& helper, int h, int s, int l, BYTE* bgr) {
    BYTE red, green, blue;
    helper.RGBFromHSL(static_cast<WORD>(h), static_cast<WORD>(s), static_cast<WORD>(l), &red,
                      &green, &blue);
    bgr[0] = blue;
    bgr[1] = green;
    bgr[2] = red;
}

constexpr BYTE kNoHue = 255;

template <int Step>
void SaturateBy(const BYTE* d, BYTE* r, C_Helper& helper) {
    const Hsl dst = ToHsl(helper, d);
    if (dst.h == kNoHue) {
        r[0] = d[0], r[1] = d[1], r[2] = d[2];
        return;
    }
    FromHsl(helper, dst.h, std::clamp(dst.s + Step, 0, 240), dst.l, r);
}

void Saturate(const BYTE*, const BYTE* d, BYTE* r, BlendContext& context) {
    SaturateBy<24>(d, r, *context.helper);
}
void DeSaturate(const BYTE*, const BYTE* d, BYTE* r, BlendContext& context) {
    SaturateBy<-24>(d, r, *context.helper);
}

void Hue(const BYTE* s, const BYTE* d, BYTE* r, BlendContext& context) {
    C_Helper& helper = *context.helper;
    const Hsl src = ToHsl(helper, s);
    const Hsl dst = ToHsl(helper, d);
    if (src.h == kNoHue) {
        FromHsl(helper, dst.h, 0, dst.l, r);
    } else {
        FromHsl(helper, src.h, dst.s, dst.l, r);
    }
}

void Saturation(const BYTE* s, const BYTE* d, BYTE* r, BlendContext& context) {
    C_Helper& helper = *context.helper;
    const Hsl src = ToHsl(helper, s);
    const Hsl dst = ToHsl(helper, d);
    if (dst.h == kNoHue) {
        FromHsl(helper, kNoHue, 0, dst.l, r);
    } else {
        FromHsl(helper, dst.h, src.s, dst.l, r);
    }
}

void Color(const BYTE* s, const BYTE* d, BYTE* r, BlendContext& context) {
    C_Helper& helper = *context.helper;
    const Hsl src = ToHsl(helper, s);
    const Hsl dst = ToHsl(helper, d);
    if (src.h == kNoHue) {
        FromHsl(helper, kNoHue, 0, dst.l, r);
    } else {
        FromHsl(helper, src.h, src.s, dst.l, r);
    }
}

// Over a grey destination the source lightness is written as a level: l * 255 / 240, truncated.
void Luminosity(const BYTE* s, const BYTE* d, BYTE* r, BlendContext& context) {
    C_Helper& helper = *context.helper;
    const Hsl src = ToHsl(helper, s);
    const Hsl dst = ToHsl(helper, d);
    if (dst.h == kNoHue) {
        r[0] = r[1] = r[2] = static_cast<BYTE>(src.l * 255 / 240);
    } else {
        FromHsl(helper, dst.h, dst.s, src.l, r);
    }
}

template <int Channels>
PixelBlendFn SharedRule(int mode) {
    switch (mode) {
        case BLENDMODE_DISSOLVE:
            return Dissolve<Channels>;
        case BLENDMODE_MULTIPLY:
            return TableRule<Channels, &glb_MultiplyLUT>;
        case BLENDMODE_SCREEN:
            return TableRule<Channels, &glb_ScreenLUT>;
        case BLENDMODE_OVERLAY:
            return TableRule<Channels, &glb_OverlayLUT>;
        case BLENDMODE_SOFTLIGHT:
            return SoftLight<Channels>;
        case BLENDMODE_HARDLIGHT:
            return TableRule<Channels, &glb_HardLightLUT>;
        case BLENDMODE_COLORDODGE:
            return TableRule<Channels, &glb_ColorDodgeLUT>;
        case BLENDMODE_COLORBURN:
            return TableRule<Channels, &glb_ColorBurnLUT>;
        case BLENDMODE_DARKEN:
            return Darken<Channels>;
        case BLENDMODE_LIGHTEN:
            return Lighten<Channels>;
        case BLENDMODE_RGBDARKEN:
            return RGBDarken<Channels>;
        case BLENDMODE_RGBLIGHTEN:
            return RGBLighten<Channels>;
        case BLENDMODE_DIFFERENCE:
            return Difference<Channels>;
        case BLENDMODE_EXCLUSION:
            return TableRule<Channels, &glb_ExclusionLUT>;
        default:
            return Normal<Channels>;
    }
}

}  // namespace

PixelBlendFn TrueColorPixelRule(int mode) {
    switch (mode) {
        case BLENDMODE_HUE:
            return Hue;
        case BLENDMODE_SATURATION:
            return Saturation;
        case BLENDMODE_COLOR:
            return Color;
        case BLENDMODE_LUMINOSITY:
            return Luminosity;
        case BLENDMODE_SATURATE:
            return Saturate;
        case BLENDMODE_DESATURATE:
            return DeSaturate;
        default:
            return SharedRule<3>(mode);
    }
}

PixelBlendFn GreyPixelRule(int mode) {
    return SharedRule<1>(mode);
}

void RowBlender::Run(const BYTE* source, const BYTE* destination, BYTE* result, int count,
                     BlendContext& context, const BYTE* opacity) const {
    if (fast != nullptr) {
        fast(source, destination, result, count * bytesPerPixel);
        return;
    }
    for (int i = 0; i < count; ++i) {
        if (opacity != nullptr && opacity[i] == 0) {
            continue;
        }
        const int at = i * bytesPerPixel;
        rule(source + at, destination + at, result + at, context);
    }
}

RowBlender ReferenceRowBlender(int mode, int bytesPerPixel) {
    RowBlender blender;
    blender.rule = bytesPerPixel == 3 ? TrueColorPixelRule(mode) : GreyPixelRule(mode);
    blender.bytesPerPixel = bytesPerPixel;
    return blender;
}

RowBlender FastRowBlender(int mode, int bytesPerPixel) {
    RowBlender blender = ReferenceRowBlender(mode, bytesPerPixel);
    blender.fast = FastByteRow(mode);
    return blender;
}

void EffectiveOpacityRow(BYTE* out, const BYTE* mask, BYTE opacity, int count) {
    if (mask == nullptr) {
        std::fill(out, out + count, opacity);
        return;
    }
    for (int i = 0; i < count; ++i) {
        out[i] = static_cast<BYTE>(opacity * mask[i] / 255);
    }
}

void MergeTrueColorRow(BYTE* pixels, const BYTE* result, const BYTE* opacity, int count) {
    const Lut& mul = *glb_MultiplyLUT;
    for (int i = 0; i < count; ++i) {
        const int a = opacity[i];
        if (a == 0) {
            continue;
        }
        BYTE* p = pixels + 3 * i;
        const BYTE* n = result + 3 * i;
        for (int c = 0; c < 3; ++c) {
            p[c] = static_cast<BYTE>(mul[255 - a][p[c]] + mul[a][n[c]]);
        }
    }
}

void MergeGreyRow(BYTE* pixels, const BYTE* result, const BYTE* opacity, int count) {
    const Lut& mul = *glb_MultiplyLUT;
    for (int i = 0; i < count; ++i) {
        const int a = opacity[i];
        if (a != 0) {
            pixels[i] = static_cast<BYTE>(mul[255 - a][pixels[i]] + mul[a][result[i]]);
        }
    }
}

void MergePaletteRow(BYTE* pixels, const BYTE* result, const BYTE* opacity, int count) {
    for (int i = 0; i < count; ++i) {
        if (opacity[i] > 127) {
            pixels[i] = result[i];
        }
    }
}

void SmudgePixel(const BYTE* smudgePixel, BYTE* carried, BYTE* result, int strength, int channels) {
    if (strength <= 0) {
        return;
    }
    for (int c = 0; c < channels; ++c) {
        if (strength >= 255) {
            result[c] = carried[c];
            continue;
        }
        result[c] = static_cast<BYTE>(
            ((256 - strength) * smudgePixel[c] + strength * carried[c] + 128) >> 8);
        carried[c] = result[c];
    }
}

void FilterPixel(const FilterTap* taps, int nTaps, int sample, int perChannel, int divisor,
                 int offset, BYTE* result, int channels, C_Helper& helper) {
    auto finish = [divisor, offset](int sum) {
        return static_cast<BYTE>(std::clamp(sum / divisor + offset, 0, 255));
    };
    if (channels == 1) {
        int sum = 0;
        for (int t = 0; t < nTaps; ++t) {
            sum += taps[t].weight * taps[t].row[sample];
        }
        result[0] = finish(sum);
        return;
    }
    if (perChannel != 0) {
        int sums[3] = {0, 0, 0};
        for (int t = 0; t < nTaps; ++t) {
            const BYTE* p = taps[t].row + sample;
            for (int c = 0; c < 3; ++c) {
                sums[c] += taps[t].weight * p[c];
            }
        }
        for (int c = 0; c < 3; ++c) {
            result[c] = finish(sums[c]);
        }
        return;
    }
    int sum = 0;
    for (int t = 0; t < nTaps; ++t) {
        const BYTE* p = taps[t].row + sample;
        sum += taps[t].weight * helper.YFromRGB(p[2], p[1], p[0]);
    }
    result[0] = result[1] = result[2] = finish(sum);
}

}  // namespace vistrane::blend
