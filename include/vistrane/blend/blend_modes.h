#pragma once

// Blending modes. The numbers are part of the interface: hosts store them.
//
// A painting, filling or filtering operation combines its new colour (the source s) with the
// pixel already there (the destination d). Per channel, with LUT[s][d] the tables of
// image_luts.h:
//   NORMAL s;  DISSOLVE s where Random0Max(100) < option, else d (one draw per pixel);
//   MULTIPLY, SCREEN, OVERLAY, HARDLIGHT, COLORDODGE, COLORBURN, EXCLUSION their tables
//   (OVERLAY and HARDLIGHT give the same bytes);  SOFTLIGHT gamma row s / 2 + 64;
//   DARKEN min(s, d);  LIGHTEN max(s, d);  DIFFERENCE |s - d|;
//   RGBDARKEN d - 8 and RGBLIGHTEN d + 8, clamped, whatever the source;
//   HUE, SATURATION, COLOR, LUMINOSITY mix the HSL components of s and d (24-bit only);
//   SATURATE and DESATURATE move d's HSL saturation by +24 or -24 (24-bit only);
//   FILTER1..4 compute s from the neighbourhood and SMUDGE drags colour along a stroke
//   (painting only).
// Any value outside 1..25 means NORMAL.

enum BLENDMODES {
    BLENDMODE_NORMAL = 0,
    BLENDMODE_DISSOLVE = 1,
    BLENDMODE_MULTIPLY = 2,
    BLENDMODE_SCREEN = 3,
    BLENDMODE_OVERLAY = 4,
    BLENDMODE_SOFTLIGHT = 5,
    BLENDMODE_HARDLIGHT = 6,
    BLENDMODE_COLORDODGE = 7,
    BLENDMODE_COLORBURN = 8,
    BLENDMODE_DARKEN = 9,
    BLENDMODE_LIGHTEN = 10,
    BLENDMODE_RGBDARKEN = 11,
    BLENDMODE_RGBLIGHTEN = 12,
    BLENDMODE_DIFFERENCE = 13,
    BLENDMODE_EXCLUSION = 14,
    BLENDMODE_HUE = 15,
    BLENDMODE_SATURATION = 16,
    BLENDMODE_COLOR = 17,
    BLENDMODE_LUMINOSITY = 18,
    BLENDMODE_SATURATE = 19,
    BLENDMODE_DESATURATE = 20,
    BLENDMODE_FILTER1 = 21,
    BLENDMODE_FILTER2 = 22,
    BLENDMODE_FILTER3 = 23,
    BLENDMODE_FILTER4 = 24,
    BLENDMODE_SMUDGE = 25,
};
