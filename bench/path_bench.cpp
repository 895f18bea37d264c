// Vector path benchmarks: tracing and fitting masks, fitting a long freehand stroke, and path
// file round trips. The peer mask is the one of the shared peer benchmarks
// ($PEERDATA/mask.png, black = selected, default /tmp/peerdata); without it that case is
// skipped.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>
#include <vistrane/path/contour_bug.h>
#include <vistrane/path/point_path.h>

namespace {

constexpr long kWidth = 4096;
constexpr long kHeight = 3072;

bool LoadPeerMask(C_Image* mask) {
    C_Image::CheckBitmapHeaderType();
    const char* dir = std::getenv("PEERDATA");
    const std::string name = std::string(dir != nullptr ? dir : "/tmp/peerdata") + "/mask.png";
    C_Image grey;
    if (!vistrane::LoadImageFile(name, grey) ||
        mask->CreateMask(grey.Width(), grey.Height()) == 0) {
        return false;
    }
    const long step = grey.BitCount() / 8;
    for (long y = 0; y < grey.Height(); ++y) {
        const BYTE* src = grey.PixelPtr(0, y);
        BYTE* dst = mask->PixelPtr(0, y);
        for (long x = 0; x < grey.Width(); ++x) {
            dst[x] = src[x * step] == 0 ? 255 : 0;  // black ink is the selection
        }
    }
    return true;
}

// Thousands of rings (a blob with a hole each) of jittered sizes on a grid.
bool MakeBlobMask(C_Image* mask) {
    C_Image::CheckBitmapHeaderType();
    if (mask->CreateMask(kWidth, kHeight) == 0) {
        return false;
    }
    std::mt19937 rng(42);
    std::uniform_real_distribution<double> radius(12.0, 30.0);
    std::uniform_real_distribution<double> jitter(-8.0, 8.0);
    for (long cy = 40; cy + 40 < kHeight; cy += 70) {
        for (long cx = 40; cx + 40 < kWidth; cx += 70) {
            const double r = radius(rng);
            const double hole = r * 0.4;
            const double ox = cx + jitter(rng);
            const double oy = cy + jitter(rng);
            for (long y = static_cast<long>(oy - r) - 1; y <= static_cast<long>(oy + r) + 1; ++y) {
                BYTE* row = mask->PixelPtr(0, y);
                for (long x = static_cast<long>(ox - r) - 1; x <= static_cast<long>(ox + r) + 1;
                     ++x) {
                    const double d = std::hypot(x - ox, y - oy);
                    row[x] = d <= r && d > hole ? 255 : 0;
                }
            }
        }
    }
    return true;
}

long Segments(const C_PointPath& path) {
    long n = 0;
    for (const C_SubPath* s = path.GetFirstSubPath(); s != nullptr; s = s->GetNext()) {
        n += s->IsClosed() != 0 ? s->GetCount() : s->GetCount() - 1;
    }
    return n;
}

// The largest distance of a traced anchor from the fitted curves of its own outline. Each
// segment is sampled in 256 chords; only segments whose sample box (grown by 8 pixels) holds
// the anchor are searched.
double WorstTracedAnchorDeviation(C_Image* mask, double tolerance) {
    C_PointPath traced;
    C_ContourBug bug;
    if (bug.CreateMaskContour(mask, &traced) != CB_OK) {
        return -1.0;
    }
    constexpr int kSteps = 256;
    double worst = 0.0;
    for (const C_SubPath* t = traced.GetFirstSubPath(); t != nullptr; t = t->GetNext()) {
        C_SubPath* fitted = t->Clone();
        fitted->Simplify(tolerance, 0, -1);
        fitted->Close(fitted->GetCount() > 2 ? 1 : 0);
        const int n = fitted->GetCount();
        const int segments = fitted->IsClosed() != 0 ? n : n - 1;
        std::vector<std::vector<C_2DVector>> samples(static_cast<size_t>(segments));
        std::vector<CRect> boxes(static_cast<size_t>(segments));
        for (int j = 0; j < segments; ++j) {
            CRect box(INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN);
            for (int k = 0; k <= kSteps; ++k) {
                const C_2DVector q = fitted->BezierCurvePoint(j, (j + 1) % n, k / double(kSteps));
                samples[static_cast<size_t>(j)].push_back(q);
                box.left = std::min<LONG>(box.left, static_cast<LONG>(std::floor(q.m_X)) - 8);
                box.top = std::min<LONG>(box.top, static_cast<LONG>(std::floor(q.m_Y)) - 8);
                box.right = std::max<LONG>(box.right, static_cast<LONG>(std::ceil(q.m_X)) + 8);
                box.bottom = std::max<LONG>(box.bottom, static_cast<LONG>(std::ceil(q.m_Y)) + 8);
            }
            boxes[static_cast<size_t>(j)] = box;
        }
        for (int i = 0; i < t->GetCount(); ++i) {
            const CPoint a = t->GetPoints()[i].m_Anchor;
            double best = 1e300;
            for (int j = 0; j < segments; ++j) {
                if (!boxes[static_cast<size_t>(j)].PtInRect(a)) {
                    continue;
                }
                // To the chords, not the sample points: on a straight segment 1,200 pixels long
                // the samples lie 4.7 pixels apart.
                const std::vector<C_2DVector>& poly = samples[static_cast<size_t>(j)];
                for (size_t k = 0; k + 1 < poly.size(); ++k) {
                    best = std::min(
                        best,
                        C_2DVector(a).DistanceFromSegToPoint(poly[k], poly[k + 1]).Magnitude());
                }
            }
            if (segments > 0) {
                worst = std::max(worst, best);
            }
        }
        delete fitted;
    }
    return worst;
}

void TraceAndFit(benchmark::State& state, C_Image* mask, double tolerance) {
    long segments = 0;
    int subPaths = 0;
    for (auto _ : state) {
        C_PointPath path;
        if (path.CreateFromMask(mask, CSize(), tolerance, 0) == 0) {
            state.SkipWithError("CreateFromMask failed");
            return;
        }
        segments = Segments(path);
        subPaths = path.GetNSubPaths();
    }
    state.counters["segments"] = static_cast<double>(segments);
    state.counters["subpaths"] = subPaths;
    state.counters["Mpix/s"] = benchmark::Counter(static_cast<double>(kWidth * kHeight) / 1e6,
                                                  benchmark::Counter::kIsIterationInvariantRate);
    state.counters["max_deviation_px"] = WorstTracedAnchorDeviation(mask, tolerance);
}

void BM_PathCreateFromMaskPeer(benchmark::State& state) {
    static C_Image mask;
    static const bool loaded = LoadPeerMask(&mask);
    if (!loaded) {
        state.SkipWithError("peer mask not found; run gen_data.py with PEERDATA set");
        return;
    }
    TraceAndFit(state, &mask, 1.0);
}
BENCHMARK(BM_PathCreateFromMaskPeer)->Unit(benchmark::kMillisecond);

void BM_PathCreateFromMaskBlobs(benchmark::State& state) {
    static C_Image mask;
    static const bool made = MakeBlobMask(&mask);
    if (!made) {
        state.SkipWithError("mask not created");
        return;
    }
    TraceAndFit(state, &mask, 1.0);
}
BENCHMARK(BM_PathCreateFromMaskBlobs)->Unit(benchmark::kMillisecond);

void BM_PathSimplifyFreehand100k(benchmark::State& state) {
    std::mt19937 rng(7);
    std::uniform_int_distribution<int> noise(-2, 2);
    C_SubPath stroke;
    stroke.AddBlankPoints(100000, 1);
    for (int i = 0; i < 100000; ++i) {
        const double a = i * 0.004;
        const double r = 100.0 + i * 0.01;
        stroke.GetPoints()[i].m_Anchor =
            CPoint(static_cast<LONG>(std::lround(2000 + r * std::cos(a))) + noise(rng),
                   static_cast<LONG>(std::lround(1500 + r * std::sin(a))) + noise(rng));
    }
    int kept = 0;
    for (auto _ : state) {
        state.PauseTiming();
        C_SubPath* copy = stroke.Clone();
        state.ResumeTiming();
        copy->Simplify(1.0, 0, -1);
        kept = copy->GetCount();
        state.PauseTiming();
        delete copy;
        state.ResumeTiming();
    }
    state.counters["anchors_kept"] = kept;
}
BENCHMARK(BM_PathSimplifyFreehand100k)->Unit(benchmark::kMillisecond);

void BM_PathSaveLoad(benchmark::State& state) {
    C_PointPath path;
    for (int s = 0; s < 100; ++s) {
        path.CreateNewSubPath();
        C_SubPath* sub = path.GetFirstSubPath();
        sub->AddBlankPoints(10000, 1);
        for (int i = 0; i < 10000; ++i) {
            sub->GetPoints()[i].m_Anchor = CPoint(i, s);
            sub->GetPoints()[i].m_NextDirection = CPoint(1, -1);
        }
    }
    const std::string name = "/tmp/vistrane_bench_path.path";
    for (auto _ : state) {
        C_PointPath loaded;
        if (path.SaveToFile(name.c_str()) == 0 || loaded.LoadFromFile(name.c_str(), 0) == 0) {
            state.SkipWithError("path file round trip failed");
            break;
        }
    }
    std::remove(name.c_str());
    state.counters["points"] = 1e6;
    state.SetBytesProcessed(state.iterations() * 2 * (22 + 100 * (8 + 28 * 10000)));
}
BENCHMARK(BM_PathSaveLoad)->Unit(benchmark::kMillisecond);

}  // namespace
