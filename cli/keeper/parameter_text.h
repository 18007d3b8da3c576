// The text of a parameter file: its data lines, each under a comment, and what the library would make of them.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "keeper/data_directory.h"

namespace cli {

// A similarity Q = translation + scale R (P - reduction) between geocentric systems, as parameter files have it:
// metres, radians, and a positive angle turns the coordinate frame.
struct Similarity {
    std::array<double, 3> translation = {};
    std::array<double, 3> rotation = {};
    double scale = 1.0;
    std::array<double, 3> reduction = {};

    bool operator==(const Similarity&) const = default;

    // Whether it counts as an intermediate set: by its translation and angles alone.
    [[nodiscard]] bool is_seen_as_intermediate() const;
    [[nodiscard]] bool changes_nothing() const { return *this == Similarity(); }
};

// The set of the first stage in a system's parameters.
Similarity main_set_of(const SystemDescription& system);
void set_main_set(SystemDescription& system, const Similarity& set);

// One column: the main set leads to where the intermediate set leads from the end of the way; that is undone.
struct DatumSets {
    Similarity main;
    Similarity intermediate;
};

struct ParameterText {
    int code = 0;
    std::string name;
    std::string ellipsoid;
    ProjectionKind kind = ProjectionKind::unknown;
    double latitudeOfOrigin = 0.0;          // degrees
    std::string longitudeOfOrigin = "0.0";  // degrees or a layout of strips, and the zone number
    double additiveY = 0.0;
    double additiveX = 0.0;
    double meridianScale = 1.0;
    double semiMajorAxis = 0.0;
    double semiMinorAxis = 0.0;
    DatumSets intoBessel;
    DatumSets outOfBessel;

    // Comments without their "# ", ahead of the file and of what they explain.
    std::vector<std::string> headComments;
    std::vector<std::string> originComments;
    std::vector<std::string> ellipsoidComments;
    std::vector<std::string> datumComments;
};

// The file in UTF-8.
std::string text_of(const ParameterText& content);

// What the library reads from such a text.
SystemDescription system_of(const std::string& text, int code, Column column);

}  // namespace cli
