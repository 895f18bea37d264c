#pragma once

// Vistrane: an image-editing engine for paint and photo-retouching hosts.
//
// This header declares the library's whole public boundary. A host calls, once at start-up,
//     C_Image::CheckBitmapHeaderType();
//     glb_CreateImageLUTs();
// and at shut-down glb_ReleaseImageLUTs(). The library never calls them itself.
//
// Pixel layout: an image is a device-independent bitmap of 8 bits (palette indices or grey
// levels) or 24 bits (blue, green, red) per pixel. Rows are padded to a multiple of four bytes
// and stored bottom-up, so y = 0, the top row of the picture, is the last row in memory and the
// stride from one row to the next one down is minus the row length.

#include <vistrane/export.h>
#include <vistrane/version.h>

#include <vistrane/platform/archive.h>
#include <vistrane/platform/dc.h>
#include <vistrane/platform/file.h>
#include <vistrane/platform/font.h>
#include <vistrane/platform/gdi.h>
#include <vistrane/platform/geometry.h>
#include <vistrane/platform/keyboard.h>
#include <vistrane/platform/memory.h>
#include <vistrane/platform/object.h>
#include <vistrane/platform/section.h>
#include <vistrane/platform/text.h>
#include <vistrane/platform/types.h>

#include <vistrane/companion/2dvector.h>
#include <vistrane/companion/geom.h>
#include <vistrane/companion/helper.h>
#include <vistrane/companion/line.h>
#include <vistrane/companion/palette_sort.h>
#include <vistrane/companion/user_curve.h>

#include <vistrane/blend/blend_modes.h>
#include <vistrane/blend/gray_palette.h>
#include <vistrane/blend/image_luts.h>

#include <vistrane/image/image.h>
#include <vistrane/image/simple_image.h>
#include <vistrane/xform/free_xform_results.h>

#include <vistrane/filter/filter_types.h>

#include <vistrane/mask/color_match.h>
#include <vistrane/mask/fill_queue.h>
#include <vistrane/mask/mask_features.h>

#include <vistrane/path/contour_bug.h>
#include <vistrane/path/path_point.h>
#include <vistrane/path/path_svg.h>
#include <vistrane/path/point_path.h>
#include <vistrane/path/sub_path.h>

#include <vistrane/frame/free_xform_codes.h>
#include <vistrane/frame/free_xform_frame.h>
#include <vistrane/frame/free_xform_numeric.h>
#include <vistrane/frame/modal_frame.h>
#include <vistrane/frame/snapshot_history.h>

#include <vistrane/io/image_file.h>
