// Files as the commands read and write them: by large blocks, byte for byte. Failures are thrown as FileError.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace cli {

class FileError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Of a file that was opened and whose reading then failed.
class ReadError : public FileError {
  public:
    using FileError::FileError;
};

// An open file to read from; closed in the end, unless it is standard input.
class InputFile {
  public:
    InputFile() noexcept;  // standard input
    explicit InputFile(const std::string& path);
    InputFile(const InputFile&) = delete;
    InputFile(InputFile&& other) noexcept;
    InputFile& operator=(const InputFile&) = delete;
    InputFile& operator=(InputFile&&) = delete;
    ~InputFile();

    // As messages name it.
    [[nodiscard]] const std::string& name() const { return fileName; }

    // Its size, if it has one: pipes and terminals have none.
    [[nodiscard]] std::optional<std::uint64_t> size() const;

    // Reads what there is, at most size bytes, and waits if there is nothing yet. Returned: how many; 0 at the end.
    std::size_t read(char* bytes, std::size_t size);

  private:
    std::string fileName;
    int descriptor;
};

// A file to write. Under its own name it appears when it is complete: until then it is a temporary file beside that,
// which is removed when this object goes, or the program is interrupted, before complete() was called. What is there
// and is no regular file (a device, a pipe) is written directly.
class OutputFile {
  public:
    OutputFile() noexcept;  // standard output
    explicit OutputFile(const std::string& path);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    ~OutputFile();

    void write(std::string_view bytes);

    // To be called when all has been written.
    void complete();

  private:
    std::string fileName;
    std::string finalPath;
    std::string temporaryPath;  // empty where there is none
    int descriptor;
};

// A whole file. One with more bytes than limit is refused.
inline constexpr std::size_t wholeFileLimit = std::size_t{1} << 28;
std::string read_file(const std::string& path, std::size_t limit = wholeFileLimit);

// Writes a whole file; an existing one is replaced only if that is allowed.
enum class Existing { refuse, replace };
void write_file(const std::string& path, std::string_view bytes, Existing existing);

}  // namespace cli
