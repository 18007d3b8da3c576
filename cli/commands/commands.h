// The commands of the program. Each function adds one of them, with its options, its help and an example; when the
// command is the one called, its exit status is stored. Completions go by the names of values: DIR a directory, FILE a
// file, CODE a system of the data directory, which is the option --dir.
#pragma once

#include <CLI/CLI.hpp>

namespace cli {

inline constexpr int allGood = 0;
inline constexpr int someFailed = 1;
inline constexpr int nothingDone = 2;

void add_list(CLI::App& program, int& exitStatus);
void add_show(CLI::App& program, int& exitStatus);
void add_transform(CLI::App& program, int& exitStatus);
void add_check(CLI::App& program, int& exitStatus);
void add_scramble(CLI::App& program, int& exitStatus);
void add_unscramble(CLI::App& program, int& exitStatus);
void add_import(CLI::App& program, int& exitStatus);
void add_message(CLI::App& program, int& exitStatus);

// manual and completion: the program describes itself.
void add_self_description(CLI::App& program, int& exitStatus);

// Adds the option -d, --dir with its default, the current directory.
void add_directory_option(CLI::App& command, std::string& directory);

// Adds a paragraph of examples behind a command's options, one a line.
void add_examples(CLI::App& command, const std::string& examples);

}  // namespace cli
