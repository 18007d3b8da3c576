// One line of a point file.
#pragma once

#include <array>
#include <string>
#include <string_view>

namespace cli {

struct PointLine {
    std::array<double, 3> point = {};
    bool hasHeight = false;
    std::string_view rest;  // what follows the numbers, passed through
    std::string error;      // why the line is none; empty if it is one
};

// Whether a line holds no point and is to be passed through: empty, or a comment that begins with "#".
bool is_passed_through(std::string_view line);

// Reads "coordinate coordinate [height] [rest]", separated by blanks. A third field that does not look like a
// number begins the rest. A field that is a number only in part, "nan" and "inf" are errors.
PointLine read_point_line(std::string_view line);

}  // namespace cli
