// What differs by the system that the program runs on: its texts are UTF-8 everywhere inside.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace cli {

// The arguments behind the program's name.
std::vector<std::string> arguments(int argc, char** argv);

// A file's path as the system's calls take it.
std::filesystem::path file_path(const std::string& utf8);

// The reverse.
std::string path_text(const std::filesystem::path& path);

// Files by their descriptors: as the POSIX calls of these names, never translating line ends, tried again when a signal
// interrupts them. Failures are negative, with the reason in errno.
inline constexpr int standardInput = 0;
inline constexpr int standardOutput = 1;
inline constexpr int standardError = 2;
int open_to_read(const std::string& path);
int open_to_write(const std::string& path, bool mustBeNew);
std::ptrdiff_t read_file_bytes(int descriptor, char* bytes, std::size_t size);
std::ptrdiff_t write_file_bytes(int descriptor, const char* bytes, std::size_t size);
int close_file(int descriptor);
std::optional<std::uint64_t> size_of_file(int descriptor);  // of a regular file
void keep_line_ends(int descriptor);  // what is written from here on has none translated
bool is_terminal(int descriptor);
int process_number();

// The file that goes when the user or the system ends the program early; the empty text for none.
void remove_when_interrupted(const std::string& path);

// As long as it lives, standard input comes byte for byte and a console shows UTF-8.
class StandardStreams {
  public:
    StandardStreams();
    ~StandardStreams();  // NOLINT(performance-trivially-destructible): it has work to do on Windows
    StandardStreams(const StandardStreams&) = delete;
    StandardStreams& operator=(const StandardStreams&) = delete;

  private:
    [[maybe_unused]] unsigned before = 0;  // the console's code page
};

}  // namespace cli
