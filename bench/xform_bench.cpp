// Geometric transforms on 4096 x 3072 pictures, 24-bit and 8-bit grey, in input megapixels per
// second. The free functions run over preallocated destinations, so the figures are the pixel
// work without the temporary image that the C_Image members add.

#include <benchmark/benchmark.h>

#include <memory>

#include <vistrane/blend/image_luts.h>
#include <vistrane/image/image.h>

#include "bench_support.h"
#include "image/pixel_view.h"
#include "xform/free_xform.h"
#include "xform/resample.h"
#include "xform/rotate.h"
#include "xform/seamless.h"

namespace {

using vistrane::image::AsConst;
using vistrane::image::ViewOf;

using vistrane::bench::FillPhotoLike;
using vistrane::bench::kHeight;
using vistrane::bench::kWidth;
using vistrane::bench::SetPixelRate;

// range(0) = 1 for 24-bit, 0 for grey.
C_Image& Picture(bool trueColor) {
    static C_Image* pictures[2] = {};
    C_Image*& picture = pictures[trueColor ? 1 : 0];
    if (picture == nullptr) {
        C_Image::CheckBitmapHeaderType();
        picture = new C_Image;
        if (trueColor) {
            picture->Create(kWidth, kHeight, 1, nullptr, 0);
        } else {
            picture->CreateMask(kWidth, kHeight);
        }
        FillPhotoLike(*picture);
    }
    return *picture;
}

std::unique_ptr<C_Image> Target(bool trueColor, long width, long height) {
    auto image = std::make_unique<C_Image>();
    if (trueColor) {
        image->Create(width, height, 1, nullptr, 0);
    } else {
        image->CreateMask(width, height);
    }
    return image;
}

void Formats(benchmark::internal::Benchmark* b) {
    b->ArgName("bits24")->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond);
}

template <bool (*Work)(const vistrane::image::ConstPixelView&, const vistrane::image::PixelView&)>
void RunResize(benchmark::State& state, long width, long height) {
    const bool trueColor = state.range(0) != 0;
    C_Image& picture = Picture(trueColor);
    auto target = Target(trueColor, width, height);
    // The first pass faults the target's pages in; the loop measures the pixel work.
    benchmark::DoNotOptimize(Work(AsConst(ViewOf(picture)), ViewOf(*target)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(Work(AsConst(ViewOf(picture)), ViewOf(*target)));
    }
    SetPixelRate(state);
}

bool ResampleUnwatched(const vistrane::image::ConstPixelView& src,
                       const vistrane::image::PixelView& dst) {
    return vistrane::xform::Resample(src, dst);
}

void BM_XformResampleThird(benchmark::State& state) {
    RunResize<ResampleUnwatched>(state, kWidth / 3, kHeight / 3);
}
BENCHMARK(BM_XformResampleThird)->Apply(Formats);

void BM_XformResampleDouble(benchmark::State& state) {
    RunResize<ResampleUnwatched>(state, kWidth * 2, kHeight * 2);
}
BENCHMARK(BM_XformResampleDouble)->Apply(Formats);

bool ExpandWithReferenceRows(const vistrane::image::ConstPixelView& src,
                             const vistrane::image::PixelView& dst) {
    return vistrane::xform::ResampleExpandWith(src, dst, vistrane::xform::ExpandRowRef);
}

// The same enlargement through the plain row rule, beside the kernel the CPU dispatch picks.
void BM_XformResampleDoubleReference(benchmark::State& state) {
    RunResize<ExpandWithReferenceRows>(state, kWidth * 2, kHeight * 2);
}
BENCHMARK(BM_XformResampleDoubleReference)->Apply(Formats);

void BM_XformDIBResizeThird(benchmark::State& state) {
    RunResize<vistrane::xform::ResizeNearest>(state, kWidth / 3, kHeight / 3);
}
BENCHMARK(BM_XformDIBResizeThird)->Apply(Formats);

void BM_XformRotate30(benchmark::State& state) {
    const bool trueColor = state.range(0) != 0;
    C_Image& picture = Picture(trueColor);
    // Rotate1To359(30) shears by -30 degrees.
    const double radians = -30 * 3.141592653589793 / 180;
    vistrane::xform::ShearSizes sizes{};
    if (!vistrane::xform::ComputeShearSizes(kWidth, kHeight, radians, sizes)) {
        state.SkipWithError("sizes");
        return;
    }
    auto target = Target(trueColor, sizes.width, sizes.height);
    const BYTE background[3] = {0, 0, 0};
    target->ZeroBitmapBytes();
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            vistrane::xform::ShearRotate(AsConst(ViewOf(picture)), ViewOf(*target), radians, sizes,
                                         background, vistrane::xform::ShearMode::Blend));
    }
    SetPixelRate(state);
}
BENCHMARK(BM_XformRotate30)->Apply(Formats);

// The member as a host calls it: the shears plus the result image it makes and takes over.
void BM_XformRotate30Member(benchmark::State& state) {
    const bool trueColor = state.range(0) != 0;
    C_Image& picture = Picture(trueColor);
    C_Image work;
    for (auto _ : state) {
        state.PauseTiming();
        work.Clone(&picture);
        state.ResumeTiming();
        benchmark::DoNotOptimize(work.Rotate1To359(30));
    }
    SetPixelRate(state);
}
BENCHMARK(BM_XformRotate30Member)->Apply(Formats);

void BM_XformRotateRight(benchmark::State& state) {
    const bool trueColor = state.range(0) != 0;
    C_Image& picture = Picture(trueColor);
    auto target = Target(trueColor, kHeight, kWidth);
    target->ZeroBitmapBytes();
    for (auto _ : state) {
        vistrane::xform::QuarterTurn(AsConst(ViewOf(picture)), ViewOf(*target), true);
        benchmark::ClobberMemory();
    }
    SetPixelRate(state);
}
BENCHMARK(BM_XformRotateRight)->Apply(Formats);

// range(1): 0 the reference row kernel, 1 the one the CPU dispatch picks.
void BM_XformFlipHorizontal(benchmark::State& state) {
    const bool trueColor = state.range(0) != 0;
    C_Image& picture = Picture(trueColor);
    const vistrane::xform::FlipRowKernel kernel =
        state.range(1) != 0 ? vistrane::xform::FlipRowFor(vistrane::cpu::Best())
                            : vistrane::xform::FlipRowRef;
    for (auto _ : state) {
        vistrane::xform::FlipHorizontal(ViewOf(picture), kernel);
        benchmark::ClobberMemory();
    }
    SetPixelRate(state);
}
BENCHMARK(BM_XformFlipHorizontal)
    ->ArgNames({"bits24", "best"})
    ->ArgsProduct({{1, 0}, {0, 1}})
    ->Unit(benchmark::kMillisecond);

// A full-picture mask and the picture onto a skewed quadrilateral about the picture's size,
// interpolating (range(1) = 0) or nearest (1).
void BM_XformMaskFreeXForm(benchmark::State& state) {
    const bool trueColor = state.range(0) != 0;
    C_Image& picture = Picture(trueColor);
    C_Image mask;
    mask.CreateMask(kWidth, kHeight);
    mask.FillBitmapBytes(255);
    const CPoint corners[4] = {CPoint(400, 150), CPoint(4000, 500), CPoint(3600, 3000),
                               CPoint(100, 2500)};
    const CRect box(100, 150, 4000, 3000);
    auto targetMask = Target(false, box.Width(), box.Height());
    auto target = Target(trueColor, box.Width(), box.Height());
    CPoint relative[4];
    for (int k = 0; k < 4; ++k) {
        relative[k] = corners[k] - box.TopLeft();
    }
    const vistrane::xform::FreeXFormSource source{AsConst(ViewOf(mask)), AsConst(ViewOf(picture)),
                                                  CRect(0, 0, kWidth, kHeight)};
    const vistrane::xform::FreeXFormTarget out{ViewOf(*targetMask), ViewOf(*target)};
    for (auto _ : state) {
        vistrane::xform::FreeXForm(source, out, relative, state.range(1) != 0);
        benchmark::ClobberMemory();
    }
    SetPixelRate(state);
}
BENCHMARK(BM_XformMaskFreeXForm)
    ->ArgNames({"bits24", "nearest"})
    ->ArgsProduct({{1, 0}, {0, 1}})
    ->Unit(benchmark::kMillisecond);

// SeamlessPattern(10) as a host calls it: both fades and the crop into the tile. Each pass
// works on a fresh copy of the picture, made outside the timing.
void BM_XformSeamlessPattern(benchmark::State& state) {
    const bool trueColor = state.range(0) != 0;
    C_Image& picture = Picture(trueColor);
    glb_CreateImageLUTs();
    C_Image work;
    for (auto _ : state) {
        state.PauseTiming();
        work.Clone(&picture);
        state.ResumeTiming();
        benchmark::DoNotOptimize(work.SeamlessPattern(10));
    }
    glb_ReleaseImageLUTs();
    SetPixelRate(state);
}
BENCHMARK(BM_XformSeamlessPattern)->Apply(Formats);

// The two fades of SeamlessPattern(10) alone, in place; their cost does not depend on the bytes.
void BM_XformSeamlessCrossFade(benchmark::State& state) {
    const bool trueColor = state.range(0) != 0;
    C_Image& picture = Picture(trueColor);
    int bandWidth = 0;
    int bandHeight = 0;
    if (!vistrane::xform::SeamlessBands(kWidth, kHeight, 10, bandWidth, bandHeight)) {
        state.SkipWithError("bands");
        return;
    }
    glb_CreateImageLUTs();
    C_Image work;
    work.Clone(&picture);
    for (auto _ : state) {
        vistrane::xform::SeamlessCrossFade(ViewOf(work), bandWidth, bandHeight, *glb_MultiplyLUT);
        benchmark::ClobberMemory();
    }
    glb_ReleaseImageLUTs();
    SetPixelRate(state);
}
BENCHMARK(BM_XformSeamlessCrossFade)->Apply(Formats);

}  // namespace
