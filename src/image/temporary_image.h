#pragma once

// The temporary image that a size- or depth-changing operation fills and then takes over, so a
// failure anywhere before the hand-over leaves the operated image as it was.

#include <memory>
#include <new>

#include <vistrane/image/image.h>

namespace vistrane::image {

struct DeleteImage {
    void operator()(C_Image* image) const { delete image; }
};
using TemporaryImage = std::unique_ptr<C_Image, DeleteImage>;

// An empty heap image for TransformInto(temp.release(), 1); null on lack of memory.
inline TemporaryImage NewTemporary() {
    return TemporaryImage(new (std::nothrow) C_Image);
}

// A temporary with `image`'s format, colour table and paint colours, width x height; null when
// it cannot be made.
TemporaryImage NewCloneColors(C_Image& image, long width, long height);

// A temporary made with Create(width, height, image's depth, its colour table), carrying
// image's paint colours and mask flag so that taking it over keeps them.
TemporaryImage NewSameFormat(C_Image& image, long width, long height);

}  // namespace vistrane::image
