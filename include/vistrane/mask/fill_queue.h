#pragma once

// S_TwoPointers: one entry of the flood queue of C_Image::MaskExpandColorMatching: a pixel's
// byte in the bordered work map and the same pixel's byte in the mask being filled.

struct S_TwoPointers {
    unsigned char* m_pWork;
    unsigned char* m_pMask;
};
