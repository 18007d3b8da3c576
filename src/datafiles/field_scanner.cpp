#include "datafiles/field_scanner.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

namespace lagestatus {
namespace {

std::string_view without_blanks_ahead(std::string_view text) noexcept {
    return {std::find_if_not(text.begin(), text.end(), is_blank), text.end()};
}

// "0x1A", "0X.8": refused as a whole, where the longest decimal form would be a silent zero.
bool is_hexadecimal(std::string_view text) noexcept {
    if (text.size() < 3 || text[0] != '0' || (text[1] != 'x' && text[1] != 'X')) {
        return false;
    }
    return is_hex_digit(text[2]) || (text[2] == '.' && text.size() > 3 && is_hex_digit(text[3]));
}

// Tells the two ways apart in which a decimal number can miss the range of double: true when it is too small.
// Between the two lie some 600 powers of ten, so the decimal place of its first digit other than zero decides.
bool is_tiny(std::string_view number) noexcept {
    const std::size_t exponentMark = std::min(number.find_first_of("eE"), number.size());
    const std::string_view mantissa = number.substr(0, exponentMark);
    const auto point = static_cast<int>(std::min(mantissa.find('.'), mantissa.size()));
    const auto firstDigit = static_cast<int>(mantissa.find_first_not_of("0."));
    int exponent = 0;
    if (exponentMark < number.size()) {
        (void)FieldScanner(number.substr(exponentMark + 1)).integer(exponent);
    }
    // A line holds at most 999 characters: beyond that an exponent's size changes nothing.
    constexpr int enough = 100'000;
    return point - firstDigit + std::clamp(exponent, -enough, enough) < 0;
}

}  // namespace

bool FieldScanner::sign(bool& negative) noexcept {
    rest = without_blanks_ahead(rest);
    negative = rest.starts_with('-');
    if (negative || rest.starts_with('+')) {
        rest.remove_prefix(1);
    }
    return !rest.empty() && (is_digit(rest.front()) || rest.front() == '.') && !is_hexadecimal(rest);
}

bool FieldScanner::integer(int& value) noexcept {
    bool negative = false;
    if (!sign(negative)) {
        return false;
    }
    int magnitude = 0;
    const char* const first = rest.data();
    const char* const last = first + rest.size();
    const auto [end, error] = std::from_chars(first, last, magnitude);
    if (error == std::errc::invalid_argument) {
        return false;
    }
    using Limits = std::numeric_limits<int>;
    const bool tooLarge = error == std::errc::result_out_of_range;
    value = tooLarge ? (negative ? Limits::min() : Limits::max()) : (negative ? -magnitude : magnitude);
    rest.remove_prefix(static_cast<std::size_t>(end - first));
    return true;
}

bool FieldScanner::number(double& value) noexcept {
    bool negative = false;
    if (!sign(negative)) {
        return false;
    }
    double magnitude = 0.0;
    const char* const first = rest.data();
    const auto [end, error] = std::from_chars(first, first + rest.size(), magnitude);
    if (error == std::errc::result_out_of_range) {
        if (!is_tiny({first, end})) {
            return false;
        }
        magnitude = 0.0;
    } else if (error != std::errc()) {
        return false;
    }
    value = negative ? -magnitude : magnitude;
    rest.remove_prefix(static_cast<std::size_t>(end - first));
    return true;
}

bool FieldScanner::literal(char expected) noexcept {
    if (!rest.starts_with(expected)) {
        return false;
    }
    rest.remove_prefix(1);
    return true;
}

std::string_view quoted_text(std::string_view line, std::size_t limit) noexcept {
    const std::size_t opening = line.find('"');
    if (opening == std::string_view::npos) {
        return {};
    }
    const std::string_view behind = line.substr(opening + 1);
    const std::size_t closing = behind.find('"');
    return closing < limit ? behind.substr(0, closing) : std::string_view();
}

}  // namespace lagestatus
