#pragma once

// Records and enumerations of the neighbourhood filters, colour operations, palette operations
// and statistics of C_Image.

#include <vistrane/platform/types.h>

// Which quantity of a pixel FilterImage filters. Palette (grey) images always filter the stored
// byte. 3..6 belong to the rank filters and 7..10 to the noise filters, which take the same
// enumeration; FilterImage computes their sums but stores no filter colour for them.
// Every filter kernel is 7 x 7 weights, row by row; smaller kernels sit centred in zeros.
constexpr int FILTER_KERNEL_TAPS = 49;

enum FILTER_TYPE {
    FILTER_PER_CHANNEL = 0,  // blue, green and red filtered separately
    FILTER_GRAY = 1,         // (R + G + B) / 3, written to all three channels
    FILTER_BRIGHTNESS = 2,   // the HSV value; hue and saturation come from the filter colour
};

// The colour operations with their three integer parameters (ranges from GetColorOperParams).
enum COLOROPER_TYPE {
    COLOROPER_NEGATIVE = 0,
    COLOROPER_GRAYSCALE = 1,
    COLOROPER_RGB_OFFSET = 2,      // red, green, blue offsets -255..255
    COLOROPER_RGB_GAMMA = 3,       // red, green, blue -99..300: gamma (p + 100) / 100
    COLOROPER_CONTRAST = 4,        // -64..64
    COLOROPER_GAMMA = 5,           // -99..300, one gamma for all channels
    COLOROPER_HSV = 6,             // hue -359..359 degrees, saturation and value -255..255
    COLOROPER_YUV = 7,             // Y, U, V -255..255
    COLOROPER_LOG_CONTRAST = 8,    // 0..200
    COLOROPER_SINEH_CONTRAST = 9,  // 0..99
    COLOROPER_EXP_CONTRAST = 10,   // 0..5
};
constexpr int kColorOperCount = 11;

// 0 keeps the luma and imposes U and V; any other value keeps the lightness and imposes hue and
// saturation (1 is the value callers pass).
enum COLORIZE_METHOD {
    COLORIZE_YUV = 0,
    COLORIZE_HSL = 1,
};

// 1 splits into Y, U, V; any other value into red, green, blue.
enum COLOR_CHANNELS {
    CHANNELS_RGB = 0,
    CHANNELS_YUV = 1,
};

// Per-channel histograms with summary figures. gray[i] is the truncated average of red[i],
// green[i] and blue[i], not a histogram of grey levels. The figures are in the order gray, red,
// green, blue: the median bin, the mean bin and the standard deviation
// (C_Helper::ComputeStatistics).
struct S_Histogram {
    LONG red[256];
    LONG green[256];
    LONG blue[256];
    LONG gray[256];
    DWORD counted;
    LONG median[4];
    double mean[4];
    double deviation[4];
};

// DelPalColors: mode 0 deletes unused entries, 1 the foreground's entry, 2 the background's,
// 3 the transparent colour's, 4 entries used by fewer than `threshold` pixels; other modes
// delete nothing. At least two entries always stay.
struct S_DelPalData {
    int mode;
    unsigned long threshold;
};

// SwapPalColors: 0 swaps foreground and background, 1 background and transparent, any other
// value transparent and foreground.
struct S_SwapPalData {
    int pair;
};
