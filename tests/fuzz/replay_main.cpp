// Runs every file of a corpus folder through one fuzz target, as an ordinary test: a crash or a
// sanitizer report fails it. Usage: vistrane_fuzz_replay TARGET FOLDER.

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz/fuzz_target.h"

namespace {

struct NamedTarget {
    const char* name;
    vistrane::fuzz::Target run;
};

constexpr NamedTarget kTargets[] = {
    {"bmp_memory", vistrane::fuzz::FuzzBmpMemory},
    {"bmp_file", vistrane::fuzz::FuzzBmpFile},
    {"png_memory", vistrane::fuzz::FuzzPngMemory},
    {"packed_dib", vistrane::fuzz::FuzzPackedDib},
    {"memory_block", vistrane::fuzz::FuzzMemoryBlock},
    {"archive", vistrane::fuzz::FuzzArchive},
    {"path_file", vistrane::fuzz::FuzzPathFile},
    {"cli_values", vistrane::fuzz::FuzzCliValues},
};

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s TARGET FOLDER\n", argv[0]);
        return 2;
    }
    const NamedTarget* target = nullptr;
    for (const NamedTarget& t : kTargets) {
        if (std::strcmp(t.name, argv[1]) == 0) {
            target = &t;
        }
    }
    if (target == nullptr) {
        std::fprintf(stderr, "unknown target '%s'\n", argv[1]);
        return 2;
    }
    C_Image::CheckBitmapHeaderType();
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(argv[2])) {
        std::ifstream in(entry.path(), std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(in),
                                      std::istreambuf_iterator<char>()};
        target->run(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
        ++files;
    }
    std::printf("%s: %d inputs replayed\n", target->name, files);
    return files > 0 ? 0 : 1;
}
