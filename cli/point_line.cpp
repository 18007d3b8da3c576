#include "point_line.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>

namespace cli {
namespace {

constexpr std::string_view blanks = " \t\r\v\f";

std::string_view trim_front(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text;
}

std::string_view next_field(std::string_view& line) {
    line = trim_front(line);
    const std::string_view field = line.substr(0, line.find_first_of(blanks));
    line.remove_prefix(field.size());
    return field;
}

// The whole field as a finite number.
bool read_number(std::string_view field, double& value) {
    if (field.starts_with('+') && !field.starts_with("+-")) {
        field.remove_prefix(1);
    }
    const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
    return error == std::errc() && end == field.data() + field.size() && std::isfinite(value);
}

bool looks_like_number(std::string_view field) {
    const std::size_t unsignedPart = field.find_first_not_of("+-.");
    if (unsignedPart != std::string_view::npos && field[unsignedPart] >= '0' && field[unsignedPart] <= '9') {
        return true;
    }
    double value = 0.0;
    const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
    return error == std::errc() && end == field.data() + field.size();  // nan, inf
}

}  // namespace

bool is_passed_through(std::string_view line) {
    const std::string_view text = trim_front(line);
    return text.empty() || text.front() == '#';
}

PointLine read_point_line(std::string_view line) {
    PointLine read;
    read.rest = line;
    for (std::size_t number = 0; number < read.point.size(); ++number) {
        std::string_view behind = read.rest;
        const std::string_view field = next_field(behind);
        const bool optional = number == 2;
        if (optional && !looks_like_number(field)) {
            break;
        }
        if (field.empty()) {
            read.error = number == 0 ? "no coordinates" : "the second coordinate is missing";
            return read;
        }
        if (!read_number(field, read.point[number])) {
            read.error = "not a number: \"" + std::string(field) + "\"";
            return read;
        }
        read.hasHeight = optional;
        read.rest = behind;
    }
    read.rest = trim_front(read.rest);
    const std::size_t last = read.rest.find_last_not_of(blanks);
    read.rest = read.rest.substr(0, last == std::string_view::npos ? 0 : last + 1);
    return read;
}

}  // namespace cli
