// The C_Image members of the filter subsystem on a 4096 x 3072 24-bit picture and its 8-bit grey
// twin: FilterImage, LUTColorOperation, the HSV shift, TurnGrayScale, ComputeHistogram and
// CountColors. Each iteration works on the same image in place; the work per pixel does not
// depend on the pixel values except through the tables.

#include "filter/color_rows.h"
#include "filter/lut_bytes.h"

#include <vistrane/blend/image_luts.h>
#include <vistrane/image/image.h>

#include <benchmark/benchmark.h>

#include <array>
#include <memory>

namespace {

constexpr long kWidth = 4096;
constexpr long kHeight = 3072;

// The picture: seeded pseudo-random bytes, 24-bit or a grey mask.
std::unique_ptr<C_Image> Picture(bool trueColor) {
    auto image = std::make_unique<C_Image>();
    const int made = trueColor ? image->Create(kWidth, kHeight, 1, nullptr, 0)
                               : image->CreateMask(kWidth, kHeight);
    if (made == 0) {
        return nullptr;
    }
    unsigned state = 777;
    const long rowBytes = kWidth * (trueColor ? 3 : 1);
    for (long y = 0; y < kHeight; ++y) {
        BYTE* row = image->PixelPtr(0, y);
        for (long i = 0; i < rowBytes; ++i) {
            state = state * 1103515245u + 12345u;
            row[i] = static_cast<BYTE>(state >> 16);
        }
    }
    return image;
}

void SetRate(benchmark::State& state) {
    state.counters["Mpix/s"] = benchmark::Counter(static_cast<double>(kWidth) * kHeight / 1e6,
                                                  benchmark::Counter::kIsIterationInvariantRate);
}

// A size x size kernel of weights 1..3 (all non-zero) in the middle of the 7 x 7 field.
std::array<int, 49> Kernel(int size) {
    std::array<int, 49> kernel{};
    for (int r = 0; r < size; ++r) {
        for (int c = 0; c < size; ++c) {
            kernel[(r + (7 - size) / 2) * 7 + c + (7 - size) / 2] = 1 + (r + c) % 3;
        }
    }
    return kernel;
}

// With `prepared`, the bordered copy is made once outside the loop, as a host that previews the
// same area repeatedly does; otherwise FilterImage makes (and maps) its own every call.
void Filter(benchmark::State& state, bool trueColor, int size, BLENDMODES mode, bool halfMask,
            bool prepared = false) {
    C_Image::CheckBitmapHeaderType();
    glb_CreateImageLUTs();
    std::unique_ptr<C_Image> image = Picture(trueColor);
    C_Image mask;
    if (!image || mask.CreateMask(kWidth, kHeight) == 0) {
        state.SkipWithError("cannot make the pictures");
        return;
    }
    for (long y = 0; y < kHeight; ++y) {
        std::fill(mask.PixelPtr(0, y), mask.PixelPtr(0, y) + kWidth / 2, BYTE{255});
    }
    std::array<int, 49> kernel = Kernel(size);
    C_Image buffer;
    if (prepared && buffer.PrepareFilterBuffer(3, 3, 0, 0, kWidth, kHeight, image.get()) == 0) {
        state.SkipWithError("cannot make the buffer");
        return;
    }
    for (auto _ : state) {
        image->FilterImage(mode, 255, 0, 0, 0, kWidth, kHeight, halfMask ? &mask : nullptr,
                           kernel.data(), 0, size * size * 2, FILTER_PER_CHANNEL,
                           prepared ? &buffer : nullptr, 3, 3);
        benchmark::ClobberMemory();
    }
    SetRate(state);
    glb_ReleaseImageLUTs();
}

void BM_FilterImage3x3(benchmark::State& s) {
    Filter(s, true, 3, BLENDMODE_NORMAL, false);
}
void BM_FilterImage7x7(benchmark::State& s) {
    Filter(s, true, 7, BLENDMODE_NORMAL, false);
}
void BM_FilterImage3x3MultiplyHalfMask(benchmark::State& s) {
    Filter(s, true, 3, BLENDMODE_MULTIPLY, true);
}
void BM_FilterImage7x7MultiplyHalfMask(benchmark::State& s) {
    Filter(s, true, 7, BLENDMODE_MULTIPLY, true);
}
void BM_FilterImage3x3PreparedBuffer(benchmark::State& s) {
    Filter(s, true, 3, BLENDMODE_NORMAL, false, true);
}
void BM_FilterImage7x7PreparedBuffer(benchmark::State& s) {
    Filter(s, true, 7, BLENDMODE_NORMAL, false, true);
}
void BM_FilterImage3x3Grey(benchmark::State& s) {
    Filter(s, false, 3, BLENDMODE_NORMAL, false);
}
BENCHMARK(BM_FilterImage3x3)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FilterImage7x7)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FilterImage3x3MultiplyHalfMask)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FilterImage7x7MultiplyHalfMask)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FilterImage3x3PreparedBuffer)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FilterImage7x7PreparedBuffer)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FilterImage3x3Grey)->Unit(benchmark::kMillisecond);

template <typename Op>
void OnPicture(benchmark::State& state, bool trueColor, Op op) {
    C_Image::CheckBitmapHeaderType();
    glb_CreateImageLUTs();
    std::unique_ptr<C_Image> image = Picture(trueColor);
    if (!image) {
        state.SkipWithError("cannot make the picture");
        return;
    }
    for (auto _ : state) {
        op(*image);
        benchmark::ClobberMemory();
    }
    SetRate(state);
    glb_ReleaseImageLUTs();
}

void LutOperation(benchmark::State& state, bool trueColor) {
    std::array<BYTE, 256> table;
    for (int i = 0; i < 256; ++i) {
        table[i] = static_cast<BYTE>(255 - i);
    }
    OnPicture(state, trueColor, [&](C_Image& image) {
        image.LUTColorOperation(table.data(), table.data(), table.data(), nullptr);
    });
}
void BM_FilterLUTColorOperation(benchmark::State& state) {
    LutOperation(state, true);
}
void BM_FilterLUTColorOperationGrey(benchmark::State& state) {
    LutOperation(state, false);
}
BENCHMARK(BM_FilterLUTColorOperation)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FilterLUTColorOperationGrey)->Unit(benchmark::kMillisecond);

// Three different tables, as an RGB offset or a user curve gives: no single-table shortcut.
void BM_FilterLUTColorOperationThreeTables(benchmark::State& state) {
    std::array<BYTE, 256> red, green, blue;
    for (int i = 0; i < 256; ++i) {
        red[i] = static_cast<BYTE>(255 - i);
        green[i] = static_cast<BYTE>(i / 2 + 64);
        blue[i] = static_cast<BYTE>(i * i / 255);
    }
    OnPicture(state, true, [&](C_Image& image) {
        image.LUTColorOperation(red.data(), green.data(), blue.data(), nullptr);
    });
}
BENCHMARK(BM_FilterLUTColorOperationThreeTables)->Unit(benchmark::kMillisecond);

// The three-table rows side by side over the picture's rows: the plain pixel loop of the
// colour rows (which masked operations still use) and the word row that unmasked ones run.
template <typename Row>
void ThreeTableRows(benchmark::State& state, Row row) {
    std::array<BYTE, 256> red, green, blue;
    for (int i = 0; i < 256; ++i) {
        red[i] = static_cast<BYTE>(255 - i);
        green[i] = static_cast<BYTE>(i / 2 + 64);
        blue[i] = static_cast<BYTE>(i * i / 255);
    }
    auto lut = std::make_unique<vistrane::filter::BgrLut>();
    vistrane::filter::FillBgrLut(*lut, blue.data(), green.data(), red.data());
    const vistrane::filter::ChannelTables tables{red.data(), green.data(), blue.data()};
    OnPicture(state, true, [&](C_Image& image) {
        for (long y = 0; y < kHeight; ++y) {
            row(image.PixelPtr(0, y), static_cast<int>(kWidth), tables, *lut);
        }
    });
}
void BM_FilterLutRowTrueColorPlain(benchmark::State& state) {
    ThreeTableRows(state, [](BYTE* row, int count, const vistrane::filter::ChannelTables& tables,
                             const vistrane::filter::BgrLut&) {
        vistrane::filter::LutRowTrueColor(row, count, tables, nullptr, nullptr);
    });
}
void BM_FilterLutBgrWords(benchmark::State& state) {
    ThreeTableRows(state, [](BYTE* row, int count, const vistrane::filter::ChannelTables&,
                             const vistrane::filter::BgrLut& lut) {
        vistrane::filter::LutBgrWords(row, count, lut);
    });
}
BENCHMARK(BM_FilterLutRowTrueColorPlain)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FilterLutBgrWords)->Unit(benchmark::kMillisecond);

void BM_FilterHSVShift(benchmark::State& state) {
    int shifts[3] = {30, 0, 0};
    OnPicture(state, true,
              [&](C_Image& image) { image.PixelColorOperation(COLOROPER_HSV, shifts, nullptr); });
}
BENCHMARK(BM_FilterHSVShift)->Unit(benchmark::kMillisecond);

void BM_FilterTurnGrayScale(benchmark::State& state) {
    OnPicture(state, true, [](C_Image& image) { image.TurnGrayScale(nullptr); });
}
BENCHMARK(BM_FilterTurnGrayScale)->Unit(benchmark::kMillisecond);

void ComputeHistogram(benchmark::State& state, bool trueColor) {
    S_Histogram histogram;
    OnPicture(state, trueColor, [&](C_Image& image) {
        image.ComputeHistogram(&histogram, nullptr);
        benchmark::DoNotOptimize(histogram.counted);
    });
}
void BM_FilterComputeHistogram(benchmark::State& state) {
    ComputeHistogram(state, true);
}
void BM_FilterComputeHistogramGrey(benchmark::State& state) {
    ComputeHistogram(state, false);
}
BENCHMARK(BM_FilterComputeHistogram)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FilterComputeHistogramGrey)->Unit(benchmark::kMillisecond);

// CountColors allocates and clears its 2 MiB bit set on every call, so every iteration pays it.
void BM_FilterCountColors(benchmark::State& state) {
    unsigned long distinct = 0;
    OnPicture(state, true, [&](C_Image& image) {
        image.CountColors(&distinct, nullptr);
        benchmark::DoNotOptimize(distinct);
    });
}
BENCHMARK(BM_FilterCountColors)->Unit(benchmark::kMillisecond);

}  // namespace
