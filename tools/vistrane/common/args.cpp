#include "common/args.h"

#include <charconv>
#include <cstdio>

#include "common/output_file.h"

namespace vistrane::cli {

std::string ParsedArgs::Value(std::string_view option, const std::string& fallback) const {
    const auto found = m_Options.find(option);
    return found != m_Options.end() ? found->second : fallback;
}

bool ParseArgs(std::span<char* const> arguments, std::span<const OptionSpec> options,
               ParsedArgs& parsed, std::string& error) {
    bool optionsEnded = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        if (optionsEnded || argument.size() < 2 || argument[0] != '-') {
            parsed.m_Positionals.emplace_back(argument);
            continue;
        }
        if (argument == "--") {
            optionsEnded = true;
            continue;
        }
        if (argument == "-h" || argument == "--help") {
            parsed.m_Help = true;
            continue;
        }
        if (argument == "-q" || argument == "--quiet") {
            parsed.m_Quiet = true;
            continue;
        }
        if (argument.starts_with("--format=")) {
            parsed.m_Format = argument.substr(9);
            continue;
        }
        if (argument == "--format") {
            if (i + 1 == arguments.size()) {
                error = "option '--format' needs a value (png or bmp)";
                return false;
            }
            parsed.m_Format = arguments[++i];
            continue;
        }
        if (argument.substr(0, 2) != "--") {
            error = "unknown option '" + std::string(argument) + "'";
            return false;
        }
        const std::size_t equals = argument.find('=');
        const std::string_view name = argument.substr(2, equals - 2);
        const OptionSpec* declared = nullptr;
        for (const OptionSpec& candidate : options) {
            if (name == candidate.name) {
                declared = &candidate;
            }
        }
        if (declared == nullptr) {
            error = "unknown option '--" + std::string(name) + "'";
            return false;
        }
        std::string value;
        if (declared->valueName == nullptr) {
            if (equals != std::string_view::npos) {
                error = "option '--" + std::string(name) + "' takes no value";
                return false;
            }
        } else if (equals != std::string_view::npos) {
            value = argument.substr(equals + 1);
        } else if (i + 1 < arguments.size()) {
            value = arguments[++i];
        } else {
            error =
                "option '--" + std::string(name) + "' needs a value (" + declared->valueName + ")";
            return false;
        }
        parsed.m_Options[std::string(name)] = value;
        parsed.m_Occurrences.emplace_back(name, std::move(value));
    }
    return true;
}

void PrintSubcommandHelp(const Subcommand& command) {
    std::printf("Usage: vistrane %s%s%s%s\n\n%s\n", command.name,
                command.options.empty() ? "" : " [OPTIONS]", *command.arguments != '\0' ? " " : "",
                command.arguments, command.summary);
    if (command.details != nullptr) {
        std::printf("\n%s\n", command.details);
    }
    std::printf("\nOptions:\n");
    for (const OptionSpec& option : command.options) {
        std::string left = std::string("--") + option.name;
        if (option.valueName != nullptr) {
            left += std::string(" ") + option.valueName;
        }
        std::printf("  %-20s %s\n", left.c_str(), option.help);
    }
    const bool writes = std::string_view(command.arguments).find("OUT") != std::string_view::npos;
    if (writes) {
        std::printf("  %-20s %s\n", "--format png|bmp",
                    "the format when OUT is - (standard output; default png)");
        std::printf("  %-20s %s\n", "-q, --quiet", "do not report what was written");
    }
    std::printf("  %-20s %s\n", "-h, --help", "show this help and exit");
    if (writes) {
        std::printf(
            "\nAn input file may be - for standard input, and OUT - for standard output.\n");
    }
}

int UsageError(const Subcommand& command, const std::string& message) {
    std::fprintf(stderr, "vistrane %s: %s\nTry 'vistrane %s --help'.\n", command.name,
                 message.c_str(), command.name);
    return kExitUsage;
}

int Failure(const Subcommand& command, const std::string& message) {
    std::fprintf(stderr, "vistrane %s: %s\n", command.name, message.c_str());
    return kExitFailure;
}

int RunSubcommand(const Subcommand& command, std::span<char* const> arguments) {
    ParsedArgs parsed;
    std::string error;
    if (!ParseArgs(arguments, command.options, parsed, error)) {
        return UsageError(command, error);
    }
    if (parsed.Help()) {
        PrintSubcommandHelp(command);
        return kExitSuccess;
    }
    const std::size_t count = parsed.Positionals().size();
    if (count < command.minPositionals) {
        return UsageError(command, std::string("missing arguments: expected ") + command.arguments);
    }
    if (count > command.maxPositionals) {
        return UsageError(
            command, "unexpected argument '" + parsed.Positionals()[command.maxPositionals] + "'");
    }
    return RunWithFiles(command, parsed);
}

bool ParseIntegerList(const std::string& text, long limit, std::vector<long>& values) {
    values.clear();
    const char* begin = text.data();
    const char* const end = begin + text.size();
    while (true) {
        long value = 0;
        const auto parsed = std::from_chars(begin, end, value);
        if (parsed.ec != std::errc() || value < -limit || value > limit) {
            return false;
        }
        values.push_back(value);
        if (parsed.ptr == end) {
            return true;
        }
        if (*parsed.ptr != ',') {
            return false;
        }
        begin = parsed.ptr + 1;
    }
}

}  // namespace vistrane::cli
