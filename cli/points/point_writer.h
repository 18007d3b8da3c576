// The rows of a run: from lines of points to lines of points.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "bulk/directory.h"
#include "bulk/road.h"
#include "points/plausibility.h"
#include "points/point_line.h"

namespace cli {

struct RunOptions {
    bool normalGiven = false;   // the heights of the points are normal heights
    bool normalWanted = false;  // a column of normal heights is wanted
    bool latin1 = false;        // what is added to the lines is in ISO 8859-1 and not in UTF-8
    int metreDecimals = 4;
    int degreeDecimals = 9;  // with minutes and seconds, of the seconds
    bool withSeconds = false;
    bool exchanged = false;  // the first two change places: only one of the two sides has the easting first
};

// What became of the points of a run, or of a part of it.
struct Tally {
    std::uint64_t rows = 0;
    std::uint64_t unreadable = 0;
    std::map<int, std::uint64_t> statuses;

    void add(const Tally& other);
    [[nodiscard]] bool all_good() const { return unreadable == 0 && statuses.empty(); }
    // "3 of 10 points failed: 1 unreadable, 2 with status 1108".
    [[nodiscard]] std::string summary() const;
};

// What is to be said about single lines.
struct Report {
    std::uint64_t line = 0;
    std::string text;
};

inline constexpr std::size_t mostErrors = 20;  // that are told of a run

// What the lines of one piece of a file gave.
struct Written {
    std::string text;
    Tally tally;
    std::vector<Report> errors;  // no more than tell that there are too many
    Report warning;              // the first; an empty text for none

    void clear();
};

// In place of the coordinates, and behind the third one.
using Texts = std::array<std::string, 4>;

// Transforms points between two systems of a data directory. Any number of threads may use one at once.
class PointWriter {
  public:
    // Reads the height model if normal heights play a part.
    PointWriter(const RunOptions& runOptions, const lagestatus::Directory& directory,
                const lagestatus::ReadSystem& source, const lagestatus::ReadSystem& target);

    // Transforms whole lines, the first of which has the given number in its file.
    void lines(std::string_view text, const LineForm& form, std::uint64_t firstLine, Written& written) const;

    // A line that is too long to be read, as its row.
    void overlong_line(const LineForm& form, std::uint64_t line, std::size_t limit, Written& written) const;

    // A line of column names, with the names of the coordinates in their places. hasHeight: whether points have one.
    [[nodiscard]] std::string heading(std::string_view line, const LineForm& form, bool hasHeight) const;

    // The names of the columns alone, as a comment.
    [[nodiscard]] std::string label(const LineForm& form, bool hasHeight) const;

  private:
    void row(std::string_view line, std::uint64_t number, const LineForm& form, PointLine& read,
             Written& written) const;
    void point_row(std::string_view line, const LineForm& form, const PointLine& read,
                   Written& written) const;
    [[nodiscard]] Texts names() const;
    [[nodiscard]] std::string encoded(const std::string& text) const;

    RunOptions options;
    std::string targetPath;  // of the target's parameter file and of the height model, as messages name them
    std::string modelPath;
    bool sourceGeocentric;
    bool targetGeocentric;
    bool targetGeographic;
    bool normalGiven;   // where points have heights
    bool normalColumn;  // likewise
    lagestatus::Road road;
    Plausibility plausibility;
};

}  // namespace cli
