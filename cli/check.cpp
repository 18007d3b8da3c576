#include "commands.h"

namespace cli {

void add_check(CLI::App& program, int& exitStatus) {
    program.add_subcommand("check", "")->callback([&exitStatus] { exitStatus = nothingDone; });
}

}  // namespace cli
