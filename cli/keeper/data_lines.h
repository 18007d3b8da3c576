// The text of a data file, line by line as the library takes it, and the fields of its lines.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "keeper/library.h"

namespace cli {

class DataLines {
  public:
    // The bytes of a whole file.
    explicit DataLines(std::string bytes);

    // Reads the key at the head of a scrambled file and the character behind it. False when one of them is missing.
    bool read_key();
    [[nodiscard]] int key() const { return scramblingKey; }

    // Goes on to the next data line; false at the end of the file.
    bool next();

    // The line from its first character that is no blank, restored where the file is scrambled, up to a zero byte.
    [[nodiscard]] std::string_view text() const { return current; }

    // The number of the line in the file, from 1.
    [[nodiscard]] std::size_t number() const { return currentNumber; }

    // The numbers of the lines so far that were too long to be read at once.
    [[nodiscard]] const std::vector<std::size_t>& long_lines() const { return tooLong; }

  private:
    [[nodiscard]] char restored(char stored) const;  // as a line's first character
    bool skip_blanks();
    std::string_view take_rest_of_line();

    std::string bytes;
    std::size_t at = 0;
    int scramblingKey = 0;
    std::size_t lineNumber = 1;
    std::size_t currentNumber = 0;
    std::string_view current;
    std::string restoredLine;
    std::vector<std::size_t> tooLong;
};

// Takes one field after another from a line, each with the blanks before it. Where one is missing, false is returned
// and the rest of the line stays as it is.
class Fields {
  public:
    explicit Fields(std::string_view line) : left(line) {}

    bool integer(int& value);     // beyond 32 bits the nearest
    bool number(double& value);   // decimal and finite
    bool literal(char expected);  // without blanks before it

    [[nodiscard]] std::string_view rest() const { return left; }

  private:
    std::string_view left;
};

[[nodiscard]] bool is_blank(char character);

// The text between the first two double quotes of a line, if there are two.
std::optional<std::string_view> quoted(std::string_view line);

// Text of a data file (ISO 8859-1) for messages: in UTF-8, in quotes, not longer than fits a line.
std::string excerpt(std::string_view text);

// The path of a file of a data directory, found as the library finds it: a backslash separates directories, and off
// Windows the case of letters may differ. The name is bytes as Entry holds them. Nothing if there is no regular file.
std::optional<std::string> find_data_file(const std::string& directory, std::u16string_view name);

}  // namespace cli
