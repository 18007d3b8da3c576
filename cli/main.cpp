// The command lagestatus: a client of the exported interface.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "commands/commands.h"
#include "help/description.h"
#include "system/output.h"
#include "system/platform.h"

namespace cli {

void add_directory_option(CLI::App& command, std::string& directory) {
    command.add_option("-d,--dir", directory, "Data directory")->capture_default_str()->type_name("DIR");
}

void add_examples(CLI::App& command, const std::string& examples) {
    std::istringstream lines(examples);
    std::string text;
    for (std::string line; std::getline(lines, line);) {
        text += "\n  " + line;
    }
    command.footer((examples.find('\n') == std::string::npos ? "Example:" : "Examples:") + text);
}

namespace {

int run(std::vector<std::string> arguments) {
    CLI::App program(
        "Carries points between the coordinate systems (Lagestatus) of the German state surveys.",
        "lagestatus");
    program.set_version_flag("--version", "lagestatus " LAGESTATUS_VERSION, "Print the version");
    program.allow_windows_style_options(false);  // a path may begin with a slash
    program.require_subcommand(1);
    program.set_help_flag("-h,--help", "Print this help");
    program.formatter(std::make_shared<HelpFormatter>());
    int exitStatus = nothingDone;
    for (const auto add : {add_list, add_show, add_transform, add_check, add_scramble, add_unscramble,
                           add_import, add_message, add_self_description}) {
        add(program, exitStatus);
    }
    // After the commands, which would inherit them.
    add_examples(program,
                 "lagestatus list -d data\n"
                 "lagestatus transform --from 103 --to 203 -d data points.txt");
    const auto named = [&arguments](const CLI::App* command) {
        return command->get_name() == arguments.front();
    };
    if (!arguments.empty() && !arguments.front().starts_with('-') && program.get_subcommands(named).empty()) {
        complain(arguments.front() + ": there is no such command; lagestatus --help lists them");
        return nothingDone;
    }
    try {
        std::reverse(arguments.begin(), arguments.end());  // as the parser takes them
        program.parse(std::move(arguments));
    } catch (const CLI::ParseError& error) {
        return program.exit(error) == 0 ? allGood : nothingDone;
    }
    return exitStatus;
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
