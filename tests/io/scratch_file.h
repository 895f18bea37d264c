#pragma once

// Paths for files the tests write. ctest runs test cases as separate processes in parallel, so
// each name carries the process id.

#include <unistd.h>

#include <string>

#include <gtest/gtest.h>

namespace vistrane::test {

inline std::string ScratchPath(const std::string& name) {
    return ::testing::TempDir() + "vistrane_" + std::to_string(getpid()) + "_" + name;
}

}  // namespace vistrane::test
