#include "platform/cpu_features.h"

namespace vistrane::cpu {
namespace {

std::vector<InstructionSet> Detect() {
    std::vector<InstructionSet> sets{InstructionSet::kReference};
#if VISTRANE_X86_KERNELS
    sets.push_back(InstructionSet::kSse2);
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi2")) {
        sets.push_back(InstructionSet::kAvx2);
    }
#endif
    return sets;
}

}  // namespace

const std::vector<InstructionSet>& Available() {
    static const std::vector<InstructionSet> sets = Detect();
    return sets;
}

InstructionSet Best() {
    static const InstructionSet best = Available().back();
    return best;
}

const char* Name(InstructionSet set) {
    switch (set) {
        case InstructionSet::kSse2:
            return "sse2";
        case InstructionSet::kAvx2:
            return "avx2";
        default:
            return "reference";
    }
}

}  // namespace vistrane::cpu
