#pragma once

// The one place that knows which instruction sets the processor offers.
//
// Every fast path is written beside a plain reference rule, which defines the bytes. A topic
// publishes its kernels with a function `<Kernels>For(cpu::InstructionSet)`: the kernels written
// for that set, or the reference ones where the topic has none for it. The engine runs
// `<Kernels>For(cpu::Best())`; the tests run every kernel under each of cpu::Available() and
// compare the bytes with the reference.
//
// Files named *_sse2.cpp and *_avx2.cpp hold the x86-64 kernels. The build compiles them, with
// their instruction-set flags, only for x86-64; VISTRANE_X86_KERNELS says whether they exist, so
// a topic names them only under it. Such files include narrow headers only: an inline function
// that an AVX2 object also compiled could otherwise be the copy the linker keeps.

#include <vector>

#if defined(__x86_64__)
#define VISTRANE_X86_KERNELS 1
#else
#define VISTRANE_X86_KERNELS 0
#endif

namespace vistrane::cpu {

enum class InstructionSet {
    kReference,  // the plain rules, on every processor
    kSse2,       // x86-64's baseline vectors
    kAvx2,       // AVX2 with BMI2
};

// The best set that this processor and this build offer, detected once.
InstructionSet Best();

// Every set that this processor and this build offer, the reference first.
const std::vector<InstructionSet>& Available();

// "reference", "sse2" or "avx2", for test names and benchmark labels.
const char* Name(InstructionSet set);

}  // namespace vistrane::cpu
