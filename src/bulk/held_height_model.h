// A height model that is held in memory.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/status.h"
#include "heights/height_anomaly.h"
#include "heights/height_model_file.h"

namespace lagestatus {

// The whole of hoehe.ini, read once: whatever is asked of it, the answer is the one that the file would give, also
// where it is broken. Throws std::bad_alloc when it is made; never afterwards.
class HeldHeightModel final : public HeightAnomalies {
  public:
    // The file of a directory, whose name is UTF-8; "." for the current directory.
    explicit HeldHeightModel(std::string_view directory);

    struct Bytes {
        std::string_view bytes;
    };
    // The file by its contents, which are the caller's and are not needed afterwards.
    explicit HeldHeightModel(Bytes contents);

    [[nodiscard]] Status at(double lam, double phi, double& zeta) const noexcept override;
    [[nodiscard]] Status at(const Geocentric& point, Found& found) const noexcept override;

    // What is wrong with its head, and where, or that the file cannot be read to its end: 0, or the status that points
    // get (from 1000).
    struct Defect {
        Status status = status::ok;
        std::int64_t line = 0;  // 0: no line
        std::string text;       // of that line, in ISO 8859-1
    };
    [[nodiscard]] const Defect& defect() const noexcept { return defectFound; }

    // The head, complete without a defect.
    [[nodiscard]] const HeightModel& header() const noexcept { return model; }
    // The values of the grid, as long as the model lives; NaN where there is none, or where it takes at() to tell.
    [[nodiscard]] std::span<const double> grid() const noexcept { return values; }
    // How many values the lines of the grid have places for, and how many bytes all of it takes.
    [[nodiscard]] std::size_t count() const noexcept { return values.size(); }
    [[nodiscard]] std::size_t memory() const noexcept;

  private:
    void read(HeightModelFile& file, Status opened);
    [[nodiscard]] Status read_head(HeightModelFile& file);
    void read_grid(HeightModelFile& file);
    void keep_line(std::string_view text);
    [[nodiscard]] Status anomaly(double lam, double phi, double& zeta) const noexcept;
    [[nodiscard]] Status read_corners(const std::array<std::int64_t, 4>& corners,
                                      std::array<double, 4>& found) const noexcept;

    // A line with blanks that are neither spaces nor tabs: what its values are may depend on which of them a lookup
    // reads before.
    struct OddLine {
        std::int64_t number;  // counted from 0 with the first of the grid
        std::string text;
    };

    HeightModel model;
    Status opened = status::ok;
    Status axes = status::ok;  // of reading the semi-axes of Bessel,
    Status rest = status::ok;  // and the other lines of the head
    bool isEmpty = false;      // no line at all: every height anomaly is 0
    Defect defectFound;
    std::optional<HeightLookup> lookup;
    std::vector<double> values;  // seven a line; NaN: there is none, or its line is odd
    std::vector<OddLine> oddLines;
};

}  // namespace lagestatus
