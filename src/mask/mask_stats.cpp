#include "mask/mask_stats.h"

#include <algorithm>
#include <cstdint>

namespace vistrane::mask {

long Threshold(const image::PixelView& mask, BYTE t) {
    long count = 0;
    for (int y = 0; y < mask.height; ++y) {
        BYTE* row = mask.Row(y);
        for (int x = 0; x < mask.width; ++x) {
            const bool on = row[x] > t;
            row[x] = on ? 255 : 0;
            count += on ? 1 : 0;
        }
    }
    return count;
}

long ThresholdAtLeast(const image::PixelView& mask, BYTE t, bool set) {
    long count = 0;
    for (int y = 0; y < mask.height; ++y) {
        BYTE* row = mask.Row(y);
        for (int x = 0; x < mask.width; ++x) {
            if (row[x] < t) {
                row[x] = 0;
            } else {
                row[x] = set ? 255 : row[x];
                ++count;
            }
        }
    }
    return count;
}

void ExtractFeatures(const image::ConstPixelView& mask, S_MaskFeatures* f) {
    f->m_ImageWidth = mask.width;
    f->m_ImageHeight = mask.height;
    if (mask.width == 0 || mask.height == 0) {
        f->m_NSelected = 0;
        return;
    }
    long minX = mask.width + 1;
    long maxX = -1;
    long minY = mask.height + 1;
    long maxY = -1;
    int maxOpacity = 0;
    int minOpacity = 255;
    // Signed 32-bit, as the statistics have always been summed.
    std::int32_t sum = 0;
    long count = 0;
    for (int y = 0; y < mask.height; ++y) {
        const BYTE* row = mask.Row(y);
        for (int x = 0; x < mask.width; ++x) {
            const BYTE b = row[x];
            if (b == 0) {
                continue;
            }
            ++count;
            minX = std::min<long>(minX, x);
            maxX = std::max<long>(maxX, x);
            minY = std::min<long>(minY, y);
            maxY = std::max<long>(maxY, y);
            maxOpacity = std::max<int>(maxOpacity, b);
            minOpacity = std::min<int>(minOpacity, b);
            sum = static_cast<std::int32_t>(static_cast<std::uint32_t>(sum) + b);
        }
    }
    f->m_NSelected = count;
    if (count < 1) {
        return;
    }
    f->m_Left = minX;
    f->m_Right = maxX;
    f->m_Top = minY;
    f->m_Bottom = maxY;
    f->m_BoundWidth = maxX - minX + 1;
    f->m_BoundHeight = maxY - minY + 1;
    f->m_MaxOpacity = static_cast<unsigned char>(maxOpacity);
    f->m_MinOpacity = static_cast<unsigned char>(minOpacity);
    f->m_AverageOpacity = static_cast<unsigned char>(sum / count);
}

long ScaleOpacity(const image::PixelView& mask, const S_MaskFeatures& f, int maxOpacity,
                  int minOpacity) {
    maxOpacity = std::clamp(maxOpacity, 1, 255);
    minOpacity = std::min(std::clamp(minOpacity, 0, 255), maxOpacity);
    const int outRange = maxOpacity - minOpacity + 1;
    const int inRange = f.m_MaxOpacity - f.m_MinOpacity + 1;
    long count = 0;
    for (int y = 0; y < mask.height; ++y) {
        BYTE* row = mask.Row(y);
        for (int x = 0; x < mask.width; ++x) {
            if (row[x] == 0) {
                continue;
            }
            const int v = (row[x] - f.m_MinOpacity) * outRange / inRange + minOpacity;
            row[x] = static_cast<BYTE>(std::clamp(v, 0, 255));
            count += row[x] != 0 ? 1 : 0;
        }
    }
    return count;
}

void ChangeOpacity(const image::PixelView& mask, int value, bool absolute) {
    // A value below 1 would deselect pixels (or, as a negative percentage, wrap their bytes): the
    // weakest change either form makes is to 1.
    value = std::max(value, 1);
    for (int y = 0; y < mask.height; ++y) {
        BYTE* row = mask.Row(y);
        for (int x = 0; x < mask.width; ++x) {
            if (row[x] == 0) {
                continue;
            }
            // The absolute value keeps only its low byte: 300 becomes 44, deliberately.
            row[x] = absolute ? static_cast<BYTE>(value)
                              : static_cast<BYTE>(std::min<long long>(
                                    255, (row[x] * static_cast<long long>(value) + 50) / 100));
        }
    }
}

bool FindFirstInMemoryOrder(const image::ConstPixelView& mask, BYTE value, CPoint* pt) {
    for (int y = mask.height - 1; y >= 0; --y) {
        const BYTE* row = mask.Row(y);
        const BYTE* hit = std::find(row, row + mask.width, value);
        if (hit != row + mask.width) {
            *pt = CPoint(static_cast<LONG>(hit - row), y);
            return true;
        }
    }
    return false;
}

bool SelectedBounds(const image::ConstPixelView& mask, CRect* rect) {
    int minX = mask.width;
    int maxX = -1;
    int minY = mask.height;
    int maxY = -1;
    for (int y = 0; y < mask.height; ++y) {
        const BYTE* row = mask.Row(y);
        int first = 0;
        while (first < mask.width && row[first] == 0) {
            ++first;
        }
        if (first == mask.width) {
            continue;
        }
        int last = mask.width - 1;
        while (row[last] == 0) {
            --last;
        }
        minX = std::min(minX, first);
        maxX = std::max(maxX, last);
        minY = std::min(minY, y);
        maxY = y;
    }
    if (maxY < 0) {
        *rect = CRect(0, 0, 1, 1);
        return false;
    }
    *rect = CRect(minX, minY, maxX + 1, maxY + 1);
    return true;
}

}  // namespace vistrane::mask
