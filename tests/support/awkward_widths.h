#pragma once

// Row widths on which a vector kernel must match its plain reference: every width up to two
// vectors and a tail, and widths around 96 and 4096 where blocks and whole rows end.

#include <vector>

namespace vistrane::test {

inline std::vector<int> AwkwardWidths() {
    std::vector<int> widths;
    for (int w = 1; w <= 67; ++w) {
        widths.push_back(w);
    }
    for (int w : {95, 96, 97}) {
        widths.push_back(w);
    }
    for (int w = 4090; w <= 4100; ++w) {
        widths.push_back(w);
    }
    return widths;
}

}  // namespace vistrane::test
