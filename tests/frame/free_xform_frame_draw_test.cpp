#include <gtest/gtest.h>

#include <vistrane/frame/free_xform_frame.h>
#include <vistrane/image/image.h>
#include <vistrane/platform/dc.h>

#include "support/image_support.h"

using vistrane::test::FillRandomPixels;
using vistrane::test::SamePixels;

namespace {

struct DrawingTarget {
    C_Image image;
    C_Image before;
    CDC dc;
    CBitmap* oldBitmap = nullptr;

    DrawingTarget() {
        EXPECT_EQ(image.Create(64, 48, 1, nullptr, 0), 1);
        FillRandomPixels(image, 77);
        EXPECT_EQ(before.Clone(&image), 1);
        EXPECT_EQ(dc.CreateCompatibleDC(nullptr), 1);
        oldBitmap = dc.SelectObject(image.GetBitmap());
    }
    ~DrawingTarget() { dc.SelectObject(oldBitmap); }
};

}  // namespace

TEST(FreeXFormFrameDrawing, XorDrawingIsErasedByASecondDraw) {
    DrawingTarget target;
    C_FreeXFormFrame frame(CRect(10, 10, 40, 35));
    CRect clip(0, 0, 64, 48);
    frame.DoShowOnDC(&target.dc, &clip, RGB(255, 0, 0), 1);
    EXPECT_FALSE(SamePixels(target.before, target.image));
    // The top-left handle's square runs from (7, 7) to (13, 13); its outline is XOR-ed with red.
    EXPECT_EQ(target.image.GetPixelColorRef(7, 7), target.before.GetPixelColorRef(7, 7) ^ 0xFF);
    // The black brush inside a handle XORs nothing.
    EXPECT_EQ(target.image.GetPixelColorRef(9, 9), target.before.GetPixelColorRef(9, 9));
    frame.DoShowOnDC(&target.dc, &clip, RGB(255, 0, 0), 1);
    EXPECT_TRUE(SamePixels(target.before, target.image));

    frame.ShowOnDC(&target.dc, &clip, &target.image);
    EXPECT_FALSE(SamePixels(target.before, target.image));
    frame.ShowOnDC(&target.dc, &clip, &target.image);
    EXPECT_TRUE(SamePixels(target.before, target.image));
}

TEST(FreeXFormFrameDrawing, CopyModeDrawsInTheColourShiftedByTheClipOrigin) {
    DrawingTarget target;
    C_FreeXFormFrame frame(CRect(10, 10, 40, 35));
    CRect clip(5, 2, 64, 48);
    frame.DoShowOnDC(&target.dc, &clip, RGB(0, 200, 0), 0);
    EXPECT_EQ(target.image.GetPixelColorRef(7 - 5, 7 - 2), RGB(0, 200, 0));
    EXPECT_EQ(target.image.GetPixelColorRef(9 - 5, 9 - 2), RGB(0, 0, 0));  // black brush
    // The device's origin is restored: a later fill lands where it is asked to.
    RECT r{0, 0, 1, 1};
    target.dc.FillSolidRect(&r, RGB(1, 2, 3));
    EXPECT_EQ(target.image.GetPixelColorRef(0, 0), RGB(1, 2, 3));
}
