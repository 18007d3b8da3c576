// manual and completion: the program describes itself.
#include <memory>
#include <string>

#include "commands/commands.h"
#include "help/description.h"
#include "system/output.h"

namespace cli {

void add_self_description(CLI::App& program, int& exitStatus) {
    CLI::App& manual = *program.add_subcommand("manual", "Print the manual page (roff)");
    add_examples(manual, "lagestatus manual | man -l -");
    manual.callback([&program, &exitStatus] {
        put(manual_page(program, LAGESTATUS_VERSION));
        exitStatus = allGood;
    });

    const auto shell = std::make_shared<std::string>();
    CLI::App& completion = *program.add_subcommand("completion", "Print a completion script for a shell");
    completion.add_option("SHELL", *shell, "The shell")
        ->required()
        ->check(CLI::IsMember({"bash", "zsh", "fish"}));
    add_examples(completion,
                 "source <(lagestatus completion bash)\n"
                 "lagestatus completion fish | source");
    completion.callback([&program, &exitStatus, shell] {
        put(completion_script(program, *shell));
        exitStatus = allGood;
    });
}

}  // namespace cli
