// vistrane demo [DIR]: a tour of the engine on the built-in picture. The tour is a list of
// steps; each step does one thing, may write files into DIR, and is timed on its own.

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include <vistrane/blend/image_luts.h>
#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>
#include <vistrane/path/point_path.h>
#include <vistrane/platform/font.h>
#include <vistrane/platform/text.h>

#include "commands/commands.h"
#include "demo/contact_sheet.h"
#include "demo/demo_picture.h"
#include "common/edit_options.h"
#include "common/frame_output.h"
#include "common/path_output.h"

namespace vistrane::cli {
namespace {

struct DemoContext {
    std::filesystem::path directory;
    C_Image picture;
    C_Image wandMask;
    C_Image outlines;  // the picture with the traced and text outlines drawn over it
    std::vector<std::string> written;
};

struct DemoStep {
    const char* name;
    // Returns an empty string on success, else the reason it failed.
    std::string (*run)(DemoContext& context);
};

std::string SaveInto(DemoContext& context, C_Image& image, const char* fileName) {
    const std::string path = (context.directory / fileName).string();
    const ImageFileResult saved = SaveImageFile(path, image);
    if (!saved.ok) {
        return saved.error;
    }
    context.written.push_back(path);
    return {};
}

std::string RenderPicture(DemoContext& context) {
    if (!RenderDemoPicture(context.picture)) {
        return "cannot make the demo picture";
    }
    return {};
}

std::string WritePictureBmp(DemoContext& context) {
    return SaveInto(context, context.picture, "picture.bmp");
}

std::string WritePicturePng(DemoContext& context) {
    return SaveInto(context, context.picture, "picture.png");
}

// The transformed results leave the picture itself unchanged for the steps after them.
std::string WriteTransformed(DemoContext& context, const char* fileName,
                             int (*transform)(C_Image& image)) {
    C_Image copy;
    if (!copy.Clone(&context.picture) || !transform(copy)) {
        return "not enough memory";
    }
    return SaveInto(context, copy, fileName);
}

std::string WriteRotated(DemoContext& context) {
    return WriteTransformed(context, "rotated.png",
                            [](C_Image& image) { return image.Rotate1To359(30); });
}

std::string WriteResized(DemoContext& context) {
    return WriteTransformed(context, "resized.png", [](C_Image& image) {
        return image.Resample(CSize(image.Width() / 3, image.Height() / 3));
    });
}

std::string WriteEnlarged(DemoContext& context) {
    return WriteTransformed(context, "enlarged.png", [](C_Image& image) {
        return image.Resample(CSize(image.Width() * 3 / 2, image.Height() * 3 / 2));
    });
}

std::string BuildBlendTables(DemoContext&) {
    glb_CreateImageLUTs();
    return glb_LUTsCreatedOK() != 0 ? std::string() : "cannot build the blend tables";
}

std::string ReleaseBlendTables(DemoContext&) {
    glb_ReleaseImageLUTs();
    return {};
}

std::string SharpenFilter(DemoContext& context) {
    C_Image image;
    if (image.Clone(&context.picture) == 0) {
        return "cannot copy the picture";
    }
    int kernel[FILTER_KERNEL_TAPS] = {};
    const int sharpen[9] = {0, -1, 0, -1, 5, -1, 0, -1, 0};
    for (int i = 0; i < 9; ++i) {
        kernel[(2 + i / 3) * 7 + 2 + i % 3] = sharpen[i];
    }
    if (image.FilterImage(BLENDMODE_NORMAL, 255, 0, 0, 0, image.Width(), image.Height(), nullptr,
                          kernel, 0, 1, FILTER_PER_CHANNEL, nullptr, 0, 0) == 0) {
        return "the filter failed";
    }
    return SaveInto(context, image, "filter-sharpen.png");
}

std::string HueShift(DemoContext& context) {
    C_Image image;
    if (image.Clone(&context.picture) == 0) {
        return "cannot copy the picture";
    }
    int params[3] = {120, 30, 0};
    image.ColorOperation(COLOROPER_HSV, params, nullptr);
    return SaveInto(context, image, "color-hsv.png");
}

// One labelled horizontal band per blend mode that a flat paint can show, top to bottom in
// mode order, each painted orange. The filter modes and smudge need a brush stroke and would
// only repeat normal.
std::string BlendModeStrip(DemoContext& context) {
    C_Image image;
    if (image.Clone(&context.picture) == 0) {
        return "cannot copy the picture";
    }
    CFont font;
    if (!CreateCaptionFont(font)) {
        return "no font for the band labels";
    }
    image.SetForeTrueColor(RGB(255, 140, 0));
    const long band = image.Height() / BLENDMODE_FILTER1;
    for (int mode = 0; mode < BLENDMODE_FILTER1; ++mode) {
        const CRect rect(0, mode * band, image.Width(), (mode + 1) * band);
        if (image.PaintMasked(PAINT_COLORS_FORE, static_cast<BLENDMODES>(mode), 50, 255, nullptr,
                              &rect) == 0) {
            return std::string("painting in mode ") + BlendModeName(mode) + " failed";
        }
        if (!DrawCaption(image, font, 12, mode * band + (band - 20) / 2, BlendModeName(mode),
                         140)) {
            return std::string("cannot label the band of ") + BlendModeName(mode);
        }
    }
    return SaveInto(context, image, "blend-modes.png");
}

std::string HistogramPlot(DemoContext& context) {
    S_Histogram histogram;
    context.picture.ComputeHistogram(&histogram, nullptr);
    C_Image plot;
    if (!RenderHistogramPlot(histogram, plot)) {
        return "cannot make the plot picture";
    }
    return SaveInto(context, plot, "histogram.png");
}

// The whole picture onto a skewed quadrilateral inside its own size, interpolating.
std::string WriteWarped(DemoContext& context) {
    C_Image& picture = context.picture;
    const long w = picture.Width();
    const long h = picture.Height();
    C_Image mask;
    if (!mask.CreateMask(w, h)) {
        return "not enough memory";
    }
    mask.FillBitmapBytes(255);
    C_Image warped;
    C_Image warpedMask;
    const FREEXFORM_RESULTS result = warpedMask.MaskFreeXForm(
        CPoint(w / 10, h / 20), CPoint(w - w / 16, h / 6), CPoint(w - w / 8, h - h / 24),
        CPoint(w / 40, h - h / 5), &mask, &warped, &picture, 0, nullptr);
    if (result != FREEXFORM_OK) {
        return "the warp failed with result " + std::to_string(result);
    }
    return SaveInto(context, warped, "warped.png");
}

std::string WritePath(DemoContext& context, C_PointPath& path, const char* baseName) {
    const std::string pathFile = (context.directory / (std::string(baseName) + ".path")).string();
    const std::string svgFile = (context.directory / (std::string(baseName) + ".svg")).string();
    std::string failure = WritePathFiles(path, pathFile, svgFile);
    if (failure.empty()) {
        context.written.push_back(pathFile);
        context.written.push_back(svgFile);
    }
    return failure;
}

// The magic wand on the sky above the hills: the 4-connected pixels within 32 of the seed's
// colour in each channel, traced at one pixel's tolerance.
std::string TraceSkySelection(DemoContext& context) {
    C_Image mask;
    if (!mask.CreateMask(context.picture.Width(), context.picture.Height())) {
        return "not enough memory";
    }
    const CPoint seed(context.picture.Width() / 8, context.picture.Height() / 12);
    if (!mask.MaskFill(&context.picture, seed, COLOR_MATCH_RGB, 32, 255)) {
        return "the sky cannot be selected";
    }
    C_PointPath path;
    if (!path.CreateFromMask(&mask, CSize(), 1.0, 0)) {
        return "the selection has no outline";
    }
    if (!context.outlines.Clone(&context.picture) ||
        !DrawPathOutline(context.outlines, path, RGB(255, 40, 200))) {
        return "cannot draw the traced outline over the picture";
    }
    return WritePath(context, path, "sky");
}

std::string OutlineText(DemoContext& context) {
    CFont font;
    if (!font.CreateFont("sans-serif", 96)) {
        return "no scalable font is installed (fontconfig finds no sans-serif face)";
    }
    CString text("Vistrane paths");
    C_PointPath path;
    if (!path.CreateFromText(text, &font, CPoint(40, 40), 0)) {
        return "the text cannot be outlined";
    }
    if (!DrawPathOutline(context.outlines, path, RGB(255, 230, 0))) {
        return "cannot draw the text outline over the picture";
    }
    if (const std::string failure = SaveInto(context, context.outlines, "outlines.png");
        !failure.empty()) {
        return failure;
    }
    return WritePath(context, path, "text");
}

// The magic wand clicked in the open sky between the clouds: the tolerance spans the sky's
// gradient, the clouds, the sun, the balloons and the hills stay out.
std::string SelectSky(DemoContext& context) {
    C_Image& mask = context.wandMask;
    if (!mask.CreateMask(context.picture.Width(), context.picture.Height()) ||
        !mask.MaskFill(&context.picture, CPoint(700, 350), COLOR_MATCH_RGB, 48, 255)) {
        return "not enough memory";
    }
    return SaveInto(context, mask, "wand-mask.png");
}

// The selection shown on the picture: selected pixels halfway to magenta.
std::string ShowSelection(DemoContext& context) {
    C_Image shown;
    if (!shown.Clone(&context.picture)) {
        return "not enough memory";
    }
    for (long y = 0; y < shown.Height(); ++y) {
        BYTE* pixel = shown.PixelPtr(0, y);
        const BYTE* selected = context.wandMask.PixelPtr(0, y);
        for (long x = 0; x < shown.Width(); ++x, pixel += 3) {
            if (selected[x] != 0) {
                pixel[0] = static_cast<BYTE>((pixel[0] + 255) / 2);
                pixel[1] = static_cast<BYTE>(pixel[1] / 2);
                pixel[2] = static_cast<BYTE>((pixel[2] + 255) / 2);
            }
        }
    }
    return SaveInto(context, shown, "wand-selection.png");
}

std::string PaintShapes(DemoContext& context) {
    C_Image painted;
    if (!painted.Clone(&context.picture)) {
        return "not enough memory";
    }
    painted.SetForeTrueColor(RGB(200, 30, 40));
    painted.PaintRectangle(CRect(100, 700, 500, 1000), PAINT_COLORS_FORE, 8, 0, 0);
    painted.SetForeTrueColor(RGB(30, 90, 200));
    painted.PaintRoundRect(CRect(600, 750, 1000, 1050), PAINT_COLORS_FORE, 1, 1, 0);
    painted.SetForeTrueColor(RGB(250, 220, 40));
    painted.PaintEllipse(CRect(1100, 650, 1500, 1100), PAINT_COLORS_FORE, 14, 0, 0);
    // The same kinds again with soft edges, above the hard ones, for comparison.
    painted.SetForeTrueColor(RGB(240, 240, 240));
    painted.PaintRectangle(CRect(100, 250, 500, 550), PAINT_COLORS_FORE, 1, 1, 1);
    painted.SetForeTrueColor(RGB(30, 90, 200));
    painted.PaintRoundRect(CRect(600, 250, 1000, 550), PAINT_COLORS_FORE, 6, 0, 1);
    painted.SetForeTrueColor(RGB(250, 220, 40));
    painted.PaintEllipse(CRect(1100, 200, 1500, 600), PAINT_COLORS_FORE, 1, 1, 1);
    return SaveInto(context, painted, "shapes.png");
}

// The seamless tile of the picture, 10 % bands, laid out 2 x 2 so that the seams between the
// copies can be judged by eye.
std::string WriteTiled(DemoContext& context) {
    C_Image tile;
    if (!tile.Clone(&context.picture)) {
        return "not enough memory";
    }
    if (!tile.SeamlessPattern(10)) {
        return "the tile cannot be made";
    }
    const long w = tile.Width();
    const long h = tile.Height();
    C_Image shown;
    CSize size(2 * w, 2 * h);
    if (!shown.CreateCloneColors(&tile, &size)) {
        return "not enough memory";
    }
    for (int copy = 0; copy < 4; ++copy) {
        shown.DibBlt(copy % 2 * w, copy / 2 * h, w, h, &tile, 0, 0, 0);
    }
    return SaveInto(context, shown, "tiled-2x2.png");
}

// An oval selection skewed and turned as a user would do it, by dragging the free transform
// frame: SHIFT + CTRL on the bottom mid-point slides the bottom edge, then a drag outside the
// frame with SHIFT turns it in 15-degree steps.
std::string TransformSelection(DemoContext& context) {
    C_Image mask;
    if (!mask.CreateMask(context.picture.Width(), context.picture.Height()) ||
        !mask.MaskOval(CRect(500, 350, 1000, 750), 255)) {
        return "not enough memory";
    }
    CRect bounds;
    if (!SelectionBounds(mask, bounds)) {
        return "the oval selects nothing";
    }
    C_FreeXFormFrame frame(bounds);
    const CPoint bottomMid((bounds.left + bounds.right) / 2, bounds.bottom);
    RunDrag(frame,
            {{bottomMid, true, true, false}, {bottomMid + CPoint(120, 0), true, true, false}});
    // From the right of the frame, about 20 degrees clockwise round the centre: 15 with SHIFT.
    const CPoint centre = frame.CenterPoint();
    RunDrag(frame, {{centre + CPoint(340, 0), true, false, false},
                    {centre + CPoint(320, 116), true, false, false}});
    C_Image result;
    C_Image resultMask;
    const std::string failure =
        ConfirmFrame(frame, context.picture, mask, bounds, ConfirmOptions(), result, resultMask);
    if (!failure.empty()) {
        return failure;
    }
    if (std::string saved = SaveInto(context, result, "xform.png"); !saved.empty()) {
        return saved;
    }
    if (!DrawFrame(frame, result, RGB(255, 0, 255))) {
        return "cannot draw the frame";
    }
    return SaveInto(context, result, "xform-overlay.png");
}

std::string WriteContactSheet(DemoContext& context) {
    C_Image sheet;
    const std::string failure = MakeContactSheet(context.written, sheet);
    return failure.empty() ? SaveInto(context, sheet, "contact-sheet.png") : failure;
}

constexpr DemoStep kDemoSteps[] = {
    {"render picture", RenderPicture},
    {"write picture.bmp", WritePictureBmp},
    {"write picture.png", WritePicturePng},
    {"build blend tables", BuildBlendTables},
    {"filter: sharpen", SharpenFilter},
    {"color: hue shift 120", HueShift},
    {"blend-mode strip", BlendModeStrip},
    {"histogram plot", HistogramPlot},
    {"rotate by 30 degrees", WriteRotated},
    {"resample to a third", WriteResized},
    {"resample by 3/2", WriteEnlarged},
    {"warp onto four corners", WriteWarped},
    {"trace the sky selection", TraceSkySelection},
    {"outline a line of text", OutlineText},
    {"magic wand on the sky", SelectSky},
    {"show the selection", ShowSelection},
    {"paint shapes", PaintShapes},
    {"seamless tile, shown 2 x 2", WriteTiled},
    {"free transform a selection", TransformSelection},
    {"release blend tables", ReleaseBlendTables},
    {"contact sheet", WriteContactSheet},
};

int RunDemo(const Subcommand& command, const ParsedArgs& args) {
    DemoContext context;
    context.directory = args.Positionals().empty() ? "demo-out" : args.Positionals()[0];
    std::error_code error;
    std::filesystem::create_directories(context.directory, error);
    if (error) {
        return Failure(command,
                       "cannot create '" + context.directory.string() + "': " + error.message());
    }

    std::printf("%-32s %10s\n", "step", "ms");
    double totalMs = 0;
    for (const DemoStep& step : kDemoSteps) {
        const auto start = std::chrono::steady_clock::now();
        const std::string failure = step.run(context);
        const std::chrono::duration<double, std::milli> elapsed =
            std::chrono::steady_clock::now() - start;
        if (!failure.empty()) {
            return Failure(command, std::string(step.name) + ": " + failure);
        }
        totalMs += elapsed.count();
        std::printf("%-32s %10.1f\n", step.name, elapsed.count());
    }
    std::printf("%-32s %10.1f\n", "total", totalMs);
    for (const std::string& path : context.written) {
        std::printf("wrote %s\n", path.c_str());
    }
    return kExitSuccess;
}

}  // namespace

const Subcommand kDemoCommand = {
    "demo",
    "[DIR]",
    "render the built-in picture and run the tour, writing into DIR",
    "Renders the built-in 1600 x 1200 picture (procedural and the same on every machine),\n"
    "runs each step of the tour on it and writes the results into DIR (default demo-out),\n"
    "then prints how long each step took.",
    {},
    0,
    1,
    RunDemo,
};

}  // namespace vistrane::cli
