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

constexpr DemoStep kDemoSteps[] = {
    {"render picture", RenderPicture},
    {"write picture.bmp", WritePictureBmp},
    {"write picture.png", WritePicturePng},
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
