// The commands of the program. Each function makes one of them, with what it takes, its help and an example.
// Completions go by the names of values: DIR the data directory, FILE a file, CODE a system of the data directory.
#pragma once

#include "help/description.h"

namespace cli {

Command list_command();
Command show_command();
Command transform_command();
Command check_command();
Command scramble_command();
Command unscramble_command();
Command import_command();
Command message_command();

Command manual_command(const Command& program);  // which lives longer
Command completion_command();

}  // namespace cli
