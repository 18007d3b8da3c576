// DataFile: one data file, opened by directory and name, read by blocks, closed by itself.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "datafiles/platform_file.h"

namespace lagestatus {

// A byte source over one regular file, or over bytes that the caller holds. Every pair of carriage return and line feed
// is delivered as one line feed, on every platform; a lone carriage return and byte 26 are ordinary bytes. No heap
// memory, no locale.
class DataFile {
  public:
    static constexpr std::size_t maxDirectory = 299;  // characters

    DataFile() noexcept = default;
    // Of bytes in the caller's memory, which outlive it; open() is then not to be called. thenFails: they are what
    // could be read of a file, up to an error.
    explicit DataFile(std::string_view heldBytes, bool thenFails = false) noexcept
        : held(heldBytes), failsBehind(thenFails) {}
    ~DataFile();
    DataFile(const DataFile&) = delete;
    DataFile& operator=(const DataFile&) = delete;

    // Opens name in directory: name alone when directory is exactly ".", else directory, backslash, name (so the
    // empty directory gives "\name"), as open_data_file does. Returns false when nothing could be opened, what was
    // found is no regular file, or directory is too long; never blocks.
    // To be called once.
    [[nodiscard]] bool open(std::string_view directory, std::string_view name,
                            PathText encoding = PathText::western) noexcept;

    // The bytes that lie ready, at least one; reads the next block when none is left. Empty at the end of the
    // file and after a read error. Valid until the next call.
    [[nodiscard]] std::string_view available() noexcept {
        return position < end || refill() ? std::string_view(buffer.data() + position, end - position)
                                          : std::string_view();
    }

    // Takes count bytes of those that available() gave.
    void consume(std::size_t count) noexcept { position += count; }

    // True after a read error; the end of the file is none.
    [[nodiscard]] bool failed() const noexcept { return readFailed; }

    // As read_data_file: the next bytes as they are stored, for whoever holds all of them and asks for nothing else.
    [[nodiscard]] std::ptrdiff_t read_stored(char* bytes, std::size_t count) noexcept;

  private:
    // Fills the buffer with the next block, line ends folded; false at the end of the file or on an error.
    bool refill() noexcept;

    static constexpr std::size_t blockSize = 16384;

    FileHandle handle = noFile;
    std::string_view held;     // what is left of bytes in memory, where there is no file,
    bool failsBehind = false;  // and whether reading fails behind them
    bool readFailed = false;
    bool carriageReturnHeld = false;  // last byte of the previous block, its fate still open
    std::size_t position = 0;
    std::size_t end = 0;
    std::array<char, blockSize + 1> buffer;  // one byte more for a carriage return held back
};

}  // namespace lagestatus
