#include "keeper/scrambling.h"

#include <algorithm>
#include <cstddef>

#include "datafiles/field_scanner.h"
#include "datafiles/line_reader.h"
#include "datafiles/scrambling.h"

namespace cli {

using namespace lagestatus;

namespace {

[[noreturn]] void fail(std::size_t line, const std::string& reason, bool dueToKey = false) {
    throw ScramblingError("line " + std::to_string(line) + ": " + reason, dueToKey);
}

std::size_t line_feeds_in(std::string_view text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

// What stands ahead of the lines: blanks, sign and digits of the key, the end of its line.
struct Head {
    std::string_view ahead;  // blanks and sign
    std::string_view digits;
    std::string_view behind;  // one character, or carriage return and line feed
    std::string_view rest;    // all that follows
    int key = 0;

    [[nodiscard]] std::size_t first_line() const { return 1 + line_feeds_in(ahead) + line_feeds_in(behind); }
};

Head head_of(std::string_view bytes) {
    Head head;
    FieldScanner fields(bytes);
    if (!fields.integer(head.key)) {
        fail(1, "the file does not begin with its key, a whole number");
    }
    const std::size_t end = bytes.size() - fields.remaining().size();
    const std::size_t digits = bytes.find_first_of("0123456789");
    head.ahead = bytes.substr(0, digits);
    head.digits = bytes.substr(digits, end - digits);
    head.behind = bytes.substr(end, fields.remaining().starts_with("\r\n") ? 2 : 1);
    head.rest = bytes.substr(end + head.behind.size());
    if (head.behind.empty()) {
        fail(1 + line_feeds_in(head.ahead), "the key is not followed by the end of its line");
    }
    return head;
}

// Calls use(number, text, end) for each line, end being its line feed, carriage return and line feed, or empty.
template <typename Use>
void for_each_line(std::string_view bytes, std::size_t firstNumber, Use use) {
    for (std::size_t number = firstNumber; !bytes.empty(); ++number) {
        const std::size_t feed = bytes.find('\n');
        const std::size_t next = feed == std::string_view::npos ? bytes.size() : feed + 1;
        std::size_t length = std::min(feed, bytes.size());
        length -= next > length && length > 0 && bytes[length - 1] == '\r' ? 1 : 0;
        use(number, bytes.substr(0, length), bytes.substr(length, next - length));
        bytes.remove_prefix(next);
    }
}

// A comment is taken behind its "#".
void check_length(std::size_t number, std::string_view text, bool comment) {
    if (text.size() > LineReader::maxLength + (comment ? 1 : 0)) {
        fail(number, "is longer than the " + std::to_string(LineReader::maxLength) +
                         " characters that a reader takes in one piece; split it");
    }
}

std::string stored_text(std::size_t number, std::string_view plain, std::string_view end, int key) {
    LineShift shift(key);
    std::string stored;
    for (const char character : plain) {
        if (character == '\0') {
            fail(number, "has a zero byte, at which a reader stops");
        }
        stored += shift.store(character);
        if (stored.back() == '\n') {
            fail(number, "character " + std::to_string(stored.size()) + " would be stored as a line feed",
                 true);
        }
        if (stored.size() == 1 && plain.front() == '#') {
            shift = LineShift(key);
        }
    }
    if (end == "\n" && stored.ends_with('\r')) {
        fail(number, "its last character would be stored as a carriage return, which a reader drops", true);
    }
    return stored;
}

std::string stored_lines(std::string_view plain, std::size_t firstNumber, int key) {
    std::string stored;
    for_each_line(
        plain, firstNumber, [&stored, key](std::size_t number, std::string_view text, std::string_view end) {
            if (!text.empty() && is_blank(text.front())) {
                fail(number, "begins with a blank, which a scrambled line cannot; remove the blanks");
            }
            check_length(number, text, text.starts_with('#'));
            stored.append(stored_text(number, text, end, key)).append(end);
        });
    return stored;
}

std::string plain_lines(std::string_view stored, std::size_t firstNumber, int key) {
    std::string plain;
    const auto add = [&plain, key](std::size_t number, std::string_view text, std::string_view end) {
        LineShift shift(key);
        bool ahead = true;  // of the first character that is not blank, where a reader begins to count
        bool comment = false;
        for (const char character : text) {
            const char restored = shift.restore(character);
            if (restored == '\n') {
                fail(number, "holds a character that stands for a line feed");
            }
            plain += restored;
            comment = comment || (ahead && restored == '#');
            if (ahead && (is_blank(restored) || restored == '#')) {
                shift = LineShift(key);
            }
            ahead = ahead && is_blank(restored);
        }
        check_length(number, text, comment);
        plain.append(end);
    };
    for_each_line(stored, firstNumber, add);
    return plain;
}

std::string scrambled_unchecked(std::string_view plain, int key, FileKind form) {
    const std::string keyText = std::to_string(key);
    if (form == FileKind::parameters) {
        const std::size_t feed = plain.find('\n');
        const bool pairs = feed != std::string_view::npos && feed > 0 && plain[feed - 1] == '\r';
        return keyText + (pairs ? "\r\n" : "\n") + stored_lines(plain, 1, key);
    }
    const Head head = head_of(plain);
    if (head.key != 0) {
        throw ScramblingError("is scrambled already, with key " + std::to_string(head.key), false);
    }
    if (head.digits != "0" || head.ahead.ends_with('-')) {
        fail(1 + line_feeds_in(head.ahead), "the key of a plain file must be written as 0");
    }
    return std::string(head.ahead) + keyText + std::string(head.behind) +
           stored_lines(head.rest, head.first_line(), key);
}

}  // namespace

std::string scrambled(std::string_view plain, int key, FileKind form) {
    std::string stored = scrambled_unchecked(plain, key, form);
    if (unscrambled(stored, form).plain != plain) {
        throw ScramblingError("would not be restored to the same bytes", true);
    }
    return stored;
}

Unscrambled unscrambled(std::string_view stored, FileKind form) {
    const Head head = head_of(stored);
    if (head.key < 0) {
        throw ScramblingError("its key is negative: there is nothing to read behind it", false);
    }
    if (head.key == 0) {
        throw ScramblingError("is plain already: its key is 0", false);
    }
    const std::string lines = plain_lines(head.rest, head.first_line(), head.key);
    return {head.key, form == FileKind::parameters
                          ? lines
                          : std::string(head.ahead) + "0" + std::string(head.behind) + lines};
}

}  // namespace cli
