#pragma once

// FXF_NumericParams: numeric entry for the free transform frame. Each group applies only when its
// flag is non-zero. The values are absolute, measured against the rectangle the frame was made
// from (its reference): the frame's two half-axes run from the rectangle's centre to its right
// and to its bottom edge, and the corners are rebuilt as
//     centre + translation +- turn(first axis  x scale X, rotation + skew X)
//                          +- turn(second axis x scale Y, rotation - skew Y).
// Angles are degrees, positive turning clockwise on the screen (y grows downwards).
// A negative scale mirrors that axis.

#include <vistrane/platform/types.h>

struct FXF_NumericParams {
    BOOL m_UseTranslation = 0;
    LONG m_TranslateX = 0;  // pixels
    LONG m_TranslateY = 0;
    BOOL m_UseScale = 0;
    double m_ScaleX = 100.0;  // percent of the reference width
    double m_ScaleY = 100.0;  // percent of the reference height
    BOOL m_UseSkew = 0;
    double m_SkewX = 0.0;  // degrees: turns the first axis, tilting the top and bottom edges
    double m_SkewY = 0.0;  // degrees: turns the second axis the other way, tilting the sides
    BOOL m_UseRotation = 0;
    double m_Rotation = 0.0;  // degrees
};
