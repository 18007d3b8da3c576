#include "system/numbers.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <system_error>

namespace cli {
namespace {

// from_chars takes no plus sign.
std::string_view without_plus(std::string_view text) {
    const bool plus = text.size() > 1 && text[0] == '+' && text[1] != '-';
    return plus ? text.substr(1) : text;
}

template <typename Number>
std::optional<Number> whole_text_as_number(std::string_view text) {
    text = without_plus(text);
    Number value = {};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

}  // namespace

std::optional<double> number_of(std::string_view text) {
    const std::optional<double> value = whole_text_as_number<double>(text);
    return value && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<int> integer_of(std::string_view text) {
    return whole_text_as_number<int>(text);
}

std::optional<std::vector<double>> numbers_of(std::string_view text) {
    std::vector<double> values;
    for (;;) {
        const std::size_t comma = text.find(',');
        const std::optional<double> value = number_of(text.substr(0, comma));
        if (!value) {
            return std::nullopt;
        }
        values.push_back(*value);
        if (comma == std::string_view::npos) {
            return values;
        }
        text.remove_prefix(comma + 1);
    }
}

std::string data_text(double value) {
    // Within these bounds numbers are easier to read without an exponent.
    constexpr double smallestFixed = 1e-4;
    constexpr double largestFixed = 1e16;
    const double size = std::fabs(value);
    const bool fixed = size == 0.0 || (size >= smallestFixed && size < largestFixed);
    std::array<char, 32> buffer = {};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                   fixed ? std::chars_format::fixed : std::chars_format::scientific)
                         .ptr;
    const std::string text(buffer.data(), end);
    return fixed && text.find('.') == std::string::npos ? text + ".0" : text;
}

}  // namespace cli
