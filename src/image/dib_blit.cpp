#include "image/dib_blit.h"

#include <cstring>

namespace vistrane::image {

CRect ClipBlit(const PixelView& destination, const ConstPixelView& source, long x, long y,
               long width, long height, long sourceX, long sourceY) {
    CRect target(0, 0, 0, 0);
    const CRect wanted(static_cast<LONG>(x), static_cast<LONG>(y), static_cast<LONG>(x + width),
                       static_cast<LONG>(y + height));
    if (destination.Empty() || source.Empty() ||
        !target.IntersectRect(wanted, CRect(0, 0, destination.width, destination.height))) {
        return {};
    }
    CRect from(0, 0, 0, 0);
    if (!from.IntersectRect(CRect(static_cast<LONG>(sourceX), static_cast<LONG>(sourceY),
                                  source.width, source.height),
                            CRect(0, 0, source.width, source.height))) {
        return {};
    }
    from.OffsetRect(static_cast<LONG>(x - sourceX), static_cast<LONG>(y - sourceY));
    CRect area(0, 0, 0, 0);
    if (!area.IntersectRect(from, target)) {
        return {};
    }
    return area;
}

namespace {

void CopyRowOpaque(BYTE* out, const BYTE* in, int width, int from, int to, const RGBQUAD* colors) {
    if (from == to) {
        std::memcpy(out, in, static_cast<std::size_t>(width) * static_cast<std::size_t>(to));
        return;
    }
    for (int i = 0; i < width; ++i, out += 3) {
        const RGBQUAD& q = colors[in[i]];
        out[0] = q.rgbBlue;
        out[1] = q.rgbGreen;
        out[2] = q.rgbRed;
    }
}

void CopyRowTransparent(BYTE* out, const BYTE* in, int width, int from, int to,
                        const RGBQUAD* colors, const BlitTransparency& t) {
    for (int i = 0; i < width; ++i, in += from, out += to) {
        if (from == 3) {
            if (in[0] == t.color.rgbtBlue && in[1] == t.color.rgbtGreen &&
                in[2] == t.color.rgbtRed) {
                continue;
            }
            out[0] = in[0];
            out[1] = in[1];
            out[2] = in[2];
        } else if (in[0] != t.index) {
            if (to == 1) {
                out[0] = in[0];
            } else {
                const RGBQUAD& q = colors[in[0]];
                out[0] = q.rgbBlue;
                out[1] = q.rgbGreen;
                out[2] = q.rgbRed;
            }
        }
    }
}

}  // namespace

void DibBltRows(const PixelView& destination, const ConstPixelView& source, const CRect& area,
                CPoint offset, const BlitTransparency& transparency) {
    const int to = destination.bytesPerPixel;
    const int from = source.bytesPerPixel;
    if (area.IsRectEmpty() || (to == 1 && from == 3) ||
        (to == 3 && from == 1 && source.colors == nullptr)) {
        return;
    }
    const int width = area.Width();
    for (int y = area.top; y < area.bottom; ++y) {
        BYTE* out = destination.Pixel(area.left, y);
        const BYTE* in = source.Pixel(area.left + offset.x, y + offset.y);
        if (transparency.enabled) {
            CopyRowTransparent(out, in, width, from, to, source.colors, transparency);
        } else {
            CopyRowOpaque(out, in, width, from, to, source.colors);
        }
    }
}

}  // namespace vistrane::image
