// The lines of a data file: blanks and comments skipped, scrambling undone.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/status.h"
#include "datafiles/data_file.h"

namespace lagestatus {

// One line as read_line delivers it: starting at its first non-blank character, with its line feed if it had one.
struct Line {
    static constexpr std::size_t maxLength = 999;

    std::array<char, maxLength> bytes;
    std::size_t length = 0;

    // What the fields are read from: everything before the first zero byte.
    [[nodiscard]] std::string_view text() const noexcept {
        const std::string_view all(bytes.data(), length);
        return all.substr(0, all.find('\0'));
    }
};

enum class LineKind {
    comment,   // first character "#"; its text is consumed and not stored
    ordinary,  // any other line
    quoted,    // first character is the double quote
    end,       // end of the file, read error or negative key
};

// Reads the next line that is not blank.
//
// Given:    file  an open file, behind its key line if it has one
//           key   scrambling key; 0: plain lines; above 0: the stored character s at position j of a line stands
//                 for (s - key + 1 + j mod key) mod 256; position 0 is the line's first non-blank character, a
//                 stored line feed ends the line and is never de-scrambled; below 0: LineKind::end, nothing read
// Returned: the kind; line holds the text for the kinds ordinary and quoted, and nothing of use otherwise
//
// A line holds at most 999 characters, line feed included, a comment 999 behind its "#"; what is left over is a
// line of its own. Blanks are those of the "C" locale.
[[nodiscard]] LineKind read_line(DataFile& file, Line& line, int key) noexcept;

// Reads the next data line, comments skipped. Returns status::ok, or status::fileEnds when there is none.
[[nodiscard]] Status next_data_line(DataFile& file, Line& line, int key) noexcept;

// Passes over count data lines, comments not counted, and keeps nothing of them: beyond its first character a line is
// only searched for its end. Returns status::ok, or status::fileEnds when there are fewer.
[[nodiscard]] Status skip_data_lines(DataFile& file, int key, std::int64_t count) noexcept;

// Reads the head of a file that may be scrambled: its key, a decimal integer in plain text, blanks before it
// allowed, and the one character that must follow. Values beyond 32 bits become the nearest 32-bit value.
// Returns status::ok, or status::fileEnds when there is no integer or nothing behind it; key is then unchanged.
[[nodiscard]] Status read_key(DataFile& file, int& key) noexcept;

}  // namespace lagestatus
