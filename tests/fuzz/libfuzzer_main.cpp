// The entry point of one libFuzzer program: VISTRANE_LIBFUZZER_TARGET names its target.

#include "fuzz/fuzz_target.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool started = (C_Image::CheckBitmapHeaderType(), true);
    (void)started;
    return vistrane::fuzz::VISTRANE_LIBFUZZER_TARGET(data, size);
}
