// The height model file hoehe.ini: the way from the Bessel datum into the model's, the fundamental point, the grid.
#pragma once

#include <cstdint>
#include <string_view>

#include "base/status.h"
#include "base/system_description.h"
#include "datafiles/data_file.h"
#include "datafiles/line_reader.h"
#include "geodesy/geocentric.h"

namespace lagestatus {

// One direction of the grid: the values at smallest, smallest + spacing and so on. Degrees.
struct GridAxis {
    double smallest = 0.0;
    double largest = 0.0;
    double spacing = 0.0;
    int count = 0;  // of values from smallest to largest; the file may hold fewer or more rows
};

struct HeightModel {
    Ellipsoid bessel;
    Ellipsoid grs80;
    ParameterArray datum =
        {};  // slots 14 to 23 and 26 to 35: from the Bessel datum into the model's, as in datum_step.h
    double lamR = 0.0;  // fundamental point Rauenberg, radians; 0 in one of both: no correction for it
    double phiR = 0.0;
    double xiR = 0.0;    // deflection of the vertical there, radians: component in the meridian,
    double etaR = 0.0;   // and in the prime vertical
    double zetaR = 0.0;  // height anomaly there, metres
    GridAxis longitude;
    GridAxis latitude;
};

// The file, opened and read from its start to its end; closed with the object.
class HeightModelFile {
  public:
    // Opens hoehe.ini and reads its scrambling key.
    //
    // Given:    directory  at most 299 characters; "." or empty for the current directory
    // Returned: status     0; 110 not opened; 100 the key is missing or nothing follows it
    [[nodiscard]] Status open(std::string_view directory) noexcept;

    // Reads the first two data lines, the semi-axes of Bessel, and no more of the file than the block they lie in.
    // To be called in place of read_header.
    //
    // Returned: status     0; 100 the file ends before; 27, 28 unreadable or not greater than 0
    //           bessel     written on success only
    [[nodiscard]] Status read_bessel_axes(Ellipsoid& bessel) noexcept;

    // Reads the 29 header lines and the two range lines.
    //
    // Returned: status     0; 100 the file ends before; 27 to 48, 101 to 107, 127, 128 a line unreadable or its value
    //                      outside the range of the line
    //           model      complete on success, else of no use
    //           empty      the file holds no data line at all: status 0, and nothing is in model
    [[nodiscard]] Status read_header(HeightModel& model, bool& empty) noexcept;

    // Reads one value of the grid; the numbers of a series of calls must not descend.
    //
    // Given:    number     0 or more; the values stand in one sequence, columns fastest, seven to a line
    // Returned: status     0; 100 the file ends before; 109 no number, or the mark of a place without a value
    //           value      metres; written on success only
    [[nodiscard]] Status grid_value(std::int64_t number, double& value) noexcept;

  private:
    DataFile file;
    int key = 0;
    Line line;
    std::int64_t lineNumber = -1;  // of the grid line in line
    std::string_view rest;         // of that line, from the value at place on
    int place = 0;
};

}  // namespace lagestatus
