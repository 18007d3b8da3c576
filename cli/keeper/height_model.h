// The height model hoehe.ini as a whole: the library reads four values of it at a time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "keeper/findings.h"
#include "keeper/library.h"

namespace cli {

// The grid's places along longitude or latitude.
struct GridRange {
    double smallest = 0.0;  // degrees, as all of these
    double largest = 0.0;
    double spacing = 0.0;
    int count = 0;

    [[nodiscard]] double at(std::int64_t index) const {
        return smallest + static_cast<double>(index) * spacing;
    }
};

inline constexpr std::size_t heightHeaderSize = 29;

struct HeightModel {
    int key = 0;
    bool readable = false;                             // the header was read without a defect
    bool wholeGrid = true;                             // all values that the file holds were read
    std::array<double, heightHeaderSize> header = {};  // as in the file
    GridRange longitude;
    GridRange latitude;
    std::vector<float> values;  // metres, in the order of the file; see below for those that are none

    [[nodiscard]] std::int64_t size() const { return std::int64_t{longitude.count} * latitude.count; }
    [[nodiscard]] bool is_there(std::int64_t number) const {
        return number < static_cast<std::int64_t>(values.size());
    }
    // Whether there is a grid of cells on the globe to look things up in.
    [[nodiscard]] bool has_grid() const;
    // Longitude, latitude of the fundamental point in degrees; 0 in one of both: not used.
    [[nodiscard]] double fundamental_longitude() const { return header[24]; }
    [[nodiscard]] double fundamental_latitude() const { return header[25]; }
};

// A place without a value (999999), and one whose value cannot be read.
bool is_hole(float value);
bool is_unreadable(float value);
// A height anomaly that there can be on earth.
bool is_plausible(float value);

// A number with at most so many decimals, without zeros at its end.
std::string trimmed_text(double value, int decimals);
// The spacing of a grid, in minutes of arc unless it is wide.
std::string spacing_text(double degrees);

// Reads all of a file and says what is wrong with it. fileName is its name in messages.
HeightModel read_height_model(std::string bytes, const std::string& fileName, Findings& findings);

struct GridSummary {
    std::int64_t holes = 0;
    std::int64_t firstHoleColumn = 0, lastHoleColumn = 0, firstHoleRow = 0, lastHoleRow = 0;
    std::int64_t plausible = 0;
    std::int64_t smallest = 0;  // the numbers of these values, where there are plausible ones
    std::int64_t largest = 0;
    double largestStep = 0.0;  // metres between neighbours, where there are two
    std::int64_t stepFrom = 0;
    std::int64_t stepTo = 0;
};
GridSummary summary_of(const HeightModel& model);

// Asks the library for height anomalies in cells all over the grid.
struct LibraryAnswers {
    std::size_t asked = 0;
    std::size_t withValue = 0;
};
LibraryAnswers ask_library(const std::string& directory, const HeightModel& model,
                           const std::string& fileName, Findings& findings);

}  // namespace cli
