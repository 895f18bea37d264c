#include "common/frame_output.h"

#include "common/progress.h"

#include <algorithm>

#include <vistrane/platform/dc.h>
#include <vistrane/platform/keyboard.h>

namespace vistrane::cli {
namespace {

void SetKeys(const DragPoint& point) {
    SetKeyState(VK_SHIFT, point.shift);
    SetKeyState(VK_CONTROL, point.ctrl);
    SetKeyState(VK_MENU, point.alt);
}

// a over b at opacity alpha (0..255), rounded to nearest.
BYTE Over(BYTE a, BYTE b, unsigned alpha) {
    return static_cast<BYTE>((a * alpha + b * (255 - alpha) + 127) / 255);
}

void BlendPixel(BYTE* pixel, const BYTE* colour, unsigned alpha) {
    for (int channel = 0; channel < 3; ++channel) {
        pixel[channel] = Over(colour[channel], pixel[channel], alpha);
    }
}

// The picture in 24 bits, one column and one row larger than itself, and its mask to match;
// the extra pixels are unselected black.
bool PadForTransform(C_Image& picture, C_Image& mask, C_Image& paddedPicture, C_Image& paddedMask) {
    const long w = picture.Width();
    const long h = picture.Height();
    if (!paddedPicture.Create(w + 1, h + 1, 1, nullptr, 0) ||
        !paddedMask.CreateMask(w + 1, h + 1)) {
        return false;
    }
    paddedPicture.DibBlt(0, 0, w, h, &picture, 0, 0, 0);
    paddedMask.DibBlt(0, 0, w, h, &mask, 0, 0, 0);
    return true;
}

}  // namespace

void RunDrag(C_FreeXFormFrame& frame, const std::vector<DragPoint>& points) {
    if (points.size() < 2) {
        return;
    }
    SetKeys(points.front());
    frame.MouseButtonDown(points.front().point, nullptr);
    for (std::size_t i = 1; i < points.size(); ++i) {
        SetKeys(points[i]);
        frame.MouseMove(points[i].point, nullptr);
    }
    frame.MouseButtonUp(points.back().point);
    SetKeys(DragPoint());
}

bool SelectionBounds(C_Image& mask, CRect& bounds) {
    return mask.FindMinMaxSelPoints(255, &bounds) != 0;
}

std::string ConfirmFrame(const C_FreeXFormFrame& frame, C_Image& picture, C_Image& mask,
                         const CRect& bounds, const ConfirmOptions& options, C_Image& result,
                         C_Image& resultMask) {
    const long w = picture.Width();
    const long h = picture.Height();
    C_Image paddedPicture;
    C_Image paddedMask;
    if (!PadForTransform(picture, mask, paddedPicture, paddedMask) ||
        !result.Create(w, h, 1, nullptr, 0) || !resultMask.CreateMask(w, h)) {
        return "not enough memory for the transform";
    }
    result.DibBlt(0, 0, w, h, &paddedPicture, 0, 0, 0);

    CPoint points[C_FreeXFormFrame::kPointCount];
    frame.GetDrawPoints(points);
    // The frame lies on the selection's outer edges, but the transform maps its corners onto
    // the centres of the source rectangle's corner pixels (its width counts right - left - 1).
    // One more column and row in the source rectangle makes the two agree, so that a frame
    // that only moved copies every selected pixel exactly; the padding keeps that rectangle
    // inside the images, and its extra pixels are never sampled with any weight.
    CRect source(bounds.left, bounds.top, bounds.right + 1, bounds.bottom + 1);
    C_Image moved;
    C_Image movedMask;
    ProgressReporter progress("transforming");
    movedMask.SetProgressCallback(&ProgressReporter::Report, &progress);
    const FREEXFORM_RESULTS transformed = movedMask.MaskFreeXForm(
        points[FXF_TopLeft], points[FXF_TopRight], points[FXF_BottomRight], points[FXF_BottomLeft],
        &paddedMask, &moved, &paddedPicture, options.nearest ? 1 : 0, &source);
    progress.Finish();
    switch (transformed) {
        case FREEXFORM_OK:
            break;
        case FREEXFORM_NOTHING:
            return "the frame is degenerate: its opposite corners coincide or it has no area";
        case FREEXFORM_NOMEMORY:
            return "not enough memory for the transform";
        case FREEXFORM_NOSELECTION:
            return "the mask selects nothing";
    }

    if (!options.keepOriginal) {
        const BYTE fill[3] = {GetBValue(options.fill), GetGValue(options.fill),
                              GetRValue(options.fill)};
        for (long y = bounds.top; y < bounds.bottom; ++y) {
            const BYTE* selected = mask.PixelPtr(0, y);
            BYTE* pixel = result.PixelPtr(0, y);
            for (long x = bounds.left; x < bounds.right; ++x) {
                BlendPixel(pixel + 3 * x, fill, selected[x]);
            }
        }
    }

    // The transform's results cover the corners' bounding box from its top-left.
    long boxLeft = points[FXF_TopLeft].x;
    long boxTop = points[FXF_TopLeft].y;
    for (int k = FXF_TopRight; k < FXF_CloneVertex; k += 2) {
        boxLeft = std::min(boxLeft, static_cast<long>(points[k].x));
        boxTop = std::min(boxTop, static_cast<long>(points[k].y));
    }
    const long fromX = std::max(0L, -boxLeft);
    const long fromY = std::max(0L, -boxTop);
    const long toX = std::min(movedMask.Width(), w - boxLeft);
    const long toY = std::min(movedMask.Height(), h - boxTop);
    for (long y = fromY; y < toY; ++y) {
        const BYTE* selected = movedMask.PixelPtr(0, y);
        const BYTE* colour = moved.PixelPtr(0, y);
        BYTE* pixel = result.PixelPtr(0, boxTop + y);
        BYTE* selection = resultMask.PixelPtr(0, boxTop + y);
        for (long x = fromX; x < toX; ++x) {
            BlendPixel(pixel + 3 * (boxLeft + x), colour + 3 * x, selected[x]);
            selection[boxLeft + x] = selected[x];
        }
    }
    return {};
}

bool DrawFrame(C_FreeXFormFrame& frame, C_Image& picture, unsigned long colour) {
    CDC dc;
    if (!dc.CreateCompatibleDC(nullptr)) {
        return false;
    }
    CBitmap* oldBitmap = dc.SelectObject(picture.GetBitmap());
    CRect clip;
    picture.Rectangle(&clip);
    frame.DoShowOnDC(&dc, &clip, colour, 0);
    dc.SelectObject(oldBitmap);
    return true;
}

}  // namespace vistrane::cli
