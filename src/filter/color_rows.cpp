// Colour-operation and statistics rows. Each operation writes its new colours into a scratch
// row and lays them over the pixels with the blend merge step, so the mask rule lives in one
// place (and gets its vector form there).

#include "filter/color_rows.h"

#include "blend/blend_dispatch.h"
#include "filter/grey_bgr.h"
#include "filter/hsv_shift.h"

#include <cstring>

namespace vistrane::filter {
namespace {

void Commit(BYTE* row, const BYTE* fresh, int count, int bytesPerPixel, const BYTE* mask) {
    if (mask == nullptr) {
        std::memcpy(row, fresh, static_cast<std::size_t>(count) * bytesPerPixel);
        return;
    }
    blend::MergeRowFor(bytesPerPixel, cpu::Best())(row, fresh, mask, count);
}

}  // namespace

// Without a mask every pixel is replaced, so the rows below write straight into the row instead
// of through the scratch row and a copy.
void LutRowTrueColor(BYTE* row, int count, const ChannelTables& tables, const BYTE* mask,
                     BYTE* scratch) {
    if (mask == nullptr) {
        for (int i = 0; i < count; ++i) {
            BYTE* p = row + 3 * i;
            p[0] = tables.blue[p[0]];
            p[1] = tables.green[p[1]];
            p[2] = tables.red[p[2]];
        }
        return;
    }
    for (int i = 0; i < count; ++i) {
        const BYTE* p = row + 3 * i;
        BYTE* q = scratch + 3 * i;
        q[0] = tables.blue[p[0]];
        q[1] = tables.green[p[1]];
        q[2] = tables.red[p[2]];
    }
    Commit(row, scratch, count, 3, mask);
}

void LutRowGrey(BYTE* row, int count, const BYTE* table, const BYTE* mask, BYTE* scratch) {
    if (mask == nullptr) {
        for (int i = 0; i < count; ++i) {
            row[i] = table[row[i]];
        }
        return;
    }
    for (int i = 0; i < count; ++i) {
        scratch[i] = table[row[i]];
    }
    Commit(row, scratch, count, 1, mask);
}

void GrayRowTrueColor(BYTE* row, int count, const BYTE* mask, BYTE* scratch) {
    if (mask == nullptr) {
        static const GreyBgrFn grey = GreyBgrFor(cpu::Best());
        grey(row, count);
        return;
    }
    for (int i = 0; i < count; ++i) {
        const BYTE* p = row + 3 * i;
        const BYTE g = static_cast<BYTE>((p[0] + p[1] + p[2]) / 3);
        scratch[3 * i] = scratch[3 * i + 1] = scratch[3 * i + 2] = g;
    }
    Commit(row, scratch, count, 3, mask);
}

void NegativeRow(BYTE* row, int count, int bytesPerPixel, const BYTE* mask, BYTE* scratch) {
    const int bytes = count * bytesPerPixel;
    for (int i = 0; i < bytes; ++i) {
        scratch[i] = static_cast<BYTE>(255 - row[i]);
    }
    Commit(row, scratch, count, bytesPerPixel, mask);
}

void ShiftYuvRowTrueColor(BYTE* row, int count, const int* shifts, const BYTE* mask, BYTE* scratch,
                          C_Helper& helper) {
    std::memcpy(scratch, row, static_cast<std::size_t>(count) * 3);
    for (int i = 0; i < count; ++i) {
        helper.OffsetYUV(scratch + 3 * i, shifts[0], shifts[1], shifts[2]);
    }
    Commit(row, scratch, count, 3, mask);
}

void ShiftHsvRowTrueColor(BYTE* row, int count, const HsvShifter& shifter, const BYTE* mask,
                          BYTE* scratch) {
    if (mask == nullptr) {
        shifter.Apply(row, count);
        return;
    }
    std::memcpy(scratch, row, static_cast<std::size_t>(count) * 3);
    shifter.Apply(scratch, count);
    Commit(row, scratch, count, 3, mask);
}

void ShiftRowGrey(BYTE* row, int count, bool hsv, const int* shifts, const RGBQUAD* colors,
                  const BYTE* mask, BYTE* scratch, C_Helper& helper) {
    for (int i = 0; i < count; ++i) {
        const RGBQUAD& c = colors[row[i]];
        BYTE p[3] = {c.rgbBlue, c.rgbGreen, c.rgbRed};
        if (hsv) {
            helper.OffsetHSV(p, shifts[0], shifts[1], shifts[2]);
        } else {
            helper.OffsetYUV(p, shifts[0], shifts[1], shifts[2]);
        }
        scratch[i] = static_cast<BYTE>((p[0] + p[1] + p[2]) / 3);
    }
    Commit(row, scratch, count, 1, mask);
}

void HistogramRow(const BYTE* row, int count, int bytesPerPixel, const RGBQUAD* colors,
                  const BYTE* mask, LONG* red, LONG* green, LONG* blue, DWORD* counted) {
    DWORD n = 0;
    for (int i = 0; i < count; ++i) {
        if (mask != nullptr && mask[i] == 0) {
            continue;
        }
        ++n;
        if (bytesPerPixel == 3) {
            const BYTE* p = row + 3 * i;
            ++blue[p[0]];
            ++green[p[1]];
            ++red[p[2]];
        } else {
            // An 8-bit pixel counts its red in the blue table too; the entry's blue is unused.
            const RGBQUAD& c = colors[row[i]];
            ++red[c.rgbRed];
            ++green[c.rgbGreen];
            ++blue[c.rgbRed];
        }
    }
    *counted += n;
}

void SumRow(const BYTE* row, int count, int bytesPerPixel, const RGBQUAD* colors, const BYTE* mask,
            ColorSums& sums) {
    for (int i = 0; i < count; ++i) {
        if (mask != nullptr && mask[i] == 0) {
            continue;
        }
        ++sums.pixels;
        if (bytesPerPixel == 3) {
            const BYTE* p = row + 3 * i;
            sums.blue += p[0];
            sums.green += p[1];
            sums.red += p[2];
        } else {
            const RGBQUAD& c = colors[row[i]];
            sums.blue += c.rgbBlue;
            sums.green += c.rgbGreen;
            sums.red += c.rgbRed;
        }
    }
}

unsigned long MarkColorsRow(const BYTE* row, int count, BYTE* bitSet) {
    unsigned long fresh = 0;
    for (int i = 0; i < count; ++i) {
        const BYTE* p = row + 3 * i;
        // bit B mod 8 of byte (R * 256 + G) * 32 + B / 8
        BYTE& cell = bitSet[((static_cast<std::size_t>(p[2]) << 8 | p[1]) << 5) | (p[0] >> 3)];
        const BYTE bit = static_cast<BYTE>(1u << (p[0] & 7));
        fresh += (cell & bit) == 0;
        cell |= bit;
    }
    return fresh;
}

void CountIndicesRow(const BYTE* row, int count, unsigned long* usage) {
    for (int i = 0; i < count; ++i) {
        ++usage[row[i]];
    }
}

}  // namespace vistrane::filter
