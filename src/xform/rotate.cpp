#include "xform/rotate.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

#include <vistrane/platform/section.h>

namespace vistrane::xform {

using image::ConstPixelView;
using image::PixelView;

// ---- Quarter turns and flips ---------------------------------------------------------------

namespace {

// Square tiles keep the source rows read and the destination rows written in the first-level
// cache: a tile is read one source row at a time, each row contiguous.
constexpr int kTurnTile = 64;

// Moves one pixel. A 3-byte pixel moves as 4 bytes where both the byte after the source pixel
// and the byte after the destination pixel are known to exist (`wide`); the extra byte written
// belongs to the next destination pixel, which the caller writes afterwards.
template <int Bpp>
inline void MovePixel(BYTE* out, const BYTE* in, bool wide) {
    if (Bpp == 3 && wide) {
        std::memcpy(out, in, 4);
    } else {
        std::memcpy(out, in, Bpp);
    }
}

// Source pixel (c, r) goes to destination row `column`, position `position`, of every tile,
// with the source rows of each tile taken in the order that makes the destination positions
// rise, so that a 4-byte move's extra byte is always overwritten later.
template <int Bpp>
void QuarterTurnTiles(const ConstPixelView& src, const PixelView& dst, bool clockwise) {
    const int w = src.width;
    const int h = src.height;
    const int tiles = (h + kTurnTile - 1) / kTurnTile;
    for (int t = 0; t < tiles; ++t) {
        // Clockwise, destination position h - 1 - r rises as r falls: bottom tiles first.
        const int r0 = clockwise ? std::max(0, h - (t + 1) * kTurnTile) : t * kTurnTile;
        const int r1 = clockwise ? h - t * kTurnTile : std::min(h, (t + 1) * kTurnTile);
        for (int c0 = 0; c0 < w; c0 += kTurnTile) {
            const int c1 = std::min(c0 + kTurnTile, w);
            for (int k = 0; k < r1 - r0; ++k) {
                const int r = clockwise ? r1 - 1 - k : r0 + k;
                const int position = clockwise ? h - 1 - r : r;
                // The last destination position has no byte after it in the row.
                const bool wideOut = position < h - 1;
                const BYTE* in = src.Row(r) + static_cast<std::ptrdiff_t>(c0) * Bpp;
                for (int c = c0; c < c1; ++c, in += Bpp) {
                    const int row = clockwise ? c : w - 1 - c;
                    MovePixel<Bpp>(dst.Row(row) + static_cast<std::ptrdiff_t>(position) * Bpp, in,
                                   wideOut && c < w - 1);
                }
            }
        }
    }
}

}  // namespace

void QuarterTurn(const ConstPixelView& src, const PixelView& dst, bool clockwise) {
    assert(dst.width == src.height && dst.height == src.width);
    assert(src.bytesPerPixel == dst.bytesPerPixel);
    if (src.bytesPerPixel == 3) {
        QuarterTurnTiles<3>(src, dst, clockwise);
    } else {
        QuarterTurnTiles<1>(src, dst, clockwise);
    }
}

void FlipRowRef(BYTE* row, int count, int bytesPerPixel) {
    BYTE* left = row;
    BYTE* right = row + static_cast<std::ptrdiff_t>(count - 1) * bytesPerPixel;
    for (int x = 0; x < count / 2; ++x, left += bytesPerPixel, right -= bytesPerPixel) {
        std::swap_ranges(left, left + bytesPerPixel, right);
    }
}

FlipRowKernel FlipRowFor(cpu::InstructionSet set) {
#if VISTRANE_X86_KERNELS
    if (set == cpu::InstructionSet::kAvx2) {
        return FlipRowAvx2;
    }
#else
    (void)set;
#endif
    return FlipRowRef;
}

void FlipHorizontal(const PixelView& view, FlipRowKernel kernel) {
    for (int y = 0; y < view.height; ++y) {
        kernel(view.Row(y), view.width, view.bytesPerPixel);
    }
}

void FlipHorizontal(const PixelView& view) {
    FlipHorizontal(view, FlipRowFor(cpu::Best()));
}

void FlipVertical(const PixelView& view) {
    const std::size_t bytes = static_cast<std::size_t>(view.RowBytes());
    for (int y = 0; y < view.height / 2; ++y) {
        std::swap_ranges(view.Row(y), view.Row(y) + bytes, view.Row(view.height - 1 - y));
    }
}

// ---- Three-shear rotation ------------------------------------------------------------------

namespace {

bool ToInt(double value, int& out) {
    const double truncated = std::trunc(value);
    if (!(truncated >= 0.0 && truncated <= std::numeric_limits<int>::max())) {
        return false;
    }
    out = static_cast<int>(truncated);
    return true;
}

// A shear offset split into whole pixels and 1/4096 of a pixel, both truncated.
struct SplitOffset {
    int whole;
    int frac;
};

SplitOffset Split(double offset) {
    const int whole = static_cast<int>(offset);
    return {whole, static_cast<int>((offset - whole) * 4096)};
}

template <int Bpp>
inline void Blend12(BYTE* out, const BYTE* p, const BYTE* prev, int f) {
    for (int ch = 0; ch < Bpp; ++ch) {
        out[ch] = static_cast<BYTE>((p[ch] * (4096 - f) + prev[ch] * f + 2048) >> 12);
    }
}

// Writes n source pixels (`inStep` bytes apart) at line positions whole + disp + i of a line of
// `length` pixels (`outStep` bytes apart) already filled with the background. Positions off
// the line are skipped and do not become the previous pixel. When the fraction is non-zero the
// position after the run, if on the line, gets the last pixel's share of the background.
template <int Bpp, ShearMode Mode>
void ShearLine(const BYTE* in, std::ptrdiff_t inStep, int n, BYTE* out, std::ptrdiff_t outStep,
               int length, SplitOffset offset, int disp, const BYTE* bg) {
    const int start = offset.whole + disp;
    const int first = std::max(0, -start);
    const int end = std::min(n, length - start);
    const BYTE* prev = bg;
    for (int i = first; i < end; ++i) {
        const BYTE* p = in + inStep * i;
        BYTE* o = out + outStep * (start + i);
        if constexpr (Mode == ShearMode::Blend) {
            Blend12<Bpp>(o, p, prev, offset.frac);
        } else {
            std::memcpy(o, p, Bpp);
        }
        prev = p;
    }
    const int after = start + n;
    if (offset.frac > 0 && after >= 0 && after < length) {
        BYTE* o = out + outStep * after;
        if constexpr (Mode == ShearMode::Blend) {
            Blend12<Bpp>(o, bg, prev, offset.frac);
        } else {
            std::memcpy(o, bg, Bpp);
        }
    }
}

// ShearLine for a row moved within a row: the run is contiguous on both sides, so the
// blending rows go to a row kernel; the copying rows keep ShearLine.
template <int Bpp, ShearMode Mode>
void ShearRow(const BYTE* in, int n, BYTE* out, int length, SplitOffset offset, int disp,
              const BYTE* bg, ShearRowKernel kernel) {
    if constexpr (Mode == ShearMode::Copy) {
        ShearLine<Bpp, Mode>(in, Bpp, n, out, Bpp, length, offset, disp, bg);
    } else {
        const int start = offset.whole + disp;
        const int first = std::max(0, -start);
        const int end = std::min(n, length - start);
        const BYTE* prev = bg;
        if (first < end) {
            kernel(out + static_cast<std::ptrdiff_t>(start + first) * Bpp,
                   in + static_cast<std::ptrdiff_t>(first) * Bpp, (end - first) * Bpp, Bpp, bg,
                   offset.frac);
            prev = in + static_cast<std::ptrdiff_t>(end - 1) * Bpp;
        }
        const int after = start + n;
        if (offset.frac > 0 && after >= 0 && after < length) {
            Blend12<Bpp>(out + static_cast<std::ptrdiff_t>(after) * Bpp, bg, prev, offset.frac);
        }
    }
}

// Columns sheared together by ShearColumns: 64 columns of 3 bytes span three cache lines of
// each row, so the strip walks its rows of the buffers instead of one column at a time.
constexpr int kShearStrip = 64;

// ShearLine for the columns j0..j1 - 1 of a top-down buffer of `rowBytes` a row, source column
// j moved by offsets[j] with displacement `disp` into a buffer of `length` rows. Each column
// gets exactly ShearLine's writes in ShearLine's order; only the order between columns changes.
template <int Bpp, ShearMode Mode>
inline void ShearColumnPixel(BYTE* o, const BYTE* p, const BYTE* prev, int frac) {
    if constexpr (Mode == ShearMode::Blend) {
        Blend12<Bpp>(o, p, prev, frac);
    } else {
        std::memcpy(o, p, Bpp);
    }
}

template <int Bpp, ShearMode Mode>
void ShearColumns(const BYTE* in, int n, BYTE* out, std::ptrdiff_t rowBytes, int length,
                  const SplitOffset* offsets, int j0, int j1, int disp, const BYTE* bg,
                  ShearPairsKernel pairs) {
    int start[kShearStrip];
    int first[kShearStrip];
    int end[kShearStrip];
    int frac[kShearStrip];
    std::ptrdiff_t target[kShearStrip];  // bytes from `out` to where source row 0 would land
    const BYTE* prev[kShearStrip];
    const int count = j1 - j0;
    int low = n;
    int high = 0;
    int allFrom = 0;  // from here to allTo every column of the strip is on the line
    int allTo = n;
    for (int c = 0; c < count; ++c) {
        start[c] = offsets[j0 + c].whole + disp;
        first[c] = std::max(0, -start[c]);
        end[c] = std::min(n, length - start[c]);
        frac[c] = offsets[j0 + c].frac;
        target[c] = rowBytes * start[c] + static_cast<std::ptrdiff_t>(j0 + c) * Bpp;
        prev[c] = bg;
        low = std::min(low, first[c]);
        high = std::max(high, end[c]);
        allFrom = std::max(allFrom, first[c]);
        allTo = std::min(allTo, end[c]);
    }
    allTo = std::max(allTo, allFrom);
    const BYTE* strip = in + static_cast<std::ptrdiff_t>(j0) * Bpp;
    auto someColumns = [&](int from, int to) {
        for (int i = from; i < to; ++i) {
            const BYTE* row = strip + rowBytes * i;
            for (int c = 0; c < count; ++c) {
                if (i >= first[c] && i < end[c]) {
                    ShearColumnPixel<Bpp, Mode>(out + (target[c] + rowBytes * i), row + c * Bpp,
                                                prev[c], frac[c]);
                    prev[c] = row + c * Bpp;
                }
            }
        }
    };
    someColumns(low, allFrom);
    int i0 = allFrom;
    if constexpr (Mode == ShearMode::Blend) {
        // Past the first row where all columns are on the line, every column blends with the
        // pixel above it: the strip is one row operation, then each pixel goes to its line.
        someColumns(allFrom, std::min(allFrom + 1, allTo));
        std::int32_t weights[kShearStrip * Bpp];
        BYTE blended[kShearStrip * Bpp];
        bool sameRowNext[kShearStrip];
        for (int c = 0; c < count; ++c) {
            sameRowNext[c] = c + 1 < count && start[c + 1] == start[c];
        }
        for (int c = 0; c < count; ++c) {
            for (int ch = 0; ch < Bpp; ++ch) {
                weights[c * Bpp + ch] = frac[c] << 16 | (4096 - frac[c]);
            }
        }
        for (int i = allFrom + 1; i < allTo; ++i) {
            const BYTE* row = strip + rowBytes * i;
            pairs(blended, row, row - rowBytes, weights, count * Bpp);
            const std::ptrdiff_t down = rowBytes * i;
            for (int c = 0; c < count; ++c) {
                // A 3-byte pixel whose right neighbour lands on the same row moves as 4 bytes;
                // the neighbour, written next, overwrites the extra byte.
                if (Bpp == 3 && sameRowNext[c]) {
                    std::memcpy(out + (target[c] + down), blended + c * Bpp, 4);
                } else {
                    std::memcpy(out + (target[c] + down), blended + c * Bpp, Bpp);
                }
            }
        }
        if (allTo > allFrom) {
            for (int c = 0; c < count; ++c) {
                prev[c] = strip + rowBytes * (allTo - 1) + c * Bpp;
            }
        }
        i0 = allTo;
    }
    for (int i = i0; i < allTo; ++i) {
        const BYTE* row = strip + rowBytes * i;
        const std::ptrdiff_t down = rowBytes * i;
        for (int c = 0; c < count; ++c) {
            ShearColumnPixel<Bpp, Mode>(out + (target[c] + down), row + c * Bpp, prev[c], frac[c]);
            prev[c] = row + c * Bpp;
        }
    }
    someColumns(allTo, high);
    for (int c = 0; c < count; ++c) {
        const int after = start[c] + n;
        if (frac[c] > 0 && after >= 0 && after < length) {
            BYTE* o = out + rowBytes * after + static_cast<std::ptrdiff_t>(j0 + c) * Bpp;
            if constexpr (Mode == ShearMode::Blend) {
                Blend12<Bpp>(o, bg, prev[c], frac[c]);
            } else {
                std::memcpy(o, bg, Bpp);
            }
        }
    }
}

void FillBuffer(BYTE* buffer, std::size_t pixels, int bpp, const BYTE* bg) {
    if (bpp == 1) {
        std::memset(buffer, bg[0], pixels);
        return;
    }
    if (pixels == 0) {
        return;
    }
    // One pixel, then the filled part copied onto the rest, doubling each time.
    const std::size_t total = pixels * bpp;
    std::memcpy(buffer, bg, static_cast<std::size_t>(bpp));
    for (std::size_t filled = bpp; filled < total; filled *= 2) {
        std::memcpy(buffer + filled, buffer, std::min(filled, total - filled));
    }
}

// Both intermediate buffers in one block. A block of ~100 MB taken fresh from the heap is
// page-faulted in on every rotation (about a fifth of its time); a shareable section of the same
// size is kept mapped after closing and handed back, only cleared, to the next rotation of that
// picture size. Blocks too large for a section come from the heap.
class ShearScratch {
  public:
    explicit ShearScratch(std::size_t bytes) {
        if (bytes > 0 && bytes <= std::numeric_limits<DWORD>::max()) {
            void* view = nullptr;
            section_ = CreateSharedSection(static_cast<DWORD>(bytes), &view);
            data_ = static_cast<BYTE*>(view);
        }
        if (data_ == nullptr) {
            heap_.reset(new (std::nothrow) BYTE[std::max<std::size_t>(bytes, 1)]);
            data_ = heap_.get();
        }
    }
    ~ShearScratch() {
        if (section_ != 0) {
            CloseSharedSection(section_);
        }
    }
    ShearScratch(const ShearScratch&) = delete;
    ShearScratch& operator=(const ShearScratch&) = delete;

    BYTE* Data() const { return data_; }

  private:
    HANDLE section_ = 0;
    BYTE* data_ = nullptr;
    std::unique_ptr<BYTE[]> heap_;
};

// Fills with the background only the positions of a row of `length` pixels that ShearRow
// leaves alone: it writes [max(start, 0), start + n) and, with a non-zero fraction, start + n,
// all clipped to the row.
template <int Bpp>
void FillAroundRow(BYTE* row, int length, SplitOffset offset, int disp, int n, const BYTE* bg) {
    const long long start = static_cast<long long>(offset.whole) + disp;
    const long long lo = std::clamp<long long>(start, 0, length);
    const long long hi = std::clamp<long long>(start + n + (offset.frac > 0 ? 1 : 0), lo, length);
    FillBuffer(row, static_cast<std::size_t>(lo), Bpp, bg);
    FillBuffer(row + hi * Bpp, static_cast<std::size_t>(length - hi), Bpp, bg);
}

template <int Bpp, ShearMode Mode>
bool ShearRotateRows(const ConstPixelView& src, const PixelView& dst, double radians,
                     const ShearSizes& z, const BYTE* bg, const ShearKernels& kernels,
                     const image::Progress* progress) {
    const int w = src.width;
    const int h = src.height;
    const std::size_t firstPixels = static_cast<std::size_t>(z.firstWidth) * h;
    const std::size_t secondPixels = static_cast<std::size_t>(z.firstWidth) * z.height;
    ShearScratch scratch((firstPixels + secondPixels) * Bpp);
    std::unique_ptr<SplitOffset[]> columnOffsets(new (std::nothrow) SplitOffset[z.firstWidth]);
    if (scratch.Data() == nullptr || !columnOffsets) {
        return false;
    }
    BYTE* const first = scratch.Data();
    BYTE* const second = first + firstPixels * Bpp;
    const bool positive = radians > 0;
    const std::ptrdiff_t firstRow = static_cast<std::ptrdiff_t>(z.firstWidth) * Bpp;

    // Progress counts the rows of the first and last shears and the columns of the middle one.
    for (int i = 0; i < h; ++i) {
        if (!image::GoOn(progress, i)) {
            return false;
        }
        // h - i, not h - 1 - i: keeps the original shear offset.
        const double o = positive ? i * z.tanHalf : (h - i) * z.tanHalf;
        FillAroundRow<Bpp>(first + firstRow * i, z.firstWidth, Split(o), 0, w, bg);
        ShearRow<Bpp, Mode>(src.Row(i), w, first + firstRow * i, z.firstWidth, Split(o), 0, bg,
                            kernels.row);
    }

    FillBuffer(second, secondPixels, Bpp, bg);
    for (int j = 0; j < z.firstWidth; ++j) {
        columnOffsets[j] = Split(positive ? (z.firstWidth - j) * z.sine : j * z.sine);
    }
    for (int j0 = 0; j0 < z.firstWidth; j0 += kShearStrip) {
        if (progress != nullptr && !progress->Report(h + j0)) {
            return false;
        }
        ShearColumns<Bpp, Mode>(first, h, second, firstRow, z.height, columnOffsets.get(), j0,
                                std::min(j0 + kShearStrip, z.firstWidth), -z.trim, bg,
                                kernels.pairs);
    }

    for (int i = 0; i < z.height; ++i) {
        if (progress != nullptr && i % image::kProgressBandRows == 0 &&
            !progress->Report(h + z.firstWidth + i)) {
            return false;
        }
        const double o = positive ? i * z.tanHalf : (z.height - i) * z.tanHalf;
        FillAroundRow<Bpp>(dst.Row(i), z.width, Split(o), -z.shift, z.firstWidth, bg);
        ShearRow<Bpp, Mode>(second + firstRow * i, z.firstWidth, dst.Row(i), z.width, Split(o),
                            -z.shift, bg, kernels.row);
    }
    return true;
}

}  // namespace

bool ComputeShearSizes(int width, int height, double radians, ShearSizes& z) {
    const double t = std::fabs(std::tan(radians / 2));
    const double s = std::fabs(std::sin(radians));
    z.tanHalf = t;
    z.sine = s;
    return ToInt(width + height * t + 0.999999, z.firstWidth) &&
           ToInt((z.firstWidth - width) * s, z.trim) &&
           ToInt(z.firstWidth * s + height + 0.999999, z.tallHeight) &&
           ToInt(static_cast<double>(z.tallHeight) - 2.0 * z.trim, z.height) &&
           ToInt((z.tallHeight - z.trim - height) * t, z.shift) &&
           ToInt(z.firstWidth + (z.tallHeight - 2 * z.trim) * t + 0.999999 - 2 * z.shift,
                 z.width) &&
           z.width >= 1 && z.height >= 1;
}

void ShearRowRef(BYTE* out, const BYTE* in, int bytes, int bpp, const BYTE* prev, int frac) {
    for (int j = 0; j < bytes; ++j) {
        const int before = j < bpp ? prev[j] : in[j - bpp];
        out[j] = static_cast<BYTE>((in[j] * (4096 - frac) + before * frac + 2048) >> 12);
    }
}

ShearRowKernel ShearRowFor(cpu::InstructionSet set) {
#if VISTRANE_X86_KERNELS
    if (set == cpu::InstructionSet::kAvx2) {
        return ShearRowAvx2;
    }
#else
    (void)set;
#endif
    return ShearRowRef;
}

void ShearPairsRef(BYTE* out, const BYTE* in, const BYTE* above, const std::int32_t* weights,
                   int bytes) {
    for (int j = 0; j < bytes; ++j) {
        const int frac = weights[j] >> 16;
        out[j] = static_cast<BYTE>((in[j] * (4096 - frac) + above[j] * frac + 2048) >> 12);
    }
}

ShearPairsKernel ShearPairsFor(cpu::InstructionSet set) {
#if VISTRANE_X86_KERNELS
    if (set == cpu::InstructionSet::kAvx2) {
        return ShearPairsAvx2;
    }
#else
    (void)set;
#endif
    return ShearPairsRef;
}

bool ShearRotateWith(const ConstPixelView& src, const PixelView& dst, double radians,
                     const ShearSizes& sizes, const BYTE* background, ShearMode mode,
                     const ShearKernels& kernels, const image::Progress* progress) {
    assert(dst.width == sizes.width && dst.height == sizes.height);
    assert(src.bytesPerPixel == dst.bytesPerPixel);
    if (src.bytesPerPixel == 3) {
        return mode == ShearMode::Blend
                   ? ShearRotateRows<3, ShearMode::Blend>(src, dst, radians, sizes, background,
                                                          kernels, progress)
                   : ShearRotateRows<3, ShearMode::Copy>(src, dst, radians, sizes, background,
                                                         kernels, progress);
    }
    return mode == ShearMode::Blend ? ShearRotateRows<1, ShearMode::Blend>(
                                          src, dst, radians, sizes, background, kernels, progress)
                                    : ShearRotateRows<1, ShearMode::Copy>(
                                          src, dst, radians, sizes, background, kernels, progress);
}

bool ShearRotate(const ConstPixelView& src, const PixelView& dst, double radians,
                 const ShearSizes& sizes, const BYTE* background, ShearMode mode,
                 const image::Progress* progress) {
    return ShearRotateWith(src, dst, radians, sizes, background, mode,
                           ShearKernels{ShearRowFor(cpu::Best()), ShearPairsFor(cpu::Best())},
                           progress);
}

}  // namespace vistrane::xform
