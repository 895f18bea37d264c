#pragma once

// What the xform subcommand and the demo share: driving a free transform frame with scripted
// mouse drags, confirming its corners on a picture's selection, and drawing it over a picture.

#include <string>
#include <vector>

#include <vistrane/frame/free_xform_frame.h>
#include <vistrane/image/image.h>

namespace vistrane::cli {

// One pointer position of a drag and the modifier keys held while the pointer is there.
struct DragPoint {
    CPoint point;
    bool shift = false;
    bool ctrl = false;
    bool alt = false;
};

// Press at the first point, move through the others, release at the last, with the keys of
// each point set (SetKeyState) before the pointer gets there. Every key is up afterwards.
// Fewer than two points do nothing.
void RunDrag(C_FreeXFormFrame& frame, const std::vector<DragPoint>& points);

// The rectangle a frame is made from: the bounds of the mask's selected pixels, right and bottom
// exclusive, so that the frame lies on the selection's outer edges. False when none is selected.
bool SelectionBounds(C_Image& mask, CRect& bounds);

struct ConfirmOptions {
    bool keepOriginal = false;                // leave the selection's pixels where they were
    unsigned long fill = RGB(255, 255, 255);  // else what the vacated selection becomes
    bool nearest = false;                     // nearest pixel instead of interpolating
};

// Carries out the frame's transform of the selection of `mask` (a mask of the picture's size,
// selecting within `bounds`, the rectangle the frame was made from): the selected pixels are
// lifted, mapped onto the frame's four corners and laid back over the picture, blended by their
// opacity; whatever falls outside the picture is dropped. `result` becomes a 24-bit picture of
// the input's size and `resultMask` the selection after the transform, of the same size.
// Returns an empty string, or why nothing could be made.
std::string ConfirmFrame(const C_FreeXFormFrame& frame, C_Image& picture, C_Image& mask,
                         const CRect& bounds, const ConfirmOptions& options, C_Image& result,
                         C_Image& resultMask);

// Draws the frame over `picture` (24-bit) in `colour`, the outline and handles plainly painted
// rather than XOR-ed so that a still picture shows them in that colour. False without a device.
bool DrawFrame(C_FreeXFormFrame& frame, C_Image& picture, unsigned long colour);

}  // namespace vistrane::cli
