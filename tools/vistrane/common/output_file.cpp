#include "common/output_file.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>
#include <vector>

#include <vistrane/image/image.h>
#include <vistrane/io/image_file.h>

#include "common/values.h"

namespace vistrane::cli {
namespace {

using Clock = std::chrono::steady_clock;

// One run of the tool is one subcommand, so what the report needs lives for the process.
struct RunState {
    bool quiet = false;
    Clock::time_point start = Clock::now();
    std::string stdoutSpool;  // the temporary file standing for "-" as the output
};

RunState& State() {
    static RunState state;
    return state;
}

// Words of the argument synopsis that name files the command reads.
bool IsInputWord(std::string_view word) {
    return word == "IN" || word == "FILE" || word == "DEST" || word == "SOURCE" || word == "MASK" ||
           word == "FILE.path";
}

// The synopsis words without brackets, e.g. "OPERATION MASK [OTHER] [OUT]" -> OPERATION,
// MASK, OTHER, OUT.
std::vector<std::string> SynopsisWords(const char* synopsis) {
    std::vector<std::string> words;
    std::istringstream in(synopsis);
    std::string word;
    while (in >> word) {
        std::erase_if(word, [](char c) { return c == '[' || c == ']'; });
        words.push_back(word);
    }
    return words;
}

std::string Lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

// A temporary file name with the extension that picks the format; empty when none is free.
std::string MakeSpoolFile(const char* extension) {
    std::string name = "/tmp/vistrane-XXXXXX";
    name += extension;
    const int fd = mkstemps(name.data(), static_cast<int>(std::strlen(extension)));
    if (fd < 0) {
        return {};
    }
    close(fd);
    return name;
}

bool CopyStream(std::istream& from, std::ostream& to) {
    to << from.rdbuf();
    return static_cast<bool>(to);
}

std::string SpoolStandardInput() {
    // The reader recognises the format by the contents, so the name's extension is only a hint.
    const std::string name = MakeSpoolFile(".img");
    std::ofstream out(name, std::ios::binary);
    return !name.empty() && CopyStream(std::cin, out) ? name : std::string();
}

}  // namespace

int RunWithFiles(const Subcommand& command, ParsedArgs& args) {
    RunState& state = State();
    state.quiet = args.Quiet();
    const std::string format = args.Format();
    if (!format.empty() && format != "png" && format != "bmp") {
        return UsageError(command, "--format is png or bmp, not " + Quote(format));
    }
    const std::vector<std::string> words = SynopsisWords(command.arguments);
    // The output's name is checked first: a wrong one is a usage error before any reading.
    for (std::size_t i = 0; i < words.size() && i < args.Positionals().size(); ++i) {
        const std::string& given = args.Positionals()[i];
        const std::string lowered = Lowered(given);
        if (words[i] == "OUT" && given != "-" && !lowered.ends_with(".png") &&
            !lowered.ends_with(".bmp")) {
            return UsageError(command, "cannot tell the format of " + Quote(given) +
                                           ": name it .bmp or .png, or - for standard output");
        }
    }
    std::vector<std::string> spooled;
    int result = kExitSuccess;
    std::size_t outputIndex = words.size();
    for (std::size_t i = 0; i < words.size() && i < args.Positionals().size(); ++i) {
        const std::string& given = args.Positionals()[i];
        if (words[i] == "OUT") {
            outputIndex = i;
        } else if (IsInputWord(words[i]) && given == "-") {
            const std::string name = SpoolStandardInput();
            if (name.empty()) {
                return Failure(command, "cannot read the picture from standard input");
            }
            spooled.push_back(name);
            args.ReplacePositional(i, name);
        } else if (IsInputWord(words[i]) && access(given.c_str(), R_OK) != 0) {
            return Failure(command, "cannot read " + Quote(given) + ": " + std::strerror(errno));
        }
    }
    if (!format.empty() &&
        (outputIndex == words.size() || args.Positionals()[outputIndex] != "-")) {
        return UsageError(command, "--format applies only to - as the output");
    }
    if (outputIndex < words.size() && args.Positionals()[outputIndex] == "-") {
        state.stdoutSpool = MakeSpoolFile(format == "bmp" ? ".bmp" : ".png");
        if (state.stdoutSpool.empty()) {
            result = Failure(command, "cannot make a temporary file for standard output");
        }
        args.ReplacePositional(outputIndex, state.stdoutSpool);
    }
    if (result == kExitSuccess) {
        result = command.run(command, args);
    }
    if (!state.stdoutSpool.empty()) {
        std::ifstream written(state.stdoutSpool, std::ios::binary);
        if (result == kExitSuccess && !CopyStream(written, std::cout)) {
            result = Failure(command, "cannot write the picture to standard output");
        }
        std::remove(state.stdoutSpool.c_str());
    }
    for (const std::string& name : spooled) {
        std::remove(name.c_str());
    }
    return result;
}

void ReportWritten(const std::string& path, const C_Image& image) {
    const RunState& state = State();
    if (state.quiet) {
        return;
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - state.start).count();
    const bool toStdout = path == state.stdoutSpool;
    std::fprintf(toStdout ? stderr : stdout, "wrote %s (%ld x %ld, %d-bit) in %.2f s\n",
                 toStdout ? "standard output" : path.c_str(), static_cast<long>(image.Width()),
                 static_cast<long>(image.Height()), static_cast<int>(image.BitCount()), seconds);
}

int LoadInput(const Subcommand& command, const std::string& path, C_Image& image) {
    const ImageFileResult loaded = LoadImageFile(path, image);
    return loaded.ok ? kExitSuccess : Failure(command, loaded.error);
}

int SaveOutput(const Subcommand& command, const std::string& path, C_Image& image) {
    const ImageFileResult saved = SaveImageFile(path, image);
    if (!saved.ok) {
        return Failure(command, saved.error);
    }
    ReportWritten(path, image);
    return kExitSuccess;
}

}  // namespace vistrane::cli
