// The view of the commands, and the help that is made of it.
#include "help/description.h"

#include <algorithm>
#include <sstream>
#include <utility>

#include "system/output.h"

namespace cli {
namespace {

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
        lines += line + wrapped(text, indent, indent) + '\n';
    }
    return lines;
}

Rows rows_of(const std::vector<Argument>& arguments, const std::string& group) {
    Rows rows;
    for (const Argument& argument : arguments) {
        if (argument.group == group) {
            rows.emplace_back(argument.heading, argument.description);
        }
    }
    return rows;
}

// What an argument's rules and its default add to the description.
std::string remarks(const Argument& argument) {
    const Rules& rules = argument.rules;
    std::vector<std::string> all;
    if (!rules.choices.empty() && argument.description.find(rules.choices.front()) == std::string::npos) {
        all.push_back(joined(rules.choices, ", "));
    }
    if (rules.largest != 0) {
        all.push_back(std::to_string(rules.smallest) + " to " + std::to_string(rules.largest));
    }
    const auto* const text = std::get_if<std::string*>(&argument.target);
    if (text != nullptr && !(*text)->empty()) {
        all.push_back("default: " + **text);
    }
    return joined(all, "; ");
}

}  // namespace

std::string joined(const std::vector<std::string>& parts, std::string_view separator) {
    std::string text;
    for (const std::string& part : parts) {
        text.append(&part == &parts.front() ? "" : separator).append(part);
    }
    return text;
}

std::string wrapped(const std::string& text, std::size_t indent, std::size_t begun) {
    constexpr std::size_t lineWidth = 80;
    std::istringstream words(text);
    std::string lines;
    std::size_t column = begun;
    for (std::string word; words >> word; lines += word) {
        const std::size_t width = display_width(word);
        if (!lines.empty() && column + 1 + width > lineWidth) {
            lines += '\n' + std::string(indent, ' ');
            column = indent;
        } else if (!lines.empty()) {
            lines += ' ';
            ++column;
        }
        column += width;
    }
    return lines;
}

bool Argument::repeats() const {
    return names.empty() && std::holds_alternative<std::vector<std::string>*>(target);
}

void Command::add(const std::string& heading, Target target, const std::string& description, Rules rules) {
    Argument argument = {heading, description, group, {}, {}, target, std::move(rules)};
    std::istringstream words(heading);
    for (std::string word; words >> word;) {
        if (word.starts_with('-')) {
            argument.names.push_back(word.substr(0, word.find(',')));
        } else {
            argument.value = word;
        }
    }
    if (const std::string added = remarks(argument); !added.empty()) {
        std::string& text = argument.description;
        if (text.ends_with(')')) {
            text.replace(text.size() - 1, 1, "; " + added + ")");
        } else {
            text += " (" + added + ")";
        }
    }
    arguments.push_back(std::move(argument));
}

void Command::add_directory(std::string* directory) {
    add("-d, --dir DIR", directory, "Data directory");
}

const Command* Command::find(std::string_view command) const {
    const auto found = std::find_if(commands.begin(), commands.end(),
                                    [command](const Command& each) { return each.name == command; });
    return found != commands.end() ? &*found : nullptr;
}

std::vector<Argument> Command::options() const {
    std::vector<Argument> options = arguments;
    std::erase_if(options, [](const Argument& argument) { return argument.names.empty(); });
    options.push_back({"-h, --help", "Print this help", "", {"-h", "--help"}, "", {}, {}});
    return options;
}

std::vector<Argument> Command::positionals() const {
    std::vector<Argument> positionals = arguments;
    std::erase_if(positionals, [](const Argument& argument) { return !argument.names.empty(); });
    return positionals;
}

std::string Command::usage() const {
    std::string required;
    std::string positional;
    bool hasOthers = false;
    for (const Argument& argument : arguments) {
        const std::string text = argument.value + (argument.repeats() ? "..." : "");
        if (argument.names.empty()) {
            positional += argument.rules.required ? " " + text : " [" + text + "]";
        } else if (argument.rules.required) {
            required += " " + argument.names.back() + " " + text;
        } else {
            hasOthers = true;
        }
    }
    return (commands.empty() ? "" : " COMMAND") + required + (hasOthers ? " [OPTIONS]" : "") + positional;
}

std::string examples_heading(const Command& command) {
    return command.examples.find('\n') == std::string::npos ? "Example:" : "Examples:";
}

std::string help_text(const Command& program, const Command& command) {
    const std::string name = program.name + (&command == &program ? "" : " " + command.name);
    std::string text = wrapped(command.summary, 0, 0) + '\n';
    if (!command.details.empty()) {
        text += '\n' + wrapped(command.details, 0, 0) + '\n';
    }
    text += "\nUsage: " + wrapped(name + command.usage(), 4, 7) + '\n';
    Rows commands;
    for (const Command& each : command.commands) {
        commands.emplace_back(each.name, each.summary);
    }
    text += section("Commands", commands) + section("Arguments", rows_of(command.positionals(), ""));
    const std::vector<Argument> options = command.options();
    text += section("Options", rows_of(options, ""));
    std::string group;
    for (const Argument& option : options) {
        if (!option.group.empty() && option.group != group) {
            group = option.group;
            text += section(group, rows_of(options, group));
        }
    }
    if (!command.examples.empty()) {
        text += '\n' + examples_heading(command) + '\n';
        std::istringstream examples(command.examples);
        for (std::string line; std::getline(examples, line);) {
            text += "  " + line + '\n';
        }
    }
    if (!commands.empty()) {
        Rows statuses;
        for (const std::string_view meaning : exitMeanings) {
            statuses.emplace_back(std::to_string(statuses.size()), meaning);
        }
        text += section("Exit status", statuses) + '\n' + name + " COMMAND --help tells more of a command.\n";
    }
    return text;
}

}  // namespace cli
