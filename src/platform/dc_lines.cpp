// Lines. A width-1 line is Bresenham's, without its last point, so that the segments of a
// polyline meet without touching a pixel twice (R2_XORPEN stays reversible). A wider line is
// the set of pixel centres within half the width of the segments (round ends and joins); a
// polyline's segments are collected into one coverage map first, so overlapping segments still
// touch each pixel once. Cost: the line's length for width 1, its bounding box for wider pens.

#include <vistrane/platform/dc.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "platform/device_context.h"
#include "platform/gdi_objects.h"
#include "platform/raster_target.h"

namespace vistrane::platform {
namespace {

void ThinLine(const RasterTarget& target, POINT from, POINT to, const PixelBytes& pixel, int rop2) {
    const int dx = std::abs(to.x - from.x);
    const int dy = -std::abs(to.y - from.y);
    const int stepX = from.x < to.x ? 1 : -1;
    const int stepY = from.y < to.y ? 1 : -1;
    int error = dx + dy;
    int x = from.x;
    int y = from.y;
    while (x != to.x || y != to.y) {
        MixSpan(target, y, x, x + 1, pixel, rop2);
        const int twice = 2 * error;
        if (twice >= dy) {
            error += dy;
            x += stepX;
        }
        if (twice <= dx) {
            error += dx;
            y += stepY;
        }
    }
}

double SquaredDistanceToSegment(double px, double py, POINT a, POINT b) {
    const double vx = b.x - a.x;
    const double vy = b.y - a.y;
    const double wx = px - a.x;
    const double wy = py - a.y;
    const double length2 = vx * vx + vy * vy;
    double t = length2 > 0 ? (wx * vx + wy * vy) / length2 : 0.0;
    t = std::clamp(t, 0.0, 1.0);
    const double ex = wx - t * vx;
    const double ey = wy - t * vy;
    return ex * ex + ey * ey;
}

void WideLines(const RasterTarget& target, const POINT* points, int count, int width,
               const PixelBytes& pixel, int rop2) {
    const int reach = width / 2 + 1;
    int x0 = points[0].x;
    int x1 = points[0].x;
    int y0 = points[0].y;
    int y1 = points[0].y;
    for (int i = 1; i < count; ++i) {
        x0 = std::min(x0, points[i].x);
        x1 = std::max(x1, points[i].x);
        y0 = std::min(y0, points[i].y);
        y1 = std::max(y1, points[i].y);
    }
    x0 = std::max(x0 - reach, 0);
    y0 = std::max(y0 - reach, 0);
    x1 = std::min(x1 + reach + 1, target.width);
    y1 = std::min(y1 + reach + 1, target.height);
    if (x0 >= x1 || y0 >= y1) {
        return;
    }
    const double radius2 = width * width / 4.0;
    const int boxWidth = x1 - x0;
    std::vector<BYTE> covered(static_cast<std::size_t>(boxWidth));
    for (int y = y0; y < y1; ++y) {
        std::fill(covered.begin(), covered.end(), BYTE{0});
        for (int i = 1; i < count; ++i) {
            for (int x = x0; x < x1; ++x) {
                if (SquaredDistanceToSegment(x, y, points[i - 1], points[i]) <= radius2) {
                    covered[static_cast<std::size_t>(x - x0)] = 1;
                }
            }
        }
        int x = 0;
        while (x < boxWidth) {
            if (covered[static_cast<std::size_t>(x)] == 0) {
                ++x;
                continue;
            }
            const int start = x;
            while (x < boxWidth && covered[static_cast<std::size_t>(x)] != 0) {
                ++x;
            }
            MixSpan(target, y, x0 + start, x0 + x, pixel, rop2);
        }
    }
}

// Draws the polyline in device coordinates with the selected pen.
BOOL DrawLines(DeviceContext* dc, const POINT* points, int count) {
    const RasterTarget target = TargetOf(*dc);
    const Pen* pen = AsPen(dc->pen->GetSafeHandle());
    if (!target.Valid() || pen == nullptr) {
        return 0;
    }
    if (pen->null) {
        return 1;
    }
    const PixelBytes pixel =
        ColorToPixel(target, pen->color, AsPalette(dc->palette->GetSafeHandle()));
    if (pen->width <= 1) {
        for (int i = 1; i < count; ++i) {
            ThinLine(target, points[i - 1], points[i], pixel, dc->rop2);
        }
    } else {
        WideLines(target, points, count, pen->width, pixel, dc->rop2);
    }
    return 1;
}

}  // namespace
}  // namespace vistrane::platform

CPoint CDC::MoveTo(int x, int y) {
    if (m_hDC == nullptr) {
        return {};
    }
    const CPoint previous = m_hDC->position;
    m_hDC->position = CPoint(x, y);
    if (m_hDC->path.IsRecording()) {
        m_hDC->path.BreakFigure();
    }
    return previous;
}

BOOL CDC::LineTo(int x, int y) {
    if (m_hDC == nullptr) {
        return 0;
    }
    // Inside a path bracket a line becomes part of the path instead of pixels.
    if (m_hDC->path.IsRecording()) {
        m_hDC->path.AddLine(m_hDC->position, POINT{x, y});
        m_hDC->position = CPoint(x, y);
        return 1;
    }
    const CPoint origin = m_hDC->viewportOrg;
    const POINT ends[2] = {m_hDC->position + origin, CPoint(x, y) + origin};
    m_hDC->position = CPoint(x, y);
    return vistrane::platform::DrawLines(m_hDC, ends, 2);
}

BOOL CDC::Polyline(const POINT* points, int count) {
    if (m_hDC == nullptr || points == nullptr || count < 2) {
        return 0;
    }
    std::vector<POINT> device(points, points + count);
    for (POINT& p : device) {
        p.x += m_hDC->viewportOrg.x;
        p.y += m_hDC->viewportOrg.y;
    }
    return vistrane::platform::DrawLines(m_hDC, device.data(), count);
}
