#include "system/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <system_error>

#include "bulk/texts.h"
#include "datafiles/field_scanner.h"

namespace cli {
namespace {

// The shortest text of all that read back to the same bits, without an exponent from smallest to largest.
std::string shortest_text(double value, double smallest, double largest) {
    const double size = std::fabs(value);
    const bool fixed = size == 0.0 || (size >= smallest && size < largest);
    std::array<char, 40> buffer = {};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                   fixed ? std::chars_format::fixed : std::chars_format::scientific)
                         .ptr;
    return {buffer.data(), end};
}

}  // namespace

std::optional<double> number_of(std::string_view text) {
    lagestatus::FieldScanner scanner(text);
    double value = 0.0;
    const bool whole = !text.empty() && !lagestatus::is_blank(text.front()) && scanner.number(value) &&
                       scanner.remaining().empty();
    return whole ? std::optional(value) : std::nullopt;
}

std::optional<int> integer_of(std::string_view text) {
    text.remove_prefix(text.starts_with('+') && !text.starts_with("+-") ? 1 : 0);
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
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
    const std::string text = shortest_text(value, 1e-4, 1e16);
    return text.find_first_of(".e") == std::string::npos ? text + ".0" : text;
}

std::string number_text(double value) {
    return shortest_text(value, 1e-5, 1e15);
}

std::string fixed_text(double value, int decimals) {
    std::string text(std::size_t{330} + static_cast<std::size_t>(decimals),
                     '\0');  // the largest double has 309 digits
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, decimals).ptr;
    text.resize(static_cast<std::size_t>(end - text.data()));
    return text;
}

std::string trimmed_text(double value, int decimals) {
    std::string text = fixed_text(value, decimals);
    if (text.find('.') != std::string::npos) {
        text.erase(text.find_last_not_of('0') + 1);
        text.erase(text.find_last_not_of('.') + 1);
    }
    return text;
}

std::string plural(std::size_t count, const std::string& word) {
    return std::to_string(count) + ' ' + word + (count == 1 ? "" : "s");
}

std::string excerpt(std::string_view text) {
    constexpr std::size_t longest = 40;
    while (!text.empty() && lagestatus::is_blank(text.back())) {
        text.remove_suffix(1);
    }
    return '"' + lagestatus::utf8_of(text.substr(0, longest), "?") + (text.size() > longest ? "...\"" : "\"");
}

std::optional<std::string> latin1(std::string_view utf8) {
    const auto byte = [&utf8](std::size_t at) { return static_cast<unsigned char>(utf8[at]); };
    std::string text;
    for (std::size_t at = 0; at < utf8.size(); ++at) {
        if (byte(at) < 0x80) {
            text += utf8[at];
            continue;
        }
        // Characters up to U+00FF have two bytes, the first of them C2 or C3.
        if ((byte(at) & 0xFEU) != 0xC2 || at + 1 == utf8.size() || (byte(at + 1) & 0xC0U) != 0x80) {
            return std::nullopt;
        }
        const unsigned character = ((byte(at) & 0x03U) << 6U) | (byte(at + 1) & 0x3FU);
        text += static_cast<char>(static_cast<unsigned char>(character));
        ++at;
    }
    return text;
}

std::string lower_case(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return text;
}

}  // namespace cli
