#include "filter/color_ops.h"

#include "filter/hsv_shift.h"
#include "filter/lut_bytes.h"
#include "image/progress.h"

#include <algorithm>
#include <memory>
#include <new>
#include <vector>

namespace vistrane::filter {
namespace {

const BYTE* MaskRow(const image::PixelView& mask, int y) {
    return mask.Empty() ? nullptr : mask.Row(y);
}

bool Selected(const BYTE* maskRow, int x) {
    return maskRow == nullptr || maskRow[x] == 255;
}

// The colour of a pixel as blue, green, red, also for 8-bit views.
void ColourOf(const image::PixelView& view, const BYTE* row, int x, BYTE* bgr) {
    if (view.bytesPerPixel == 3) {
        std::copy(row + 3 * x, row + 3 * x + 3, bgr);
        return;
    }
    const RGBQUAD& c = view.colors[row[x]];
    bgr[0] = c.rgbBlue, bgr[1] = c.rgbGreen, bgr[2] = c.rgbRed;
}

// False when the host cancelled.
bool RunColorOp(const image::PixelView& view, const image::PixelView& mask, const ColorOpArgs& args,
                C_Helper& helper) {
    // Unmasked, a grey table or three equal tables act on every byte alike.
    const bool grey = view.bytesPerPixel == 1;
    if (args.op == ColorRowOp::kLut && mask.Empty() &&
        (grey || (std::equal(args.tables.red, args.tables.red + 256, args.tables.green) &&
                  std::equal(args.tables.red, args.tables.red + 256, args.tables.blue)))) {
        const LutBytesFn lut = LutBytesFor(cpu::Best());
        for (int y = 0; y < view.height; ++y) {
            if (!image::GoOn(args.progress, y)) {
                return false;
            }
            lut(view.Row(y), view.RowBytes(), args.tables.red);
        }
        return true;
    }
    if (args.op == ColorRowOp::kLut && mask.Empty()) {
        auto lut = std::make_unique<BgrLut>();
        FillBgrLut(*lut, args.tables.blue, args.tables.green, args.tables.red);
        for (int y = 0; y < view.height; ++y) {
            if (!image::GoOn(args.progress, y)) {
                return false;
            }
            LutBgrWords(view.Row(y), view.width, *lut);
        }
        return true;
    }
    std::vector<BYTE> scratch(static_cast<std::size_t>(view.width) * 3);
    std::unique_ptr<HsvShifter> hsvShifter;
    if (args.op == ColorRowOp::kShiftHsv && !grey) {
        hsvShifter = std::make_unique<HsvShifter>(args.shifts[0], args.shifts[1], args.shifts[2]);
    }
    for (int y = 0; y < view.height; ++y) {
        if (!image::GoOn(args.progress, y)) {
            return false;
        }
        BYTE* row = view.Row(y);
        const BYTE* m = MaskRow(mask, y);
        switch (args.op) {
            case ColorRowOp::kLut:
                if (grey) {
                    LutRowGrey(row, view.width, args.tables.red, m, scratch.data());
                } else {
                    LutRowTrueColor(row, view.width, args.tables, m, scratch.data());
                }
                break;
            case ColorRowOp::kGray:
                if (!grey) {
                    GrayRowTrueColor(row, view.width, m, scratch.data());
                }
                break;
            case ColorRowOp::kNegative:
                NegativeRow(row, view.width, view.bytesPerPixel, m, scratch.data());
                break;
            case ColorRowOp::kShiftHsv:
            case ColorRowOp::kShiftYuv: {
                const bool hsv = args.op == ColorRowOp::kShiftHsv;
                if (grey) {
                    ShiftRowGrey(row, view.width, hsv, args.shifts, view.colors, m, scratch.data(),
                                 helper);
                } else if (hsv) {
                    ShiftHsvRowTrueColor(row, view.width, *hsvShifter, m, scratch.data());
                } else {
                    ShiftYuvRowTrueColor(row, view.width, args.shifts, m, scratch.data(), helper);
                }
                break;
            }
        }
    }
    return true;
}

}  // namespace

bool ApplyColorOp(const image::PixelView& view, const image::PixelView& mask,
                  const ColorOpArgs& args, C_Helper& helper) {
    // Every allocation comes before the first pixel is written, so a failed one leaves the view
    // as it was; a cancel puts back the rows done, from a copy taken only when a host watches.
    image::RowsSnapshot before;
    try {
        if (args.progress != nullptr && args.progress->Active() && !before.Take(view)) {
            return false;
        }
        if (RunColorOp(view, mask, args, helper) &&
            (args.progress == nullptr || args.progress->Report(view.height))) {
            return true;
        }
    } catch (const std::bad_alloc&) {
        return false;
    }
    before.Restore();
    return false;
}

void NegativeWhereSelected(const image::PixelView& view, const image::PixelView& mask) {
    for (int y = 0; y < view.height; ++y) {
        BYTE* row = view.Row(y);
        const BYTE* m = MaskRow(mask, y);
        for (int x = 0; x < view.width; ++x) {
            if (Selected(m, x)) {
                for (int c = 0; c < view.bytesPerPixel; ++c) {
                    row[x * view.bytesPerPixel + c] =
                        static_cast<BYTE>(255 - row[x * view.bytesPerPixel + c]);
                }
            }
        }
    }
}

void Colorize(const image::PixelView& view, const image::PixelView& mask, bool yuv, BYTE a, BYTE b,
              C_Helper& helper) {
    for (int y = 0; y < view.height; ++y) {
        BYTE* row = view.Row(y);
        const BYTE* m = MaskRow(mask, y);
        for (int x = 0; x < view.width; ++x) {
            if (!Selected(m, x)) {
                continue;
            }
            BYTE* p = row + 3 * x;
            if (yuv) {
                helper.RGBFromYUV(helper.YFromRGB(p[2], p[1], p[0]), a, b, &p[2], &p[1], &p[0]);
                continue;
            }
            BYTE hue, saturation, lightness;
            helper.HSLFromRGB(p[2], p[1], p[0], &hue, &saturation, &lightness);
            if (hue == 255) {
                // Hue-less pixels are not tinted: they become their plain grey average.
                p[0] = p[1] = p[2] = static_cast<BYTE>((p[0] + p[1] + p[2]) / 3);
            } else {
                helper.RGBFromHSL(a, b, lightness, &p[2], &p[1], &p[0]);
            }
        }
    }
}

void VerticalGradientFill(const image::PixelView& view, bool yuv, BYTE a, BYTE b,
                          C_Helper& helper) {
    const int d = std::max(view.height - 1, 1);
    const int top = yuv ? 255 : 240;
    for (int k = 0; k < view.height; ++k) {
        const int level = (d / 2 + top * k) / d;
        BYTE bgr[3];
        if (yuv) {
            helper.RGBFromYUV(static_cast<BYTE>(level), a, b, &bgr[2], &bgr[1], &bgr[0]);
        } else {
            helper.RGBFromHSL(a, b, static_cast<WORD>(level), &bgr[2], &bgr[1], &bgr[0]);
        }
        // Storage row k is picture row height - 1 - k (rows are stored bottom-up).
        BYTE* row = view.Row(view.height - 1 - k);
        for (int x = 0; x < view.width; ++x) {
            std::copy(bgr, bgr + 3, row + 3 * x);
        }
    }
}

void GreyLevels(const image::PixelView& dst, const image::PixelView& source) {
    for (int y = 0; y < source.height; ++y) {
        const BYTE* in = source.Row(y);
        BYTE* out = dst.Row(y);
        for (int x = 0; x < source.width; ++x) {
            BYTE bgr[3] = {0, 0, 0};
            ColourOf(source, in, x, bgr);
            out[x] = bgr[0] == bgr[1] && bgr[1] == bgr[2]
                         ? bgr[0]
                         : static_cast<BYTE>((bgr[0] + bgr[1] + bgr[2]) / 3);
        }
    }
}

void SeparateInto(const image::PixelView& source, const image::PixelView* planes, bool yuv,
                  C_Helper& helper) {
    for (int y = 0; y < source.height; ++y) {
        const BYTE* in = source.Row(y);
        BYTE* out[3] = {planes[0].Row(y), planes[1].Row(y), planes[2].Row(y)};
        for (int x = 0; x < source.width; ++x) {
            BYTE bgr[3] = {0, 0, 0};
            ColourOf(source, in, x, bgr);
            if (yuv) {
                helper.YUVFromRGB(bgr[2], bgr[1], bgr[0], &out[0][x], &out[1][x], &out[2][x]);
            } else {
                out[0][x] = bgr[2], out[1][x] = bgr[1], out[2][x] = bgr[0];
            }
        }
    }
}

void CombineFrom(const image::PixelView& view, const image::PixelView* sources, bool yuv,
                 C_Helper& helper) {
    for (int y = 0; y < view.height; ++y) {
        BYTE* row = view.Row(y);
        for (int x = 0; x < view.width; ++x) {
            BYTE level[3];
            for (int s = 0; s < 3; ++s) {
                BYTE bgr[3] = {0, 0, 0};
                ColourOf(sources[s], sources[s].Row(y), x, bgr);
                level[s] = helper.YFromRGB(bgr[2], bgr[1], bgr[0]);
            }
            BYTE* p = row + 3 * x;
            if (yuv) {
                helper.RGBFromYUV(level[0], level[1], level[2], &p[2], &p[1], &p[0]);
            } else {
                p[2] = level[0], p[1] = level[1], p[0] = level[2];
            }
        }
    }
}

void SwapFirstAndThirdBytes(const image::PixelView& view) {
    for (int y = 0; y < view.height; ++y) {
        BYTE* row = view.Row(y);
        for (int x = 0; x < view.width; ++x) {
            std::swap(row[3 * x], row[3 * x + 2]);
        }
    }
}

}  // namespace vistrane::filter
