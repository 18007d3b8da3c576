// What the program holds of itself: one view of its commands, for the help, the manual and the completions.
#pragma once

#include <CLI/CLI.hpp>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

// An option of a command, or one of its positional arguments.
struct Argument {
    std::vector<std::string> names;    // with their hyphens; none for a positional argument
    std::string value;                 // what stands for its value; empty for a flag
    std::vector<std::string> choices;  // where its values are a fixed set
    std::string description;           // with choices and default
    std::string group;                 // the heading that it stands under, if it has one of its own
    bool required = false;
    bool repeats = false;
    bool isHelp = false;

    [[nodiscard]] bool is_positional() const { return names.empty(); }
    // Whether its value is a DIR, a FILE (or FILE.tra) or a CODE.
    [[nodiscard]] bool takes(std::string_view kind) const;
    // "-d, --dir DIR", or the name of a positional argument.
    [[nodiscard]] std::string heading() const;
};

// In the order of their definition, the help last.
std::vector<Argument> arguments_of(const CLI::App& command);
std::vector<Argument> options_of(const CLI::App& command);
std::vector<Argument> positionals_of(const CLI::App& command);

std::vector<const CLI::App*> commands_of(const CLI::App& program);

// What a command does, in a line; and what else there is to say.
std::string summary_of(const CLI::App& command);
std::string details_of(const CLI::App& command);

// The words behind a command's name: "CODE [OPTIONS]".
std::vector<std::string> usage_of(const CLI::App& command);

std::string joined(const std::vector<std::string>& parts, std::string_view separator);

// A text in lines of at most 80 columns, from the second one on indented; where the first has begun already, its width
// is given.
std::string wrapped(std::string_view text, std::size_t indent, std::size_t begun);

struct ExitStatus {
    int status;
    std::string_view meaning;
};
extern const std::array<ExitStatus, 3> exitStatuses;

// Texts of the help, for lines of 80 columns.
class HelpFormatter : public CLI::FormatterBase {
  public:
    std::string make_help(const CLI::App* command, std::string name, CLI::AppFormatMode mode) const override;
};

// The manual page as roff with the man macros.
std::string manual_page(const CLI::App& program, std::string_view version);

// A completion script for a shell: bash, zsh or fish.
std::string completion_script(const CLI::App& program, std::string_view shell);

}  // namespace cli
