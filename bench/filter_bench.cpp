// Filters, colour operations and statistics over a 4096 x 3072 picture through their row
// routines (the work of FilterImage, LUTColorOperation, the HSV shift, TurnGrayScale,
// ComputeHistogram and CountColors).

#include "blend/blend_dispatch.h"
#include "filter/color_rows.h"
#include "filter/neighbourhood_filter.h"

#include <vistrane/blend/blend_modes.h>
#include <vistrane/blend/image_luts.h>

#include <benchmark/benchmark.h>

#include <array>
#include <vector>

namespace {

using namespace vistrane;

constexpr int kWidth = 4096;
constexpr int kHeight = 3072;

std::vector<BYTE> Picture(std::size_t bytes) {
    std::vector<BYTE> v(bytes);
    unsigned state = 777;
    for (auto& b : v) {
        state = state * 1103515245u + 12345u;
        b = static_cast<BYTE>(state >> 16);
    }
    return v;
}

void SetRate(benchmark::State& state) {
    state.counters["Mpix/s"] = benchmark::Counter(static_cast<double>(kWidth) * kHeight / 1e6,
                                                  benchmark::Counter::kIsIterationInvariantRate);
}

void Filter(benchmark::State& state, int size, int mode, bool halfMask) {
    glb_CreateImageLUTs();
    const std::ptrdiff_t stride = 3 * kWidth;
    std::vector<BYTE> picture = Picture(static_cast<std::size_t>(stride) * kHeight);
    const std::ptrdiff_t bufferStride = 3 * (kWidth + 6);
    std::vector<BYTE> buffer(static_cast<std::size_t>(bufferStride) * (kHeight + 6));
    std::vector<BYTE> mask(static_cast<std::size_t>(kWidth) * kHeight);
    for (std::size_t i = 0; i < mask.size(); ++i) {
        mask[i] = (i % kWidth) < kWidth / 2 ? 255 : 0;
    }
    int kernel[49] = {};
    for (int r = 0; r < size; ++r) {
        for (int c = 0; c < size; ++c) {
            kernel[(r + (7 - size) / 2) * 7 + c + (7 - size) / 2] = 1 + (r + c) % 3;
        }
    }
    C_Helper helper;
    blend::BlendContext context{0, &helper};
    const filter::FilterSettings settings{
        kernel, size * size * 2, 0, filter::kFilterPerChannel, 255, 3};
    BYTE colour[3] = {};
    for (auto _ : state) {
        const filter::Plane image{picture.data(), stride};
        const filter::Plane copy{buffer.data(), bufferStride};
        filter::RefreshBorderedCopy(copy, image, 3, 3, 0, 0, kWidth, kHeight, 3);
        filter::FilterRect(image, {buffer.data() + 3 * bufferStride + 9, bufferStride},
                           halfMask ? filter::Plane{mask.data(), kWidth} : filter::Plane{}, kWidth,
                           kHeight, settings, blend::FastRowBlender(mode, 3),
                           blend::MergeRowFor(3, blend::BestKernelSet()), context, colour);
        benchmark::ClobberMemory();
    }
    SetRate(state);
    glb_ReleaseImageLUTs();
}

void BM_FilterImage3x3(benchmark::State& s) {
    Filter(s, 3, BLENDMODE_NORMAL, false);
}
void BM_FilterImage7x7(benchmark::State& s) {
    Filter(s, 7, BLENDMODE_NORMAL, false);
}
void BM_FilterImage3x3MultiplyHalfMask(benchmark::State& s) {
    Filter(s, 3, BLENDMODE_MULTIPLY, true);
}
void BM_FilterImage7x7MultiplyHalfMask(benchmark::State& s) {
    Filter(s, 7, BLENDMODE_MULTIPLY, true);
}
BENCHMARK(BM_FilterImage3x3)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FilterImage7x7)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FilterImage3x3MultiplyHalfMask)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FilterImage7x7MultiplyHalfMask)->Unit(benchmark::kMillisecond);

template <typename RowOp>
void EveryRow(benchmark::State& state, int bytesPerPixel, RowOp op) {
    glb_CreateImageLUTs();
    const std::size_t rowBytes = static_cast<std::size_t>(kWidth) * bytesPerPixel;
    std::vector<BYTE> picture = Picture(rowBytes * kHeight);
    std::vector<BYTE> scratch(3 * kWidth);
    for (auto _ : state) {
        for (int y = 0; y < kHeight; ++y) {
            op(picture.data() + rowBytes * y, scratch.data());
        }
        benchmark::ClobberMemory();
    }
    SetRate(state);
    glb_ReleaseImageLUTs();
}

void BM_FilterLUTColorOperation(benchmark::State& state) {
    std::array<BYTE, 256> table;
    for (int i = 0; i < 256; ++i) {
        table[i] = static_cast<BYTE>(255 - i);
    }
    EveryRow(state, 3, [&](BYTE* row, BYTE* scratch) {
        filter::LutRowTrueColor(row, kWidth, {table.data(), table.data(), table.data()}, nullptr,
                                scratch);
    });
}
BENCHMARK(BM_FilterLUTColorOperation)->Unit(benchmark::kMillisecond);

void BM_FilterHSVShift(benchmark::State& state) {
    C_Helper helper;
    const int shifts[3] = {30, 0, 0};
    EveryRow(state, 3, [&](BYTE* row, BYTE* scratch) {
        filter::ShiftRowTrueColor(row, kWidth, true, shifts, nullptr, scratch, helper);
    });
}
BENCHMARK(BM_FilterHSVShift)->Unit(benchmark::kMillisecond);

void BM_FilterTurnGrayScale(benchmark::State& state) {
    EveryRow(state, 3, [&](BYTE* row, BYTE* scratch) {
        filter::GrayRowTrueColor(row, kWidth, nullptr, scratch);
    });
}
BENCHMARK(BM_FilterTurnGrayScale)->Unit(benchmark::kMillisecond);

void BM_FilterComputeHistogram(benchmark::State& state) {
    std::array<LONG, 256> red{}, green{}, blue{};
    DWORD counted = 0;
    EveryRow(state, 3, [&](BYTE* row, BYTE*) {
        filter::HistogramRow(row, kWidth, 3, nullptr, nullptr, red.data(), green.data(),
                             blue.data(), &counted);
    });
    benchmark::DoNotOptimize(counted);
}
BENCHMARK(BM_FilterComputeHistogram)->Unit(benchmark::kMillisecond);

void BM_FilterCountColors(benchmark::State& state) {
    std::vector<BYTE> bits(1 << 21);
    unsigned long distinct = 0;
    EveryRow(state, 3, [&](BYTE* row, BYTE*) {
        distinct += filter::MarkColorsRow(row, kWidth, bits.data());
    });
    benchmark::DoNotOptimize(distinct);
}
BENCHMARK(BM_FilterCountColors)->Unit(benchmark::kMillisecond);

}  // namespace
