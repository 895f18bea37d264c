// Image core: writing and reading the bitmap file through the archive form, in memory.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include <vistrane/image/image.h>
#include <vistrane/platform/archive.h>
#include <vistrane/platform/file.h>

#include "image/pixel_view.h"

namespace {

constexpr long kWidth = 4096;
constexpr long kHeight = 3072;

void FillPhotoLike(C_Image& image) {
    const vistrane::image::PixelView view = vistrane::image::ViewOf(image);
    std::uint32_t state = 12345;
    for (int y = 0; y < view.height; ++y) {
        BYTE* row = view.Row(y);
        for (int x = 0; x < view.width; ++x) {
            state = state * 1664525u + 1013904223u;
            row[3 * x] = static_cast<BYTE>(x / 16 + (state >> 29));
            row[3 * x + 1] = static_cast<BYTE>(y / 12 + (state >> 30));
            row[3 * x + 2] = static_cast<BYTE>((x + y) / 28);
        }
    }
}

C_Image& Picture() {
    static C_Image* picture = [] {
        C_Image::CheckBitmapHeaderType();
        auto* image = new C_Image;
        image->Create(kWidth, kHeight, 1, nullptr, 0);
        FillPhotoLike(*image);
        return image;
    }();
    return *picture;
}

void SetPixelRate(benchmark::State& state) {
    state.counters["Mpix/s"] = benchmark::Counter(static_cast<double>(kWidth * kHeight) / 1e6,
                                                  benchmark::Counter::kIsIterationInvariantRate);
}

void BM_ImageBmpWriteToMemory(benchmark::State& state) {
    C_Image& picture = Picture();
    for (auto _ : state) {
        CMemFile file(64 * 1024);
        CArchive ar(&file, CArchive::store);
        picture.WriteToArchive(ar);
        ar.Close();
        benchmark::DoNotOptimize(file.GetLength());
    }
    SetPixelRate(state);
}
BENCHMARK(BM_ImageBmpWriteToMemory)->Unit(benchmark::kMillisecond);

void BM_ImageBmpReadFromMemory(benchmark::State& state) {
    C_Image& picture = Picture();
    CMemFile stored(64 * 1024);
    {
        CArchive ar(&stored, CArchive::store);
        picture.WriteToArchive(ar);
    }
    std::vector<BYTE> bytes(stored.Data(), stored.Data() + stored.GetLength());
    for (auto _ : state) {
        CMemFile file(bytes.data(), static_cast<UINT>(bytes.size()));
        CArchive ar(&file, CArchive::load);
        C_Image loaded;
        benchmark::DoNotOptimize(loaded.ReadFromArchive(ar));
    }
    SetPixelRate(state);
}
BENCHMARK(BM_ImageBmpReadFromMemory)->Unit(benchmark::kMillisecond);

}  // namespace
