#include "filter/lut_bytes.h"

#include "blend/blend_dispatch.h"

namespace vistrane::filter {

void LutBytesRef(BYTE* bytes, int count, const BYTE* table) {
    for (int i = 0; i < count; ++i) {
        bytes[i] = table[bytes[i]];
    }
}

LutBytesFn BestLutBytes() {
#if defined(__x86_64__) || defined(__i386__)
    if (blend::BestKernelSet() == blend::KernelSet::kAvx2) {
        return LutBytesAvx2;
    }
#endif
    return LutBytesRef;
}

}  // namespace vistrane::filter
