#include "mask/mask_flood.h"

#include <cstddef>
#include <utility>

#include "mask/color_match.h"

namespace vistrane::mask {

namespace {

// The candidate test, specialised for the common case of an RGB match on a 24-bit source so
// that the inner loops make three table reads and no calls.
struct RgbTrueColor {
    const image::ConstPixelView& source;
    const unsigned char* accept;
    bool operator()(int x, int y) const {
        const BYTE* p = source.Row(y) + 3 * x;
        return accept[p[2]] != 0 && accept[256 + p[1]] != 0 && accept[512 + p[0]] != 0;
    }
};

struct AnyColor {
    const image::ConstPixelView& source;
    const S_ColorMatchData& data;
    bool operator()(int x, int y) const { return MatchColor(ColorAt(source, x, y), data); }
};

template <typename Matches>
void SpanFillWith(const image::PixelView& mask, const Matches& matches,
                  const std::vector<CPoint>& seeds, BYTE value) {
    const int width = mask.width;
    const int height = mask.height;
    auto open = [&](int x, int y) { return mask.Row(y)[x] == 0 && matches(x, y); };
    std::vector<std::pair<int, int>> stack;
    stack.reserve(static_cast<std::size_t>(height) * 2 + 16);
    for (const CPoint& seed : seeds) {
        const int x = seed.x;
        const int y = seed.y;
        if (y > 0 && open(x, y - 1)) {
            stack.emplace_back(x, y - 1);
        }
        if (x > 0 && open(x - 1, y)) {
            stack.emplace_back(x - 1, y);
        }
        if (x + 1 < width && open(x + 1, y)) {
            stack.emplace_back(x + 1, y);
        }
        if (y + 1 < height && open(x, y + 1)) {
            stack.emplace_back(x, y + 1);
        }
    }
    while (!stack.empty()) {
        const auto [x, y] = stack.back();
        stack.pop_back();
        BYTE* row = mask.Row(y);
        // A run start pushed twice is taken by the first pop.
        if (row[x] != 0) {
            continue;
        }
        int left = x;
        while (left > 0 && row[left - 1] == 0 && matches(left - 1, y)) {
            --left;
        }
        int right = x;
        while (right + 1 < width && row[right + 1] == 0 && matches(right + 1, y)) {
            ++right;
        }
        for (int i = left; i <= right; ++i) {
            row[i] = value;
        }
        for (int ny = y - 1; ny <= y + 1; ny += 2) {
            if (ny < 0 || ny >= height) {
                continue;
            }
            const BYTE* next = mask.Row(ny);
            int i = left;
            while (i <= right) {
                if (next[i] != 0 || !matches(i, ny)) {
                    ++i;
                    continue;
                }
                stack.emplace_back(i, ny);
                while (i <= right && next[i] == 0 && matches(i, ny)) {
                    ++i;
                }
            }
        }
    }
}

}  // namespace

void SpanFill(const image::PixelView& mask, const image::ConstPixelView& source,
              const S_ColorMatchData& data, const std::vector<CPoint>& seeds, BYTE value) {
    if (value == 0) {
        return;
    }
    if (data.m_Mode == COLOR_MATCH_RGB && source.bytesPerPixel == 3) {
        SpanFillWith(mask, RgbTrueColor{source, data.m_Accept}, seeds, value);
    } else {
        SpanFillWith(mask, AnyColor{source, data}, seeds, value);
    }
}

SelectionEdge FindSelectionEdge(const image::ConstPixelView& mask,
                                const image::ConstPixelView& source) {
    SelectionEdge edge;
    for (int y = 0; y < mask.height; ++y) {
        const BYTE* row = mask.Row(y);
        const BYTE* above = y > 0 ? mask.Row(y - 1) : nullptr;
        const BYTE* below = y + 1 < mask.height ? mask.Row(y + 1) : nullptr;
        for (int x = 0; x < mask.width; ++x) {
            const BYTE b = row[x];
            if (b == 0) {
                continue;
            }
            const bool boundary = x + 1 >= mask.width || row[x + 1] == 0 || x == 0 ||
                                  row[x - 1] == 0 || below == nullptr || below[x] == 0 ||
                                  above == nullptr || above[x] == 0;
            if (boundary) {
                edge.boundary.emplace_back(x, y);
                edge.boundaryOpacitySum += b;
            }
            const BYTE* color = ColorAt(source, x, y);
            edge.colorSum[0] += color[0];
            edge.colorSum[1] += color[1];
            edge.colorSum[2] += color[2];
            ++edge.selectedCount;
        }
    }
    return edge;
}

void ExpandGenerations(S_TwoPointers* queue, long nSeeds, long capacity,
                       const image::PixelView& mask, const image::ConstPixelView& source,
                       const image::PixelView& work, const S_ColorMatchData& data, BYTE value) {
    for (int y = 0; y < mask.height; ++y) {
        BYTE* m = mask.Row(y);
        BYTE* w = work.Row(y + 1) + 1;
        for (int x = 0; x < mask.width; ++x) {
            if (m[x] != 0) {
                w[x] = 0;
            } else if (MatchColor(ColorAt(source, x, y), data)) {
                w[x] = 255;
            }
        }
    }
    if (nSeeds < 1 || value == 0) {
        return;
    }
    // Memory order of the neighbours: one row back in memory, left, right, one row on.
    const std::ptrdiff_t workRow = work.strideBytes < 0 ? -work.strideBytes : work.strideBytes;
    const std::ptrdiff_t maskRow = mask.strideBytes < 0 ? -mask.strideBytes : mask.strideBytes;
    const std::ptrdiff_t workSteps[4] = {-workRow, -1, 1, workRow};
    const std::ptrdiff_t maskSteps[4] = {-maskRow, -1, 1, maskRow};
    long currentStart = 0;
    long currentCount = nSeeds;
    bool currentAtFront = true;
    while (currentCount > 0) {
        // The next generation grows from the end opposite the current one.
        long nextCount = 0;
        for (long k = 0; k < currentCount; ++k) {
            const S_TwoPointers entry =
                currentAtFront ? queue[currentStart + k] : queue[currentStart - k];
            for (int n = 0; n < 4; ++n) {
                BYTE* w = entry.m_pWork + workSteps[n];
                BYTE* m = entry.m_pMask + maskSteps[n];
                if (*w != 0 && *m == 0) {
                    *m = value;
                    const long slot = currentAtFront ? capacity - 1 - nextCount : nextCount;
                    queue[slot] = {w, m};
                    ++nextCount;
                }
            }
        }
        currentAtFront = !currentAtFront;
        currentStart = currentAtFront ? 0 : capacity - 1;
        currentCount = nextCount;
    }
}

void MarkAlike(const image::PixelView& mask, const image::ConstPixelView& source,
               const S_ColorMatchData& data, BYTE matchValue, BYTE otherValue, bool writeOthers) {
    for (int y = 0; y < mask.height; ++y) {
        BYTE* m = mask.Row(y);
        for (int x = 0; x < mask.width; ++x) {
            if (MatchColor(ColorAt(source, x, y), data)) {
                m[x] = matchValue;
            } else if (writeOthers) {
                m[x] = otherValue;
            }
        }
    }
}

}  // namespace vistrane::mask
