// The lines of a data file: blanks and comments skipped, scrambling undone.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/status.h"
#include "datafiles/data_file.h"

namespace lagestatus {

enum class LineKind {
    comment,   // first character "#"; its text is consumed and not stored
    ordinary,  // any other line
    quoted,    // first character is the double quote
    end,       // end of the file, read error or negative key
};

// Reads one data file line by line.
//
// A line begins at its first character that is no blank (those of the "C" locale) and holds at most maxLength
// characters, its line feed included, a comment as many behind its "#"; what is left over is a line of its own.
// In a scrambled file the count of positions begins anew with each line, and a stored line feed ends it (LineShift).
class LineReader {
  public:
    static constexpr std::size_t maxLength = 999;

    LineReader() noexcept = default;
    // Of bytes in the caller's memory, which outlive it; as DataFile takes them.
    explicit LineReader(std::string_view heldBytes, bool thenFails = false) noexcept
        : file(heldBytes, thenFails) {}

    // As DataFile::open.
    [[nodiscard]] bool open(std::string_view directory, std::string_view name,
                            PathText encoding = PathText::western) noexcept {
        return file.open(directory, name, encoding);
    }

    // Reads the head of a file that may be scrambled: its key, a decimal integer in plain text, blanks before it
    // allowed, and the one character that must follow. Values beyond 32 bits become the nearest 32-bit value; 0 stands
    // for plain lines, behind a negative key nothing is read. A file whose key is not read has plain lines.
    // Returned: status::ok, or status::fileEnds when there is no integer or nothing behind it; the key is then 0.
    [[nodiscard]] Status read_key() noexcept;

    // Reads the next line that is not blank. text() holds it for the kinds ordinary and quoted, and nothing of use
    // otherwise.
    [[nodiscard]] LineKind read() noexcept;

    // Reads the next data line, comments skipped. Returned: status::ok, or status::fileEnds when there is none.
    [[nodiscard]] Status next() noexcept;

    // Passes over count data lines, comments not counted, and keeps nothing of them: beyond its first character a line
    // is only searched for its end. Returned: status::ok, or status::fileEnds when there are fewer.
    [[nodiscard]] Status skip(std::int64_t count) noexcept;

    // What the fields of the line are read from: everything before the first zero byte, with the line feed.
    [[nodiscard]] std::string_view text() const noexcept {
        const std::string_view all(line.data(), length);
        return all.substr(0, all.find('\0'));
    }

    // True after a read error; the end of the file is none.
    [[nodiscard]] bool failed() const noexcept { return file.failed(); }

    // For those who say what is wrong with a file: its key; where the line began, counted from 1 by the line feeds of
    // the file; and the last line, comments too, that was longer than maxLength, so that its rest counted as another
    // (0: none).
    [[nodiscard]] int key() const noexcept { return scramblingKey; }
    [[nodiscard]] std::int64_t number() const noexcept { return lineNumber; }
    [[nodiscard]] std::int64_t last_overlong() const noexcept { return overlongNumber; }

  private:
    template <typename Use>
    bool for_rest_of_line(Use use) noexcept;
    bool skip_blanks(char& first) noexcept;
    template <typename Use>
    LineKind take_line(Use use) noexcept;

    DataFile file;
    int scramblingKey = 0;
    std::int64_t lineFeeds = 0;  // taken from the file until now
    std::int64_t lineNumber = 0;
    std::int64_t overlongNumber = 0;
    std::size_t length = 0;
    std::array<char, maxLength> line;
};

}  // namespace lagestatus
