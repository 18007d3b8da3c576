// The command lagestatus: a client of the exported interface.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>
#include <utility>
#include <vector>

#include "commands.h"
#include "platform.h"

namespace {

int run(std::vector<std::string> arguments) {
    CLI::App app("Carries points between the coordinate systems (Lagestatus) of the German state surveys.",
                 "lagestatus");
    app.set_version_flag("--version", "lagestatus " LAGESTATUS_VERSION);
    app.allow_windows_style_options(false);  // a path may begin with a slash
    app.require_subcommand(1);
    app.footer(
        "Examples:\n"
        "  lagestatus list -d data/sample\n"
        "  lagestatus transform --from 101 --to 201 -d data/sample punkte.txt\n"
        "Exit status: 0 all good, 1 some rows failed, 2 nothing could be done.");

    cli::TransformOptions options;
    int code = 0;
    std::string fileName;
    std::string height = "e";
    const auto addDirectory = [&options](CLI::App* command) {
        command->add_option("-d,--dir", options.directory, "Data directory")->capture_default_str();
    };

    CLI::App* const list = app.add_subcommand("list", "List the systems of a data directory");
    addDirectory(list);

    CLI::App* const show = app.add_subcommand("show", "Show the description of one system");
    show->add_option("CODE", code, "Lagestatus of the system")->required();
    addDirectory(show);

    CLI::App* const transform = app.add_subcommand(
        "transform",
        "Transform points, one a line: two coordinates, an optional height, any text.\n"
        "Geographic coordinates are latitude and longitude in decimal degrees, plane ones northing and "
        "easting.\n"
        "Empty lines and lines that begin with # are passed through; missing heights are taken as 0.");
    transform->add_option("--from", options.from, "Lagestatus of the source")->required();
    transform->add_option("--to", options.to, "Lagestatus of the target")->required();
    addDirectory(transform);
    transform->add_option("--height", height, "Heights given: e ellipsoidal, n normal heights")
        ->check(CLI::IsMember({"e", "n"}, CLI::ignore_case))
        ->capture_default_str();
    transform->add_flag("--heights", options.normalWanted,
                        "One column more: the normal height (not for geocentric targets)");
    transform->add_option("FILE", options.files, "Files of points; standard input when there is none");

    CLI::App* const message = app.add_subcommand("message", "Print the message for a status");
    message->add_option("CODE", code, "Status code")->required();
    message->add_option("NAME", fileName, "File that the failure concerns");

    try {
        std::reverse(arguments.begin(), arguments.end());  // as the parser takes them
        app.parse(std::move(arguments));
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? cli::allGood : cli::nothingDone;
    }
    options.normalGiven = height == "n" || height == "N";
    if (list->parsed()) {
        return cli::list_systems(options.directory);
    }
    if (show->parsed()) {
        return cli::show_system(options.directory, code);
    }
    if (transform->parsed()) {
        return cli::transform_points(options);
    }
    return cli::show_message(code, fileName);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const cli::StandardStreams streams;
        const int status = run(cli::arguments(argc, argv));
        if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
            std::perror("lagestatus: standard output");
            return cli::nothingDone;
        }
        return status;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "lagestatus: %s\n", error.what());
        return cli::nothingDone;
    }
}
