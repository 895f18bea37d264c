#pragma once

// What a CDC handle points at: the selected objects, the drawing modes, and the path recorder
// with the font for text output.

#include <vistrane/platform/dc.h>
#include <vistrane/platform/geometry.h>

#include "platform/device_path.h"

class CFont;

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

    CFont* font = nullptr;
    DevicePath path;
};

}  // namespace vistrane::platform
