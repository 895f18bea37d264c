#pragma once

// Running the built tool from a test: its exit code and what it printed, and a fixture with a
// scratch directory of its own per test.

#include <gtest/gtest.h>

#include <string>

namespace vistrane::test {

struct ToolRun {
    int exitCode;
    std::string out;
    std::string err;
};

std::string ReadText(const std::string& path);

// Runs the built tool with `arguments` (already quoted for the shell).
ToolRun Vistrane(const std::string& arguments);

bool Contains(const std::string& text, const std::string& part);

class CliTest : public ::testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;
    std::string Path(const std::string& name) const { return m_Directory + "/" + name; }
    // Path(name) in single quotes, for the shell.
    std::string Quoted(const std::string& name) const;

    std::string m_Directory;
};

}  // namespace vistrane::test
