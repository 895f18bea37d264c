// BitBlt and StretchBlt. Each destination row is built in three steps: gather the source pixels
// that map to it (combining the ones a reduction eliminates by the stretch mode), convert them
// to the destination's pixel format, and merge them into the row by the raster operation. A
// plain blit is the stretch with equal extents, whose gather step is one row copy. Cost: one
// pass over the destination area, plus one over every eliminated source pixel in the AND and
// OR modes.

#include <vistrane/platform/dc.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/device_context.h"
#include "platform/gdi_objects.h"
#include "platform/raster_target.h"

namespace vistrane::platform {
namespace {

enum class RopKind { kCopy, kPaint, kAnd, kInvert, kNotCopy, kDstInvert, kBlack, kWhite, kUnknown };

RopKind KindOf(DWORD rop) {
    switch (rop) {
        case SRCCOPY:
            return RopKind::kCopy;
        case SRCPAINT:
            return RopKind::kPaint;
        case SRCAND:
            return RopKind::kAnd;
        case SRCINVERT:
            return RopKind::kInvert;
        case NOTSRCCOPY:
            return RopKind::kNotCopy;
        case DSTINVERT:
            return RopKind::kDstInvert;
        case BLACKNESS:
            return RopKind::kBlack;
        case WHITENESS:
            return RopKind::kWhite;
        default:
            return RopKind::kUnknown;
    }
}

bool NeedsSource(RopKind kind) {
    return kind != RopKind::kDstInvert && kind != RopKind::kBlack && kind != RopKind::kWhite;
}

// Source pixels [first, end) that destination pixel i of `extent` covers, of `sourceExtent`
// starting at `origin`; always at least one.
struct Cover {
    int first;
    int end;
};

Cover CoverOf(long long i, long long extent, long long sourceExtent, int origin) {
    const auto first = static_cast<int>(origin + i * sourceExtent / extent);
    const auto end = static_cast<int>(origin + (i + 1) * sourceExtent / extent);
    return {first, std::max(end, first + 1)};
}

// The destination indices [lo, hi) whose pixel lies inside 0..limit and whose cover lies inside
// 0..sourceLimit (no source: sourceLimit < 0). Both conditions hold on one contiguous range.
void ValidRange(int position, int extent, int origin, int sourceExtent, int limit, int sourceLimit,
                int& lo, int& hi) {
    lo = std::max(0, -position);
    hi = std::min(extent, limit - position);
    if (sourceLimit < 0) {
        return;
    }
    while (lo < hi && CoverOf(lo, extent, sourceExtent, origin).first < 0) {
        ++lo;
    }
    while (hi > lo && CoverOf(hi - 1, extent, sourceExtent, origin).end > sourceLimit) {
        --hi;
    }
}

void CombineInto(BYTE* accumulated, const BYTE* pixel, int bytes, int stretchMode) {
    for (int c = 0; c < bytes; ++c) {
        accumulated[c] = stretchMode == BLACKONWHITE ? static_cast<BYTE>(accumulated[c] & pixel[c])
                                                     : static_cast<BYTE>(accumulated[c] | pixel[c]);
    }
}

// The source pixels of one destination row, in the source's format.
void GatherRow(const RasterTarget& source, const std::vector<Cover>& columns, Cover rows,
               int stretchMode, BYTE* out) {
    const int bpp = source.bytesPerPixel;
    const bool combine = stretchMode == BLACKONWHITE || stretchMode == WHITEONBLACK;
    const int lastRow = combine ? rows.end : rows.first + 1;
    // Adjacent covers never overlap when reducing, so they span exactly one pixel each when
    // their total extent equals their count: the row is then a straight copy.
    const bool contiguous =
        columns.back().end - columns.front().first == static_cast<int>(columns.size());
    for (int y = rows.first; y < lastRow; ++y) {
        const BYTE* row = source.Row(y);
        const bool first = y == rows.first;
        if (contiguous && first) {
            std::memcpy(out, row + static_cast<std::ptrdiff_t>(columns.front().first) * bpp,
                        columns.size() * static_cast<std::size_t>(bpp));
            continue;
        }
        BYTE* o = out;
        for (const Cover& cover : columns) {
            const int lastColumn = combine ? cover.end : cover.first + 1;
            int x = cover.first;
            if (first) {
                std::memcpy(o, row + static_cast<std::ptrdiff_t>(x) * bpp,
                            static_cast<std::size_t>(bpp));
                ++x;
            }
            for (; x < lastColumn; ++x) {
                CombineInto(o, row + static_cast<std::ptrdiff_t>(x) * bpp, bpp, stretchMode);
            }
            o += bpp;
        }
    }
}

// Converts n pixels from the source's format into the destination's.
void ConvertRow(const RasterTarget& source, const RasterTarget& destination, const BYTE* in, int n,
                BYTE* out) {
    const int from = source.bytesPerPixel;
    const int to = destination.bytesPerPixel;
    if (from == 1 && to == 1) {
        std::memcpy(out, in, static_cast<std::size_t>(n));
        return;
    }
    for (int i = 0; i < n; ++i, in += from, out += to) {
        if (from == 1) {
            const RGBQUAD& q = source.colors[in[0]];
            out[0] = q.rgbBlue;
            out[1] = q.rgbGreen;
            out[2] = q.rgbRed;
        } else if (to == 1) {
            out[0] =
                NearestColorIndex(destination.colors, destination.nColors, in[2], in[1], in[0]);
        } else {
            out[0] = in[0];
            out[1] = in[1];
            out[2] = in[2];
        }
    }
}

BYTE MergeByte(RopKind kind, BYTE d, BYTE s) {
    switch (kind) {
        case RopKind::kPaint:
            return static_cast<BYTE>(d | s);
        case RopKind::kAnd:
            return static_cast<BYTE>(d & s);
        case RopKind::kInvert:
            return static_cast<BYTE>(d ^ s);
        case RopKind::kNotCopy:
            return static_cast<BYTE>(~s);
        case RopKind::kDstInvert:
            return static_cast<BYTE>(~d);
        case RopKind::kBlack:
            return 0;
        case RopKind::kWhite:
            return 0xFF;
        default:
            return s;
    }
}

// Merges n converted pixels into the destination row; the fourth byte of a 32-bit pixel stays.
void MergeRow(RopKind kind, const BYTE* in, int n, int bpp, BYTE* out) {
    if (kind == RopKind::kCopy && bpp != 4) {
        std::memcpy(out, in, static_cast<std::size_t>(n) * static_cast<std::size_t>(bpp));
        return;
    }
    const int colorBytes = std::min(bpp, 3);
    for (int i = 0; i < n; ++i, out += bpp) {
        for (int c = 0; c < colorBytes; ++c) {
            out[c] = MergeByte(kind, out[c], in == nullptr ? 0 : in[i * bpp + c]);
        }
    }
}

BOOL Blit(DeviceContext* dc, DeviceContext* sourceDc, int x, int y, int width, int height,
          int sourceX, int sourceY, int sourceWidth, int sourceHeight, DWORD rop) {
    const RopKind kind = KindOf(rop);
    if (dc == nullptr || kind == RopKind::kUnknown || width < 0 || height < 0 || sourceWidth < 0 ||
        sourceHeight < 0) {
        return 0;
    }
    const RasterTarget destination = TargetOf(*dc);
    if (!destination.Valid()) {
        return 0;
    }
    const bool withSource = NeedsSource(kind);
    RasterTarget source;
    std::vector<BYTE> sourceCopy;
    if (withSource) {
        if (sourceDc == nullptr) {
            return 0;
        }
        source = TargetOf(*sourceDc);
        if (!source.Valid()) {
            return 0;
        }
        sourceX += sourceDc->viewportOrg.x;
        sourceY += sourceDc->viewportOrg.y;
        // A blit within one bitmap reads a copy, so overlapping areas come out as if read first.
        if (source.topRow == destination.topRow) {
            const std::size_t rowBytes = static_cast<std::size_t>(
                source.strideBytes < 0 ? -source.strideBytes : source.strideBytes);
            sourceCopy.resize(rowBytes * static_cast<std::size_t>(source.height));
            for (int row = 0; row < source.height; ++row) {
                std::memcpy(sourceCopy.data() + rowBytes * static_cast<std::size_t>(row),
                            source.Row(row), rowBytes);
            }
            source.topRow = sourceCopy.data();
            source.strideBytes = static_cast<std::ptrdiff_t>(rowBytes);
        }
    }
    if (width == 0 || height == 0 || (withSource && (sourceWidth == 0 || sourceHeight == 0))) {
        return 1;
    }
    x += dc->viewportOrg.x;
    y += dc->viewportOrg.y;

    int i0 = 0;
    int i1 = 0;
    int j0 = 0;
    int j1 = 0;
    ValidRange(x, width, sourceX, sourceWidth, destination.width, withSource ? source.width : -1,
               i0, i1);
    ValidRange(y, height, sourceY, sourceHeight, destination.height,
               withSource ? source.height : -1, j0, j1);
    if (i0 >= i1 || j0 >= j1) {
        return 1;
    }
    const int n = i1 - i0;
    const int bpp = destination.bytesPerPixel;
    const int stretchMode = dc->stretchMode;
    std::vector<Cover> columns;
    std::vector<BYTE> gathered;
    std::vector<BYTE> converted;
    if (withSource) {
        columns.reserve(static_cast<std::size_t>(n));
        for (int i = i0; i < i1; ++i) {
            columns.push_back(CoverOf(i, width, sourceWidth, sourceX));
        }
        gathered.resize(static_cast<std::size_t>(n) *
                        static_cast<std::size_t>(source.bytesPerPixel));
        converted.resize(static_cast<std::size_t>(n) * static_cast<std::size_t>(bpp));
    }
    for (int j = j0; j < j1; ++j) {
        BYTE* out = destination.Row(y + j) + static_cast<std::ptrdiff_t>(x + i0) * bpp;
        if (!withSource) {
            MergeRow(kind, nullptr, n, bpp, out);
            continue;
        }
        GatherRow(source, columns, CoverOf(j, height, sourceHeight, sourceY), stretchMode,
                  gathered.data());
        const BYTE* in = gathered.data();
        if (source.bytesPerPixel != bpp || bpp == 4 || source.bytesPerPixel == 4) {
            ConvertRow(source, destination, gathered.data(), n, converted.data());
            in = converted.data();
        }
        MergeRow(kind, in, n, bpp, out);
    }
    return 1;
}

}  // namespace
}  // namespace vistrane::platform

BOOL CDC::BitBlt(int x, int y, int width, int height, CDC* source, int sourceX, int sourceY,
                 DWORD rop) {
    return vistrane::platform::Blit(m_hDC, source == nullptr ? nullptr : source->m_hDC, x, y, width,
                                    height, sourceX, sourceY, width, height, rop);
}

BOOL CDC::StretchBlt(int x, int y, int width, int height, CDC* source, int sourceX, int sourceY,
                     int sourceWidth, int sourceHeight, DWORD rop) {
    return vistrane::platform::Blit(m_hDC, source == nullptr ? nullptr : source->m_hDC, x, y, width,
                                    height, sourceX, sourceY, sourceWidth, sourceHeight, rop);
}
