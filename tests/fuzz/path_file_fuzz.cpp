// The path file reader; a path that loads is saved and loaded again with the same shape.

#include <cstdio>
#include <set>
#include <string>

#include <unistd.h>

#include <vistrane/path/point_path.h>
#include <vistrane/path/sub_path.h>

#include "fuzz/fuzz_target.h"

namespace vistrane::fuzz {
namespace {

std::multiset<int> PointCounts(const C_PointPath& path) {
    std::multiset<int> counts;
    for (const C_SubPath* sub = path.GetFirstSubPath(); sub != nullptr; sub = sub->GetNext()) {
        counts.insert(sub->GetCount());
    }
    return counts;
}

}  // namespace

int FuzzPathFile(const std::uint8_t* data, std::size_t size) {
    static const std::string given = "/tmp/vistrane-fuzz-" + std::to_string(getpid()) + ".path";
    static const std::string saved = given + ".again";
    std::FILE* file = std::fopen(given.c_str(), "wb");
    if (file == nullptr) {
        return 0;
    }
    const bool written = std::fwrite(data, 1, size, file) == size;
    std::fclose(file);
    C_PointPath path;
    if (written && path.LoadFromFile(given.c_str(), 0)) {
        C_PointPath again;
        if (!path.SaveToFile(saved.c_str()) || !again.LoadFromFile(saved.c_str(), 0) ||
            again.GetNSubPaths() != path.GetNSubPaths()) {
            __builtin_trap();
        }
        // Sub-paths join at the head of the list, so a load may reverse their order: compare
        // the point counts as a set.
        if (PointCounts(path) != PointCounts(again)) {
            __builtin_trap();
        }
        std::remove(saved.c_str());
    }
    std::remove(given.c_str());
    return 0;
}

}  // namespace vistrane::fuzz
