// The view of the commands, and the help that is made of it.
#include "description.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <utility>

#include "commands.h"
#include "output.h"

namespace cli {

const std::array<ExitStatus, 3> exitStatuses = {
    {{allGood, "all good"},
     {someFailed, "some rows failed, or defects were found"},
     {nothingDone, "nothing could be done: a wrong command line, or files that cannot be used"}}};

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
        name.choices = split(set, ',');
        for (std::string& choice : name.choices) {
            choice.erase(std::min(choice.find("->"), choice.size()));  // a choice that stands for a value
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
    if (name.type == "INT" || name.type == "UINT" || name.type == "FLOAT") {
        return "NUMBER";
    }
    return name.type == "TEXT" && !name.choices.empty() ? joined(name.choices, "|") : name.type;
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
    const std::string choices = joined(type.choices, "|");
    if (!choices.empty() && argument.value != choices) {
        remarks.push_back(joined(type.choices, ", "));
    }
    if (!type.range.empty()) {
        remarks.push_back(type.range);
    }
    const std::string standard = option.get_default_str();
    if (!argument.value.empty() && !standard.empty() && standard != "[]") {
        remarks.push_back("default: " + standard);
    }
    argument.description =
        option.get_description() + (remarks.empty() ? "" : " (" + joined(remarks, "; ") + ")");
    return argument;
}

void append_arguments(const CLI::App& command, std::vector<Argument>& arguments) {
    for (const CLI::Option* option : command.get_options()) {
        if (option != command.get_help_ptr() && !option->get_group().empty()) {
            arguments.push_back(argument_of(*option));
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

std::string joined(const std::vector<std::string>& parts, std::string_view separator) {
    std::string text;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        text += (i == 0 ? "" : std::string(separator)) + parts[i];
    }
    return text;
}

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

std::string HelpFormatter::make_help(const CLI::App* command, std::string name,
                                     CLI::AppFormatMode /*mode*/) const {
    std::string text = wrapped(command->get_description(), 0, 0) + "\n\nUsage: ";
    text += wrapped(name + " " + joined(usage_of(*command), " "), 4, 7) + '\n';
    Rows commands;
    for (const CLI::App* each : commands_of(*command)) {
        commands.emplace_back(each->get_name(), each->get_description());
    }
    text += section("Commands", commands);
    text += section("Arguments", rows_of(positionals_of(*command)));
    text += section("Options", rows_of(options_of(*command)));
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
