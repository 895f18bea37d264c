// Image core: writing and reading the bitmap file through the archive form, in memory.

#include <benchmark/benchmark.h>

#include <vector>

#include <vistrane/image/image.h>
#include <vistrane/platform/archive.h>
#include <vistrane/platform/file.h>

#include "bench_support.h"

namespace {

using vistrane::bench::FillPhotoLike;
using vistrane::bench::kHeight;
using vistrane::bench::kWidth;
using vistrane::bench::SetPixelRate;

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
