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

}  // namespace

// A file at hand.
struct PieceReader::File {
    InputFile& input;
    LineForm form;
    bool delimiterKnown;
    std::uint64_t line = 1;  // of what comes next
    std::string rest = {};   // what was read and is in no piece yet
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
        file.recognise(piece.lines);
        piece.form = file.form;
        piece.firstLine = file.line;
        const auto feeds = std::count(piece.lines.begin(), piece.lines.end(), '\n');
        file.line += static_cast<std::uint64_t>(feeds) + (piece.overlong ? 1 : 0);
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
    std::string& rest = file.rest;
    piece.overlong = false;
    piece.read = 0;
    for (;;) {
        const std::size_t had = rest.size();
        rest.resize(std::min(std::max(block, 2 * had), longestLine));
        const std::size_t count = file.input.read(rest.data() + had, rest.size() - had);
        rest.resize(had + count);
        piece.read += count;
        file.ended = count == 0;
        const bool full = rest.size() == longestLine;
        // Of a line that is too long the end is looked for.
        const std::size_t feed = piece.overlong ? rest.find('\n') : rest.rfind('\n');
        const std::size_t whole = file.ended ? rest.size() : feed + 1;  // 0: no line feed
        const std::string_view lines = std::string_view(rest).substr(0, whole);
        if (file.ended || (whole > 0 && (full || piece.overlong || isEnough(lines)))) {
            piece.lines = piece.overlong ? "" : lines;
            rest.erase(0, whole);
            return;
        }
        if (full) {
            piece.overlong = true;
            rest.clear();
        }
    }
}

// Takes the head off a file. That of the first one is written, with the names that its columns then have.
void PieceReader::take_head(File& file, Piece& piece) {
    const std::string bytes = piece.lines;
    if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) {
        throw FileError(piece.fileName + ": is UTF-16; UTF-8, ISO 8859-1 and Windows-1252 can be read");
    }
    std::string_view head = head_of(bytes, form.header);
    piece.lines.erase(0, head.size());
    file.line += head.ends_with('\n') ? 1 : 0;
    file.recognise(piece.lines);
    if (std::exchange(begun, true)) {
        return;
    }
    bool hasHeight = !file.form.looksForHeight && file.form.columns.size() > 2;
    if (const auto text = first_point(piece.lines)) {
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
