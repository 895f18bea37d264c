#pragma once

// The colour-similarity test shared by the selection tools and the colour-replacing painting
// tools, prepared once into a table so that testing a pixel costs one to three look-ups (plus
// one hue conversion in hue mode). Colours are blue, green, red byte triples as they lie in a
// 24-bit pixel.

// When a colour counts as alike the reference. The values are fixed.
enum COLOR_MATCH_MODE {
    COLOR_MATCH_RGB = 0,        // each of red, green, blue within the tolerance
    COLOR_MATCH_HUE = 1,        // hue within the tolerance round the 360-degree circle
    COLOR_MATCH_INTENSITY = 2,  // (red + green + blue) / 3 within the tolerance
    COLOR_MATCH_ANY = 3,        // always; any other value given to PrepareColorMatch
};

// Filled by C_Image::PrepareColorMatch; the caller owns it.
struct S_ColorMatchData {
    COLOR_MATCH_MODE m_Mode;
    // 1 = accepted. RGB: [red], [256 + green], [512 + blue]. Hue: [hue in degrees 0..359].
    // Intensity: [intensity]. Unused entries are 0.
    unsigned char m_Accept[768];
};
