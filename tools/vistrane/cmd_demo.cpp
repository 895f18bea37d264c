// vistrane demo [DIR]: a tour of the engine on the built-in picture. The tour is a list of
// steps; each step does one thing, may write files into DIR, and is timed on its own.

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "commands.h"
#include "demo_picture.h"

namespace vistrane::cli {
namespace {

struct DemoContext {
    std::filesystem::path directory;
    C_Image picture;
    C_Image wandMask;
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
    return SaveInto(context, painted, "shapes.png");
}

constexpr DemoStep kDemoSteps[] = {
    {"render picture", RenderPicture},      {"write picture.bmp", WritePictureBmp},
    {"write picture.png", WritePicturePng}, {"rotate by 30 degrees", WriteRotated},
    {"resample to a third", WriteResized},  {"resample by 3/2", WriteEnlarged},
    {"magic wand on the sky", SelectSky},   {"show the selection", ShowSelection},
    {"paint shapes", PaintShapes},
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
