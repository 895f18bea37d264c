#include "xform/resample.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

namespace vistrane::xform {

using image::ConstPixelView;
using image::PixelView;

namespace {

template <typename T>
std::unique_ptr<T[]> TryAllocate(std::size_t count) {
    return std::unique_ptr<T[]>(new (std::nothrow) T[count == 0 ? 1 : count]);
}

// The first source sample of every destination sample of a reduction, m + 1 entries (the last
// is n). The map rises by at most one per source sample (m < n) and map[n] = m, so every
// destination sample owns one non-empty run and the box rule is a mean over each run.
bool RunStarts(int n, int m, std::unique_ptr<std::int32_t[]>& starts) {
    starts = TryAllocate<std::int32_t>(static_cast<std::size_t>(m) + 1);
    if (!starts) {
        return false;
    }
    int next = 0;
    for (int i = 0; i < n; ++i) {
        if (ReductionMapEntry(i, n, m) == next) {
            starts[next++] = i;
        }
    }
    assert(next == m);
    starts[m] = n;
    return true;
}

// A sum of up to `samples` bytes fits 32 bits when samples * 255 does.
bool FitsNarrowSums(long long samples) {
    return samples * 255 <= std::numeric_limits<std::uint32_t>::max();
}

// Where a 1/64 interpolation of n samples onto m reads: sample s and its successor (s itself
// at the end), with weight f/64 on the successor.
struct Tap64 {
    std::int32_t s0;
    std::int32_t s1;
    std::int32_t f;
};

Tap64 Tap64For(long long d, int n, int m) {
    long long p = d * n * 64 / m - 32;
    if (p < 0) {
        p = 0;
    }
    const int s = static_cast<int>(p >> 6);
    return {s, s + 1 < n ? s + 1 : s, static_cast<std::int32_t>(p & 63)};
}

inline BYTE Lerp64(BYTE a, BYTE b, std::int32_t f) {
    return static_cast<BYTE>((a * (64 - f) + b * f) >> 6);
}

template <int Bpp>
void InterpolateRows64(const BYTE* a, const BYTE* b, std::int32_t f, int count, BYTE* out) {
    for (int i = 0; i < count * Bpp; ++i) {
        out[i] = Lerp64(a[i], b[i], f);
    }
}

// ---- ResampleExpand ------------------------------------------------------------------------

struct Tap100 {
    std::int32_t c;   // the sample's own pixel
    std::int32_t nc;  // the neighbour on the side of the sample point
    std::int32_t a;   // |offset from the pixel centre| in 1/100, 0..50
};

Tap100 Tap100For(long long d, int n, int m) {
    const int c = static_cast<int>(d * n / m);
    const int offset = static_cast<int>(d * n * 100 / m - static_cast<long long>(c) * 100 - 50);
    int nc = offset < 0 ? c - 1 : c + 1;
    nc = nc < 0 ? 0 : (nc > n - 1 ? n - 1 : nc);
    return {c, nc, offset < 0 ? -offset : offset};
}

// Where the enlarging worker reads: per destination pixel the byte offsets of its own and its
// neighbour source column, and per destination byte |fx|.
struct ExpandColumns {
    std::unique_ptr<std::int32_t[]> own;
    std::unique_ptr<std::int32_t[]> side;
    std::unique_ptr<std::uint16_t[]> ax;
};

// Copies the pixels at `offsets` of a source row into `out`, one after another. A 3-byte pixel
// moves as 4 bytes, the fourth overwritten by the next pixel (`out` has one spare byte at the
// end), except the row's last pixel, whose fourth byte may lie past the source buffer.
void GatherPixels(const BYTE* row, int rowBytes, const std::int32_t* offsets, int count, int bpp,
                  BYTE* out) {
    if (bpp == 1) {
        for (int x = 0; x < count; ++x) {
            out[x] = row[offsets[x]];
        }
        return;
    }
    const int last = rowBytes - 3;
    for (int x = 0; x < count; ++x, out += 3) {
        const int o = offsets[x];
        std::memcpy(out, row + o, o < last ? 4 : 3);
    }
}

// Gathered source rows, one slot per source row index modulo 3: a destination row needs source
// row r and r - 1 or r + 1, and r never falls as the destination row rises, so each source row
// is gathered once and kept while the rows around it use it.
class GatheredRows {
  public:
    bool Allocate(std::size_t bytes) {
        m_Stride = bytes + 1;
        m_Data = TryAllocate<BYTE>(m_Stride * 6);
        return m_Data != nullptr;
    }

    // The own and neighbour-column rows of source row y.
    const BYTE* Own(const ConstPixelView& src, const ExpandColumns& cols, int count, int y) {
        return Fill(src, cols, count, y);
    }
    const BYTE* Side(const ConstPixelView& src, const ExpandColumns& cols, int count, int y) {
        return Fill(src, cols, count, y) + m_Stride;
    }

  private:
    BYTE* Fill(const ConstPixelView& src, const ExpandColumns& cols, int count, int y) {
        const int slot = y % 3;
        BYTE* own = m_Data.get() + static_cast<std::size_t>(slot) * 2 * m_Stride;
        if (m_Rows[slot] != y) {
            const BYTE* row = src.Row(y);
            GatherPixels(row, src.RowBytes(), cols.own.get(), count, src.bytesPerPixel, own);
            GatherPixels(row, src.RowBytes(), cols.side.get(), count, src.bytesPerPixel,
                         own + m_Stride);
            m_Rows[slot] = y;
        }
        return own;
    }

    std::size_t m_Stride = 0;
    std::unique_ptr<BYTE[]> m_Data;
    int m_Rows[3] = {-1, -1, -1};
};

bool ExpandRows(const ConstPixelView& src, const PixelView& dst, ExpandRowKernel kernel,
                const image::Progress* progress) {
    const int bpp = src.bytesPerPixel;
    const int dw = dst.width;
    const std::size_t rowBytes = static_cast<std::size_t>(dst.RowBytes());
    ExpandColumns cols{TryAllocate<std::int32_t>(static_cast<std::size_t>(dw)),
                       TryAllocate<std::int32_t>(static_cast<std::size_t>(dw)),
                       TryAllocate<std::uint16_t>(rowBytes)};
    GatheredRows rows;
    if (!cols.own || !cols.side || !cols.ax || !rows.Allocate(rowBytes)) {
        return false;
    }
    for (int x = 0; x < dw; ++x) {
        const Tap100 t = Tap100For(x, src.width, dw);
        cols.own[x] = t.c * bpp;
        cols.side[x] = t.nc * bpp;
        std::fill_n(cols.ax.get() + static_cast<std::size_t>(x) * bpp, bpp,
                    static_cast<std::uint16_t>(t.a));
    }
    for (int y = 0; y < dst.height; ++y) {
        if (!image::GoOn(progress, y)) {
            return false;
        }
        const Tap100 ty = Tap100For(y, src.height, dst.height);
        const ExpandRowInputs in{rows.Own(src, cols, dw, ty.c),
                                 rows.Side(src, cols, dw, ty.c),
                                 rows.Own(src, cols, dw, ty.nc),
                                 rows.Side(src, cols, dw, ty.nc),
                                 cols.ax.get(),
                                 ty.a};
        kernel(dst.Row(y), static_cast<int>(rowBytes), in);
    }
    return true;
}

// ---- ResampleReduceX -----------------------------------------------------------------------

template <int Bpp, typename Sum>
void BoxRow(const BYTE* in, const std::int32_t* starts, int dw, BYTE* out) {
    for (int x = 0; x < dw; ++x) {
        const int begin = starts[x];
        const int end = starts[x + 1];
        for (int ch = 0; ch < Bpp; ++ch) {
            Sum sum = 0;
            for (int i = begin; i < end; ++i) {
                sum += in[i * Bpp + ch];
            }
            out[x * Bpp + ch] = static_cast<BYTE>(sum / static_cast<Sum>(end - begin));
        }
    }
}

template <int Bpp, typename Sum>
bool ReduceXRows(const ConstPixelView& src, const PixelView& dst, const image::Progress* progress) {
    const int w = src.width;
    std::unique_ptr<std::int32_t[]> starts;
    auto line = TryAllocate<BYTE>(static_cast<std::size_t>(w) * Bpp);
    if (!line || !RunStarts(w, dst.width, starts)) {
        return false;
    }
    for (int y = 0; y < dst.height; ++y) {
        if (!image::GoOn(progress, y)) {
            return false;
        }
        const Tap64 t = Tap64For(y, src.height, dst.height);
        InterpolateRows64<Bpp>(src.Row(t.s0), src.Row(t.s1), t.f, w, line.get());
        BoxRow<Bpp, Sum>(line.get(), starts.get(), dst.width, dst.Row(y));
    }
    return true;
}

// ---- ResampleReduceY -----------------------------------------------------------------------

template <int Bpp, typename Sum>
bool ReduceYRows(const ConstPixelView& src, const PixelView& dst, const image::Progress* progress) {
    const int dw = dst.width;
    const std::size_t sums = static_cast<std::size_t>(dw) * Bpp;
    std::unique_ptr<std::int32_t[]> bands;
    auto acc = TryAllocate<Sum>(sums);
    auto taps = TryAllocate<Tap64>(static_cast<std::size_t>(dw));
    if (!acc || !taps || !RunStarts(src.height, dst.height, bands)) {
        return false;
    }
    for (int x = 0; x < dw; ++x) {
        const Tap64 t = Tap64For(x, src.width, dw);
        taps[x] = {t.s0 * Bpp, t.s1 * Bpp, t.f};
    }
    for (int y = 0; y < dst.height; ++y) {
        if (!image::GoOn(progress, y)) {
            return false;
        }
        std::fill(acc.get(), acc.get() + sums, Sum{0});
        for (int j = bands[y]; j < bands[y + 1]; ++j) {
            const BYTE* row = src.Row(j);
            for (int x = 0; x < dw; ++x) {
                const Tap64& t = taps[x];
                for (int ch = 0; ch < Bpp; ++ch) {
                    acc[x * Bpp + ch] += Lerp64(row[t.s0 + ch], row[t.s1 + ch], t.f);
                }
            }
        }
        const Sum rows = static_cast<Sum>(bands[y + 1] - bands[y]);
        BYTE* out = dst.Row(y);
        for (std::size_t i = 0; i < sums; ++i) {
            out[i] = static_cast<BYTE>(acc[i] / rows);
        }
    }
    return true;
}

// ---- ResampleReduceXY ----------------------------------------------------------------------

// Exact division of a box total by the box's size d. (sum / rows) / columns equals
// sum / (rows * columns) for non-negative integers, so one division serves. Totals are at most
// 255 * d; with m = ceil(2^40 / d) the error of (x * m) >> 40 stays below 1 / d for
// 255 * d^2 <= 2^40, which keeps the quotient exact; larger boxes divide.
struct BoxDivisor {
    std::uint64_t d;
    std::uint64_t m;
    bool exactByMultiply;
};

BoxDivisor MakeBoxDivisor(std::uint64_t d) {
    const bool small = 255 * d * d <= (std::uint64_t{1} << 40);
    return {d, ((std::uint64_t{1} << 40) + d - 1) / d, small};
}

inline std::uint64_t Divide(std::uint64_t x, const BoxDivisor& div) {
    return div.exactByMultiply ? (x * div.m) >> 40 : x / div.d;
}

// Adds a source row into the column sums of the band; a plain loop the compiler vectorises.
template <typename Sum>
void AddRow(const BYTE* __restrict in, int count, Sum* __restrict acc) {
    for (int i = 0; i < count; ++i) {
        acc[i] += in[i];
    }
}

template <int Bpp, typename Sum>
bool ReduceXYRows(const ConstPixelView& src, const PixelView& dst,
                  const image::Progress* progress) {
    const int dw = dst.width;
    const int rowBytes = src.RowBytes();
    std::unique_ptr<std::int32_t[]> starts;
    std::unique_ptr<std::int32_t[]> bands;
    auto acc = TryAllocate<Sum>(static_cast<std::size_t>(rowBytes));
    auto divisors = TryAllocate<BoxDivisor>(static_cast<std::size_t>(dw));
    if (!acc || !divisors || !RunStarts(src.width, dw, starts) ||
        !RunStarts(src.height, dst.height, bands)) {
        return false;
    }
    int lastRows = 0;
    for (int y = 0; y < dst.height; ++y) {
        if (!image::GoOn(progress, y)) {
            return false;
        }
        const int rows = bands[y + 1] - bands[y];
        if (rows != lastRows) {
            for (int x = 0; x < dw; ++x) {
                divisors[x] = MakeBoxDivisor(static_cast<std::uint64_t>(rows) *
                                             static_cast<std::uint64_t>(starts[x + 1] - starts[x]));
            }
            lastRows = rows;
        }
        std::fill(acc.get(), acc.get() + rowBytes, Sum{0});
        for (int j = bands[y]; j < bands[y + 1]; ++j) {
            AddRow(src.Row(j), rowBytes, acc.get());
        }
        BYTE* out = dst.Row(y);
        for (int x = 0; x < dw; ++x) {
            const Sum* column = acc.get() + static_cast<std::ptrdiff_t>(starts[x]) * Bpp;
            const Sum* columnEnd = acc.get() + static_cast<std::ptrdiff_t>(starts[x + 1]) * Bpp;
            // All channels of a box in one walk over its columns.
            std::uint64_t total[Bpp] = {};
            for (; column < columnEnd; column += Bpp) {
                for (int ch = 0; ch < Bpp; ++ch) {
                    total[ch] += column[ch];
                }
            }
            for (int ch = 0; ch < Bpp; ++ch) {
                out[x * Bpp + ch] = static_cast<BYTE>(Divide(total[ch], divisors[x]));
            }
        }
    }
    return true;
}

// Longest run of a reduction of n onto m samples.
long long LongestRun(int n, int m) {
    return n / m + 1;
}

}  // namespace

ResampleWorker ChooseResampleWorker(int srcWidth, int srcHeight, int dstWidth, int dstHeight) {
    if (dstWidth >= srcWidth) {
        return dstHeight >= srcHeight ? ResampleWorker::Expand : ResampleWorker::ReduceY;
    }
    return dstHeight >= srcHeight ? ResampleWorker::ReduceX : ResampleWorker::ReduceXY;
}

// term[w][p] = p * w / 100, truncated: one term of the enlarging rule, looked up instead of
// multiplied and divided (101 x 256 bytes, within the first-level cache).
struct TermTable {
    BYTE term[101][256];
    TermTable() {
        for (int w = 0; w <= 100; ++w) {
            for (int p = 0; p < 256; ++p) {
                term[w][p] = static_cast<BYTE>(p * w / 100);
            }
        }
    }
};

void ExpandRowRef(BYTE* dst, int count, const ExpandRowInputs& in) {
    static const TermTable table;
    // The four weights depend only on ax and ay (0..50): for this row's ay, the term rows of
    // wM (the pixel), wC (neighbour column), wR (neighbour row) and wD (diagonal) for every ax.
    const int ay = in.ay;
    const BYTE* weights[51][4];
    for (int ax = 0; ax <= 50; ++ax) {
        const int wD = ay * ax / 100;
        const int wR = (100 - ax) * ay / 100;
        const int wC = (100 - ay) * ax / 100;
        weights[ax][0] = table.term[100 - wC - wR - wD];
        weights[ax][1] = table.term[wC];
        weights[ax][2] = table.term[wR];
        weights[ax][3] = table.term[wD];
    }
    for (int i = 0; i < count; ++i) {
        const BYTE* const* wt = weights[in.ax[i]];
        // Each term truncated on its own: the weights sum to 100, the result to 255.
        dst[i] = static_cast<BYTE>(wt[0][in.own[i]] + wt[1][in.side[i]] + wt[2][in.ownNext[i]] +
                                   wt[3][in.sideNext[i]]);
    }
}

ExpandRowKernel ExpandRowFor(cpu::InstructionSet set) {
#if VISTRANE_X86_KERNELS
    if (set == cpu::InstructionSet::kAvx2) {
        return ExpandRowAvx2;
    }
#else
    (void)set;
#endif
    return ExpandRowRef;
}

bool ResampleExpandWith(const ConstPixelView& src, const PixelView& dst, ExpandRowKernel kernel,
                        const image::Progress* progress) {
    assert(src.bytesPerPixel == dst.bytesPerPixel && !src.Empty() && !dst.Empty());
    assert(dst.width >= src.width && dst.height >= src.height);
    return ExpandRows(src, dst, kernel, progress);
}

bool ResampleExpand(const ConstPixelView& src, const PixelView& dst,
                    const image::Progress* progress) {
    return ResampleExpandWith(src, dst, ExpandRowFor(cpu::Best()), progress);
}

bool ResampleReduceX(const ConstPixelView& src, const PixelView& dst,
                     const image::Progress* progress) {
    assert(src.bytesPerPixel == dst.bytesPerPixel && !src.Empty() && !dst.Empty());
    assert(dst.width < src.width && dst.height >= src.height);
    if (FitsNarrowSums(LongestRun(src.width, dst.width))) {
        return src.bytesPerPixel == 3 ? ReduceXRows<3, std::uint32_t>(src, dst, progress)
                                      : ReduceXRows<1, std::uint32_t>(src, dst, progress);
    }
    return src.bytesPerPixel == 3 ? ReduceXRows<3, std::uint64_t>(src, dst, progress)
                                  : ReduceXRows<1, std::uint64_t>(src, dst, progress);
}

bool ResampleReduceY(const ConstPixelView& src, const PixelView& dst,
                     const image::Progress* progress) {
    assert(src.bytesPerPixel == dst.bytesPerPixel && !src.Empty() && !dst.Empty());
    assert(dst.width >= src.width && dst.height < src.height);
    if (FitsNarrowSums(LongestRun(src.height, dst.height))) {
        return src.bytesPerPixel == 3 ? ReduceYRows<3, std::uint32_t>(src, dst, progress)
                                      : ReduceYRows<1, std::uint32_t>(src, dst, progress);
    }
    return src.bytesPerPixel == 3 ? ReduceYRows<3, std::uint64_t>(src, dst, progress)
                                  : ReduceYRows<1, std::uint64_t>(src, dst, progress);
}

bool ResampleReduceXY(const ConstPixelView& src, const PixelView& dst,
                      const image::Progress* progress) {
    assert(src.bytesPerPixel == dst.bytesPerPixel && !src.Empty() && !dst.Empty());
    assert(dst.width < src.width && dst.height < src.height);
    // Column sums gather one band of rows.
    const long long rows = LongestRun(src.height, dst.height);
    if (rows * 255 <= std::numeric_limits<std::uint16_t>::max()) {
        return src.bytesPerPixel == 3 ? ReduceXYRows<3, std::uint16_t>(src, dst, progress)
                                      : ReduceXYRows<1, std::uint16_t>(src, dst, progress);
    }
    if (FitsNarrowSums(rows)) {
        return src.bytesPerPixel == 3 ? ReduceXYRows<3, std::uint32_t>(src, dst, progress)
                                      : ReduceXYRows<1, std::uint32_t>(src, dst, progress);
    }
    return src.bytesPerPixel == 3 ? ReduceXYRows<3, std::uint64_t>(src, dst, progress)
                                  : ReduceXYRows<1, std::uint64_t>(src, dst, progress);
}

bool Resample(const ConstPixelView& src, const PixelView& dst, const image::Progress* progress) {
    switch (ChooseResampleWorker(src.width, src.height, dst.width, dst.height)) {
        case ResampleWorker::Expand:
            return ResampleExpand(src, dst, progress);
        case ResampleWorker::ReduceX:
            return ResampleReduceX(src, dst, progress);
        case ResampleWorker::ReduceY:
            return ResampleReduceY(src, dst, progress);
        case ResampleWorker::ReduceXY:
            return ResampleReduceXY(src, dst, progress);
    }
    return false;
}

bool ResizeNearest(const ConstPixelView& src, const PixelView& dst) {
    assert(src.bytesPerPixel == dst.bytesPerPixel && !src.Empty() && !dst.Empty());
    const int bpp = dst.bytesPerPixel;
    auto columns = TryAllocate<std::int32_t>(static_cast<std::size_t>(dst.width));
    if (!columns) {
        return false;
    }
    for (int c = 0; c < dst.width; ++c) {
        columns[c] =
            static_cast<std::int32_t>(static_cast<long long>(c) * src.width / dst.width * bpp);
    }
    for (int r = 0; r < dst.height; ++r) {
        const int sr = static_cast<int>(static_cast<long long>(r) * src.height / dst.height);
        const BYTE* in = src.Row(src.height - 1 - sr);
        BYTE* out = dst.Row(dst.height - 1 - r);
        if (bpp == 3) {
            for (int c = 0; c < dst.width; ++c, out += 3) {
                const BYTE* p = in + columns[c];
                out[0] = p[0];
                out[1] = p[1];
                out[2] = p[2];
            }
        } else {
            for (int c = 0; c < dst.width; ++c) {
                out[c] = in[columns[c]];
            }
        }
    }
    return true;
}

}  // namespace vistrane::xform
