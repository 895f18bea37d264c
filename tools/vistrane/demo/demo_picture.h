#pragma once

// The built-in demo picture: a procedural landscape that exercises what photographs exercise in
// an image editor (smooth gradients, anti-aliased and hard edges, fine periodic detail, sensor
// noise, saturated colours). Integer arithmetic and one fixed-seed hash only, so the bytes are
// the same on every machine, at every optimisation level and under the sanitizers.

class C_Image;

namespace vistrane::cli {

constexpr long kDemoPictureWidth = 1600;
constexpr long kDemoPictureHeight = 1200;

// Makes `image` a 24-bit picture of the given size (the scene scales with it) and paints it.
// Returns false, leaving the image empty, when the image cannot be created.
bool RenderDemoPicture(C_Image& image, long width = kDemoPictureWidth,
                       long height = kDemoPictureHeight);

}  // namespace vistrane::cli
