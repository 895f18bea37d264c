// The rows are blended with the mode's fastest row routine; with no mask at full opacity the
// merge would copy the result, so the blend writes straight into the row instead.

#include "blend/paint_rect.h"

#include "blend/blend_dispatch.h"

#include <new>
#include <vector>

namespace vistrane::blend {

bool PaintRect(const image::PixelView& target, const image::PixelView& mask, const BYTE* colour,
               BYTE opacity, int mode, ImageKind kind, BlendContext& context) {
    const int bpp = target.bytesPerPixel;
    const int width = target.width;
    const RowBlender blender = FastRowBlender(mode, bpp);
    const MergeRowFn merge =
        kind == ImageKind::kPalette ? MergePaletteRow : MergeRowFor(bpp, cpu::Best());
    const bool whole = mask.Empty() && opacity == 255;
    std::vector<BYTE> source, result, alpha;
    try {
        source.resize(static_cast<std::size_t>(width) * bpp);
        result.resize(whole ? 0 : source.size());
        alpha.resize(whole ? 0 : width);
    } catch (const std::bad_alloc&) {
        return false;
    }
    for (std::size_t i = 0; i < source.size(); ++i) {
        source[i] = colour[i % bpp];
    }
    for (int y = 0; y < target.height; ++y) {
        BYTE* row = target.Row(y);
        if (whole) {
            blender.Run(source.data(), row, row, width, context);
            continue;
        }
        EffectiveOpacityRow(alpha.data(), mask.Empty() ? nullptr : mask.Row(y), opacity, width);
        blender.Run(source.data(), row, result.data(), width, context, alpha.data());
        merge(row, result.data(), alpha.data(), width);
    }
    return true;
}

}  // namespace vistrane::blend
