#include <vistrane/platform/keyboard.h>

#include <array>
#include <atomic>

namespace {

// One flag per virtual key. The host writes from its input thread; frames read on the same
// thread, but atomics keep a host that feeds keys from elsewhere well defined.
std::array<std::atomic<bool>, 256> g_KeyDown{};

bool IsKnownKey(int virtualKey) {
    return virtualKey >= 0 && virtualKey < 256;
}

}  // namespace

SHORT GetKeyState(int virtualKey) {
    if (!IsKnownKey(virtualKey) || !g_KeyDown[static_cast<size_t>(virtualKey)].load()) {
        return 0;
    }
    return static_cast<SHORT>(0x8000);  // high bit set: the key is down
}

void SetKeyState(int virtualKey, bool down) {
    if (IsKnownKey(virtualKey)) {
        g_KeyDown[static_cast<size_t>(virtualKey)].store(down);
    }
}
