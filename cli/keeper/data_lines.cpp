#include "keeper/data_lines.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <system_error>
#include <utility>

#include "keeper/scrambling.h"
#include "system/platform.h"

namespace cli {
namespace {

constexpr std::size_t readAtOnce = 999;  // characters of a line, its line feed included

bool is_digit(char character) {
    return character >= '0' && character <= '9';
}

bool is_hexadecimal_digit(char character) {
    return is_digit(character) || (character >= 'a' && character <= 'f') ||
           (character >= 'A' && character <= 'F');
}

// "0x1A" is no number, not 0 with a remark behind it.
bool is_hexadecimal(std::string_view text) {
    if (text.size() < 3 || text[0] != '0' || (text[1] != 'x' && text[1] != 'X')) {
        return false;
    }
    return is_hexadecimal_digit(text[2]) ||
           (text[2] == '.' && text.size() > 3 && is_hexadecimal_digit(text[3]));
}

// A number out of the range of double is either far above or far below 1: the place of its first digit tells.
bool is_below_one(std::string_view number) {
    const std::size_t mark = std::min(number.find_first_of("eE"), number.size());
    const std::string_view mantissa = number.substr(0, mark);
    int exponent = 0;
    if (mark < number.size()) {
        Fields(number.substr(mark + 1)).integer(exponent);
    }
    const auto point = static_cast<std::int64_t>(std::min(mantissa.find('.'), mantissa.size()));
    const auto firstDigit =
        static_cast<std::int64_t>(std::min(mantissa.find_first_not_of("0."), mantissa.size()));
    return point - firstDigit + exponent < 0;
}

// Takes blanks and a sign, where a decimal number follows.
bool take_sign(std::string_view& text, bool& negative) {
    std::string_view rest = text;
    rest.remove_prefix(
        static_cast<std::size_t>(std::find_if_not(rest.begin(), rest.end(), is_blank) - rest.begin()));
    negative = rest.starts_with('-');
    if (negative || rest.starts_with('+')) {
        rest.remove_prefix(1);
    }
    if (rest.empty() || (!is_digit(rest.front()) && rest.front() != '.') || is_hexadecimal(rest)) {
        return false;
    }
    text = rest;
    return true;
}

}  // namespace

bool is_blank(char character) {
    return character == ' ' || (character >= '\t' && character <= '\r');
}

DataLines::DataLines(std::string file) : bytes(std::move(file)) {
    // A carriage return ahead of a line feed is none.
    std::size_t kept = 0;
    for (std::size_t place = 0; place < bytes.size(); ++place) {
        if (bytes[place] != '\r' || place + 1 == bytes.size() || bytes[place + 1] != '\n') {
            bytes[kept++] = bytes[place];
        }
    }
    bytes.resize(kept);
}

bool DataLines::read_key() {
    if (!skip_blanks()) {
        return false;
    }
    const std::string_view text = std::string_view(bytes).substr(at);
    Fields fields(text);
    int key = 0;
    if (!fields.integer(key) || fields.rest().empty()) {
        return false;
    }
    at += text.size() - fields.rest().size();
    lineNumber += bytes[at] == '\n' ? 1 : 0;
    ++at;
    scramblingKey = key;
    return true;
}

char DataLines::restored(char stored) const {
    if (scramblingKey <= 0 || stored == '\n') {
        return stored;
    }
    return LineShift(scramblingKey).restore(stored);
}

bool DataLines::skip_blanks() {
    for (; at < bytes.size() && is_blank(restored(bytes[at])); ++at) {
        lineNumber += bytes[at] == '\n' ? 1 : 0;
    }
    return at < bytes.size();
}

std::string_view DataLines::take_rest_of_line() {
    const std::string_view rest = std::string_view(bytes).substr(at, readAtOnce);
    const std::size_t feed = rest.find('\n');
    const bool complete = feed != std::string_view::npos;
    const std::string_view taken = rest.substr(0, complete ? feed + 1 : rest.size());
    at += taken.size();
    if (complete) {
        ++lineNumber;
    } else if (at < bytes.size() && bytes[at] != '\n' && (tooLong.empty() || tooLong.back() != lineNumber)) {
        tooLong.push_back(lineNumber);
    }
    return taken;
}

bool DataLines::next() {
    if (scramblingKey < 0) {
        return false;
    }
    while (skip_blanks()) {
        currentNumber = lineNumber;
        if (restored(bytes[at]) == '#') {
            ++at;
            if (take_rest_of_line().empty()) {
                return false;
            }
            continue;
        }
        current = take_rest_of_line();
        if (scramblingKey > 0) {
            restoredLine = current;
            LineShift shift(scramblingKey);
            for (char& byte : restoredLine) {
                byte = byte == '\n' ? '\n' : shift.restore(byte);
            }
            current = restoredLine;
        }
        current = current.substr(0, current.find('\0'));
        return true;
    }
    return false;
}

bool Fields::integer(int& value) {
    bool negative = false;
    std::string_view text = left;
    if (!take_sign(text, negative)) {
        return false;
    }
    int magnitude = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), magnitude);
    if (error == std::errc::invalid_argument) {
        return false;
    }
    value = negative ? -magnitude : magnitude;
    if (error == std::errc::result_out_of_range) {
        value = negative ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
    }
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    left = text;
    return true;
}

bool Fields::number(double& value) {
    bool negative = false;
    std::string_view text = left;
    if (!take_sign(text, negative)) {
        return false;
    }
    double magnitude = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), magnitude);
    const auto length = static_cast<std::size_t>(end - text.data());
    if (error == std::errc::result_out_of_range) {
        if (!is_below_one(text.substr(0, length))) {
            return false;
        }
        magnitude = 0.0;
    } else if (error != std::errc()) {
        return false;
    }
    value = negative ? -magnitude : magnitude;
    text.remove_prefix(length);
    left = text;
    return true;
}

bool Fields::literal(char expected) {
    if (!left.starts_with(expected)) {
        return false;
    }
    left.remove_prefix(1);
    return true;
}

std::optional<std::string_view> quoted(std::string_view line) {
    const std::size_t opening = line.find('"');
    if (opening == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view behind = line.substr(opening + 1);
    const std::size_t closing = behind.find('"');
    return closing == std::string_view::npos ? std::nullopt : std::optional(behind.substr(0, closing));
}

std::string excerpt(std::string_view text) {
    constexpr std::size_t longest = 40;
    while (!text.empty() && is_blank(text.back())) {
        text.remove_suffix(1);
    }
    std::string shown = "\"";
    for (const char character : text.substr(0, longest)) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x20 || (byte >= 0x7F && byte < 0xA0)) {
            shown += '?';
        } else if (byte < 0x80) {
            shown += character;
        } else {
            shown += static_cast<char>(0xC0U | (byte >> 6U));
            shown += static_cast<char>(0x80U | (byte & 0x3FU));
        }
    }
    return shown + (text.size() > longest ? "...\"" : "\"");
}

namespace {

namespace fs = std::filesystem;

// The units of a name, each a byte, as paths of this system take them.
fs::path path_of(std::u16string_view name) {
    using Unit = fs::path::value_type;
    std::basic_string<Unit> path;
    for (const char16_t unit : name) {
        const auto byte = static_cast<unsigned char>(unit);
        path.push_back(byte == '\\' ? fs::path::preferred_separator : static_cast<Unit>(byte));
    }
    return path;
}

std::string lower_case(std::string text) {
    for (char& character : text) {
        character =
            character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    }
    return text;
}

// The first regular file in byte order whose name differs in the case of its letters only.
std::optional<fs::path> in_another_case(const fs::path& path) {
    std::error_code error;
    std::error_code none;
    const std::string wanted = lower_case(path_text(path.filename()));
    std::optional<fs::path> found;
    for (fs::directory_iterator entry(path.parent_path().empty() ? "." : path.parent_path(), error), end;
         !error && entry != end; entry.increment(error)) {
        const fs::path& candidate = entry->path();
        if (lower_case(path_text(candidate.filename())) == wanted && entry->is_regular_file(none) &&
            (!found || path_text(candidate) < path_text(*found))) {
            found = candidate;
        }
    }
    return found;
}

}  // namespace

std::optional<std::string> find_data_file(const std::string& directory, std::u16string_view name) {
    std::error_code none;
    std::string folder = directory;
    if constexpr (fs::path::preferred_separator == '/') {
        std::replace(folder.begin(), folder.end(), '\\', '/');
    }
    fs::path path = path_of(name);
    if (directory != ".") {
        path = file_path(folder);
        path += fs::path::preferred_separator;
        path += path_of(name);
    }
    if (fs::exists(path, none)) {
        return fs::is_regular_file(path, none) ? std::optional(path_text(path)) : std::nullopt;
    }
    const std::optional<fs::path> found = in_another_case(path);
    return found ? std::optional(path_text(*found)) : std::nullopt;
}

}  // namespace cli
