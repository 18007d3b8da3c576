#include "commands.h"

namespace cli {

void add_scramble(CLI::App& program, int& exitStatus) {
    program.add_subcommand("scramble", "")->callback([&exitStatus] { exitStatus = nothingDone; });
}

void add_unscramble(CLI::App& program, int& exitStatus) {
    program.add_subcommand("unscramble", "")->callback([&exitStatus] { exitStatus = nothingDone; });
}

}  // namespace cli
