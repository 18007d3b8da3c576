#include "points/angle_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <span>
#include <system_error>

namespace cli {
namespace {

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

}  // namespace

std::optional<double> read_angle(std::string_view text, Hemisphere hemisphere) {
    using namespace std::string_view_literals;
    constexpr std::array degreeSigns = {"\u00B0"sv, "\xB0"sv, "d"sv, ":"sv};
    constexpr std::array minuteSigns = {"'"sv, "\u2032"sv, ":"sv};
    constexpr std::array secondSigns = {"\""sv, "\u2033"sv, "''"sv};

    const bool hasSign = text.starts_with('-') || text.starts_with('+');
    bool negative = text.starts_with('-');
    text.remove_prefix(hasSign ? 1 : 0);
    const std::string_view letters = hemisphere == Hemisphere::latitude ? "NnSs" : "EeOoWw";
    if (!text.empty() && !hasSign && letters.find(text.back()) != std::string_view::npos) {
        negative = "SsWw"sv.find(text.back()) != std::string_view::npos;
        text.remove_suffix(1);
    }
    double degrees = 0.0;
    double minutes = 0.0;
    double seconds = 0.0;
    const auto takePart = [&text](double before, double& value) {
        return std::trunc(before) == before && take_number(text, value) && value < 60.0;
    };
    bool good = take_number(text, degrees);
    if (good && take(text, degreeSigns) && !text.empty()) {
        good = takePart(degrees, minutes);
        if (good && take(text, minuteSigns) && !text.empty()) {
            good = takePart(minutes, seconds);
            take(text, secondSigns);
        }
    }
    if (!good || !text.empty()) {
        return std::nullopt;
    }
    const double angle = degrees + minutes / 60.0 + seconds / 3600.0;
    return negative ? -angle : angle;
}

void append_angle(std::string& text, double degrees, int decimals, Hemisphere hemisphere) {
    // In units of the last decimal, so that 59.99999 seconds carry into the minutes.
    const double unit = std::pow(10.0, decimals);
    const double total = std::fabs(degrees) * 3600.0 * unit;
    constexpr double largest = 9e15;  // whole numbers up to here are exact
    if (!(total < largest)) {
        text += '*';
        return;
    }
    const auto perSecond = static_cast<std::int64_t>(unit);
    const std::int64_t units = std::llround(total);
    const std::int64_t seconds = units / perSecond;
    const auto append = [&text](std::int64_t value, int width) {
        const std::string digits = std::to_string(value);
        text.append(std::max(static_cast<std::size_t>(width), digits.size()) - digits.size(), '0') += digits;
    };
    append(seconds / 3600, 1);
    text += "\u00B0";
    append(seconds / 60 % 60, 2);
    text += '\'';
    append(seconds % 60, 2);
    if (decimals > 0) {
        text += '.';
        append(units % perSecond, decimals);
    }
    text += '"';
    const bool negative = degrees < 0.0 && units > 0;
    text += hemisphere == Hemisphere::latitude ? (negative ? 'S' : 'N') : (negative ? 'W' : 'E');
}

}  // namespace cli
