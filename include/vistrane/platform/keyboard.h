#pragma once

// The modifier-key state that interactive frames read. The library has no input of its own: the
// host calls SetKeyState from its key events, and GetKeyState reports what it was told.

#include <vistrane/export.h>
#include <vistrane/platform/types.h>

constexpr int VK_SHIFT = 0x10;
constexpr int VK_CONTROL = 0x11;
constexpr int VK_MENU = 0x12;  // ALT

// The key's state: the high bit is set (the value is negative) while the key is down.
VISTRANE_API SHORT GetKeyState(int virtualKey);
// Records a key as pressed or released; keys outside 0..255 are ignored.
VISTRANE_API void SetKeyState(int virtualKey, bool down);
