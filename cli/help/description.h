// What the program holds of itself: its commands, what each takes and does. The parser, the help, the manual and the
// completions are all made from this.
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace cli {

// What the program returns.
inline constexpr int allGood = 0;
inline constexpr int someFailed = 1;
inline constexpr int nothingDone = 2;
inline constexpr std::array<std::string_view, 3> exitMeanings = {
    "all good", "some rows failed, or defects were found",
    "nothing could be done: a wrong command line, or files that cannot be used"};

// Where a value goes. A bool is set by a flag; a list is given with commas, but as an argument without a name it is all
// that is left.
using Target = std::variant<bool*, int*, std::size_t*, std::string*, std::vector<int>*,
                            std::vector<std::size_t>*, std::vector<std::string>*>;

// What a value must be.
struct Rules {
    bool required = false;
    std::vector<std::string> choices = {};
    std::vector<std::string> meanings = {};  // of the choices, taken as well; none: the choices themselves
    int smallest = 0;
    int largest = 0;  // of a number; 0: no limits
};

// An option of a command, or an argument that goes by its place.
struct Argument {
    std::string heading;             // "-d, --dir DIR", or "CODE" by its place
    std::string description;         // with choices, limits and default
    std::string group;               // where it stands in the help; empty: among the options
    std::vector<std::string> names;  // with their hyphens; none for an argument by its place
    std::string value;               // what stands for its value; empty for a flag
    Target target;
    Rules rules;

    [[nodiscard]] bool repeats() const;
};

struct Command {
    std::string name;
    std::string summary;  // a line
    std::string details = {};
    std::string examples = {};             // one a line; a line that goes on ends in a backslash
    std::function<int()> run = {};         // returned: the exit status
    std::vector<Argument> arguments = {};  // without the help
    std::string group = {};                // of the options that are added from here on
    std::vector<Command> commands = {};    // of the program itself

    // Adds an option or argument by its heading. A text that is there already is the default.
    void add(const std::string& heading, Target target, const std::string& description, Rules rules = {});

    // The option -d, --dir.
    void add_directory(std::string* directory);

    // Null if there is none.
    [[nodiscard]] const Command* find(std::string_view command) const;

    // The options, the help last.
    [[nodiscard]] std::vector<Argument> options() const;
    [[nodiscard]] std::vector<Argument> positionals() const;

    // The words behind its name, a blank ahead of each: " [OPTIONS] CODE".
    [[nodiscard]] std::string usage() const;
};

std::string joined(const std::vector<std::string>& parts, std::string_view separator);

// A text in lines of at most 80 columns, from the second one on indented; where the first has begun already, its width
// is given.
std::string wrapped(const std::string& text, std::size_t indent, std::size_t begun);

// "Example:" or "Examples:".
std::string examples_heading(const Command& command);

// The help of a command, or of the program itself.
std::string help_text(const Command& program, const Command& command);

// The manual page as roff with the man macros.
std::string manual_page(const Command& program);

// A completion script for a shell: bash, zsh or fish. It asks the program at every word.
std::string_view completion_script(std::string_view shell);

// Prints what may stand in the place of the last of the words behind the program's name, also what it does not begin
// with: "WORD" or "WORD<tab>DESCRIPTION" in a line each; ":directories" or ":files" where the shell knows.
void complete(const Command& program, std::vector<std::string> words);

}  // namespace cli
