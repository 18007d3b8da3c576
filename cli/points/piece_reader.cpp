#include "points/piece_reader.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

namespace cli {
namespace {

// The byte order mark, if there is one.
std::string_view mark_of(std::string_view bytes) {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    return bytes.starts_with(mark) ? mark : "";
}

// What stands at the head of a file: the byte order mark, and the names of the columns if it has them.
std::string_view head_of(std::string_view bytes, bool header) {
    const std::size_t mark = mark_of(bytes).size();
    const std::size_t feed = bytes.find('\n', mark);
    return bytes.substr(0, !header ? mark : feed == std::string_view::npos ? feed : feed + 1);
}

// The first line that holds a point.
std::optional<std::string_view> first_point(std::string_view lines) {
    while (!lines.empty()) {
        const std::string_view text = take_line(lines).text;
        if (!is_passed_through(text)) {
            return text;
        }
    }
    return std::nullopt;
}

std::uint64_t count_feeds(std::string_view bytes) {
    std::uint64_t feeds = 0;
    while (!bytes.empty()) {
        // Few enough for a counter of one byte, which compilers make sixteen of at once.
        const std::string_view some = bytes.substr(0, 240);
        std::uint8_t count = 0;
        for (const char byte : some) {
            count = static_cast<std::uint8_t>(count + (byte == '\n' ? 1 : 0));
        }
        feeds += count;
        bytes.remove_prefix(some.size());
    }
    return feeds;
}

}  // namespace

// A file at hand.
struct PieceReader::File {
    InputFile& input;
    LineForm form;
    bool delimiterKnown;
    std::uint64_t line = 1;  // of what comes next
    TextBuffer rest = {};    // what was read and is in no piece yet
    bool ended = false;

    void recognise(std::string_view lines) {
        const auto point = delimiterKnown ? std::nullopt : first_point(lines);
        if (point) {
            form.delimiter = recognised_delimiter(*point, form);
            delimiterKnown = true;
        }
    }
};

PieceReader::PieceReader(const FileForm& fileForm, const PointWriter& pointWriter, std::size_t blockSize,
                         OrderedWork<Piece>& pieces)
    : form(fileForm), writer(pointWriter), block(blockSize), work(pieces) {}

void PieceReader::read(InputFile& input) {
    File file = {input, form.lines, form.delimiterKnown};
    while (!file.ended) {
        Piece& piece = work.next();
        take_lines(file, piece);
        if (piece.lines.empty() && !piece.overlong) {
            continue;
        }
        piece.fileName = input.name();
        piece.before.clear();
        if (file.line == 1) {
            take_head(file, piece);
        }
        file.recognise(piece.lines.view());
        piece.form = file.form;
        piece.firstLine = file.line;
        file.line += count_feeds(piece.lines.view()) + (piece.overlong ? 1 : 0);
        work.submit();
    }
}

// Takes the next whole lines, as many as have come; at the end of the file what is left.
void PieceReader::take_lines(File& file, Piece& piece) const {
    // Label and heading hang on the first point.
    const auto isEnough = [&](std::string_view lines) {
        return file.line > 1 || !(form.header || form.label) ||
               first_point(lines.substr(head_of(lines, form.header).size())).has_value();
    };
    TextBuffer& lines = piece.lines;
    lines.clear();
    lines.append(file.rest.view());
    file.rest.clear();
    piece.overlong = false;
    piece.read = 0;
    for (;;) {
        const std::size_t wanted = std::min(std::max(block, 2 * lines.size()), longestLine) - lines.size();
        const std::size_t count = file.input.read(lines.room(wanted), wanted);
        lines.add(count);
        piece.read += count;
        file.ended = count == 0;
        const bool full = lines.size() == longestLine;
        // Of a line that is too long the end is looked for.
        const std::string_view text = lines.view();
        const std::size_t feed = piece.overlong ? text.find('\n') : text.rfind('\n');
        const std::size_t whole = file.ended ? text.size() : feed + 1;  // 0: no line feed
        if (file.ended || (whole > 0 && (full || piece.overlong || isEnough(text.substr(0, whole))))) {
            file.rest.append(text.substr(whole));
            lines.cut(piece.overlong ? 0 : whole);
            return;
        }
        if (full) {
            piece.overlong = true;
            lines.clear();
        }
    }
}

// Takes the head off a file. That of the first one is written, with the names that its columns then have.
void PieceReader::take_head(File& file, Piece& piece) {
    const std::string bytes(piece.lines.view());
    if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) {
        throw FileError(piece.fileName + ": is UTF-16; UTF-8, ISO 8859-1 and Windows-1252 can be read");
    }
    std::string_view head = head_of(bytes, form.header);
    piece.lines.remove_prefix(head.size());
    file.line += head.ends_with('\n') ? 1 : 0;
    file.recognise(piece.lines.view());
    if (std::exchange(begun, true)) {
        return;
    }
    bool hasHeight = !file.form.looksForHeight && file.form.columns.size() > 2;
    if (const auto text = first_point(piece.lines.view())) {
        PointLine read;
        PointLineReader(file.form).read(*text, read);
        hasHeight = read.hasHeight;
    }
    piece.before = mark_of(bytes);
    head.remove_prefix(piece.before.size());
    const std::string_view lineEnd = bytes.find("\r\n") < bytes.find('\n') ? "\r\n" : "\n";
    if (form.label) {
        piece.before.append(writer.label(file.form, hasHeight)).append(lineEnd);
    }
    if (!head.empty()) {
        head = head.substr(0, head.find_last_not_of("\r\n") + 1);
        piece.before.append(writer.heading(head, file.form, hasHeight)).append(lineEnd);
    }
}

}  // namespace cli
