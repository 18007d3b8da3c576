// The fields of a line: numbers, words and quoted texts, independent of any locale.
#pragma once

#include <cstddef>
#include <string_view>

namespace lagestatus {

// Space, tab, line feed, vertical tab, form feed, carriage return.
[[nodiscard]] constexpr bool is_blank(char character) noexcept {
    return character == ' ' || (character >= '\t' && character <= '\r');
}

[[nodiscard]] constexpr bool is_digit(char character) noexcept {
    return character >= '0' && character <= '9';
}

[[nodiscard]] constexpr bool is_hex_digit(char character) noexcept {
    return is_digit(character) || (character >= 'a' && character <= 'f') ||
           (character >= 'A' && character <= 'F');
}

// Takes one number after another from a line. Each takes the blanks before it and its own longest valid form; what
// follows, with or without a blank between, is left to the next one: "17-5" is 17 and then -5. When there is no
// number, false is returned, the value is unchanged and the scanner's place is undefined.
class FieldScanner {
  public:
    explicit FieldScanner(std::string_view line) noexcept : rest(line) {}

    // A decimal integer: one optional sign, digits. Beyond 32 bits the nearest 32-bit value is taken.
    [[nodiscard]] bool integer(int& value) noexcept;

    // A decimal number: one optional sign, digits with or without a point, an optional exponent. "inf", "nan"
    // and hexadecimal forms are none, neither is a number too large for a double; one too small is zero with
    // its sign.
    [[nodiscard]] bool number(double& value) noexcept;

    // One character, which must be the very next: no blanks before it are taken.
    [[nodiscard]] bool literal(char expected) noexcept;

    // What is left of the line.
    [[nodiscard]] std::string_view remaining() const noexcept { return rest; }

  private:
    bool sign(bool& negative) noexcept;

    std::string_view rest;
};

// The text between the first two double quotes of a line, blanks and all; it points into line.
// Empty when there are no two quotes, nothing between them, or limit characters or more.
[[nodiscard]] std::string_view quoted_text(std::string_view line, std::size_t limit) noexcept;

}  // namespace lagestatus
