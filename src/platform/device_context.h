#pragma once

// What a CDC handle points at: the selected objects and the drawing modes. The vector-path part
// of the device (the path recorder, the font) adds its own members beside these.

#include <vistrane/platform/dc.h>
#include <vistrane/platform/geometry.h>

namespace vistrane::platform {

struct DeviceContext {
    // The objects a new device starts with, so that the first SelectObject of each kind has
    // something to hand back and restore later.
    CBitmap defaultBitmap;
    CPen defaultPen;
    CBrush defaultBrush;
    CPalette defaultPalette;
    // Wrappers for stock pens and brushes selected by number (SelectStockObject).
    CPen stockPen;
    CBrush stockBrush;

    CBitmap* bitmap = &defaultBitmap;
    CPen* pen = &defaultPen;
    CBrush* brush = &defaultBrush;
    CPalette* palette = &defaultPalette;

    int rop2 = R2_COPYPEN;
    int stretchMode = BLACKONWHITE;
    int bkMode = OPAQUE;
    CPoint viewportOrg;
    CPoint position;
};

}  // namespace vistrane::platform
