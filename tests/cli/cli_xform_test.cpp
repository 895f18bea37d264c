#include <gtest/gtest.h>

#include <string>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "cli/cli_support.h"
#include "support/image_support.h"

namespace vistrane {
namespace {

using test::CliTest;
using test::Contains;
using test::ToolRun;
using test::Vistrane;

// A 160 x 120 picture with a 120 x 80 selection at (20, 20): its frame's centre (80, 60) is more
// than 50 pixels from (30, 25), so a press there takes the frame, not the centre.
class XFormCli : public CliTest {
  protected:
    void SetUp() override {
        CliTest::SetUp();
        ASSERT_TRUE(m_Picture.Create(160, 120, 1, nullptr, 0));
        test::FillRandomPixels(m_Picture, 7);
        ASSERT_TRUE(SaveImageFile(Path("in.bmp"), m_Picture).ok);
        ASSERT_TRUE(m_Mask.CreateMask(160, 120));
        ASSERT_TRUE(m_Mask.MaskRect(m_Selection, 255));
        ASSERT_TRUE(SaveImageFile(Path("mask.png"), m_Mask).ok);
    }

    ToolRun XForm(const std::string& script) {
        return Vistrane("xform --mask " + Quoted("mask.png") + " --mask-out " + Quoted("m.png") +
                        " " + script + " " + Quoted("in.bmp") + " " + Quoted("out.bmp"));
    }

    static unsigned Rgb(const C_Image& image, long x, long y) {
        const BYTE* p = image.PixelPtr(x, y);
        return p[0] | p[1] << 8 | p[2] << 16;
    }

    // Every selected pixel is found moved by (dx, dy), interpolation included; the vacated
    // pixels are white and the rest of the picture is untouched.
    void ExpectMovedBy(long dx, long dy) {
        C_Image out;
        C_Image outMask;
        ASSERT_TRUE(LoadImageFile(Path("out.bmp"), out).ok);
        ASSERT_TRUE(LoadImageFile(Path("m.png"), outMask).ok);
        ASSERT_EQ(out.Width(), 160);
        ASSERT_EQ(out.Height(), 120);
        const CRect moved(m_Selection.left + dx, m_Selection.top + dy, m_Selection.right + dx,
                          m_Selection.bottom + dy);
        for (long y = 0; y < 120; ++y) {
            for (long x = 0; x < 160; ++x) {
                const CPoint p(x, y);
                unsigned expected = Rgb(m_Picture, x, y);
                if (moved.PtInRect(p)) {
                    expected = Rgb(m_Picture, x - dx, y - dy);
                } else if (m_Selection.PtInRect(p)) {
                    expected = 0xFFFFFF;
                }
                ASSERT_EQ(Rgb(out, x, y), expected) << x << ", " << y;
                ASSERT_EQ(*outMask.PixelPtr(x, y), moved.PtInRect(p) ? 255 : 0) << x << ", " << y;
            }
        }
    }

    C_Image m_Picture;
    C_Image m_Mask;
    CRect m_Selection{20, 20, 140, 100};
};

TEST_F(XFormCli, DragInsideMovesEverySelectedPixelExactly) {
    const ToolRun run = XForm("--drag '30,25 36,28 42,32'");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_TRUE(
        Contains(run.out, "drag 1: moved the frame by 12,7\nframe: 32,27 152,27 152,107 32,107"))
        << run.out;
    ExpectMovedBy(12, 7);
}

TEST_F(XFormCli, ShiftPressedMidDragSnapsTheMoveToFortyFiveDegrees) {
    // (12, 6) is nearer the 45-degree line than the level one: projected it is (9, 9).
    const ToolRun run = XForm("--drag '30,25 36,28 42,31+shift'");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_TRUE(Contains(run.out, "frame: 29,29 149,29 149,109 29,109")) << run.out;
    ExpectMovedBy(9, 9);
    // Released again before the end, the last point moves freely.
    const ToolRun released = XForm("--drag '30,25 42,31+shift 42,31'");
    ASSERT_EQ(released.exitCode, 0) << released.err;
    ExpectMovedBy(12, 6);
}

TEST_F(XFormCli, AltOutsideTheFrameMovesInsteadOfRotating) {
    const ToolRun run = XForm("--drag 'alt 0,0 -5,3'");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    ExpectMovedBy(-5, 3);
}

TEST_F(XFormCli, UndoRestoresAndRedoReplays) {
    const ToolRun undone = XForm("--drag '30,25 42,32' --drag '40,35 50,35' --undo 2");
    ASSERT_EQ(undone.exitCode, 0) << undone.err;
    EXPECT_TRUE(Contains(undone.out, "frame: 20,20 140,20 140,100 20,100")) << undone.out;
    ExpectMovedBy(0, 0);
    C_Image out;
    ASSERT_TRUE(LoadImageFile(Path("out.bmp"), out).ok);
    EXPECT_TRUE(test::SamePixels(m_Picture, out));

    const ToolRun redone = XForm("--drag '30,25 42,32' --drag '40,35 50,35' --undo 2 --redo 1");
    ASSERT_EQ(redone.exitCode, 0) << redone.err;
    ExpectMovedBy(12, 7);
}

TEST_F(XFormCli, NumericRotationTurnsTheFrameAboutItsCentre) {
    // A quarter turn clockwise about (80, 60): the half-axes (60, 0) and (0, 40) become (0, 60)
    // and (-40, 0), so the top-left corner goes to (80 + 40, 60 - 60).
    const ToolRun run = XForm("--numeric 'rotate=90'");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_TRUE(Contains(run.out, "frame: 120,0 120,120 40,120 40,0")) << run.out;
    const ToolRun moved = XForm("--numeric 'move=-4,9'");
    ASSERT_EQ(moved.exitCode, 0) << moved.err;
    ExpectMovedBy(-4, 9);
}

TEST_F(XFormCli, OverlayDrawsTheFrameInItsColour) {
    const ToolRun run = Vistrane("xform --mask " + Quoted("mask.png") + " --drag '30,25 42,32'" +
                                 " --colour 00FF00 --overlay " + Quoted("o.png") + " " +
                                 Quoted("in.bmp") + " " + Quoted("out.bmp"));
    ASSERT_EQ(run.exitCode, 0) << run.err;
    C_Image out;
    C_Image overlay;
    ASSERT_TRUE(LoadImageFile(Path("out.bmp"), out).ok);
    ASSERT_TRUE(LoadImageFile(Path("o.png"), overlay).ok);
    // On the moved top edge, away from the handles; and off the frame nothing changes.
    EXPECT_EQ(overlay.GetPixelColorRef(60, 27), RGB(0, 255, 0));
    EXPECT_EQ(overlay.GetPixelColorRef(60, 60), out.GetPixelColorRef(60, 60));
}

TEST_F(XFormCli, CollapsedFrameFailsWithAMessage) {
    // CTRL moves the top-left corner alone onto the bottom-right one: no diagonal is left.
    const ToolRun run = XForm("--drag '20,20 140,100 ctrl'");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(Contains(run.err, "degenerate")) << run.err;
}

}  // namespace
}  // namespace vistrane
