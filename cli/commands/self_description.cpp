// manual and completion: the program describes itself.
#include <memory>
#include <string>

#include "commands/commands.h"
#include "system/output.h"

namespace cli {

Command manual_command(const Command& program) {
    Command command{"manual", "Print the manual page (roff)"};
    command.examples = "lagestatus manual | man -l -";
    command.run = [&program] {
        put(manual_page(program));
        return allGood;
    };
    return command;
}

Command completion_command() {
    const auto shell = std::make_shared<std::string>();
    Command command{"completion", "Print a completion script for a shell"};
    command.add("SHELL", shell.get(), "The shell", {.required = true, .choices = {"bash", "zsh", "fish"}});
    command.examples =
        "source <(lagestatus completion bash)\n"
        "lagestatus completion fish | source";
    command.run = [shell] {
        put(completion_script(*shell));
        return allGood;
    };
    return command;
}

}  // namespace cli
