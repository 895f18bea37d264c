#pragma once

// What a CDC handle points at. The path recorder and the text state live here; pixel drawing
// adds its target and tools beside them.

#include <vistrane/platform/geometry.h>

#include "platform/device_path.h"

class CFont;

namespace vistrane::platform {

struct DeviceContext {
    CFont* m_Font = nullptr;
    int m_BkMode = 2;  // OPAQUE
    CPoint m_Position;
    DevicePath m_Path;
};

}  // namespace vistrane::platform
