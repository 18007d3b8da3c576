#include "points/point_line.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "datafiles/field_scanner.h"
#include "points/angle_text.h"
#include "points/number_text.h"

namespace cli {
namespace {

// Whether a field is meant as a number, however it goes on.
bool looks_like_number(std::string_view field) {
    const auto* const unsignedPart = std::find_if(field.begin(), field.end(), [](char character) {
        return character != '+' && character != '-' && character != '.' && character != ',';
    });
    if (unsignedPart != field.end() && lagestatus::is_digit(*unsignedPart)) {
        return true;
    }
    double value = 0.0;
    const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
    return error == std::errc() && end == field.data() + field.size();  // nan, inf
}

}  // namespace

TextLine take_line(std::string_view& text) {
    const std::size_t feed = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, feed);
    text.remove_prefix(std::min(feed + 1, text.size()));
    const bool hasReturn = line.ends_with('\r');
    line.remove_suffix(hasReturn ? 1 : 0);
    return {line, hasReturn ? "\r\n" : "\n"};
}

char recognised_delimiter(std::string_view line, LineForm form) {
    for (const char delimiter : {';', '\t', ',', blanks}) {
        if (delimiter != blanks &&
            (line.find(delimiter) == std::string_view::npos || (delimiter == ',' && form.decimalComma))) {
            continue;
        }
        form.delimiter = delimiter;
        PointLine read;
        PointLineReader(form).read(line, read);
        if (read.error.empty()) {
            return delimiter;
        }
    }
    for (const char delimiter : {';', '\t'}) {
        if (line.find(delimiter) != std::string_view::npos) {
            return delimiter;
        }
    }
    // A comma between numbers that stand between blanks is a decimal one.
    const bool hasBlanks = line.find_first_of(blankCharacters) != std::string_view::npos;
    const auto commas = static_cast<std::size_t>(std::count(line.begin(), line.end(), ','));
    return !form.decimalComma && !hasBlanks && commas >= std::max<std::size_t>(form.columns.size(), 2)
               ? ','
               : blanks;
}

PointLineReader::PointLineReader(const LineForm& lineForm)
    : form(lineForm),
      wanted(*std::max_element(form.columns.begin(), form.columns.end()) + 1),
      spans(wanted) {}

void PointLineReader::split(std::string_view line) {
    found = 0;
    const auto skipBlanks = [&](std::size_t at) {
        while (at < line.size() && is_gap(line[at])) {
            ++at;
        }
        return at;
    };
    // Where a field in quotes that begins here ends; two quotes stand for one in it. Not a quote: where it begins.
    const auto behindQuotes = [&](std::size_t at) {
        const std::size_t begin = at;
        while (at < line.size() && line[at] == '"') {
            at = line.find('"', at + 1);
            if (at == std::string_view::npos) {
                return begin;  // the quote is never closed: a sign like any other
            }
            ++at;
        }
        return at;
    };
    if (form.delimiter == blanks) {
        for (std::size_t at = skipBlanks(0); at < line.size() && found < wanted; at = skipBlanks(at)) {
            const std::size_t begin = at;
            at = behindQuotes(at);
            while (at < line.size() && !is_gap(line[at])) {
                ++at;
            }
            spans[found++] = {begin, at};
        }
        return;
    }
    for (std::size_t at = 0; at <= line.size() && found < wanted; ++at) {
        Span span = {at, at};
        while (at < line.size() && line[at] == ' ') {
            ++at;
        }
        for (at = behindQuotes(at); at < line.size() && line[at] != form.delimiter;) {
            ++at;
        }
        span.end = at;
        while (span.begin < span.end && is_gap(line[span.begin])) {
            ++span.begin;
        }
        while (span.end > span.begin && is_gap(line[span.end - 1])) {
            --span.end;
        }
        spans[found++] = span;
    }
}

Fields PointLineReader::fields_of(std::string_view line) {
    split(line);
    Fields fields;
    for (std::size_t part = 0; part < form.columns.size(); ++part) {
        if (form.columns[part] < found) {
            fields[part] = spans[form.columns[part]];
        }
    }
    return fields;
}

std::string_view PointLineReader::content_of(std::string_view line, const std::optional<Span>& place) {
    if (!place) {
        return "";
    }
    const std::string_view field = line.substr(place->begin, place->end - place->begin);
    if (field.size() < 2 || field.front() != '"' || field.back() != '"') {
        return field;
    }
    unquoted = field.substr(1, field.size() - 2);
    for (std::size_t at = unquoted.find("\"\""); at != std::string::npos;
         at = unquoted.find("\"\"", at + 1)) {
        unquoted.erase(at, 1);
    }
    return unquoted;
}

bool PointLineReader::read_coordinate(std::string_view field, std::size_t part, double& value) const {
    if (read_number(field, form.decimalComma ? ',' : '.', value)) {
        return true;
    }
    if (!form.angles || part == 2 || (form.decimalComma && field.find('.') != std::string_view::npos)) {
        return false;
    }
    std::string withPoint(field);
    if (form.decimalComma) {
        std::replace(withPoint.begin(), withPoint.end(), ',', '.');
    }
    const auto angle = read_angle(withPoint, part == 0 ? Hemisphere::latitude : Hemisphere::longitude);
    value = angle.value_or(0.0);
    return angle.has_value();
}

void PointLineReader::read(std::string_view line, PointLine& result) {
    result.point = {};
    result.fields = fields_of(line);
    result.hasHeight = false;
    result.error.clear();
    constexpr std::size_t longestExcerpt = 60;
    if (form.looksForHeight && result.fields[2]) {
        // Text of the line is no height, and stays what it is whatever becomes of the line.
        const std::string_view field = content_of(line, result.fields[2]);
        const bool emptyColumn = field.empty() && form.delimiter != blanks;
        if (!emptyColumn && !looks_like_number(field)) {
            result.fields[2].reset();
        }
    }
    for (std::size_t part = 0; part < form.columns.size(); ++part) {
        const bool isHeight = part == 2;
        const std::string_view field = content_of(line, result.fields[part]);
        if (field.empty()) {
            if (!isHeight) {
                result.error = "no coordinate in column " + std::to_string(form.columns[part] + 1);
            }
            return;
        }
        if (!read_coordinate(field, part, result.point[part])) {
            const bool comma =
                !form.decimalComma && form.delimiter != ',' && field.find(',') != std::string_view::npos;
            result.error = "not a number: \"" + std::string(field.substr(0, longestExcerpt)) + "\"" +
                           (comma ? " (--decimal-comma?)" : "");
            return;
        }
        result.hasHeight = isHeight;
    }
}

}  // namespace cli
