#include "points/angle_text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <span>
#include <system_error>

namespace cli {
namespace {

constexpr double minutesOfDegree = 60.0;
constexpr double secondsOfDegree = 3600.0;

bool take(std::string_view& text, std::span<const std::string_view> signs) {
    for (const std::string_view sign : signs) {
        if (text.starts_with(sign)) {
            text.remove_prefix(sign.size());
            return true;
        }
    }
    return false;
}

// Takes an unsigned number without exponent.
bool take_number(std::string_view& text, double& value) {
    const std::size_t size = std::min(text.find_first_not_of("0123456789."), text.size());
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + size, value, std::chars_format::fixed);
    if (size == 0 || error != std::errc() || end != text.data() + size) {
        return false;
    }
    text.remove_prefix(size);
    return true;
}

bool is_whole(double value) {
    return std::trunc(value) == value;
}

}  // namespace

std::optional<double> read_angle(std::string_view text, Hemisphere hemisphere) {
    using namespace std::string_view_literals;
    constexpr std::array degreeSigns = {"\u00B0"sv, "\xB0"sv, "d"sv, ":"sv};
    constexpr std::array minuteSigns = {"'"sv, "\u2032"sv, ":"sv};
    constexpr std::array secondSigns = {"\""sv, "\u2033"sv, "''"sv};
    constexpr double parts = 60.0;

    double sign = 1.0;
    bool hasSign = true;
    if (text.starts_with('-')) {
        sign = -1.0;
        text.remove_prefix(1);
    } else if (text.starts_with('+')) {
        text.remove_prefix(1);
    } else {
        hasSign = false;
    }
    const std::string_view letters = hemisphere == Hemisphere::latitude ? "NnSs" : "EeOoWw";
    if (!text.empty() && !hasSign && letters.find(text.back()) != std::string_view::npos) {
        sign = std::string_view("SsWw").find(text.back()) != std::string_view::npos ? -1.0 : 1.0;
        text.remove_suffix(1);
    }
    double degrees = 0.0;
    if (!take_number(text, degrees)) {
        return std::nullopt;
    }
    double minutes = 0.0;
    double seconds = 0.0;
    if (take(text, degreeSigns) && !text.empty()) {
        if (!is_whole(degrees) || !take_number(text, minutes) || !(minutes < parts)) {
            return std::nullopt;
        }
        if (take(text, minuteSigns) && !text.empty()) {
            if (!is_whole(minutes) || !take_number(text, seconds) || !(seconds < parts)) {
                return std::nullopt;
            }
            take(text, secondSigns);
        }
    }
    if (!text.empty()) {
        return std::nullopt;
    }
    return sign * (degrees + minutes / minutesOfDegree + seconds / secondsOfDegree);
}

void append_angle(std::string& text, double degrees, int decimals, Hemisphere hemisphere) {
    // In units of the last decimal, so that 59.99999 seconds carry into the minutes.
    const double unit = std::pow(10.0, decimals);
    const double total = std::fabs(degrees) * secondsOfDegree * unit;
    constexpr double largest = 9e15;  // whole numbers up to here are exact
    if (!(total < largest)) {
        text += '*';
        return;
    }
    const auto perSecond = static_cast<std::int64_t>(unit);
    const std::int64_t units = std::llround(total);
    const std::int64_t wholeSeconds = units / perSecond;
    std::array<char, 24> digits = {};
    const auto append = [&](std::int64_t value, int width) {
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
        const auto size = static_cast<int>(end - digits.data());
        text.append(static_cast<std::size_t>(std::max(width - size, 0)), '0').append(digits.data(), end);
    };
    append(wholeSeconds / 3600, 1);
    text += "\u00B0";
    append(wholeSeconds / 60 % 60, 2);
    text += '\'';
    append(wholeSeconds % 60, 2);
    if (decimals > 0) {
        text += '.';
        append(units % perSecond, decimals);
    }
    text += '"';
    const bool negative = degrees < 0.0 && units > 0;
    text += hemisphere == Hemisphere::latitude ? (negative ? 'S' : 'N') : (negative ? 'W' : 'E');
}

}  // namespace cli
