// Numbers and characters as texts: read strictly, written as people and data files have them.
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

// The shortest text that reads back to the same bits, with a decimal point or an exponent, for data files.
std::string data_text(double value);

// The same for people: lengths and degrees without an exponent, small angles with one.
std::string number_text(double value);

// A number with a fixed count of decimals; and without zeros at its end.
std::string fixed_text(double value, int decimals);
std::string trimmed_text(double value, int decimals);

// "3 lines", "1 line".
std::string plural(std::size_t count, const std::string& word);

// Text of a data file as messages quote it, not longer than fits a line.
std::string excerpt(std::string_view text);

// A text in ISO 8859-1; nothing if it has other characters.
std::optional<std::string> latin1(std::string_view utf8);

// ASCII letters in lower case.
std::string lower_case(std::string text);

}  // namespace cli
