#include "commands.h"

namespace cli {

void add_self_description(CLI::App& program, int& exitStatus) {
    program.add_subcommand("self_description", "")->callback([&exitStatus] { exitStatus = nothingDone; });
}

}  // namespace cli
