#include "datafiles/line_reader.h"

#include <algorithm>
#include <cstdint>
#include <span>

#include "datafiles/field_scanner.h"

namespace lagestatus {
namespace {

// What a scrambled line's characters are shifted by, position after position.
class Descrambler {
  public:
    // A key of 0, plain lines, shifts as little as a key of 1.
    explicit Descrambler(int scramblingKey) noexcept
        : key(static_cast<std::uint32_t>(std::max(scramblingKey, 1))) {}

    // The character that a stored one stands for at the current position; moves on to the next position.
    char next(char stored) noexcept {
        const std::uint32_t shifted = static_cast<unsigned char>(stored) - key + 1U + place;
        place = place + 1U == key ? 0U : place + 1U;
        return static_cast<char>(static_cast<unsigned char>(shifted));  // mod 256
    }

  private:
    std::uint32_t key;
    std::uint32_t place = 0;  // position mod key
};

// The bytes at hand up to and including the line feed, at most limit of them.
std::string_view rest_of_line(std::string_view bytes, std::size_t limit) noexcept {
    bytes = bytes.substr(0, limit);
    return bytes.substr(0, std::min(bytes.find('\n'), bytes.size() - 1) + 1);
}

// Hands the rest of the line, at most limit bytes, to use, piece by piece as it lies in the file's buffer.
// False when the file ends before the first byte, or cannot be read.
template <typename Use>
bool for_rest_of_line(DataFile& file, std::size_t limit, Use use) noexcept {
    bool any = false;
    for (std::size_t left = limit; left > 0;) {
        const std::string_view bytes = file.available();
        if (bytes.empty()) {
            break;
        }
        const std::string_view piece = rest_of_line(bytes, left);
        use(piece);
        any = true;
        left = piece.back() == '\n' ? 0 : left - piece.size();
        file.consume(piece.size());
    }
    return any && !file.failed();
}

// Skips blanks, de-scrambled as a line's first character; line feeds count as they are stored.
// Leaves the first other character unread and gives it de-scrambled; false at the end of the file.
bool skip_blanks(DataFile& file, int key, char& first) noexcept {
    for (;;) {
        const std::string_view bytes = file.available();
        for (std::size_t at = 0; at < bytes.size(); ++at) {
            first = key == 0 || bytes[at] == '\n' ? bytes[at] : Descrambler(key).next(bytes[at]);
            if (!is_blank(first)) {
                file.consume(at);
                return true;
            }
        }
        if (bytes.empty()) {
            return false;
        }
        file.consume(bytes.size());
    }
}

// Takes the next line that is not blank and hands its bytes, as they are stored, to use, unless it is a comment.
template <typename Use>
LineKind take_line(DataFile& file, int key, Use use) noexcept {
    char first = '\0';
    if (key < 0 || !skip_blanks(file, key, first)) {
        return LineKind::end;
    }
    if (first == '#') {
        file.consume(1);
        const bool read = for_rest_of_line(file, Line::maxLength, [](std::string_view) {});
        return read ? LineKind::comment : LineKind::end;
    }
    if (!for_rest_of_line(file, Line::maxLength, use)) {
        return LineKind::end;
    }
    return first == '"' ? LineKind::quoted : LineKind::ordinary;
}

}  // namespace

LineKind read_line(DataFile& file, Line& line, int key) noexcept {
    line.length = 0;
    const LineKind kind = take_line(file, key, [&line](std::string_view piece) {
        std::copy(piece.begin(), piece.end(), line.bytes.data() + line.length);
        line.length += piece.size();
    });
    if (key > 0) {
        Descrambler descrambler(key);
        for (char& byte : std::span(line.bytes).first(line.length)) {
            byte = byte == '\n' ? '\n' : descrambler.next(byte);
        }
    }
    return kind;
}

Status next_data_line(DataFile& file, Line& line, int key) noexcept {
    for (;;) {
        switch (read_line(file, line, key)) {
            case LineKind::comment:
                break;
            case LineKind::ordinary:
            case LineKind::quoted:
                return status::ok;
            case LineKind::end:
                return status::fileEnds;
        }
    }
}

Status skip_data_lines(DataFile& file, int key, std::int64_t count) noexcept {
    while (count > 0) {
        switch (take_line(file, key, [](std::string_view) {})) {
            case LineKind::comment:
                break;
            case LineKind::ordinary:
            case LineKind::quoted:
                --count;
                break;
            case LineKind::end:
                return status::fileEnds;
        }
    }
    return status::ok;
}

Status read_key(DataFile& file, int& key) noexcept {
    char first = '\0';
    if (!skip_blanks(file, 0, first)) {
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
    file.consume(1);
    if (mayBeHexadecimal) {
        bytes = file.available();
        if (!bytes.empty() && is_hex_digit(bytes.front())) {
            return status::fileEnds;
        }
    }
    key = static_cast<int>(negative ? -magnitude : std::min(magnitude, beyond32Bits - 1));
    return status::ok;
}

}  // namespace lagestatus
