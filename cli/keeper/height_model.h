// The height model hoehe.ini as a whole: the library looks up four values of it at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "datafiles/line_reader.h"
#include "heights/height_anomaly.h"
#include "heights/height_model_file.h"
#include "keeper/findings.h"

namespace cli {

struct HeldModel : lagestatus::HeightModel {
    int key = 0;
    bool readable = false;      // the header was read without a defect
    bool wholeGrid = true;      // all values that the file holds were read
    std::vector<float> values;  // metres, in the order of the file; see below for those that are none

    [[nodiscard]] std::int64_t size() const { return std::int64_t{longitude.count} * latitude.count; }
    [[nodiscard]] bool is_there(std::int64_t number) const {
        return number < static_cast<std::int64_t>(values.size());
    }
    // Whether there is a grid of cells on the globe to look things up in.
    [[nodiscard]] bool has_grid() const;
};

// A place without a value (999999), and one whose value cannot be read.
bool is_hole(float value);
bool is_unreadable(float value);
// A height anomaly that there can be on earth.
bool is_plausible(float value);

// The spacing of a grid, in minutes of arc unless it is wide.
std::string spacing_text(double degrees);

// Reads all of an open file and says what is wrong with it.
HeldModel read_height_model(lagestatus::LineReader& lines, Findings& findings);

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
GridSummary summary_of(const HeldModel& model);

// Asks the library for height anomalies in cells all over the grid.
struct LibraryAnswers {
    std::size_t asked = 0;
    std::size_t withValue = 0;
};
LibraryAnswers ask_library(const lagestatus::HeightAnomalies& library, const HeldModel& model,
                           Findings& findings);

}  // namespace cli
