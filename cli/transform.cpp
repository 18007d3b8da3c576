#include "commands.h"

namespace cli {

void add_transform(CLI::App& program, int& exitStatus) {
    program.add_subcommand("transform", "")->callback([&exitStatus] { exitStatus = nothingDone; });
}

}  // namespace cli
