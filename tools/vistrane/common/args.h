#pragma once

// What every subcommand shares: its description (name, arguments, options, help text), the
// argument parser, and the exit codes and message forms of the tool.
//
// Options are long GNU-style options: `--name` for a flag, `--name VALUE` or `--name=VALUE`
// for one that takes a value; `-h` and `--help` ask for help; `--` ends the options so that a
// file name may start with a dash. Anything else that starts with a dash is a usage error.
// An option may be given more than once: Value answers with the last one, and Occurrences keeps
// every one in command-line order for subcommands that read a script of steps.

#include <map>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vistrane::cli {

constexpr int kExitSuccess = 0;
constexpr int kExitFailure = 1;  // the command was understood but could not be carried out
constexpr int kExitUsage = 2;    // the command line itself is wrong

struct OptionSpec {
    const char* name;       // without the dashes
    const char* valueName;  // shown in help, e.g. "DIR"; null for a flag
    const char* help;
};

class ParsedArgs {
  public:
    bool Help() const { return m_Help; }
    // -q or --quiet: no report of what was written.
    bool Quiet() const { return m_Quiet; }
    // --format png|bmp for "-" as the output; empty when not given.
    const std::string& Format() const { return m_Format; }
    // Stands a spooled file in for "-" among the positional arguments.
    void ReplacePositional(std::size_t index, std::string path) {
        m_Positionals[index] = std::move(path);
    }
    const std::vector<std::string>& Positionals() const { return m_Positionals; }
    bool Has(std::string_view option) const { return m_Options.find(option) != m_Options.end(); }
    // The value given to an option, or `fallback` when it was not given.
    std::string Value(std::string_view option, const std::string& fallback = {}) const;
    // Every option given, as (name, value) in command-line order; a flag's value is empty.
    const std::vector<std::pair<std::string, std::string>>& Occurrences() const {
        return m_Occurrences;
    }

  private:
    friend bool ParseArgs(std::span<char* const>, std::span<const OptionSpec>, ParsedArgs&,
                          std::string&);

    bool m_Help = false;
    bool m_Quiet = false;
    std::string m_Format;
    std::vector<std::string> m_Positionals;
    std::map<std::string, std::string, std::less<>> m_Options;
    std::vector<std::pair<std::string, std::string>> m_Occurrences;
};

struct Subcommand;
using RunFunction = int (*)(const Subcommand& command, const ParsedArgs& args);

struct Subcommand {
    const char* name;
    const char* arguments;  // e.g. "IN OUT", "[DIR]"
    const char* summary;    // one line for the tool's own help
    const char* details;    // paragraphs for the subcommand's help; may be null
    std::span<const OptionSpec> options;
    std::size_t minPositionals;
    std::size_t maxPositionals;
    RunFunction run;
};

// Parses the arguments after the subcommand's name. Returns false with `error` naming the
// offending argument for an unknown option, a value given to a flag, or a missing value.
bool ParseArgs(std::span<char* const> arguments, std::span<const OptionSpec> options,
               ParsedArgs& parsed, std::string& error);

// Parses for `command`, prints its help or reports a usage error, or runs it; returns the
// process exit code.
int RunSubcommand(const Subcommand& command, std::span<char* const> arguments);

void PrintSubcommandHelp(const Subcommand& command);

// A comma-separated list of whole numbers, each within -limit..limit, e.g. "10,-4,30,0".
// False for anything else (empty parts, spaces, signs without digits, out-of-range values).
bool ParseIntegerList(const std::string& text, long limit, std::vector<long>& values);

// "vistrane NAME: message" and a pointer to the help on stderr; returns kExitUsage.
int UsageError(const Subcommand& command, const std::string& message);
// "vistrane NAME: message" on stderr; returns kExitFailure.
int Failure(const Subcommand& command, const std::string& message);

}  // namespace vistrane::cli
