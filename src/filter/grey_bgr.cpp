#include "filter/grey_bgr.h"

#include "blend/blend_dispatch.h"

namespace vistrane::filter {

void GreyBgrRef(BYTE* row, int count) {
    for (int i = 0; i < count; ++i) {
        BYTE* p = row + 3 * i;
        p[0] = p[1] = p[2] = static_cast<BYTE>((p[0] + p[1] + p[2]) / 3);
    }
}

GreyBgrFn BestGreyBgr() {
#if defined(__x86_64__) || defined(__i386__)
    if (blend::BestKernelSet() == blend::KernelSet::kAvx2) {
        return GreyBgrAvx2;
    }
#endif
    return GreyBgrRef;
}

}  // namespace vistrane::filter
