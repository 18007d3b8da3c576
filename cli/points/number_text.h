// Coordinates as numbers in rows of text: exactly what the standard library reads and writes, in a fraction of its time.
#pragma once

#include <cstddef>
#include <string_view>

namespace cli {

// Reads a text that is a number as a whole, as number_of does. decimalMark: a point or a comma; the other one is no part
// of a number. Returned: whether it is one, finite; else value is unchanged.
bool read_number(std::string_view text, char decimalMark, double& value);

// Room for any number that is written, with what the writer may overwrite behind it.
inline constexpr std::size_t longestNumber = 384;  // the largest double has 309 digits before the point
inline constexpr int mostDecimals = 20;

// Writes a number with decimals from 0 to mostDecimals and the given decimal mark, correctly rounded, as std::to_chars
// would; but zeros have no minus sign. to: room for longestNumber bytes. Returned: how many of them are the number.
std::size_t write_number(char* to, double value, int decimals, char decimalMark);

}  // namespace cli
