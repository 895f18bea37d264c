#include "mask/mask_flood.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>

#include "mask/color_match.h"

namespace vistrane::mask {

namespace {

// The first index from x on (up to `end`) whose byte is non-zero, or `end`; eight bytes a step
// over zeros.
int FindNonZero(const BYTE* row, int x, int end) {
    while (x + 8 <= end) {
        std::uint64_t word;
        std::memcpy(&word, row + x, 8);
        if (word != 0) {
            break;
        }
        x += 8;
    }
    while (x < end && row[x] == 0) {
        ++x;
    }
    return x;
}

// The first index from x on (up to `end`) whose byte is zero, or `end`.
int FindZero(const BYTE* row, int x, int end) {
    constexpr std::uint64_t kOnes = 0x0101010101010101ULL;
    constexpr std::uint64_t kHighs = 0x8080808080808080ULL;
    while (x + 8 <= end) {
        std::uint64_t word;
        std::memcpy(&word, row + x, 8);
        // Sets a byte's high bit for the lowest zero byte at least (the classic zero-byte test).
        if (((word - kOnes) & ~word & kHighs) != 0) {
            break;
        }
        x += 8;
    }
    while (x < end && row[x] != 0) {
        ++x;
    }
    return x;
}

// Which pixel of a 1-byte view `p` points at; false when it is none of them (padding or
// outside). Addresses are compared as integers, since `p` may point anywhere.
bool Locate(const BYTE* p, const image::PixelView& view, int& x, int& y) {
    const bool bottomUp = view.strideBytes < 0;
    const std::ptrdiff_t stride = bottomUp ? -view.strideBytes : view.strideBytes;
    const auto lowest =
        reinterpret_cast<std::uintptr_t>(bottomUp ? view.Row(view.height - 1) : view.Row(0));
    const auto address = reinterpret_cast<std::uintptr_t>(p);
    if (address < lowest) {
        return false;
    }
    const std::uintptr_t offset = address - lowest;
    const std::uintptr_t memoryRow = offset / static_cast<std::uintptr_t>(stride);
    const std::uintptr_t column = offset % static_cast<std::uintptr_t>(stride);
    if (memoryRow >= static_cast<std::uintptr_t>(view.height) ||
        column >= static_cast<std::uintptr_t>(view.width)) {
        return false;
    }
    x = static_cast<int>(column);
    y = bottomUp ? view.height - 1 - static_cast<int>(memoryRow) : static_cast<int>(memoryRow);
    return true;
}

}  // namespace

std::size_t FillStack::CapacityFor(int width, int height) {
    const std::size_t bytes =
        2 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    return std::max<std::size_t>(bytes / sizeof(PendingRun), 1024);
}

bool FillStack::Allocate(std::size_t capacity) {
    if (capacity > PTRDIFF_MAX / sizeof(PendingRun)) {
        return false;
    }
    m_Runs.reset(new (std::nothrow) PendingRun[capacity]);
    m_Capacity = m_Runs != nullptr ? capacity : 0;
    return m_Runs != nullptr;
}

class RunFiller {
  public:
    RunFiller(const image::PixelView& mask, const image::ConstPixelView& source,
              const RowTest& test, BYTE value, FillStack& stack)
        : m_Mask(mask),
          m_Source(source),
          m_Test(test),
          m_Value(value),
          m_Runs(stack.m_Runs.get()),
          m_Capacity(stack.m_Capacity) {}

    void Process(const PendingRun& run) {
        if (run.direction == 0) {
            if (run.left > 0 && Open(run.y, run.left - 1)) {
                const int left = ExtendLeft(run.y, run.left - 1);
                FillAndPush(run.y, left, run.left - 1, 0, 1, 0);
            }
            if (run.right + 1 < m_Mask.width && Open(run.y, run.right + 1)) {
                const int right = ExtendRight(run.y, run.right + 1) - 1;
                FillAndPush(run.y, run.right + 1, right, 0, 1, 0);
            }
        }
        for (int step = -1; step <= 1; step += 2) {
            const int y = run.y + step;
            if (y < 0 || y >= m_Mask.height) {
                continue;
            }
            if (run.direction != 0 && step == -run.direction) {
                // The parent's row: its run is filled, only what sticks out past it is left.
                Search(y, run.left, std::min(run.right, run.parentLeft - 1), run, step);
                Search(y, std::max(run.left, run.parentRight + 1), run.right, run, step);
            } else {
                Search(y, run.left, run.right, run, step);
            }
        }
    }

    void Drain() {
        while (m_Size > 0) {
            const PendingRun run = m_Runs[--m_Size];
            Process(run);
        }
    }

    // Every selected segment of every row is searched around, which finds whatever runs a full
    // stack dropped (and, for growing, starts from the selection).
    void Rescan() {
        m_Dropped = false;
        for (int y = 0; y < m_Mask.height; ++y) {
            const BYTE* row = m_Mask.Row(y);
            int x = FindNonZero(row, 0, m_Mask.width);
            while (x < m_Mask.width) {
                const int end = FindZero(row, x, m_Mask.width);
                Process(PendingRun{y, x, end - 1, 0, -1, 0});
                Drain();
                x = FindNonZero(row, end, m_Mask.width);
            }
        }
    }

    bool Dropped() const { return m_Dropped; }

  private:
    std::uint32_t Bits(int y, int x, int count) const {
        return m_Test.openBits(m_Test, m_Source.Row(y), m_Mask.Row(y), x, count);
    }
    bool Open(int y, int x) const { return Bits(y, x, 1) != 0; }

    // The first pixel from x on that is not open (the width when none).
    int ExtendRight(int y, int x) const {
        while (x < m_Mask.width) {
            const int count = std::min(32, m_Mask.width - x);
            const int ones = std::countr_one(Bits(y, x, count));
            x += ones;
            if (ones < count) {
                break;
            }
        }
        return x;
    }

    // The leftmost pixel of the open run that ends at the open pixel x.
    int ExtendLeft(int y, int x) const {
        while (x > 0) {
            const int count = std::min(32, x);
            // Pixel x - 1 on the top bit, so leading ones count leftwards.
            const int ones = std::countl_one(Bits(y, x - count, count) << (32 - count));
            x -= ones;
            if (ones < count) {
                break;
            }
        }
        return x;
    }

    // Fills and pushes every open run of row y that meets from..to, found from `run`.
    void Search(int y, int from, int to, const PendingRun& run, int step) {
        int x = from;
        while (x <= to) {
            const int count = std::min(32, to - x + 1);
            const std::uint32_t bits = Bits(y, x, count);
            if (bits == 0) {
                x += count;
                continue;
            }
            const int offset = std::countr_zero(bits);
            const int start = x + offset;
            // Only the first pixel of the range can continue an open run from its left.
            const int left = start == from ? ExtendLeft(y, start) : start;
            const int ones = std::countr_one(bits >> offset);
            const int right =
                (offset + ones == count ? ExtendRight(y, x + count) : start + ones) - 1;
            FillAndPush(y, left, right, run.left, run.right, step);
            x = right + 2;
        }
    }

    void FillAndPush(int y, int left, int right, int parentLeft, int parentRight, int direction) {
        std::memset(m_Mask.Row(y) + left, m_Value, static_cast<std::size_t>(right - left + 1));
        if (m_Size == m_Capacity) {
            m_Dropped = true;
            return;
        }
        m_Runs[m_Size++] = PendingRun{y, left, right, parentLeft, parentRight, direction};
    }

    const image::PixelView& m_Mask;
    const image::ConstPixelView& m_Source;
    const RowTest& m_Test;
    const BYTE m_Value;
    PendingRun* const m_Runs;
    const std::size_t m_Capacity;
    std::size_t m_Size = 0;
    bool m_Dropped = false;
};

void RunFill(const image::PixelView& mask, const image::ConstPixelView& source, const RowTest& test,
             BYTE value, FillStack& stack, const CPoint* seed) {
    RunFiller filler(mask, source, test, value, stack);
    if (seed != nullptr) {
        filler.Process(PendingRun{seed->y, seed->x, seed->x, 0, -1, 0});
        filler.Drain();
        if (!filler.Dropped()) {
            return;
        }
    }
    do {
        filler.Rescan();
    } while (filler.Dropped());
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
                edge.boundaryOpacitySum += b;
                ++edge.boundaryCount;
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

bool ExpansionFits(const S_TwoPointers* queue, long nSeeds, const image::PixelView& mask,
                   const image::PixelView& work) {
    if (work.bytesPerPixel != 1 || work.width != mask.width + 2 || work.height != mask.height + 2) {
        return false;
    }
    for (int y = 0; y < work.height; ++y) {
        const BYTE* row = work.Row(y);
        const bool frameRow = y == 0 || y + 1 == work.height;
        if (row[0] != 0 || row[work.width - 1] != 0 ||
            (frameRow && FindNonZero(row, 0, work.width) != work.width)) {
            return false;
        }
    }
    for (long k = 0; k < nSeeds; ++k) {
        int x = 0;
        int y = 0;
        if (!Locate(queue[k].m_pWork, work, x, y) || x < 1 || x > mask.width || y < 1 ||
            y > mask.height || queue[k].m_pMask != mask.Row(y - 1) + (x - 1)) {
            return false;
        }
    }
    return true;
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
