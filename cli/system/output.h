// What the commands print.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

// Writes a text to standard output.
void put(std::string_view text);

// Writes "lagestatus: text" as a line to standard error.
void complain(std::string_view text);

// The number of columns that a UTF-8 text takes on a terminal, for the texts of data files (ISO 8859-1).
std::size_t display_width(std::string_view utf8);

// A text with blanks behind it, up to a width.
std::string padded(std::string text, std::size_t width);

// Prints rows of texts as a table with columns as wide as their widest text.
void print_table(const std::vector<std::vector<std::string>>& rows);

}  // namespace cli
