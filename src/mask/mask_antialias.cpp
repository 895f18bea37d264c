#include "mask/mask_antialias.h"

#include <algorithm>
#include <new>
#include <vector>

namespace vistrane::mask {

bool AntiAliasEdges(const image::PixelView& mask) {
    if (mask.Empty()) {
        return true;
    }
    const auto width = static_cast<std::size_t>(mask.width);
    std::vector<BYTE> rows;
    try {
        rows.resize(3 * width);
    } catch (const std::bad_alloc&) {
        return false;
    }
    // Ring of three original rows: above, current, below; slot y % 3 holds row y.
    auto slot = [&](int y) { return rows.data() + static_cast<std::size_t>(y % 3) * width; };
    std::copy_n(mask.Row(0), width, slot(0));
    for (int y = 0; y < mask.height; ++y) {
        if (y + 1 < mask.height) {
            // Row y - 2's slot is free: only rows y - 1, y and y + 1 are read for row y.
            std::copy_n(mask.Row(y + 1), width, slot(y + 1));
        }
        const int y0 = std::max(y - 1, 0);
        const int y1 = std::min(y + 1, mask.height - 1);
        BYTE* out = mask.Row(y);
        const BYTE* centre = slot(y);
        for (int x = 0; x < mask.width; ++x) {
            const int x0 = std::max(x - 1, 0);
            const int x1 = std::min(x + 1, mask.width - 1);
            int sum = 0;
            int count = 0;
            bool edge = false;
            for (int ny = y0; ny <= y1; ++ny) {
                const BYTE* row = slot(ny);
                for (int nx = x0; nx <= x1; ++nx) {
                    sum += row[nx];
                    edge = edge || row[nx] != centre[x];
                }
                count += x1 - x0 + 1;
            }
            if (edge) {
                out[x] = static_cast<BYTE>((sum + count / 2) / count);
            }
        }
    }
    return true;
}

}  // namespace vistrane::mask
