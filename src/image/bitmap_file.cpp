#include "image/bitmap_file.h"

#include <vistrane/image/image.h>

#include "image/image_size.h"

namespace vistrane::image {

bool ShapeOfInfoHeader(const BITMAPINFOHEADER& header, BitmapFileShape* shape) {
    if (header.biCompression != BI_RGB) {
        return false;
    }
    if (header.biBitCount == 24) {
        shape->trueColor = true;
        shape->nColors = 0;
    } else if (header.biBitCount == 8) {
        // The count is taken exactly as written: 0 gives an image with no colour table.
        if (header.biClrUsed > 256) {
            return false;
        }
        shape->trueColor = false;
        shape->nColors = header.biClrUsed;
    } else {
        return false;
    }
    const auto pixelBytes = BitmapBytes(header.biWidth, header.biHeight, header.biBitCount,
                                        kInfoHeaderBytes + COLOR_TABLE_BYTES);
    if (!pixelBytes) {
        return false;
    }
    shape->width = header.biWidth;
    shape->height = header.biHeight;
    shape->pixelBytes = *pixelBytes - kInfoHeaderBytes - COLOR_TABLE_BYTES;
    return true;
}

}  // namespace vistrane::image
