// Selection masks: the fills, the colour marking, the logical operations; and the blits.
//
// The fills run on the peers' photo when VISTRANE_PEER_PHOTO names it (seed (1600, 500), RGB
// tolerance 32, the case the general libraries were measured on); otherwise on a synthetic
// photo-like picture. Rates are whole-image megapixels per second.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <string>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>
#include <vistrane/platform/dc.h>

#include "bench_support.h"

namespace {

using vistrane::bench::FillPhotoLike;
using vistrane::bench::kHeight;
using vistrane::bench::kPixels;
using vistrane::bench::kWidth;

C_Image& Photo() {
    static C_Image photo;
    if (!photo.HasImage()) {
        C_Image::CheckBitmapHeaderType();
        const char* path = std::getenv("VISTRANE_PEER_PHOTO");
        if (path == nullptr || !vistrane::LoadImageFile(path, photo).ok ||
            photo.Width() != kWidth || photo.Height() != kHeight || !photo.IsTrueColor()) {
            photo.Create(kWidth, kHeight, 1, nullptr, 0);
            FillPhotoLike(photo);
        }
    }
    return photo;
}

void BM_MaskFill(benchmark::State& state) {
    C_Image& photo = Photo();
    C_Image mask;
    mask.CreateMask(kWidth, kHeight);
    for (auto _ : state) {
        mask.MaskFill(&photo, CPoint(1600, 500), COLOR_MATCH_RGB, 32, 255);
        benchmark::ClobberMemory();
    }
    long selected = 0;
    for (long y = 0; y < kHeight; ++y) {
        for (long x = 0; x < kWidth; ++x) {
            selected += *mask.PixelPtr(x, y) != 0 ? 1 : 0;
        }
    }
    state.counters["filled_px"] = static_cast<double>(selected);
    state.counters["Mpix/s"] =
        benchmark::Counter(kPixels / 1e6, benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_MaskFill)->Unit(benchmark::kMillisecond);

void BM_MaskGrowMasked(benchmark::State& state) {
    C_Image& photo = Photo();
    C_Image mask;
    mask.CreateMask(kWidth, kHeight);
    for (auto _ : state) {
        state.PauseTiming();
        mask.MaskFill(&photo, CPoint(1600, 500), COLOR_MATCH_RGB, 16, 255);
        state.ResumeTiming();
        mask.MaskGrowMasked(&photo, COLOR_MATCH_RGB, 32);
        benchmark::ClobberMemory();
    }
    state.counters["Mpix/s"] =
        benchmark::Counter(kPixels / 1e6, benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_MaskGrowMasked)->Unit(benchmark::kMillisecond);

void BM_MaskAlikePixelsOnMask(benchmark::State& state) {
    C_Image& photo = Photo();
    C_Image mask;
    mask.CreateMask(kWidth, kHeight);
    for (auto _ : state) {
        photo.MaskAlikePixelsOnMask(&mask, RGB(120, 120, 120), 255, 0, 1, 32, COLOR_MATCH_RGB);
        benchmark::ClobberMemory();
    }
    state.counters["Mpix/s"] =
        benchmark::Counter(kPixels / 1e6, benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_MaskAlikePixelsOnMask)->Unit(benchmark::kMillisecond);

void BM_MaskXor(benchmark::State& state) {
    C_Image a;
    C_Image b;
    a.CreateMask(kWidth, kHeight);
    b.CreateMask(kWidth, kHeight);
    b.FillBitmapBytes(0x5A);
    for (auto _ : state) {
        a.MaskXor(&b);
        benchmark::ClobberMemory();
    }
    state.counters["Mpix/s"] =
        benchmark::Counter(kPixels / 1e6, benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_MaskXor)->Unit(benchmark::kMillisecond);

void BM_MaskAndNot(benchmark::State& state) {
    C_Image a;
    C_Image b;
    a.CreateMask(kWidth, kHeight);
    b.CreateMask(kWidth, kHeight);
    for (auto _ : state) {
        a.MaskAndNot(&b);
        benchmark::ClobberMemory();
    }
    state.counters["Mpix/s"] =
        benchmark::Counter(kPixels / 1e6, benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_MaskAndNot)->Unit(benchmark::kMillisecond);

void BM_ImageDibBlt8To24(benchmark::State& state) {
    C_Image grey;
    grey.CreateMask(kWidth, kHeight);
    grey.FillBitmapBytes(77);
    C_Image colour;
    colour.Create(kWidth, kHeight, 1, nullptr, 0);
    for (auto _ : state) {
        colour.DibBlt(0, 0, kWidth, kHeight, &grey, 0, 0, 0);
        benchmark::ClobberMemory();
    }
    state.counters["Mpix/s"] =
        benchmark::Counter(kPixels / 1e6, benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_ImageDibBlt8To24)->Unit(benchmark::kMillisecond);

// Halving the photo in both directions; the rate counts source pixels.
void BM_ImageStretchHalve(benchmark::State& state) {
    C_Image& photo = Photo();
    C_Image half;
    half.Create(kWidth / 2, kHeight / 2, 1, nullptr, 0);
    const bool andMode = state.range(0) == 1;
    for (auto _ : state) {
        if (andMode) {
            half.StretchMask(0, 0, kWidth / 2, kHeight / 2, &photo, 0, 0, -1, -1, SRCCOPY);
        } else {
            half.StretchBlt(0, 0, kWidth / 2, kHeight / 2, &photo, 0, 0, kWidth, kHeight, SRCCOPY);
        }
        benchmark::ClobberMemory();
    }
    state.SetLabel(andMode ? "stretch mode 1 (AND)" : "stretch mode 3 (delete)");
    state.counters["Mpix/s"] =
        benchmark::Counter(kPixels / 1e6, benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_ImageStretchHalve)->Arg(1)->Arg(3)->Unit(benchmark::kMillisecond);

}  // namespace
