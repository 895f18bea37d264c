// C_Helper: the sample range limit, the random generator, percentages and box fitting.

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <limits>

#include <vistrane/companion/helper.h>

namespace {

// xorshift32: fast, one word of state, and a period of 2^32 - 1 over non-zero states, which is
// plenty for dissolve noise. The state is process-wide so that SeedRandom repeats a sequence.
std::atomic<std::uint32_t> g_RandomState{2463534242u};

std::uint32_t NextRandom() {
    std::uint32_t s = g_RandomState.load(std::memory_order_relaxed);
    s ^= s << 13;
    s ^= s >> 17;
    s ^= s << 5;
    g_RandomState.store(s, std::memory_order_relaxed);
    return s;
}

}  // namespace

LONG C_Helper::GetSampleRangeLimit() const { return std::numeric_limits<LONG>::max(); }

int C_Helper::Random0Max(int maximum) {
    if (maximum < 1) {
        return 0;
    }
    // Multiply-shift maps the 32-bit draw onto 0..maximum without the bias of a modulo.
    const std::uint64_t range = static_cast<std::uint64_t>(maximum) + 1;
    return static_cast<int>((static_cast<std::uint64_t>(NextRandom()) * range) >> 32);
}

void C_Helper::SeedRandom(DWORD seed) {
    g_RandomState.store(seed != 0 ? seed : 2463534242u, std::memory_order_relaxed);
}

int C_Helper::XLatePercentTo255(int percent) const {
    const int p = std::clamp(percent, 0, 100);
    return (p * 255 + 50) / 100;
}

int C_Helper::FitIfGreater(LONG* width, LONG* height, LONG maxWidth, LONG maxHeight) const {
    if (*width <= maxWidth && *height <= maxHeight) {
        return 0;
    }
    if (*width <= 0 || *height <= 0 || maxWidth <= 0 || maxHeight <= 0) {
        return 0;
    }
    // Scale by the tighter of the two ratios; compare w/maxW with h/maxH by cross-multiplying.
    const long long w = *width;
    const long long h = *height;
    if (w * maxHeight >= h * maxWidth) {
        *height = static_cast<LONG>(std::max(1LL, (h * maxWidth + w / 2) / w));
        *width = maxWidth;
    } else {
        *width = static_cast<LONG>(std::max(1LL, (w * maxHeight + h / 2) / h));
        *height = maxHeight;
    }
    return 1;
}
