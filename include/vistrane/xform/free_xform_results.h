#pragma once

// The results of C_Image::MaskFreeXForm, the pixel side of the four-corner free transform.

enum FREEXFORM_RESULTS : int {
    FREEXFORM_OK = 0,           // transformed
    FREEXFORM_NOTHING = 1,      // degenerate input (coincident opposite corners, a flat box,
                                // no usable source), or the host cancelled: nothing done
    FREEXFORM_NOMEMORY = 2,     // an image could not be made: nothing changed
    FREEXFORM_NOSELECTION = 3,  // the source mask has no selected pixel: nothing changed
};
