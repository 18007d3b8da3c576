#include "point_line.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "angle_text.h"
#include "numbers.h"

namespace cli {
namespace {

constexpr std::string_view blankCharacters = " \t\v\f";

bool is_blank(char character) {
    return character <= ' ' &&
           (character == ' ' || character == '\t' || character == '\v' || character == '\f');
}

// Whether a field is meant as a number, however it goes on.
bool looks_like_number(std::string_view field) {
    const std::size_t unsignedPart = field.find_first_not_of("+-.,");
    if (unsignedPart != std::string_view::npos && field[unsignedPart] >= '0' && field[unsignedPart] <= '9') {
        return true;
    }
    double value = 0.0;
    const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
    return error == std::errc() && end == field.data() + field.size();  // nan, inf
}

}  // namespace

bool is_passed_through(std::string_view line) {
    const std::size_t first = line.find_first_not_of(blankCharacters);
    return first == std::string_view::npos || line[first] == '#';
}

char recognised_delimiter(std::string_view line, LineForm form) {
    for (const char delimiter : {';', '\t', ',', blanks}) {
        if (delimiter != blanks &&
            (line.find(delimiter) == std::string_view::npos || (delimiter == ',' && form.decimalComma))) {
            continue;
        }
        form.delimiter = delimiter;
        PointLine read;
        LineReader(form).read(line, read);
        if (read.error.empty()) {
            return delimiter;
        }
    }
    for (const char delimiter : {';', '\t'}) {
        if (line.find(delimiter) != std::string_view::npos) {
            return delimiter;
        }
    }
    return blanks;
}

LineReader::LineReader(const LineForm& lineForm)
    : form(lineForm), wanted(*std::max_element(form.columns.begin(), form.columns.end()) + 1) {}

void LineReader::split(std::string_view line) {
    spans.clear();
    const auto skipBlanks = [&](std::size_t at) {
        while (at < line.size() && is_blank(line[at])) {
            ++at;
        }
        return at;
    };
    if (form.delimiter == blanks) {
        for (std::size_t at = skipBlanks(0); at < line.size() && spans.size() < wanted;
             at = skipBlanks(at)) {
            const std::size_t begin = at;
            while (at < line.size() && !is_blank(line[at])) {
                ++at;
            }
            spans.push_back({begin, at});
        }
        return;
    }
    for (std::size_t at = 0; at <= line.size() && spans.size() < wanted; ++at) {
        Span span = {at, at};
        const auto quote = [&] {
            std::size_t first = at;
            while (first < line.size() && line[first] == ' ') {
                ++first;
            }
            return first < line.size() && line[first] == '"' ? line.find('"', first + 1)
                                                             : std::string_view::npos;
        }();
        at = std::min(line.find(form.delimiter, quote == std::string_view::npos ? at : quote), line.size());
        span.end = at;
        while (span.begin < span.end && is_blank(line[span.begin])) {
            ++span.begin;
        }
        while (span.end > span.begin && is_blank(line[span.end - 1])) {
            --span.end;
        }
        spans.push_back(span);
    }
}

std::array<std::optional<Span>, 3> LineReader::fields_of(std::string_view line) {
    split(line);
    std::array<std::optional<Span>, 3> fields;
    for (std::size_t part = 0; part < form.columns.size(); ++part) {
        if (form.columns[part] < spans.size()) {
            fields[part] = spans[form.columns[part]];
        }
    }
    return fields;
}

void LineReader::read(std::string_view line, PointLine& result) {
    result.point = {};
    result.fields = fields_of(line);
    result.hasHeight = false;
    result.error.clear();
    read_fields(line, result);
}

void LineReader::read_fields(std::string_view line, PointLine& result) {
    constexpr std::array<const char*, 2> missing = {"the first coordinate is missing",
                                                    "the second coordinate is missing"};
    for (std::size_t part = 0; part < form.columns.size(); ++part) {
        auto& place = result.fields[part];
        std::string_view field = place ? line.substr(place->begin, place->end - place->begin) : "";
        if (field.size() >= 2 && field.front() == '"' && field.back() == '"') {
            field = field.substr(1, field.size() - 2);
        }
        const bool isHeight = part == 2;
        const bool emptyColumn = field.empty() && place && form.delimiter != blanks;
        if (isHeight && form.looksForHeight && !looks_like_number(field) && !emptyColumn) {
            place.reset();
            return;
        }
        if (field.empty()) {
            if (!isHeight) {
                result.error = missing[part];
            }
            return;
        }
        std::string_view digits = field;
        if (form.decimalComma && field.find(',') != std::string_view::npos &&
            field.find('.') == std::string_view::npos) {
            number = field;
            number[number.find(',')] = '.';
            digits = number;
        }
        const bool plain =
            !form.decimalComma || digits.data() != field.data() || field.find('.') == std::string_view::npos;
        std::optional<double> value = plain ? number_of(digits) : std::nullopt;
        if (!value && plain && form.angles && !isHeight) {
            value = read_angle(digits);
        }
        if (!value) {
            const bool comma =
                !form.decimalComma && form.delimiter != ',' && field.find(',') != std::string_view::npos;
            result.error =
                "not a number: \"" + std::string(field) + "\"" + (comma ? " (--decimal-comma?)" : "");
            return;
        }
        result.point[part] = *value;
        result.hasHeight = isHeight;
    }
}

}  // namespace cli
