// message: the library's message for a status.
#include <memory>
#include <string>

#include "bulk/texts.h"
#include "commands/commands.h"
#include "system/output.h"

namespace cli {
namespace {

int show_message(int status, const std::string& fileName) {
    const std::string text = lagestatus::message_text(status, fileName);
    if (text.empty()) {
        complain("there is no message for status " + std::to_string(status));
        return someFailed;
    }
    put(text + '\n');
    return allGood;
}

}  // namespace

Command message_command() {
    struct Options {
        int status = 0;
        std::string fileName;
    };
    const auto options = std::make_shared<Options>();
    Command command{"message", "Print the message for a status"};
    command.add("STATUS", &options->status, "Status", {.required = true});
    command.add("NAME", &options->fileName, "File that the failure concerns");
    command.examples = "lagestatus message 12 my-system.tra";
    command.run = [options] { return show_message(options->status, options->fileName); };
    return command;
}

}  // namespace cli
