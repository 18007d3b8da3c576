// The command lagestatus: from the words of the command line to a command.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "commands/commands.h"
#include "system/output.h"
#include "system/platform.h"

namespace cli {
namespace {

// Puts in place what a choice stands for. Returned: what is wrong with it, as the parser wants it.
std::string take_choice(const Rules& rules, std::string& value) {
    const std::vector<std::string>& meanings = rules.meanings.empty() ? rules.choices : rules.meanings;
    for (std::size_t i = 0; i < meanings.size(); ++i) {
        if (value == rules.choices[i] || value == meanings[i]) {
            value = meanings[i];
            return "";
        }
    }
    return value + " not in {" + joined(rules.choices, ",") + "}";
}

void hand_over(const Argument& argument, CLI::App& parser) {
    const std::string names = argument.names.empty() ? argument.value : joined(argument.names, ",");
    const auto add = [&parser, &names](auto* target) {
        if constexpr (std::is_same_v<decltype(target), bool*>) {
            return parser.add_flag(names, *target);
        } else {
            return parser.add_option(names, *target);
        }
    };
    CLI::Option& option = *std::visit(add, argument.target);
    const Rules& rules = argument.rules;
    option.required(rules.required);
    if (!argument.value.empty()) {
        option.type_name(argument.value);
    }
    if (!argument.names.empty() && option.get_expected_max() > 1) {
        option.delimiter(',')->allow_extra_args(false);
    }
    if (!rules.choices.empty()) {
        option.transform(
            CLI::Validator([rules](std::string& value) { return take_choice(rules, value); }, ""));
    }
    if (rules.largest != 0) {
        option.check(CLI::Range(rules.smallest, rules.largest).description(""));
    }
}

int run(std::vector<std::string> arguments) {
    Command program{
        "lagestatus",
        "Carries points between the coordinate systems (Lagestatus) of the German state surveys."};
    program.add("--version", Target(), "Print the version");
    program.examples =
        "lagestatus list -d data\n"
        "lagestatus transform --from 103 --to 203 -d data points.txt";
    program.commands = {list_command(),          show_command(),       transform_command(), check_command(),
                        scramble_command(),      unscramble_command(), import_command(),    message_command(),
                        manual_command(program), completion_command()};
    const std::string first = arguments.empty() ? "" : arguments.front();
    if (first == "complete") {  // for the shells' scripts; told nowhere
        complete(program, {arguments.begin() + 1, arguments.end()});
        return allGood;
    }
    if (!first.empty() && !first.starts_with('-') && program.find(first) == nullptr) {
        complain(first + ": there is no such command; lagestatus --help lists them");
        return nothingDone;
    }
    CLI::App parser;
    parser.set_version_flag("--version", "lagestatus " LAGESTATUS_VERSION);
    parser.allow_windows_style_options(false);  // a path may begin with a slash
    parser.require_subcommand(1);
    parser.set_help_flag("-h,--help");
    for (const Command& command : program.commands) {
        CLI::App& commandParser = *parser.add_subcommand(command.name);
        for (const Argument& argument : command.arguments) {
            hand_over(argument, commandParser);
        }
    }
    const auto called = [&program, &parser] {
        const std::vector<CLI::App*> commands = parser.get_subcommands();
        return commands.empty() ? &program : program.find(commands.front()->get_name());
    };
    try {
        std::reverse(arguments.begin(), arguments.end());  // as the parser takes them
        parser.parse(std::move(arguments));
    } catch (const CLI::CallForHelp&) {
        put(help_text(program, *called()));
        return allGood;
    } catch (const CLI::ParseError& error) {
        return parser.exit(error) == 0 ? allGood : nothingDone;
    }
    return called()->run();
}

}  // namespace
}  // namespace cli

int main(int argc, char** argv) {
    try {
        const cli::StandardStreams streams;
        const int status = cli::run(cli::arguments(argc, argv));
        if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
            std::perror("lagestatus: standard output");
            return cli::nothingDone;
        }
        return status;
    } catch (const std::exception& error) {
        cli::complain(error.what());
        return cli::nothingDone;
    }
}
