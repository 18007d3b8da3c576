// The height model file hoehe.ini: the way from the Bessel datum into the model's, the fundamental point, the grid.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "base/status.h"
#include "base/system_description.h"
#include "datafiles/field_check.h"
#include "datafiles/line_reader.h"
#include "geodesy/geocentric.h"

namespace lagestatus {

// One direction of the grid: the values at smallest, smallest + spacing and so on. Degrees.
struct GridAxis {
    double smallest = 0.0;
    double largest = 0.0;
    double spacing = 0.0;
    int count = 0;  // of values from smallest to largest; the file may hold fewer or more rows

    // The place of a value, counted from 0.
    [[nodiscard]] double at(std::int64_t index) const noexcept {
        return smallest + static_cast<double>(index) * spacing;
    }
};

struct HeightModel {
    Ellipsoid bessel;
    Ellipsoid grs80;
    // From the Bessel datum into the model's: slots 14 to 23 and 26 to 35, as in datum_step.h.
    ParameterArray datum = {};
    double lamR = 0.0;  // fundamental point Rauenberg, radians; 0 in one of both: no correction for it
    double phiR = 0.0;
    double xiR = 0.0;    // deflection of the vertical there, radians: component in the meridian,
    double etaR = 0.0;   // and in the prime vertical
    double zetaR = 0.0;  // height anomaly there, metres
    GridAxis longitude;
    GridAxis latitude;
};

inline constexpr std::string_view heightModelFileName = "hoehe.ini";

// One line of the header: one number, anything behind it is ignored.
struct HeightField {
    enum class Unit : std::uint8_t { asWritten, degrees, arcSeconds };  // angles are radians once read

    Status failure = status::ok;
    double& (*place)(HeightModel&) noexcept = nullptr;
    Check check = Check::none;
    Unit unit = Unit::asWritten;
};

// The header, one data line a field; two lines with the ranges of longitude and latitude follow.
inline constexpr std::size_t heightFieldCount = 29;
[[nodiscard]] std::span<const HeightField, heightFieldCount> height_fields() noexcept;

// Reads one field out of its line. Returned: 0, or the field's status when there is no number or it fails its check;
// model is then unchanged.
[[nodiscard]] Status read_height_field(const HeightField& field, std::string_view text,
                                       HeightModel& model) noexcept;

// Reads smallest value, largest value and spacing, in degrees or, where the degree sign stands in the line,
// sexagesimal. Returned: whether they are a range; if not, axis is of no use.
[[nodiscard]] bool read_grid_axis(std::string_view text, GridAxis& axis) noexcept;

// The grid: its values in one sequence from the southern row to the northern, longitudes fastest.
inline constexpr int valuesPerLine = 7;
inline constexpr double noGridValue = 999999.0;  // marks a place without a value

// What stands behind the value at the front of a grid line: a value ends at the next space or the line's end, and takes
// the blanks behind it along.
[[nodiscard]] std::string_view behind_grid_value(std::string_view text) noexcept;

// One line of the grid, whose values are read from the left to the right.
class GridLine {
  public:
    GridLine() noexcept = default;
    explicit GridLine(std::string_view text) noexcept : rest(text) {}

    // Given:    wanted     0 or more, not before the place read last
    // Returned: status     0; 109 no number, or the mark of a place without a value
    //           value      metres; written on success only
    [[nodiscard]] Status value(int wanted, double& value) noexcept;

  private:
    std::string_view rest;  // from the value at place on
    int place = 0;
};

// The file, opened and read from its start to its end; closed with the object.
class HeightModelFile {
  public:
    HeightModelFile() noexcept = default;
    // Of bytes in the caller's memory, which outlive it: read_key is the first to be called then.
    explicit HeightModelFile(std::string_view heldBytes) noexcept : lines(heldBytes) {}

    // Opens hoehe.ini and reads its scrambling key.
    //
    // Given:    directory  at most 299 characters; "." or empty for the current directory
    // Returned: status     0; 110 not opened; 100 the key is missing or nothing follows it
    [[nodiscard]] Status open(std::string_view directory, PathText encoding = PathText::western) noexcept;

    // Returned: status     0; 100 the key is missing or nothing follows it
    [[nodiscard]] Status read_key() noexcept { return lines.read_key(); }

    // Reads the first two data lines, the semi-axes of Bessel, and no more of the file than the block they lie in.
    //
    // Returned: status     0; 100 the file ends before; 27, 28 unreadable or not greater than 0
    //           model      bessel is written on success
    [[nodiscard]] Status read_axes(HeightModel& model) noexcept;

    // Whether the file, of which read_axes failed, has no data line at all.
    [[nodiscard]] bool is_empty() const noexcept { return !anyLine && !lines.failed(); }

    // Reads the other header lines, to be called next.
    //
    // Returned: status     0; 100 the file ends before; 29 to 48, 101 to 107, 127, 128 a line unreadable or its value
    //                      outside the range of the line
    //           model      complete on success, else of no use
    [[nodiscard]] Status read_rest_of_header(HeightModel& model) noexcept;

    // Reads one value of the grid; the numbers of a series of calls must not descend.
    //
    // Given:    number     0 or more; the values stand in one sequence, columns fastest, seven to a line
    // Returned: status     0; 100 the file ends before; 109 no number, or the mark of a place without a value
    //           value      metres; written on success only
    [[nodiscard]] Status grid_value(std::int64_t number, double& value) noexcept;

    // Reads the next line of the grid, for those who read all of it. Returned: status 0; 100 there is none.
    [[nodiscard]] Status next_grid_line() noexcept {
        ++gridLine;
        return lines.next();
    }

    // The line read last, for those who say what is wrong with it, and whether the file can no longer be read.
    [[nodiscard]] std::string_view text() const noexcept { return lines.text(); }
    [[nodiscard]] std::int64_t line_number() const noexcept { return lines.number(); }
    [[nodiscard]] bool failed() const noexcept { return lines.failed(); }

  private:
    [[nodiscard]] Status read_fields(std::span<const HeightField> some, HeightModel& model) noexcept;

    LineReader lines;
    bool anyLine = false;
    std::int64_t gridLine = -1;  // the number of the grid line that was read last
    GridLine grid;               // that line
};

}  // namespace lagestatus
