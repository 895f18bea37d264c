#include "cli/cli_support.h"

#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "io/scratch_file.h"

namespace vistrane::test {

std::string ReadText(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

ToolRun Vistrane(const std::string& arguments) {
    const std::string out = ScratchPath("cli_stdout.txt");
    const std::string err = ScratchPath("cli_stderr.txt");
    // The tool's path is a string object, not a literal: GCC 12 misjudges the bounds of a
    // literal of some lengths pasted into a temporary string.
    const std::string tool = VISTRANE_CLI_PATH;
    const std::string command = "'" + tool + "' " + arguments + " >'" + out + "' 2>'" + err + "'";
    const int status = std::system(command.c_str());
    ToolRun run{WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadText(out), ReadText(err)};
    std::remove(out.c_str());
    std::remove(err.c_str());
    return run;
}

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

void CliTest::SetUp() {
    m_Directory = ScratchPath(::testing::UnitTest::GetInstance()->current_test_info()->name());
    std::filesystem::create_directories(m_Directory);
}

std::string CliTest::Quoted(const std::string& name) const {
    std::string quoted = "'";
    quoted += Path(name);
    quoted += '\'';
    return quoted;
}

void CliTest::TearDown() {
    std::filesystem::remove_all(m_Directory);
}

}  // namespace vistrane::test
