#pragma once

// S_MaskFeatures: the statistics of a selection mask, filled by C_Image::MaskExtractFeatures.
// A pixel is selected when its byte is non-zero. Coordinates are pixels with y = 0 the top row;
// the bounds are inclusive.

struct S_MaskFeatures {
    long m_ImageWidth;
    long m_ImageHeight;
    long m_Left;                     // smallest x of a selected pixel
    long m_Right;                    // largest x of a selected pixel
    long m_Top;                      // smallest y of a selected pixel
    long m_Bottom;                   // largest y of a selected pixel
    long m_BoundWidth;               // m_Right - m_Left + 1
    long m_BoundHeight;              // m_Bottom - m_Top + 1
    unsigned char m_MaxOpacity;      // largest non-zero byte
    unsigned char m_MinOpacity;      // smallest non-zero byte
    unsigned char m_AverageOpacity;  // mean of the non-zero bytes, truncated
    long m_NSelected;                // number of non-zero bytes
};
