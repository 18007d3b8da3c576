// message: the library's message for a status.
#include <memory>
#include <string>

#include "commands/commands.h"
#include "keeper/data_directory.h"
#include "system/output.h"

namespace cli {
namespace {

int show_message(int status, const std::string& fileName) {
    const std::string text = message(status, fileName);
    if (text.empty()) {
        complain("there is no message for status " + std::to_string(status));
        return someFailed;
    }
    put(text + '\n');
    return allGood;
}

}  // namespace

void add_message(CLI::App& program, int& exitStatus) {
    struct Options {
        int status = 0;
        std::string fileName;
    };
    const auto options = std::make_shared<Options>();
    CLI::App& command = *program.add_subcommand("message", "Print the message for a status");
    command.add_option("STATUS", options->status, "Status")->required();
    command.add_option("NAME", options->fileName, "File that the failure concerns");
    add_examples(command, "lagestatus message 12 my-system.tra");
    command.callback(
        [options, &exitStatus] { exitStatus = show_message(options->status, options->fileName); });
}

}  // namespace cli
