#pragma once

// Symbols are hidden by default; the library's public classes, functions and tables carry
// VISTRANE_API so that exactly the documented boundary is exported from libvistrane.so.
#if defined(__GNUC__) || defined(__clang__)
#define VISTRANE_API __attribute__((visibility("default")))
#else
#define VISTRANE_API
#endif
