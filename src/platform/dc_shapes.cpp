// Rectangles, rounded rectangles and ellipses are one shape: a box whose corners are quarters of
// an ellipse (radius 0 for a rectangle, half the box for an ellipse). The shape is described by
// its outline, the line through the centres of its edge pixels, in doubled coordinates so that
// half-pixel centres and radii stay integers. Growing the outline by half the pen width gives
// the pen's outer edge, shrinking it the inner edge: the pen is what lies between, the brush
// what lies inside. Each row of a convex shape is one span, so the cost is one square root per
// row and corner, and the pixels are written as spans.

#include <vistrane/platform/dc.h>

#include <algorithm>
#include <climits>
#include <cmath>

#include "platform/device_context.h"
#include "platform/gdi_objects.h"
#include "platform/raster_target.h"

namespace vistrane::platform {
namespace {

// Coordinates beyond this are clamped, so doubled values and their squares stay far from
// overflow; no bitmap comes near it.
constexpr int kCoordinateLimit = 1 << 24;

int Clamp(int v) {
    return std::clamp(v, -kCoordinateLimit, kCoordinateLimit);
}

long long FloorDiv2(long long v) {
    return v >= 0 ? v / 2 : -((-v + 1) / 2);
}
long long CeilDiv2(long long v) {
    return -FloorDiv2(-v);
}

struct RoundBox {
    long long left2, top2, right2, bottom2;  // doubled outline: pixel centres of the edges
    long long radiusX2, radiusY2;            // doubled corner radii
};

struct Span {
    int x0 = 0;
    int x1 = 0;  // exclusive
    bool Empty() const { return x0 >= x1; }
};

// The row y of the shape grown by grow2 / 2 pixels (shrunk when negative).
Span RowSpan(const RoundBox& box, int y, long long grow2) {
    const long long y2 = 2LL * y;
    if (y2 < box.top2 - grow2 || y2 > box.bottom2 + grow2) {
        return {};
    }
    long long x0 = CeilDiv2(box.left2 - grow2);
    long long x1 = FloorDiv2(box.right2 + grow2) + 1;
    const long long rx = box.radiusX2 + grow2;
    const long long ry = box.radiusY2 + grow2;
    if (box.radiusX2 > 0 && box.radiusY2 > 0 && rx > 0 && ry > 0) {
        const long long cornerTop = box.top2 + box.radiusY2;
        const long long cornerBottom = box.bottom2 - box.radiusY2;
        const long long dy =
            y2 < cornerTop ? cornerTop - y2 : (y2 > cornerBottom ? y2 - cornerBottom : 0);
        if (dy > 0) {
            if (dy > ry) {
                return {};
            }
            const double t = static_cast<double>(dy) / static_cast<double>(ry);
            const auto reach = static_cast<long long>(
                std::floor(static_cast<double>(rx) * std::sqrt(1.0 - t * t)));
            x0 = std::max(x0, CeilDiv2(box.left2 + box.radiusX2 - reach));
            x1 = std::min(x1, FloorDiv2(box.right2 - box.radiusX2 + reach) + 1);
        }
    }
    if (x0 >= x1) {
        return {};
    }
    return {static_cast<int>(x0), static_cast<int>(x1)};
}

BOOL DrawRoundBox(DeviceContext* dc, int left, int top, int right, int bottom, int ellipseWidth,
                  int ellipseHeight) {
    if (dc == nullptr) {
        return 0;
    }
    const RasterTarget target = TargetOf(*dc);
    const Pen* pen = AsPen(dc->pen->GetSafeHandle());
    const Brush* brush = AsBrush(dc->brush->GetSafeHandle());
    const Palette* palette = AsPalette(dc->palette->GetSafeHandle());
    if (!target.Valid() || pen == nullptr || brush == nullptr) {
        return 0;
    }
    int l = Clamp(std::min(left, right) + dc->viewportOrg.x);
    int r = Clamp(std::max(left, right) + dc->viewportOrg.x);
    int t = Clamp(std::min(top, bottom) + dc->viewportOrg.y);
    int b = Clamp(std::max(top, bottom) + dc->viewportOrg.y);
    // Without a pen the outline moves in by one on the right and below, and the brush covers up
    // to it, as GDI fills a pen-less shape.
    const bool noPen = pen->null;
    if (noPen) {
        --r;
        --b;
    }
    if (r <= l || b <= t) {
        return 1;
    }
    RoundBox box{2LL * l, 2LL * t, 2LL * (r - 1), 2LL * (b - 1), 0, 0};
    // A corner ellipse of e pixels has a doubled radius of e - 1, at most half the box.
    box.radiusX2 = std::clamp<long long>(ellipseWidth - 1LL, 0, (box.right2 - box.left2) / 2);
    box.radiusY2 = std::clamp<long long>(ellipseHeight - 1LL, 0, (box.bottom2 - box.top2) / 2);

    const long long penWidth = noPen ? 1 : pen->width;
    const PixelBytes penPixel = ColorToPixel(target, pen->color, palette);
    const PixelBytes brushPixel = ColorToPixel(target, brush->color, palette);
    const int rowFirst = std::max(0, t - static_cast<int>(penWidth));
    const int rowEnd = std::min(target.height, b + static_cast<int>(penWidth));
    for (int y = rowFirst; y < rowEnd; ++y) {
        const Span outer = RowSpan(box, y, penWidth);
        if (outer.Empty()) {
            continue;
        }
        if (noPen) {
            if (!brush->hollow) {
                MixSpan(target, y, outer.x0, outer.x1, brushPixel, dc->rop2);
            }
            continue;
        }
        const Span inner = RowSpan(box, y, -penWidth);
        if (inner.Empty()) {
            MixSpan(target, y, outer.x0, outer.x1, penPixel, dc->rop2);
            continue;
        }
        MixSpan(target, y, outer.x0, inner.x0, penPixel, dc->rop2);
        MixSpan(target, y, inner.x1, outer.x1, penPixel, dc->rop2);
        if (!brush->hollow) {
            MixSpan(target, y, inner.x0, inner.x1, brushPixel, dc->rop2);
        }
    }
    return 1;
}

}  // namespace
}  // namespace vistrane::platform

BOOL CDC::Rectangle(int left, int top, int right, int bottom) {
    return vistrane::platform::DrawRoundBox(m_hDC, left, top, right, bottom, 0, 0);
}

BOOL CDC::RoundRect(int left, int top, int right, int bottom, int ellipseWidth, int ellipseHeight) {
    return vistrane::platform::DrawRoundBox(m_hDC, left, top, right, bottom, ellipseWidth,
                                            ellipseHeight);
}

BOOL CDC::Ellipse(int left, int top, int right, int bottom) {
    // A corner ellipse as large as the box makes the whole shape one ellipse.
    return vistrane::platform::DrawRoundBox(m_hDC, left, top, right, bottom, INT_MAX, INT_MAX);
}

void CDC::FillSolidRect(int x, int y, int width, int height, COLORREF color) {
    const CRect rect(x, y, x + width, y + height);
    FillSolidRect(&rect, color);
}

void CDC::FillSolidRect(const RECT* r, COLORREF color) {
    using vistrane::platform::RasterTarget;
    if (m_hDC == nullptr || r == nullptr) {
        return;
    }
    const RasterTarget target = vistrane::platform::TargetOf(*m_hDC);
    if (!target.Valid()) {
        return;
    }
    const auto pixel = vistrane::platform::ColorToPixel(
        target, color, vistrane::platform::AsPalette(m_hDC->palette->GetSafeHandle()));
    const int x0 = std::min(r->left, r->right) + m_hDC->viewportOrg.x;
    const int x1 = std::max(r->left, r->right) + m_hDC->viewportOrg.x;
    const int y0 = std::max(std::min(r->top, r->bottom) + m_hDC->viewportOrg.y, 0);
    const int y1 = std::min(std::max(r->top, r->bottom) + m_hDC->viewportOrg.y, target.height);
    for (int y = y0; y < y1; ++y) {
        vistrane::platform::CopySpan(target, y, x0, x1, pixel);
    }
}
