// Makes the n-th allocation of an operation fail, for every n the operation reaches, and checks
// that no exception leaves the library and that a refused operation left the image as it was.

#include "support/image_support.h"

#include <vistrane/blend/image_luts.h>
#include <vistrane/image/image.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <new>
#include <ostream>
#include <string>

namespace {

// Counting starts when armed; the allocation whose number equals failAt throws.
long g_allocations = 0;
long g_failAt = 0;
bool g_armed = false;

void* CountedAllocation(std::size_t size) {
    if (g_armed && ++g_allocations == g_failAt) {
        throw std::bad_alloc();
    }
    if (void* p = std::malloc(size == 0 ? 1 : size)) {
        return p;
    }
    throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) {
    return CountedAllocation(size);
}
void* operator new[](std::size_t size) {
    return CountedAllocation(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return CountedAllocation(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
    return operator new(size, tag);
}
void operator delete(void* p) noexcept {
    std::free(p);
}
void operator delete[](void* p) noexcept {
    std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
    std::free(p);
}
void operator delete[](void* p, std::size_t) noexcept {
    std::free(p);
}

namespace {

// The operation gets the image and a second image made beforehand (a mask or a source), so that
// only the operation's own allocations are counted.
struct Case {
    std::string name;
    int bitCount;  // of the image operated on
    std::function<int(C_Image& image, C_Image& other)> operation;
    std::function<void(C_Image& image, C_Image& other)> prepare = [](C_Image&, C_Image&) {};
};

void PrintTo(const Case& c, std::ostream* os) {
    *os << c.name;
}

// Runs the operation with allocations counted but none failing; returns how many it made.
long CountAllocations(const Case& c, C_Image& image, C_Image& other) {
    g_allocations = 0;
    g_failAt = 0;
    g_armed = true;
    c.operation(image, other);
    g_armed = false;
    return g_allocations;
}

void MakeImage(C_Image& image, int bitCount) {
    ASSERT_EQ(bitCount == 24 ? image.Create(37, 23, 1, nullptr, 0) : image.CreateMask(37, 23), 1);
    vistrane::test::FillRandomPixels(image, 11);
    image.SetForeTrueColor(RGB(200, 30, 90));
    image.SetForePalInd(200);
}

class AllocationFailure : public ::testing::TestWithParam<Case> {
  protected:
    static void SetUpTestSuite() { glb_CreateImageLUTs(); }
    static void TearDownTestSuite() { glb_ReleaseImageLUTs(); }
};

TEST_P(AllocationFailure, NothingThrowsAndARefusalChangesNothing) {
    const Case& c = GetParam();
    C_Image done, other;
    MakeImage(done, c.bitCount);
    c.prepare(done, other);
    const long allocations = CountAllocations(c, done, other);
    ASSERT_GT(allocations, 0) << "the operation allocates nothing: it tests nothing here";
    for (long n = 1; n <= allocations; ++n) {
        C_Image image, before;
        MakeImage(image, c.bitCount);
        c.prepare(image, other);
        ASSERT_EQ(before.Clone(&image), 1);
        int result = 0;
        g_allocations = 0;
        g_failAt = n;
        g_armed = true;
        try {
            result = c.operation(image, other);
        } catch (...) {
            g_armed = false;
            ADD_FAILURE() << "allocation " << n << " of " << allocations << " threw";
            continue;
        }
        g_armed = false;
        SCOPED_TRACE("allocation " + std::to_string(n) + " of " + std::to_string(allocations));
        // An operation that coped without the allocation must give the bytes of a full run; one
        // without a result (-1) may have done either.
        if (result == -1) {
            EXPECT_TRUE(vistrane::test::SamePixels(before, image) ||
                        vistrane::test::SamePixels(done, image));
        } else {
            EXPECT_TRUE(vistrane::test::SamePixels(result == 0 ? before : done, image));
        }
    }
}

int g_boxKernel[49] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 0, 0, 0, 0, 1, 1,
                       1, 0, 0, 0, 0, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};

void MakeOvalMask(C_Image& image, C_Image& mask) {
    ASSERT_EQ(mask.CreateMask(image.Width(), image.Height()), 1);
    mask.MaskOval(CRect(2, 2, 30, 20), 180);
}

void MakeCopy(C_Image& image, C_Image& copy) {
    ASSERT_EQ(copy.Clone(&image), 1);
}

const Case kCases[] = {
    {"PaintMaskedDissolve", 24,
     [](C_Image& image, C_Image& mask) {
         return image.PaintMasked(PAINT_COLORS_FORE, BLENDMODE_DISSOLVE, 0, 200, &mask, nullptr);
     },
     MakeOvalMask},
    {"PaintMaskedPalette", 8,
     [](C_Image& image, C_Image&) {
         return image.PaintMasked(PAINT_COLORS_FORE, BLENDMODE_MULTIPLY, 0, 128, nullptr, nullptr);
     }},
    {"FilterImage", 24,
     [](C_Image& image, C_Image& mask) {
         return image.FilterImage(BLENDMODE_NORMAL, 255, 0, 0, 0, image.Width(), image.Height(),
                                  &mask, g_boxKernel, 0, 9, FILTER_PER_CHANNEL, nullptr, 0, 0);
     },
     MakeOvalMask},
    {"HueShift", 24,
     [](C_Image& image, C_Image&) {
         int shifts[3] = {120, 30, -20};
         image.ColorOperation(COLOROPER_HSV, shifts, nullptr);
         return -1;
     }},
    {"TurnGrayPalette", 24, [](C_Image& image, C_Image&) { return image.TurnGrayPalette(); }},
    {"Rotate30", 24, [](C_Image& image, C_Image&) { return image.Rotate1To359(30); }},
    {"RotateRight", 8, [](C_Image& image, C_Image&) { return image.RotateRight(); }},
    {"MaskFill", 8,
     [](C_Image& image, C_Image& source) {
         return image.MaskFill(&source, CPoint(5, 5), COLOR_MATCH_RGB, 90, 255);
     },
     MakeCopy},
};

INSTANTIATE_TEST_SUITE_P(Operations, AllocationFailure, ::testing::ValuesIn(kCases),
                         [](const auto& info) { return info.param.name; });

}  // namespace
