// What is wrong with a data directory, and what a data keeper may want to know besides.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "datafiles/line_reader.h"

namespace cli {

// Findings of one section, grouped by their kind. Of each kind only the first are kept, the others counted.
class Findings {
  public:
    void defect(std::string_view kind, const std::string& text) { add(true, kind, text); }
    void note(std::string_view kind, const std::string& text) { add(false, kind, text); }

    // A line of a data file that a reader takes for more than one, told once.
    void overlong_line(const lagestatus::LineReader& lines, const std::string& file);

    // The file cannot be read to its end, if that is so.
    void reading_error(const lagestatus::LineReader& lines, const std::string& file);

    // Numbers at the front of the current line, at most so many, that end at a comma: read as less than was meant.
    void decimal_commas(const lagestatus::LineReader& lines, int numbers, const std::string& file);

    [[nodiscard]] std::size_t defects() const;
    void print() const;

  private:
    struct Group {
        bool isDefect;
        std::string kind;
        std::vector<std::string> texts;
        std::size_t count;
    };
    void add(bool isDefect, std::string_view kind, const std::string& text);

    std::vector<Group> groups;
    std::pair<std::string, std::int64_t> overlongTold;  // file and line
};

}  // namespace cli
