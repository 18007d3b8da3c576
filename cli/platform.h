// What differs by the system that the program runs on: its texts are UTF-8 everywhere inside.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace cli {

// The arguments behind the program's name.
std::vector<std::string> arguments(int argc, char** argv);

// A file's path as the system's calls take it.
std::filesystem::path file_path(const std::string& utf8);

// A directory's name as the library takes it, one character a unit; nothing when it holds others than the library can
// name (on Windows those of code page 1252, elsewhere the bytes are the name).
std::optional<std::string> directory_bytes(const std::string& utf8);

// As long as it lives, standard input comes byte for byte and a console shows UTF-8.
class StandardStreams {
  public:
    StandardStreams();
    ~StandardStreams();  // NOLINT(performance-trivially-destructible): it has work to do on Windows
    StandardStreams(const StandardStreams&) = delete;
    StandardStreams& operator=(const StandardStreams&) = delete;

  private:
    unsigned before = 0;
};

}  // namespace cli
