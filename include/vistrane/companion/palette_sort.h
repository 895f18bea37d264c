#pragma once

// Sort criteria and error report for C_Helper::SortRGBQs and C_Image::SortPalColors.
//
// Keys: luminance is the luma byte of C_Helper::YFromRGB; hue and saturation are those of
// C_Helper::HSVFromRGB (greys have hue 0 and saturation 0, so they sort before the reds by hue);
// usage is the pixel count of the entry. Entries with equal keys keep their order (the sort is
// stable), so sorting twice by different keys orders by the second key, then the first.

#include <vistrane/platform/types.h>

enum SORTPAL_KEY {
    SORTPAL_LUMINANCE = 0,
    SORTPAL_HUE = 1,
    SORTPAL_SATURATION = 2,
    SORTPAL_USAGE = 3,
};

struct S_SortPalData {
    int key;         // a SORTPAL_KEY
    int descending;  // non-zero: largest key first
};

enum SORTPAL_ERROR {
    SORTPAL_ERROR_NONE = 0,
    SORTPAL_ERROR_BAD_KEY = 1,       // key is not a SORTPAL_KEY
    SORTPAL_ERROR_BAD_COUNT = 2,     // count outside 1..256
    SORTPAL_ERROR_NO_USAGE = 3,      // sorting by usage without usage counts
    SORTPAL_ERROR_NULL_ARGUMENT = 4  // colours, criteria or re-index table missing
};

struct S_CalcSortError {
    int code;  // a SORTPAL_ERROR
};
