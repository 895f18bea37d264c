// C_Image members of resampling and resizing; the pixel work is in resample.cpp.

#include <vistrane/image/image.h>
#include <vistrane/platform/dc.h>

#include "image/pixel_view.h"
#include "image/progress.h"
#include "image/temporary_image.h"
#include "xform/resample.h"

using vistrane::image::AsConst;
using vistrane::image::ConstPixelView;
using vistrane::image::SubView;
using vistrane::image::ViewOf;

namespace {

bool UsableSize(const CSize& size) {
    return size.cx >= 1 && size.cy >= 1;
}

// The source rectangle of a worker as a view, or an empty view when it is not inside `image`.
ConstPixelView SourceRect(const C_Image& image, long x, long y, long width, long height) {
    const CRect rect(x, y, x + width, y + height);
    CRect whole;
    image.Rectangle(&whole);
    CRect inside;
    if (width < 1 || height < 1 || !inside.IntersectRect(rect, whole) || inside != rect) {
        return {};
    }
    return AsConst(SubView(ViewOf(image), rect));
}

}  // namespace

int C_Image::Resize(CSize size) {
    return DIBResize(size);
}

int C_Image::DIBResize(CSize size) {
    if (!HasImage() || !UsableSize(size)) {
        return 0;
    }
    GdiFlush();
    auto temp = vistrane::image::NewCloneColors(*this, size.cx, size.cy);
    if (!temp || !vistrane::xform::ResizeNearest(AsConst(ViewOf(*this)), ViewOf(*temp))) {
        return 0;
    }
    TransformInto(temp.release(), 1);
    return 1;
}

int C_Image::Resample(CSize size) {
    if (!HasImage() || !UsableSize(size)) {
        return 0;
    }
    if (!CanEditTrueColor()) {
        return Resize(size);
    }
    auto temp = vistrane::image::NewSameFormat(*this, size.cx, size.cy);
    if (!temp) {
        return 0;
    }
    const int result = RunResampleWorker(0, 0, Width(), Height(), temp.get(), size);
    if (result) {
        TransformInto(temp.release(), 1);
    }
    return result;
}

int C_Image::DIBResizeKeepRatio(long maxWidth, long maxHeight) {
    if (!HasImage()) {
        return 0;
    }
    LONG width = Width();
    LONG height = Height();
    if (!m_Helper.FitIfGreater(&width, &height, maxWidth, maxHeight)) {
        return 1;
    }
    return CanEditTrueColor() ? Resample(CSize(width, height)) : DIBResize(CSize(width, height));
}

int C_Image::DIBCreateResizing(CSize size, C_Image* source) {
    if (source == nullptr || source == this || !UsableSize(size) ||
        !CreateCloneColors(source, &size)) {
        return 0;
    }
    DIBResizeFrom(source);
    return 1;
}

void C_Image::DIBResizeFrom(C_Image* source) {
    if (source == nullptr || source == this || !HasImage() || !source->HasImage() ||
        IsTrueColor() != source->IsTrueColor()) {
        return;
    }
    GdiFlush();
    // Only a column table is allocated; without it the image stays as it was.
    static_cast<void>(vistrane::xform::ResizeNearest(AsConst(ViewOf(*source)), ViewOf(*this)));
}

int C_Image::CreateResampling(long x, long y, long width, long height, C_Image* source,
                              CSize size) {
    if (source == nullptr || source == this || !source->HasImage() || !UsableSize(size)) {
        return 0;
    }
    if (!source->CanEditTrueColor()) {
        return CreateResizing(x, y, width, height, source, size);
    }
    // The present bitmap is re-used only at the source's depth: a grey target cannot take a
    // 24-bit worker's output, nor the other way round.
    const bool keep = HasImage() && CanEditTrueColor() && IsTrueColor() == source->IsTrueColor() &&
                      Width() == size.cx && Height() == size.cy;
    if (!keep) {
        SelfDestruct();
        if (!Create(size.cx, size.cy, source->IsTrueColor(), source->RGBQs(), source->NColors())) {
            return 0;
        }
    }
    const int result = source->RunResampleWorker(x, y, width, height, this, size);
    if (!result) {
        SelfDestruct();
        return 0;
    }
    CopyPaintColors(source);
    return result;
}

int C_Image::CreateResizing(long x, long y, long width, long height, C_Image* source, CSize size) {
    SelfDestruct();
    if (source == nullptr || source == this || !UsableSize(size) ||
        !CreateCloneColors(source, &size)) {
        return 0;
    }
    const int result = StretchBlt(0, 0, size.cx, size.cy, source, x, y, width, height, SRCCOPY);
    if (!result) {
        SelfDestruct();
    }
    return result;
}

int C_Image::RunResampleWorker(long x, long y, long width, long height, C_Image* target,
                               CSize size) {
    using vistrane::xform::ResampleWorker;
    switch (vistrane::xform::ChooseResampleWorker(width, height, size.cx, size.cy)) {
        case ResampleWorker::Expand:
            return ResampleExpand(x, y, width, height, target, size);
        case ResampleWorker::ReduceX:
            return ResampleX(x, y, width, height, target, size);
        case ResampleWorker::ReduceY:
            return ResampleY(x, y, width, height, target, size);
        case ResampleWorker::ReduceXY:
            return ResampleXY(x, y, width, height, target, size);
    }
    return 0;
}

namespace {

// The checks every worker makes before its free function runs: a source rectangle inside this
// image, a target of `size` with the same depth.
template <typename Worker>
int RunWorker(const C_Image& image, long x, long y, long width, long height, C_Image* target,
              CSize size, Worker worker) {
    if (target == nullptr || target == &image || !target->HasImage() ||
        target->Width() != size.cx || target->Height() != size.cy ||
        target->IsTrueColor() != image.IsTrueColor()) {
        return 0;
    }
    const ConstPixelView src = SourceRect(image, x, y, width, height);
    if (src.Empty()) {
        return 0;
    }
    GdiFlush();
    const vistrane::image::Progress progress(image, size.cy);
    return worker(src, ViewOf(*target), progress.Active() ? &progress : nullptr) &&
                   progress.Report(size.cy)
               ? 1
               : 0;
}

}  // namespace

int C_Image::ResampleExpand(long x, long y, long width, long height, C_Image* target, CSize size) {
    if (size.cx < width || size.cy < height) {
        return 0;
    }
    return RunWorker(*this, x, y, width, height, target, size, vistrane::xform::ResampleExpand);
}

int C_Image::ResampleX(long x, long y, long width, long height, C_Image* target, CSize size) {
    if (size.cx >= width || size.cy < height) {
        return 0;
    }
    return RunWorker(*this, x, y, width, height, target, size, vistrane::xform::ResampleReduceX);
}

int C_Image::ResampleY(long x, long y, long width, long height, C_Image* target, CSize size) {
    if (size.cx < width || size.cy >= height) {
        return 0;
    }
    return RunWorker(*this, x, y, width, height, target, size, vistrane::xform::ResampleReduceY);
}

int C_Image::ResampleXY(long x, long y, long width, long height, C_Image* target, CSize size) {
    if (size.cx >= width || size.cy >= height) {
        return 0;
    }
    return RunWorker(*this, x, y, width, height, target, size, vistrane::xform::ResampleReduceXY);
}
