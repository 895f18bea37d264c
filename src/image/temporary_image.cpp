#include "image/temporary_image.h"

namespace vistrane::image {

TemporaryImage NewCloneColors(C_Image& image, long width, long height) {
    TemporaryImage temp = NewTemporary();
    CSize size(width, height);
    if (!temp || !temp->CreateCloneColors(&image, &size)) {
        return nullptr;
    }
    temp->SetBehavesLikeMask(image.BehavesLikeMask());
    return temp;
}

TemporaryImage NewSameFormat(C_Image& image, long width, long height) {
    TemporaryImage temp = NewTemporary();
    if (!temp ||
        !temp->Create(width, height, image.IsTrueColor(), image.RGBQs(), image.NColors())) {
        return nullptr;
    }
    temp->CopyPaintColors(&image);
    temp->SetBehavesLikeMask(image.BehavesLikeMask());
    return temp;
}

}  // namespace vistrane::image
