// The rows of a run: from lines of points to lines of points.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "bulk/carrier.h"
#include "bulk/directory.h"
#include "bulk/road.h"
#include "points/plausibility.h"
#include "points/point_line.h"
#include "system/text_buffer.h"

namespace cli {

class Composer;

struct RunOptions {
    bool normalGiven = false;   // the heights of the points are normal heights
    bool normalWanted = false;  // a column of normal heights is wanted
    bool fast = false;          // the fast calculation
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
    TextBuffer text;
    Tally tally;
    std::vector<Report> errors;  // no more than tell that there are too many
    Report warning;              // the first; an empty text for none

    void clear();
};

// A line of a file on its way to its row.
struct Row {
    std::string_view line;
    std::string_view end;
    std::uint64_t number = 0;  // of the line in its file
    bool passed = false;       // through: no point is to be read
    PointLine read;
    lagestatus::CarriedPoint carried;  // if it is a point
};

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

    // Whether the fast calculation carries any points.
    [[nodiscard]] bool is_fast() const noexcept { return withHeight.is_fast(); }

  private:
    using Names = std::array<std::string, 4>;  // of the coordinates, and of the normal height

    void take_rows(std::string_view& text, PointLineReader& reader, std::uint64_t firstLine,
                   std::vector<Row>& rows, std::size_t& count) const;
    struct Together;
    void carry(std::span<Row> rows, Together& together) const;
    void write_row(const Row& row, Composer& composer, Written& written) const;
    void write_failed(const Row& row, Composer& composer, Written& written) const;
    void write_point(const Row& row, Composer& composer, Written& written) const;
    [[nodiscard]] bool wants_normal(const PointLine& read) const;
    [[nodiscard]] Names names() const;
    [[nodiscard]] std::string encoded(const std::string& text) const;

    RunOptions options;
    std::string targetPath;  // of the target's parameter file and of the height model, as messages name them
    std::string modelPath;
    bool sourceGeocentric;
    bool targetGeocentric;
    bool targetGeographic;
    bool writesAngles;  // with minutes and seconds
    bool normalGiven;   // where points have heights
    bool normalColumn;  // likewise
    std::shared_ptr<const lagestatus::HeldHeightModel> model;
    lagestatus::Road road;
    lagestatus::Carrier withHeight;  // of points with one, and of all to geocentric coordinates
    lagestatus::Carrier withoutHeight;
    Plausibility plausibility;
};

}  // namespace cli
