// The view of the commands, and the help that is made of it.
#include "help/description.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <utility>

#include "commands/commands.h"
#include "system/output.h"

namespace cli {

const std::array<ExitStatus, 3> exitStatuses = {
    {{allGood, "all good"},
     {someFailed, "some rows failed, or defects were found"},
     {nothingDone, "nothing could be done: a wrong command line, or files that cannot be used"}}};

std::string joined(const std::vector<std::string>& parts, std::string_view separator) {
    std::string text;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        text += (i == 0 ? "" : std::string(separator)) + parts[i];
    }
    return text;
}

namespace {

constexpr std::size_t lineWidth = 80;

std::vector<std::string> split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    for (;;) {
        const std::size_t end = text.find(separator);
        parts.emplace_back(text.substr(0, end));
        if (end == std::string_view::npos) {
            return parts;
        }
        text.remove_prefix(end + 1);
    }
}

// Marks like a comma among the choices are none that a list of them could show.
bool is_word(const std::string& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](unsigned char byte) {
        return std::isalnum(byte) != 0 || byte == '-' || byte == '_';
    });
}

std::vector<std::string> words_of(const std::string& text) {
    std::vector<std::string> words(1);
    for (const char byte : text) {
        if (is_word(std::string(1, byte))) {
            words.back() += byte;
        } else if (!words.back().empty()) {
            words.emplace_back();
        }
    }
    return words;
}

// The parser appends to the type's name what its checks say of themselves: "TEXT:{bash,zsh}", "INT:INT in [0 - 15]".
struct TypeName {
    std::string type;
    std::vector<std::string> choices;
    std::string range;
};

TypeName type_name_of(const CLI::Option& option) {
    const std::string text = option.get_type_name();
    const std::size_t colon = text.find(':');
    TypeName name = {text.substr(0, colon), {}, {}};
    if (colon == std::string::npos) {
        return name;
    }
    const std::string check = text.substr(colon + 1);
    const auto between = [&check](char opening, char closing) {
        const std::size_t begin = check.find(opening);
        const std::size_t end = check.find(closing, begin);
        return end < check.size() ? check.substr(begin + 1, end - begin - 1) : std::string();
    };
    if (const std::string set = between('{', '}'); !set.empty()) {
        for (std::string& choice : split(set, ',')) {
            choice.erase(std::min(choice.find("->"), choice.size()));  // a choice that stands for a value
            if (is_word(choice)) {
                name.choices.push_back(std::move(choice));
            }
        }
    } else if (const std::string limits = between('[', ']'); limits.find(" - ") != std::string::npos) {
        const std::size_t dash = limits.find(" - ");
        name.range = limits.substr(0, dash) + " to " + limits.substr(dash + 3);
    } else if (check == "FILE" || check == "DIR") {
        name.type = check;
    }
    return name;
}

// The names that the parser gives to types by itself say nothing to a user.
std::string value_name(const TypeName& name) {
    if (name.type.empty() || name.type == "TEXT") {
        return name.choices.empty() ? "TEXT" : joined(name.choices, "|");
    }
    const bool isNumber = name.type == "INT" || name.type == "UINT" || name.type == "FLOAT";
    return isNumber ? "NUMBER" : name.type;
}

// Whether a text tells all the choices.
bool names_all(const std::string& text, const std::vector<std::string>& choices) {
    const std::vector<std::string> words = words_of(text);
    return std::all_of(choices.begin(), choices.end(), [&words](const std::string& choice) {
        return std::find(words.begin(), words.end(), choice) != words.end();
    });
}

// A text with remarks in brackets, inside those that it may end with.
std::string remarked(const std::string& text, const std::vector<std::string>& remarks) {
    if (remarks.empty()) {
        return text;
    }
    const bool endsSo = text.ends_with(')');
    return (endsSo ? text.substr(0, text.size() - 1) + "; " : text + " (") + joined(remarks, "; ") + ")";
}

Argument argument_of(const CLI::Option& option) {
    const TypeName type = type_name_of(option);
    Argument argument;
    if (option.nonpositional()) {
        for (const std::string& name : option.get_snames()) {
            argument.names.push_back("-" + name);
        }
        for (const std::string& name : option.get_lnames()) {
            argument.names.push_back("--" + name);
        }
        argument.value = option.get_items_expected_max() == 0 ? "" : value_name(type);
    } else {
        argument.value = option.get_name(true);
    }
    argument.choices = type.choices;
    argument.required = option.get_required();
    argument.repeats = option.get_expected_max() >= CLI::detail::expected_max_vector_size;
    std::vector<std::string> remarks;
    if (argument.value != joined(type.choices, "|") && !names_all(option.get_description(), type.choices)) {
        remarks.push_back(joined(type.choices, ", "));
    }
    if (!type.range.empty()) {
        remarks.push_back(type.range);
    }
    const std::string standard = option.get_default_str();
    if (!argument.value.empty() && !standard.empty() && standard != "[]") {
        remarks.push_back("default: " + standard);
    }
    argument.description = remarked(option.get_description(), remarks);
    return argument;
}

void append_arguments(const CLI::App& command, std::vector<Argument>& arguments) {
    for (const CLI::Option* option : command.get_options()) {
        if (option != command.get_help_ptr() && !option->get_group().empty()) {
            arguments.push_back(argument_of(*option));
            arguments.back().group = command.get_name().empty() ? command.get_group() : "";
        }
    }
    for (const CLI::App* group : command.get_subcommands([](const CLI::App*) { return true; })) {
        if (group->get_name().empty()) {
            append_arguments(*group, arguments);
        }
    }
}

std::vector<Argument> chosen(const CLI::App& command, bool positional) {
    std::vector<Argument> arguments = arguments_of(command);
    std::erase_if(arguments,
                  [positional](const Argument& argument) { return argument.is_positional() != positional; });
    return arguments;
}

using Rows = std::vector<std::pair<std::string, std::string>>;

// A heading and two columns below it; the left one only as wide as its texts need.
std::string section(const std::string& heading, const Rows& rows) {
    constexpr std::size_t widestLeft = 26;
    std::size_t left = 0;
    for (const auto& [name, text] : rows) {
        const std::size_t width = display_width(name);
        left = width <= widestLeft ? std::max(left, width) : left;
    }
    const std::size_t indent = 2 + left + 2;
    std::string lines = rows.empty() ? "" : "\n" + heading + ":\n";
    for (const auto& [name, text] : rows) {
        std::string line = padded("  " + name, indent);
        if (display_width(line) > indent) {
            line += "\n" + std::string(indent, ' ');
        }
        line += wrapped(text, indent, indent);
        lines += line + '\n';
    }
    return lines;
}

Rows rows_of(const std::vector<Argument>& arguments) {
    Rows rows;
    for (const Argument& argument : arguments) {
        rows.emplace_back(argument.heading(), argument.description);
    }
    return rows;
}

}  // namespace

std::string wrapped(std::string_view text, std::size_t indent, std::size_t begun) {
    std::string lines;
    std::size_t column = begun;
    bool lineStarts = true;
    for (const std::string& paragraph : split(text, '\n')) {
        if (!lines.empty()) {
            lines += '\n' + std::string(indent, ' ');
            column = indent;
            lineStarts = true;
        }
        for (const std::string& word : split(paragraph, ' ')) {
            const std::size_t width = display_width(word);
            if (!lineStarts && column + 1 + width > lineWidth) {
                lines += '\n' + std::string(indent, ' ');
                column = indent;
                lineStarts = true;
            }
            lines += (lineStarts ? "" : " ") + word;
            column += width + (lineStarts ? 0 : 1);
            lineStarts = false;
        }
    }
    return lines;
}

bool Argument::takes(std::string_view kind) const {
    return choices.empty() && (value == kind || value.starts_with(std::string(kind) + '.'));
}

std::string Argument::heading() const {
    if (is_positional()) {
        return value;
    }
    return joined(names, ", ") + (value.empty() ? "" : " " + value);
}

std::vector<Argument> arguments_of(const CLI::App& command) {
    std::vector<Argument> arguments;
    append_arguments(command, arguments);
    if (command.get_help_ptr() != nullptr) {
        arguments.push_back(argument_of(*command.get_help_ptr()));
        arguments.back().isHelp = true;
    }
    return arguments;
}

std::vector<Argument> options_of(const CLI::App& command) {
    return chosen(command, false);
}

std::vector<Argument> positionals_of(const CLI::App& command) {
    return chosen(command, true);
}

std::vector<const CLI::App*> commands_of(const CLI::App& program) {
    return program.get_subcommands([](const CLI::App* command) {
        return !command->get_name().empty() && !command->get_group().empty();
    });
}

std::vector<std::string> usage_of(const CLI::App& command) {
    std::vector<std::string> words;
    if (!commands_of(command).empty()) {
        words.emplace_back("COMMAND");
    }
    bool hasOthers = false;
    for (const Argument& option : options_of(command)) {
        if (option.required) {
            words.push_back(option.names.back() + " " + option.value);
        } else {
            hasOthers = hasOthers || !option.isHelp;
        }
    }
    if (hasOthers) {
        words.emplace_back("[OPTIONS]");
    }
    for (const Argument& argument : positionals_of(command)) {
        const std::string text = argument.value + (argument.repeats ? "..." : "");
        words.push_back(argument.required ? text : "[" + text + "]");
    }
    return words;
}

std::string summary_of(const CLI::App& command) {
    return command.get_description().substr(0, command.get_description().find('\n'));
}

std::string details_of(const CLI::App& command) {
    std::string text = command.get_description();
    text.erase(0, std::min(summary_of(command).size() + 1, text.size()));
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

std::string HelpFormatter::make_help(const CLI::App* command, std::string name,
                                     CLI::AppFormatMode /*mode*/) const {
    std::string text = wrapped(summary_of(*command), 0, 0) + '\n';
    if (const std::string details = details_of(*command); !details.empty()) {
        text += '\n' + wrapped(details, 0, 0) + '\n';
    }
    text += "\nUsage: " + wrapped(name + " " + joined(usage_of(*command), " "), 4, 7) + '\n';
    Rows commands;
    for (const CLI::App* each : commands_of(*command)) {
        commands.emplace_back(each->get_name(), summary_of(*each));
    }
    text += section("Commands", commands);
    text += section("Arguments", rows_of(positionals_of(*command)));
    std::vector<std::pair<std::string, std::vector<Argument>>> groups;
    for (const Argument& option : options_of(*command)) {
        const auto group = std::find_if(groups.begin(), groups.end(),
                                        [&option](const auto& each) { return each.first == option.group; });
        if (group != groups.end()) {
            group->second.push_back(option);
        } else {
            groups.push_back({option.group, {option}});
        }
    }
    for (const auto& [heading, options] : groups) {
        text += section(heading.empty() ? "Options" : heading, rows_of(options));
    }
    if (const std::string footer = command->get_footer(); !footer.empty()) {
        text += '\n' + footer + '\n';
    }
    if (!commands.empty()) {
        Rows statuses;
        for (const auto& [status, meaning] : exitStatuses) {
            statuses.emplace_back(std::to_string(status), meaning);
        }
        text += section("Exit status", statuses) + '\n' + name + " COMMAND --help tells more of a command.\n";
    }
    return text;
}

}  // namespace cli
