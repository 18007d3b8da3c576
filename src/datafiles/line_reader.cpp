#include "datafiles/line_reader.h"

#include <algorithm>
#include <span>

#include "datafiles/field_scanner.h"
#include "datafiles/scrambling.h"

namespace lagestatus {
namespace {

// The bytes at hand up to and including the line feed, at most limit of them.
std::string_view rest_of_line(std::string_view bytes, std::size_t limit) noexcept {
    bytes = bytes.substr(0, limit);
    return bytes.substr(0, std::min(bytes.find('\n'), bytes.size() - 1) + 1);
}

}  // namespace

// Hands the rest of the line, as far as it is read at once, to use, piece by piece as it lies in the file's buffer.
// False when the file ends before the first byte, or cannot be read.
template <typename Use>
bool LineReader::for_rest_of_line(Use use) noexcept {
    bool any = false;
    for (std::size_t left = maxLength; left > 0;) {
        const std::string_view bytes = file.available();
        if (bytes.empty()) {
            break;
        }
        const std::string_view piece = rest_of_line(bytes, left);
        use(piece);
        any = true;
        left -= piece.size();
        if (piece.back() == '\n') {
            left = 0;
            ++lineFeeds;
        }
        file.consume(piece.size());
    }
    return any && !file.failed();
}

// Skips blanks, de-scrambled as a line's first character; line feeds count as they are stored.
// Leaves the first other character unread and gives it de-scrambled; false at the end of the file.
bool LineReader::skip_blanks(char& first) noexcept {
    for (;;) {
        const std::string_view bytes = file.available();
        for (std::size_t at = 0; at < bytes.size(); ++at) {
            const bool plain = scramblingKey == 0 || bytes[at] == '\n';
            first = plain ? bytes[at] : LineShift(scramblingKey).restore(bytes[at]);
            if (!is_blank(first)) {
                file.consume(at);
                return true;
            }
            lineFeeds += bytes[at] == '\n' ? 1 : 0;
        }
        if (bytes.empty()) {
            return false;
        }
        file.consume(bytes.size());
    }
}

// Takes the next line that is not blank and hands its bytes, as they are stored, to use, unless it is a comment.
template <typename Use>
LineKind LineReader::take_line(Use use) noexcept {
    char first = '\0';
    if (scramblingKey < 0 || !skip_blanks(first)) {
        return LineKind::end;
    }
    overlongNumber = lineNumber == lineFeeds + 1 ? lineNumber : overlongNumber;
    lineNumber = lineFeeds + 1;
    if (first == '#') {
        file.consume(1);
        return for_rest_of_line([](std::string_view) {}) ? LineKind::comment : LineKind::end;
    }
    if (!for_rest_of_line(use)) {
        return LineKind::end;
    }
    return first == '"' ? LineKind::quoted : LineKind::ordinary;
}

LineKind LineReader::read() noexcept {
    length = 0;
    const LineKind kind = take_line([this](std::string_view piece) {
        std::copy(piece.begin(), piece.end(), line.data() + length);
        length += piece.size();
    });
    if (scramblingKey > 0) {
        LineShift shift(scramblingKey);
        for (char& byte : std::span(line).first(length)) {
            byte = byte == '\n' ? '\n' : shift.restore(byte);
        }
    }
    return kind;
}

Status LineReader::next() noexcept {
    LineKind kind = read();
    while (kind == LineKind::comment) {
        kind = read();
    }
    return kind == LineKind::end ? status::fileEnds : status::ok;
}

Status LineReader::skip(std::int64_t count) noexcept {
    while (count > 0) {
        const LineKind kind = take_line([](std::string_view) {});
        if (kind == LineKind::end) {
            return status::fileEnds;
        }
        count -= kind == LineKind::comment ? 0 : 1;
    }
    return status::ok;
}

Status LineReader::read_key() noexcept {
    char first = '\0';
    if (!skip_blanks(first)) {
        return status::fileEnds;
    }
    const bool negative = first == '-';
    if (negative || first == '+') {
        file.consume(1);
    }
    constexpr std::int64_t beyond32Bits = std::int64_t{1} << 31;
    std::int64_t magnitude = 0;
    std::size_t digits = 0;
    std::string_view bytes = file.available();
    for (; !bytes.empty() && is_digit(bytes.front()); bytes = file.available()) {
        magnitude = std::min(magnitude * 10 + (bytes.front() - '0'), beyond32Bits);
        digits = std::min<std::size_t>(digits + 1, 2);
        file.consume(1);
    }
    if (digits == 0 || bytes.empty()) {
        return status::fileEnds;
    }
    const bool mayBeHexadecimal =
        magnitude == 0 && digits == 1 && (bytes.front() == 'x' || bytes.front() == 'X');
    lineFeeds += bytes.front() == '\n' ? 1 : 0;
    file.consume(1);
    if (mayBeHexadecimal) {
        bytes = file.available();
        if (!bytes.empty() && is_hex_digit(bytes.front())) {
            return status::fileEnds;
        }
    }
    scramblingKey = static_cast<int>(negative ? -magnitude : std::min(magnitude, beyond32Bits - 1));
    return status::ok;
}

}  // namespace lagestatus
