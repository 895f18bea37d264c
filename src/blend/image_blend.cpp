// C_Image's blend members: the stored kernels, the selectors, the merge steps and PaintMasked.
// The rules themselves live in blend_kernels.cpp; each member kernel runs one rule on the
// painting state's operands.

#include <vistrane/blend/image_luts.h>
#include <vistrane/image/image.h>

#include "blend/blend_dispatch.h"
#include "blend/blend_kernels.h"
#include "blend/blend_select.h"
#include "blend/paint_rect.h"
#include "image/pixel_view.h"

#include <algorithm>
#include <array>
#include <vector>

namespace {

using vistrane::blend::ImageKind;
using vistrane::blend::PixelBlendFn;

constexpr int kPixelRuleModes = BLENDMODE_DESATURATE + 1;

// Looked up once: a member kernel then costs one indirect call to its rule.
const std::array<PixelBlendFn, kPixelRuleModes>& TrueColorRules() {
    static const auto rules = [] {
        std::array<PixelBlendFn, kPixelRuleModes> table{};
        for (int m = 0; m < kPixelRuleModes; ++m) {
            table[m] = vistrane::blend::TrueColorPixelRule(m);
        }
        return table;
    }();
    return rules;
}

const std::array<PixelBlendFn, BLENDMODE_EXCLUSION + 1>& GreyRules() {
    static const auto rules = [] {
        std::array<PixelBlendFn, BLENDMODE_EXCLUSION + 1> table{};
        for (int m = 0; m <= BLENDMODE_EXCLUSION; ++m) {
            table[m] = vistrane::blend::GreyPixelRule(m);
        }
        return table;
    }();
    return rules;
}

constexpr C_Image::BlendKernel kTrueColorKernels[] = {
    &C_Image::BlendColorsNormal,     &C_Image::BlendColorsDissolve,
    &C_Image::BlendColorsMultiply,   &C_Image::BlendColorsScreen,
    &C_Image::BlendColorsOverlay,    &C_Image::BlendColorsSoftLight,
    &C_Image::BlendColorsHardLight,  &C_Image::BlendColorsColorDodge,
    &C_Image::BlendColorsColorBurn,  &C_Image::BlendColorsDarken,
    &C_Image::BlendColorsLighten,    &C_Image::BlendColorsRGBDarken,
    &C_Image::BlendColorsRGBLighten, &C_Image::BlendColorsDifference,
    &C_Image::BlendColorsExclusion,  &C_Image::BlendColorsHue,
    &C_Image::BlendColorsSaturation, &C_Image::BlendColorsColor,
    &C_Image::BlendColorsLuminosity, &C_Image::BlendColorsSaturate,
    &C_Image::BlendColorsDeSaturate, &C_Image::BlendColorsFilter,
    &C_Image::BlendColorsFilter,     &C_Image::BlendColorsFilter,
    &C_Image::BlendColorsFilter,     &C_Image::BlendColorsSmudge,
};

// Modes 15..20 have no single-byte rule; the selectors never pick them for 8-bit images.
constexpr C_Image::BlendKernel kMaskKernels[] = {
    &C_Image::BlendColorsNormalMask,     &C_Image::BlendColorsDissolveMask,
    &C_Image::BlendColorsMultiplyMask,   &C_Image::BlendColorsScreenMask,
    &C_Image::BlendColorsOverlayMask,    &C_Image::BlendColorsSoftLightMask,
    &C_Image::BlendColorsHardLightMask,  &C_Image::BlendColorsColorDodgeMask,
    &C_Image::BlendColorsColorBurnMask,  &C_Image::BlendColorsDarkenMask,
    &C_Image::BlendColorsLightenMask,    &C_Image::BlendColorsRGBDarkenMask,
    &C_Image::BlendColorsRGBLightenMask, &C_Image::BlendColorsDifferenceMask,
    &C_Image::BlendColorsExclusionMask,  &C_Image::BlendColorsNormalMask,
    &C_Image::BlendColorsNormalMask,     &C_Image::BlendColorsNormalMask,
    &C_Image::BlendColorsNormalMask,     &C_Image::BlendColorsNormalMask,
    &C_Image::BlendColorsNormalMask,     &C_Image::BlendColorsFilterMask,
    &C_Image::BlendColorsFilterMask,     &C_Image::BlendColorsFilterMask,
    &C_Image::BlendColorsFilterMask,     &C_Image::BlendColorsSmudgeMask,
};

ImageKind KindOf(const C_Image& image) {
    if (image.IsTrueColor()) {
        return ImageKind::kTrueColor;
    }
    return image.CanEditTrueColor() ? ImageKind::kGreyEditable : ImageKind::kPalette;
}

vistrane::blend::FilterTap Tap(const unsigned char* row, int weight) {
    return {row, weight};
}

}  // namespace

int C_Image::IsFilterMode(BLENDMODES mode) {
    return mode >= BLENDMODE_FILTER1 && mode <= BLENDMODE_SMUDGE ? 1 : 0;
}

void C_Image::SelectBlendKernel(int mode) {
    if (mode == vistrane::blend::kKeepKernel) {
        return;
    }
    const ImageKind kind = KindOf(*this);
    if (kind == ImageKind::kTrueColor) {
        m_pBlendColors = kTrueColorKernels[mode];
        m_pOpaqueMerge = &C_Image::OpaqueMergeTrue;
    } else {
        m_pBlendColors = kMaskKernels[mode];
        m_pOpaqueMerge = kind == ImageKind::kGreyEditable ? &C_Image::OpaqueMergeCanEditTrue
                                                          : &C_Image::OpaqueMergePal;
    }
}

void C_Image::FigureFillReplaceBlendingModeFunction(BLENDMODES mode, int option) {
    m_BlendMode = mode;
    m_BlendModeOption = vistrane::blend::FillSelectorOption(option);
    SelectBlendKernel(vistrane::blend::FillSelectorMode(mode, KindOf(*this)));
}

void C_Image::InitImageFilterBlend(BLENDMODES mode, int option) {
    m_BlendMode = mode;
    m_BlendModeOption = option;
    SelectBlendKernel(vistrane::blend::FilterSelectorMode(mode, KindOf(*this)));
}

void C_Image::SetPaintBlendingModeFunction(BLENDMODES mode, int option) {
    m_BlendMode = mode;
    m_BlendModeOption = vistrane::blend::FillSelectorOption(option);
    SelectBlendKernel(vistrane::blend::PaintSelectorMode(mode, KindOf(*this)));
}

void C_Image::SetBlendSourceColor(unsigned long c) {
    if (!IsTrueColor()) {
        m_BlendSource[0] = static_cast<unsigned char>(c & 0xFF);
        return;
    }
    m_BlendSource[0] = GetBValue(c);
    m_BlendSource[1] = GetGValue(c);
    m_BlendSource[2] = GetRValue(c);
}

void C_Image::SetBlendFilterTaps(const unsigned char* const* rows, const int* weights, int n,
                                 int perChannel, int divisor, int offset) {
    m_FilterNTaps = std::clamp(n, 0, FILTER_KERNEL_TAPS);
    for (int t = 0; t < m_FilterNTaps; ++t) {
        m_FilterTapRows[t] = rows[t];
        m_FilterTapWeights[t] = weights[t];
    }
    m_FilterPerChannel = perChannel;
    m_FilterDivisor = divisor;
    m_FilterOffset = offset;
}

void C_Image::SetBlendSmudge(unsigned char* carried, const unsigned char* pixel, int strength) {
    m_pSmudgeColor = carried;
    m_pSmudgePixel = pixel;
    m_SmudgeStrength = strength;
}

void C_Image::RunTrueColorRule(int mode) {
    vistrane::blend::BlendContext context{m_BlendModeOption, &m_Helper};
    TrueColorRules()[mode](m_BlendSource, m_pBlendDest, m_BlendResult, context);
}

void C_Image::RunGreyRule(int mode) {
    vistrane::blend::BlendContext context{m_BlendModeOption, &m_Helper};
    GreyRules()[mode](m_BlendSource, m_pBlendDest, m_BlendResult, context);
}

void C_Image::BlendColorsNormal() {
    RunTrueColorRule(BLENDMODE_NORMAL);
}
void C_Image::BlendColorsDissolve() {
    RunTrueColorRule(BLENDMODE_DISSOLVE);
}
void C_Image::BlendColorsMultiply() {
    RunTrueColorRule(BLENDMODE_MULTIPLY);
}
void C_Image::BlendColorsScreen() {
    RunTrueColorRule(BLENDMODE_SCREEN);
}
void C_Image::BlendColorsOverlay() {
    RunTrueColorRule(BLENDMODE_OVERLAY);
}
void C_Image::BlendColorsSoftLight() {
    RunTrueColorRule(BLENDMODE_SOFTLIGHT);
}
void C_Image::BlendColorsHardLight() {
    RunTrueColorRule(BLENDMODE_HARDLIGHT);
}
void C_Image::BlendColorsColorDodge() {
    RunTrueColorRule(BLENDMODE_COLORDODGE);
}
void C_Image::BlendColorsColorBurn() {
    RunTrueColorRule(BLENDMODE_COLORBURN);
}
void C_Image::BlendColorsDarken() {
    RunTrueColorRule(BLENDMODE_DARKEN);
}
void C_Image::BlendColorsLighten() {
    RunTrueColorRule(BLENDMODE_LIGHTEN);
}
void C_Image::BlendColorsRGBDarken() {
    RunTrueColorRule(BLENDMODE_RGBDARKEN);
}
void C_Image::BlendColorsRGBLighten() {
    RunTrueColorRule(BLENDMODE_RGBLIGHTEN);
}
void C_Image::BlendColorsDifference() {
    RunTrueColorRule(BLENDMODE_DIFFERENCE);
}
void C_Image::BlendColorsExclusion() {
    RunTrueColorRule(BLENDMODE_EXCLUSION);
}
void C_Image::BlendColorsHue() {
    RunTrueColorRule(BLENDMODE_HUE);
}
void C_Image::BlendColorsSaturation() {
    RunTrueColorRule(BLENDMODE_SATURATION);
}
void C_Image::BlendColorsColor() {
    RunTrueColorRule(BLENDMODE_COLOR);
}
void C_Image::BlendColorsLuminosity() {
    RunTrueColorRule(BLENDMODE_LUMINOSITY);
}
void C_Image::BlendColorsSaturate() {
    RunTrueColorRule(BLENDMODE_SATURATE);
}
void C_Image::BlendColorsDeSaturate() {
    RunTrueColorRule(BLENDMODE_DESATURATE);
}

void C_Image::BlendColorsNormalMask() {
    RunGreyRule(BLENDMODE_NORMAL);
}
void C_Image::BlendColorsDissolveMask() {
    RunGreyRule(BLENDMODE_DISSOLVE);
}
void C_Image::BlendColorsMultiplyMask() {
    RunGreyRule(BLENDMODE_MULTIPLY);
}
void C_Image::BlendColorsScreenMask() {
    RunGreyRule(BLENDMODE_SCREEN);
}
void C_Image::BlendColorsOverlayMask() {
    RunGreyRule(BLENDMODE_OVERLAY);
}
void C_Image::BlendColorsSoftLightMask() {
    RunGreyRule(BLENDMODE_SOFTLIGHT);
}
void C_Image::BlendColorsHardLightMask() {
    RunGreyRule(BLENDMODE_HARDLIGHT);
}
void C_Image::BlendColorsColorDodgeMask() {
    RunGreyRule(BLENDMODE_COLORDODGE);
}
void C_Image::BlendColorsColorBurnMask() {
    RunGreyRule(BLENDMODE_COLORBURN);
}
void C_Image::BlendColorsDarkenMask() {
    RunGreyRule(BLENDMODE_DARKEN);
}
void C_Image::BlendColorsLightenMask() {
    RunGreyRule(BLENDMODE_LIGHTEN);
}
void C_Image::BlendColorsRGBDarkenMask() {
    RunGreyRule(BLENDMODE_RGBDARKEN);
}
void C_Image::BlendColorsRGBLightenMask() {
    RunGreyRule(BLENDMODE_RGBLIGHTEN);
}
void C_Image::BlendColorsDifferenceMask() {
    RunGreyRule(BLENDMODE_DIFFERENCE);
}
void C_Image::BlendColorsExclusionMask() {
    RunGreyRule(BLENDMODE_EXCLUSION);
}

void C_Image::BlendColorsFilter() {
    vistrane::blend::FilterTap taps[FILTER_KERNEL_TAPS];
    for (int t = 0; t < m_FilterNTaps; ++t) {
        taps[t] = Tap(m_FilterTapRows[t], m_FilterTapWeights[t]);
    }
    vistrane::blend::FilterPixel(taps, m_FilterNTaps, static_cast<int>(m_FilterSample),
                                 m_FilterPerChannel, m_FilterDivisor, m_FilterOffset, m_BlendResult,
                                 3, m_Helper);
}

void C_Image::BlendColorsFilterMask() {
    vistrane::blend::FilterTap taps[FILTER_KERNEL_TAPS];
    for (int t = 0; t < m_FilterNTaps; ++t) {
        taps[t] = Tap(m_FilterTapRows[t], m_FilterTapWeights[t]);
    }
    vistrane::blend::FilterPixel(taps, m_FilterNTaps, static_cast<int>(m_FilterSample),
                                 m_FilterPerChannel, m_FilterDivisor, m_FilterOffset, m_BlendResult,
                                 1, m_Helper);
}

void C_Image::BlendColorsSmudge() {
    vistrane::blend::SmudgePixel(m_pSmudgePixel, m_pSmudgeColor, m_BlendResult, m_SmudgeStrength,
                                 3);
}

void C_Image::BlendColorsSmudgeMask() {
    vistrane::blend::SmudgePixel(m_pSmudgePixel, m_pSmudgeColor, m_BlendResult, m_SmudgeStrength,
                                 1);
}

void C_Image::OpaqueMergeTrue(unsigned char opacity) {
    vistrane::blend::MergeTrueColorRow(m_pBlendDest, m_BlendResult, &opacity, 1);
}

void C_Image::OpaqueMergeCanEditTrue(unsigned char opacity) {
    vistrane::blend::MergeGreyRow(m_pBlendDest, m_BlendResult, &opacity, 1);
}

void C_Image::OpaqueMergePal(unsigned char opacity) {
    vistrane::blend::MergePaletteRow(m_pBlendDest, m_BlendResult, &opacity, 1);
}

int C_Image::PaintMasked(PAINT_COLORS color, BLENDMODES mode, int option, unsigned char opacity,
                         C_Image* mask, const CRect* rect) {
    if (!HasImage() || glb_LUTsCreatedOK() == 0) {
        return 0;
    }
    if (!vistrane::image::MaskArgumentFits(*this, mask)) {
        return 0;
    }
    FigureFillReplaceBlendingModeFunction(mode, option);
    const ImageKind kind = KindOf(*this);
    SetBlendSourceColor(kind == ImageKind::kTrueColor ? GetTruePaintColor(color)
                                                      : GetPalPaintColor(color));
    const CRect whole(0, 0, Width(), Height());
    const CRect area = rect != nullptr ? *rect : whole;
    const vistrane::image::PixelView target =
        vistrane::image::SubView(vistrane::image::ViewOf(*this), area);
    if (target.Empty()) {
        return 1;
    }
    vistrane::image::PixelView maskView;
    if (mask != nullptr) {
        maskView = vistrane::image::SubView(vistrane::image::ViewOf(*mask), area);
    }
    GdiFlush();
    vistrane::blend::BlendContext context{m_BlendModeOption, &m_Helper};
    return vistrane::blend::PaintRect(target, maskView, m_BlendSource, opacity,
                                      vistrane::blend::FillSelectorMode(mode, kind), kind, context)
               ? 1
               : 0;
}
