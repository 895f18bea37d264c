// C_Image's colour operations. Palette images change their colour table only; 24-bit and grey
// images change their pixels through color_ops.cpp under the mask rule.

#include <vistrane/companion/user_curve.h>
#include <vistrane/image/image.h>

#include "filter/color_ops.h"
#include "image/pixel_view.h"
#include "image/progress.h"
#include "image/temporary_image.h"

#include <algorithm>

using vistrane::image::MaskArgumentFits;
using vistrane::image::MaskArgumentView;

namespace {

constexpr int kParamMin[kColorOperCount][3] = {
    {0, 0, 0},   {0, 0, 0},   {-255, -255, -255}, {-99, -99, -99},
    {-64, 0, 0}, {-99, 0, 0}, {-359, -255, -255}, {-255, -255, -255},
    {0, 0, 0},   {0, 0, 0},   {0, 0, 0},
};
constexpr int kParamMax[kColorOperCount][3] = {
    {0, 0, 0},       {0, 0, 0},       {255, 255, 255}, {300, 300, 300}, {64, 0, 0}, {300, 0, 0},
    {359, 255, 255}, {255, 255, 255}, {200, 0, 0},     {99, 0, 0},      {5, 0, 0},
};
// Gamma parameters p map to the gamma (p + 100) / 100.
constexpr double kGammaDivisor = 100.0;

bool PaletteImage(const C_Image& image) {
    return image.HasImage() && !image.CanEditTrueColor();
}

}  // namespace

void C_Image::GetColorOperParams(COLOROPER_TYPE type, int* min, int* max, int* def) {
    const int row = type >= 0 && type < kColorOperCount ? type : 0;
    for (int i = 0; i < 3; ++i) {
        min[i] = kParamMin[row][i];
        max[i] = kParamMax[row][i];
        def[i] = 0;
    }
}

void C_Image::ColorOperation(COLOROPER_TYPE type, int* params, C_Image* mask) {
    if (!MaskArgumentFits(*this, mask)) {
        return;
    }
    if (type == COLOROPER_NEGATIVE || type == COLOROPER_GRAYSCALE) {
        TurnGrayNeg(type == COLOROPER_GRAYSCALE, mask);
        return;
    }
    BYTE tables[3][256];
    switch (type) {
        case COLOROPER_RGB_OFFSET:
            for (int c = 0; c < 3; ++c) {
                m_Helper.FillRGBOffTable(tables[c], params[c]);
            }
            break;
        case COLOROPER_RGB_GAMMA:
            for (int c = 0; c < 3; ++c) {
                m_Helper.FillGammaTable(tables[c], (params[c] + 100.0) / kGammaDivisor);
            }
            break;
        case COLOROPER_CONTRAST:
            m_Helper.FillContrastTable(tables[0], params[0]);
            break;
        case COLOROPER_GAMMA:
            m_Helper.FillGammaTable(tables[0], (params[0] + 100.0) / kGammaDivisor);
            break;
        case COLOROPER_LOG_CONTRAST:
            m_Helper.FillLogContrastTable(tables[0], params[0]);
            break;
        case COLOROPER_SINEH_CONTRAST:
            m_Helper.FillSineHContrastTable(tables[0], params[0]);
            break;
        case COLOROPER_EXP_CONTRAST:
            m_Helper.FillExpContrastTable(tables[0], params[0]);
            break;
        default:
            if (PaletteImage(*this)) {
                RGBQUAD colours[256];
                const unsigned long n = NColors();
                CopyRGBQs(colours, n);
                if (type == COLOROPER_HSV) {
                    m_Helper.ChangeRGBQHSV(colours, static_cast<int>(n), params[0], params[1],
                                           params[2]);
                } else {
                    m_Helper.ChangeRGBQYUV(colours, static_cast<int>(n), params[0], params[1],
                                           params[2]);
                }
                SetRGBQs(colours, n, 1);
            } else {
                PixelColorOperation(type, params, mask);
            }
            return;
    }
    if (type != COLOROPER_RGB_OFFSET && type != COLOROPER_RGB_GAMMA) {
        std::copy(tables[0], tables[0] + 256, tables[1]);
        std::copy(tables[0], tables[0] + 256, tables[2]);
    }
    LUTColorOperation(tables[0], tables[1], tables[2], mask);
}

void C_Image::PixelColorOperation(COLOROPER_TYPE type, int* params, C_Image* mask) {
    if (!HasImage() || !CanEditTrueColor() || (type != COLOROPER_HSV && type != COLOROPER_YUV) ||
        !MaskArgumentFits(*this, mask)) {
        return;
    }
    GdiFlush();
    vistrane::filter::ColorOpArgs args;
    args.op = type == COLOROPER_HSV ? vistrane::filter::ColorRowOp::kShiftHsv
                                    : vistrane::filter::ColorRowOp::kShiftYuv;
    args.shifts = params;
    const vistrane::image::Progress progress(*this, Height());
    args.progress = &progress;
    vistrane::filter::ApplyColorOp(vistrane::image::ViewOf(*this), MaskArgumentView(mask), args,
                                   m_Helper);
}

void C_Image::LUTColorOperation(unsigned char* red, unsigned char* green, unsigned char* blue,
                                C_Image* mask) {
    if (!HasImage() || !MaskArgumentFits(*this, mask)) {
        return;
    }
    GdiFlush();
    if (PaletteImage(*this)) {
        RGBQUAD* colours = RGBQs();
        for (unsigned long i = 0; i < NColors(); ++i) {
            colours[i] = RGBQUAD{blue[colours[i].rgbBlue], green[colours[i].rgbGreen],
                                 red[colours[i].rgbRed], 0};
        }
        RenewPalette();
        return;
    }
    vistrane::filter::ColorOpArgs args;
    args.tables = {red, green, blue};
    const vistrane::image::Progress progress(*this, Height());
    args.progress = &progress;
    vistrane::filter::ApplyColorOp(vistrane::image::ViewOf(*this), MaskArgumentView(mask), args,
                                   m_Helper);
}

int C_Image::UserColorOperation(S_OneUserColorOper* oper, S_CalcColorError* error, C_Image* mask) {
    if (!MaskArgumentFits(*this, mask)) {
        return 0;
    }
    BYTE tables[3][256];
    if (m_Helper.FillUserColorOperLUTs(oper, error, tables[0], tables[1], tables[2]) == 0) {
        return 0;
    }
    LUTColorOperation(tables[0], tables[1], tables[2], mask);
    return 1;
}

int C_Image::TurnGrayNeg(int gray, C_Image* mask) {
    if (!MaskArgumentFits(*this, mask)) {
        return 0;
    }
    if (!HasImage()) {
        return 1;
    }
    GdiFlush();
    if (PaletteImage(*this)) {
        RGBQUAD* colours = RGBQs();
        for (unsigned long i = 0; i < NColors(); ++i) {
            RGBQUAD& c = colours[i];
            if (gray != 0) {
                const BYTE g = static_cast<BYTE>((c.rgbBlue + c.rgbGreen + c.rgbRed) / 3);
                c.rgbBlue = c.rgbGreen = c.rgbRed = g;
            } else {
                c.rgbBlue = static_cast<BYTE>(255 - c.rgbBlue);
                c.rgbGreen = static_cast<BYTE>(255 - c.rgbGreen);
                c.rgbRed = static_cast<BYTE>(255 - c.rgbRed);
            }
        }
        RenewPalette();
        return 1;
    }
    vistrane::filter::ColorOpArgs args;
    args.op =
        gray != 0 ? vistrane::filter::ColorRowOp::kGray : vistrane::filter::ColorRowOp::kNegative;
    const vistrane::image::Progress progress(*this, Height());
    args.progress = &progress;
    return vistrane::filter::ApplyColorOp(vistrane::image::ViewOf(*this), MaskArgumentView(mask),
                                          args, m_Helper)
               ? 1
               : 0;
}

int C_Image::TurnRGBNeg(C_Image* mask) {
    if (!MaskArgumentFits(*this, mask)) {
        return 0;
    }
    GdiFlush();
    if (!HasImage()) {
        return 1;
    }
    if (!IsTrueColor()) {
        RGBQUAD* colours = RGBQs();
        for (unsigned long i = 0; i < NColors(); ++i) {
            colours[i].rgbBlue = static_cast<BYTE>(255 - colours[i].rgbBlue);
            colours[i].rgbGreen = static_cast<BYTE>(255 - colours[i].rgbGreen);
            colours[i].rgbRed = static_cast<BYTE>(255 - colours[i].rgbRed);
        }
        RenewPalette();
        return 1;
    }
    vistrane::filter::NegativeWhereSelected(vistrane::image::ViewOf(*this), MaskArgumentView(mask));
    return 1;
}

int C_Image::TurnGrayPalette() {
    if (!HasImage()) {
        return 0;
    }
    GdiFlush();
    const vistrane::image::PixelView view = vistrane::image::ViewOf(*this);
    if (!IsTrueColor()) {
        vistrane::filter::GreyLevels(view, view);
        if (!HasGrayPalette()) {
            FillGrayColors();
        }
        return 1;
    }
    vistrane::image::TemporaryImage grey = vistrane::image::NewTemporary();
    if (!grey || grey->CreateMask(Width(), Height()) == 0) {
        return 0;
    }
    vistrane::filter::GreyLevels(vistrane::image::ViewOf(*grey), view);
    TransformInto(grey.release(), 1);
    return 1;
}

void C_Image::ColorizeMasked(COLORIZE_METHOD method, unsigned char a, unsigned char b,
                             C_Image* mask) {
    if (!HasImage() || !IsTrueColor() || !MaskArgumentFits(*this, mask)) {
        return;
    }
    GdiFlush();
    vistrane::filter::Colorize(vistrane::image::ViewOf(*this), MaskArgumentView(mask),
                               method == COLORIZE_YUV, a, b, m_Helper);
}

void C_Image::VerticalGradient(COLORIZE_METHOD method, unsigned char a, unsigned char b) {
    if (method == COLORIZE_YUV) {
        VerticalYUVGradient(a, b);
    } else {
        VerticalHSLGradient(a, b);
    }
}

void C_Image::VerticalHSLGradient(unsigned char hue, unsigned char saturation) {
    if (HasImage() && IsTrueColor()) {
        GdiFlush();
        vistrane::filter::VerticalGradientFill(vistrane::image::ViewOf(*this), false, hue,
                                               saturation, m_Helper);
    }
}

void C_Image::VerticalYUVGradient(unsigned char u, unsigned char v) {
    if (HasImage() && IsTrueColor()) {
        GdiFlush();
        vistrane::filter::VerticalGradientFill(vistrane::image::ViewOf(*this), true, u, v,
                                               m_Helper);
    }
}

void C_Image::SeparateChannels(C_Image* first, C_Image* second, C_Image* third,
                               COLOR_CHANNELS channels) {
    C_Image* planes[3] = {first, second, third};
    vistrane::image::PixelView views[3];
    for (int i = 0; i < 3; ++i) {
        if (planes[i] == nullptr || !planes[i]->HasImage() || planes[i]->BitCount() != 8 ||
            !SameDimensionsAs(planes[i])) {
            return;
        }
        views[i] = vistrane::image::ViewOf(*planes[i]);
    }
    if (!HasImage()) {
        return;
    }
    GdiFlush();
    vistrane::filter::SeparateInto(vistrane::image::ViewOf(*this), views, channels == CHANNELS_YUV,
                                   m_Helper);
}

void C_Image::CombineChannels(C_Image* first, C_Image* second, C_Image* third,
                              COLOR_CHANNELS channels) {
    if (!HasImage() || !IsTrueColor()) {
        return;
    }
    CRect area(0, 0, Width(), Height());
    C_Image* sources[3] = {first, second, third};
    for (C_Image* source : sources) {
        if (source == nullptr || !source->HasImage()) {
            return;
        }
        CRect r;
        source->Rectangle(&r);
        area.IntersectRect(area, r);
    }
    vistrane::image::PixelView views[3];
    for (int i = 0; i < 3; ++i) {
        views[i] = vistrane::image::SubView(vistrane::image::ViewOf(*sources[i]), area);
    }
    const vistrane::image::PixelView target =
        vistrane::image::SubView(vistrane::image::ViewOf(*this), area);
    if (target.Empty()) {
        return;
    }
    GdiFlush();
    vistrane::filter::CombineFrom(target, views, channels == CHANNELS_YUV, m_Helper);
}

void C_Image::RGB2BRG() {
    if (HasImage() && IsTrueColor()) {
        GdiFlush();
        vistrane::filter::SwapFirstAndThirdBytes(vistrane::image::ViewOf(*this));
    }
}
