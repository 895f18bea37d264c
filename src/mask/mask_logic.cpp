#include "mask/mask_logic.h"

namespace vistrane::mask {

namespace {

template <typename Op>
void Apply(BYTE* d, const BYTE* s, std::size_t count, Op op) {
    for (std::size_t i = 0; i < count; ++i) {
        d[i] = static_cast<BYTE>(op(d[i], s[i]));
    }
}

}  // namespace

void CombineBytes(BYTE* d, const BYTE* s, std::size_t count, LogicOp op) {
    switch (op) {
        case LogicOp::kAnd:
            Apply(d, s, count, [](BYTE a, BYTE b) { return a & b; });
            break;
        case LogicOp::kAndNot:
            Apply(d, s, count, [](BYTE a, BYTE b) { return a & ~b; });
            break;
        case LogicOp::kOr:
            Apply(d, s, count, [](BYTE a, BYTE b) { return a | b; });
            break;
        case LogicOp::kOrNot:
            Apply(d, s, count, [](BYTE a, BYTE b) { return a | static_cast<BYTE>(~b); });
            break;
        case LogicOp::kXor:
            Apply(d, s, count, [](BYTE a, BYTE b) { return a ^ b; });
            break;
    }
}

void InvertBytes(BYTE* d, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        d[i] = static_cast<BYTE>(~d[i]);
    }
}

void ClearCountOfSelected(BYTE* d, const BYTE* s, std::size_t count) {
    std::size_t cursor = 0;
    for (std::size_t i = 0; i < count; ++i) {
        cursor += s[i] != 0 ? 1 : 0;
    }
    for (std::size_t i = 0; i < cursor; ++i) {
        d[i] = 0;
    }
}

void ReplaceBytes(BYTE* d, std::size_t count, BYTE from, BYTE to) {
    for (std::size_t i = 0; i < count; ++i) {
        d[i] = d[i] == from ? to : d[i];
    }
}

void ReplaceBytesElse(BYTE* d, std::size_t count, BYTE from, BYTE to, BYTE other) {
    for (std::size_t i = 0; i < count; ++i) {
        d[i] = d[i] == from ? to : other;
    }
}

}  // namespace vistrane::mask
