// The whole-buffer mask members of C_Image: byte logic between masks and byte rewrites.

#include <vistrane/image/image.h>

#include <cstring>

#include "mask/mask_logic.h"

namespace {

void Combine(C_Image* self, C_Image* other, vistrane::mask::LogicOp op) {
    GdiFlush();
    vistrane::mask::CombineBytes(self->BitmapBytes(), other->BitmapBytes(), self->NBytesImage(),
                                 op);
}

}  // namespace

void C_Image::MaskAnd(C_Image* other) {
    Combine(this, other, vistrane::mask::LogicOp::kAnd);
}

void C_Image::MaskAndNot(C_Image* other) {
    Combine(this, other, vistrane::mask::LogicOp::kAndNot);
}

void C_Image::MaskOr(C_Image* other) {
    Combine(this, other, vistrane::mask::LogicOp::kOr);
}

void C_Image::MaskOrNot(C_Image* other) {
    Combine(this, other, vistrane::mask::LogicOp::kOrNot);
}

void C_Image::MaskXor(C_Image* other) {
    Combine(this, other, vistrane::mask::LogicOp::kXor);
}

void C_Image::MaskInvert() {
    GdiFlush();
    vistrane::mask::InvertBytes(BitmapBytes(), NBytesImage());
}

void C_Image::MaskCopy(C_Image* other) {
    GdiFlush();
    std::memmove(BitmapBytes(), other->BitmapBytes(), NBytesImage());
}

void C_Image::MaskAndNotLogical(C_Image* other) {
    GdiFlush();
    vistrane::mask::ClearCountOfSelected(BitmapBytes(), other->BitmapBytes(), NBytesImage());
}

void C_Image::MaskReplace(unsigned char from, unsigned char to) {
    GdiFlush();
    vistrane::mask::ReplaceBytes(BitmapBytes(), NBytesImage(), from, to);
}

void C_Image::MaskReplace(unsigned char from, unsigned char to, unsigned char other) {
    GdiFlush();
    vistrane::mask::ReplaceBytesElse(BitmapBytes(), NBytesImage(), from, to, other);
}

void C_Image::MaskZeroIfDifferent(unsigned char keep) {
    GdiFlush();
    vistrane::mask::ReplaceBytesElse(BitmapBytes(), NBytesImage(), keep, keep, 0);
}
