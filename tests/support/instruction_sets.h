#pragma once

// The instruction sets whose kernels the tests compare with the reference rules: every set this
// processor offers beyond the reference itself.

#include <vector>

#include "platform/cpu_features.h"

namespace vistrane::test {

inline std::vector<cpu::InstructionSet> FastSets() {
    std::vector<cpu::InstructionSet> sets;
    for (const cpu::InstructionSet set : cpu::Available()) {
        if (set != cpu::InstructionSet::kReference) {
            sets.push_back(set);
        }
    }
    return sets;
}

}  // namespace vistrane::test
