// Numbers as texts: read strictly, written as data files have them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

// The finite number that the whole text is: decimal, with a point; blanks, inf, nan and leftover characters are none.
std::optional<double> number_of(std::string_view text);

// The whole number of 32 bits that the whole text is.
std::optional<int> integer_of(std::string_view text);

// The numbers that a text holds, separated by commas; nothing if one of them is none.
std::optional<std::vector<double>> numbers_of(std::string_view text);

// The shortest text that reads back to the same bits, with a decimal point or an exponent.
std::string data_text(double value);

}  // namespace cli
