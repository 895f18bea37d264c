// C_ContourBug's and C_PointPath's members that take images: they check the mask, make the
// working copy and hand plain byte views to the tracer in contour_bug.cpp.

#include <vistrane/image/image.h>
#include <vistrane/path/contour_bug.h>
#include <vistrane/path/point_path.h>
#include <vistrane/platform/gdi.h>

#include "path/contour_trace.h"

CB_ContourFollowResult C_ContourBug::PrepareMaskCopy(C_Image* mask, C_Image* work) {
    // Any 8-bit image is read as a mask (non-zero selected); other depths have no contour.
    if (mask == nullptr || mask->HasImage() == 0 || mask->BitCount() != 8) {
        return CB_NO_CONTOUR;
    }
    const long width = mask->Width();
    const long height = mask->Height();
    if (work->CreateMask(width + 2, height + 2) == 0) {
        return CB_OUT_OF_MEMORY;
    }
    GdiFlush();
    // A new mask is all zero, so its one-pixel border is empty.
    const long edges =
        vistrane::path::MarkEdgePixels(mask->PixelPtr(0, 0), mask->NBytesScan(),
                                       work->PixelPtr(1, 1), work->NBytesScan(), width, height);
    if (edges == 0) {
        work->SelfDestruct();
        return CB_NO_CONTOUR;
    }
    return CB_OK;
}

CB_ContourFollowResult C_ContourBug::CreateMaskContour(C_Image* mask, C_PointPath* path) {
    C_Image work;
    const CB_ContourFollowResult prepared = PrepareMaskCopy(mask, &work);
    if (prepared != CB_OK) {
        return prepared;
    }
    return vistrane::path::TraceEdgePixels(this, work.PixelPtr(1, 1), work.NBytesScan(),
                                           mask->Width(), mask->Height(), path);
}

int C_PointPath::CreateFromMask(C_Image* mask, CSize offset, double tolerance, int append) {
    if (append == 0) {
        Reset();
    }
    if (tolerance < 0.5) {
        tolerance = 0.5;
    } else if (tolerance > 10.0) {
        tolerance = 10.0;
    }
    C_SubPath* previousHead = m_FirstSubPath;
    C_ContourBug bug;
    if (bug.CreateMaskContour(mask, this) != CB_OK) {
        return 0;
    }
    for (C_SubPath* s = m_FirstSubPath; s != nullptr && s != previousHead; s = s->GetNext()) {
        s->Simplify(tolerance, 0, -1);
        s->OffSetAnchors(offset);
        s->Close(s->GetCount() > 2 ? 1 : 0);
    }
    return 1;
}
