// The form of point files: one point a line, its coordinates in some of its columns.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

// Between columns: runs of blanks and tabs (that is what blanks stands for), or one of ; , and the tab.
inline constexpr char blanks = ' ';

struct LineForm {
    char delimiter = blanks;
    bool decimalComma = false;
    // The columns of northing, easting and height (latitude, longitude, height; X, Y, Z), from 0. Without a third one
    // there are no heights.
    std::vector<std::size_t> columns = {0, 1, 2};
    // The third column counts only where it looks like a number: it may be absent, or be part of the text.
    bool looksForHeight = true;
    bool angles = false;  // the first two are degrees and may have minutes and seconds
};

// A part of a line.
struct Span {
    std::size_t begin = 0;
    std::size_t end = 0;
};

using Fields = std::array<std::optional<Span>, 3>;

struct PointLine {
    std::array<double, 3> point = {};
    Fields fields;  // where they stand, without blanks and quotes around them
    bool hasHeight = false;
    std::string error;  // why the line is no point; empty if it is one
};

// A carriage return within a line is text.
inline constexpr std::string_view blankCharacters = " \t\v\f";

struct TextLine {
    std::string_view text;
    std::string_view end;  // a line feed, with a carriage return if there is one before it
};

// Whether a character is one of them.
inline bool is_gap(char character) {
    return character == ' ' || (character >= '\t' && character <= '\f' && character != '\n');
}

// Takes the first line from a text, which is not empty.
TextLine take_line(std::string_view& text);

// Whether a line holds no point and is to be passed through: empty, or a comment that begins with "#".
inline bool is_passed_through(std::string_view line) {
    std::size_t first = 0;
    while (first < line.size() && is_gap(line[first])) {
        ++first;
    }
    return first == line.size() || line[first] == '#';
}

// The delimiter of a file, from its first line that holds a point: the one by which the columns are numbers. If there
// is none, the most telling one.
char recognised_delimiter(std::string_view line, LineForm form);

// Splits lines and reads their numbers; keeps its memory from line to line.
class PointLineReader {
  public:
    explicit PointLineReader(const LineForm& lineForm);

    // Where a line has its coordinates. A field in double quotes may hold the delimiter.
    Fields fields_of(std::string_view line);

    // Reads the point of a line. Every field must be a number as a whole, and finite.
    void read(std::string_view line, PointLine& result);

  private:
    void split(std::string_view line);
    std::string_view content_of(std::string_view line, const std::optional<Span>& place);
    bool read_coordinate(std::string_view field, std::size_t part, double& value) const;

    LineForm form;
    std::size_t wanted;  // fields of a line that are looked at
    std::vector<Span> spans;
    std::size_t found = 0;  // of them, in the last line
    std::string unquoted;   // the last field that stood in quotes
};

}  // namespace cli
