// The commands of the program. Each function makes one of them, with what it takes, its help and an example.
// Completions go by the names of values: DIR the data directory, FILE a file, CODE a system of the data directory.
#pragma once

#include <array>
#include <string_view>

#include "help/description.h"

namespace cli {

inline constexpr int allGood = 0;
inline constexpr int someFailed = 1;
inline constexpr int nothingDone = 2;
inline constexpr std::array<std::string_view, 3> exitMeanings = {
    "all good", "some rows failed, or defects were found",
    "nothing could be done: a wrong command line, or files that cannot be used"};

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
