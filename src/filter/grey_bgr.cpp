#include "filter/grey_bgr.h"

namespace vistrane::filter {

void GreyBgrRef(BYTE* row, int count) {
    for (int i = 0; i < count; ++i) {
        BYTE* p = row + 3 * i;
        p[0] = p[1] = p[2] = static_cast<BYTE>((p[0] + p[1] + p[2]) / 3);
    }
}

GreyBgrFn GreyBgrFor(cpu::InstructionSet set) {
#if VISTRANE_X86_KERNELS
    if (set == cpu::InstructionSet::kAvx2) {
        return GreyBgrAvx2;
    }
#else
    (void)set;
#endif
    return GreyBgrRef;
}

}  // namespace vistrane::filter
