#include "keeper/height_model.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "base/angles.h"
#include "datafiles/field_scanner.h"
#include "keeper/data_directory.h"
#include "system/text.h"

namespace cli {
namespace {

constexpr float hole = std::numeric_limits<float>::infinity();
constexpr float unreadable = std::numeric_limits<float>::quiet_NaN();
constexpr double largestPlausible = 200.0;     // metres; the geoid stays within 110 of the ellipsoid
constexpr std::size_t mostValues = 1U << 25U;  // that are held in memory

constexpr const char* effectOfNothing =
    ": all height anomalies are 0, and normal heights outside the Bessel datum fail with status 1100";

const std::string fileName(heightModelFileName);  // NOLINT(cert-err58-cpp): nothing to throw

bool on_globe(const GridAxis& range) {
    return range.largest <= 90.0;
}

// One reading of a file, finding by finding.
class Reading {
  public:
    Reading(LineReader& reader, Findings& list) : lines(reader), findings(list) {}

    HeldModel model() {
        HeldModel model;
        read(model);
        findings.reading_error(lines, fileName);
        return model;
    }

  private:
    void read(HeldModel& model) {
        const Status key = lines.read_key();
        if (lines.failed()) {
            return;
        }
        if (key != status::ok) {
            tell(status::fileEnds, ": the scrambling key at its head is missing");
            return;
        }
        model.key = lines.key();
        if (model.key < 0) {
            findings.defect("key", fileName + ": the key is negative: the library reads nothing behind it" +
                                       effectOfNothing);
            return;
        }
        if (!next_line()) {
            if (lines.failed()) {
                return;
            }
            findings.note("empty", fileName + ": no data line" + effectOfNothing);
            return;
        }
        if (!read_header(model)) {
            return;
        }
        model.readable = findings.defects() == 0;
        if (model.longitude.count > 0 && model.latitude.count > 0) {
            check_range(model.longitude, "longitudes");
            check_range(model.latitude, "latitudes");
            if (model.longitude.count < 8) {
                findings.note(
                    "narrow",
                    fileName + ": fewer than 8 columns, which not every reader of such files can take");
            }
            read_grid(model);
        }
    }

    [[nodiscard]] std::string line_text() const {
        return fileName + ": line " + std::to_string(lines.number());
    }

    void tell(Status status, const std::string& where) {
        findings.defect("header",
                        fileName + ": " + status_text(status::heightModel + status, fileName) + where);
    }

    [[nodiscard]] std::string here() const {
        return " (line " + std::to_string(lines.number()) + ": " + excerpt(lines.text()) + ")";
    }

    // False at the end of the file.
    bool next_line() {
        const bool there = lines.next() == status::ok;
        findings.overlong_line(lines, fileName);
        return there;
    }

    bool next_header_line() {
        const bool there = next_line();
        if (!there && !lines.failed()) {
            tell(status::fileEnds, ": the file ends before its header does");
        }
        return there;
    }

    // The first line has been read. False where the file ends too early.
    bool read_header(HeldModel& model) {
        for (const HeightField& field : height_fields()) {
            if (&field != height_fields().data() && !next_header_line()) {
                return false;
            }
            if (const Status read = read_height_field(field, lines.text(), model); read != status::ok) {
                tell(read, here());
            } else {
                findings.decimal_commas(lines, 1, fileName);
            }
        }
        for (const auto& [axis, failure] : {std::pair{&model.longitude, status::longitudeRange},
                                            std::pair{&model.latitude, status::latitudeRange}}) {
            if (!next_header_line()) {
                return false;
            }
            if (!read_grid_axis(lines.text(), *axis)) {
                tell(failure, here());
                *axis = {};
            }
        }
        return true;
    }

    void check_range(const GridAxis& range, const std::string& which) {
        if (!on_globe(range)) {
            findings.defect(
                "extent", fileName + ": the " + which + " reach beyond 90°, where the library looks up none");
        }
        constexpr double tolerance =
            1e-3;  // of the spacing; where the extent is rounded, the last cell is a little off
        const double beyond = (range.largest - range.smallest) / range.spacing - (range.count - 1);
        if (beyond > tolerance) {
            findings.defect("extent", fileName + ": the " + which + " from the smallest to the largest are " +
                                          number_text(range.count - 1 + beyond) +
                                          " spacings apart, no whole number: behind the last whole one "
                                          "height anomalies are wrong or missing");
        }
    }

    void read_grid(HeldModel& model) {
        const std::int64_t wanted = model.size();
        std::int64_t number = 0;
        std::int64_t superfluous = 0;
        while (next_line()) {
            if (number >= wanted) {
                ++superfluous;
            } else if (model.values.size() + valuesPerLine > mostValues) {
                model.wholeGrid = false;
                break;
            } else {
                read_grid_line(model, wanted - number);
                number += valuesPerLine;
            }
        }
        if (superfluous > 0) {
            findings.defect("superfluous", fileName + ": " + std::to_string(superfluous) +
                                               (superfluous == 1 ? " line" : " lines") +
                                               " behind the grid that its extent and spacing announce");
        }
        if (!model.wholeGrid) {
            findings.defect("size", fileName + ": only the first " + std::to_string(model.values.size()) +
                                        " values of the grid were looked at");
        } else if (!model.is_there(wanted - 1)) {
            const std::int64_t columns = model.longitude.count;
            const auto there = static_cast<std::int64_t>(model.values.size());
            const std::int64_t rows = there / columns;
            const std::int64_t ofNext = there % columns;
            findings.defect("rows", fileName + ": the grid ends early, in row " + std::to_string(rows + 1) +
                                        " of " + std::to_string(model.latitude.count) + ", behind " +
                                        std::to_string(ofNext) + " of its " + std::to_string(columns) +
                                        " values; points north of row " + std::to_string(rows) +
                                        " fail with status " +
                                        std::to_string(status::heightModel + status::fileEnds));
        }
    }

    // The next line of the grid, of which left values are still to come.
    void read_grid_line(HeldModel& model, std::int64_t left) {
        const auto places = static_cast<int>(std::min<std::int64_t>(left, valuesPerLine));
        std::string_view rest = lines.text();
        for (int place = 0; place < places; ++place) {
            read_value(model, rest, place);
            rest = behind_grid_value(rest);
        }
        if (std::any_of(rest.begin(), rest.end(), [](char character) { return !is_blank(character); })) {
            findings.defect(
                "lines with too many values",
                line_text() + ": behind the last value that belongs there stands " + excerpt(rest));
        }
    }

    void read_value(HeldModel& model, std::string_view text, int place) {
        FieldScanner scanner(text);
        double value = 0.0;
        const bool isNumber = scanner.number(value);
        const std::string_view token = text.substr(0, std::min(text.find_first_of(" \n"), text.size()));
        const auto where = [this, place] { return line_text() + ", value " + std::to_string(place + 1); };
        if (!isNumber) {
            const bool missing = std::all_of(text.begin(), text.end(), is_blank);
            findings.defect(missing ? "missing values" : "values that cannot be read",
                            where() + (missing ? " is missing" : ": " + excerpt(token) + " is no number") +
                                " (status " + std::to_string(status::heightModel + status::gridValue) + ")");
            model.values.push_back(unreadable);
            return;
        }
        const std::size_t length = text.size() - scanner.remaining().size();
        if (length < token.size() &&
            !std::all_of(token.begin() + static_cast<std::ptrdiff_t>(length), token.end(), is_blank)) {
            findings.defect("values with something behind them",
                            where() + ": " + excerpt(token) + " is read as " + number_text(value) +
                                "; numbers have a decimal point, and a space behind them");
        }
        if (value == noGridValue) {
            model.values.push_back(hole);
            return;
        }
        if (std::abs(value) > largestPlausible) {
            findings.defect("values that are no height anomalies",
                            where() + ": " + number_text(value) +
                                " is no height anomaly in metres (999999 marks no value)");
        }
        constexpr double limit = 1e6;  // well within a float
        model.values.push_back(static_cast<float>(std::clamp(value, -limit, limit)));
    }

    LineReader& lines;
    Findings& findings;
};

}  // namespace

bool HeldModel::has_grid() const {
    return readable && longitude.count > 1 && latitude.count > 1 && on_globe(longitude) && on_globe(latitude);
}

std::string spacing_text(double degrees) {
    constexpr double minutes = 60.0;
    constexpr double readable = 0.001;  // minutes
    const double inMinutes = degrees * minutes;
    if (inMinutes < readable || degrees > 1e6) {
        return number_text(degrees) + "\u00B0";
    }
    constexpr double fullDegree = 59.99;
    return inMinutes < fullDegree ? trimmed_text(inMinutes, 4) + "\u2032"
                                  : trimmed_text(degrees, 6) + "\u00B0";
}

bool is_hole(float value) {
    return value == hole;
}

bool is_unreadable(float value) {
    return std::isnan(value);
}

bool is_plausible(float value) {
    return std::abs(value) <= static_cast<float>(largestPlausible);
}

HeldModel read_height_model(LineReader& lines, Findings& findings) {
    return Reading(lines, findings).model();
}

GridSummary summary_of(const HeldModel& model) {
    GridSummary summary;
    const std::int64_t columns = std::max(model.longitude.count, 1);
    const auto valueOf = [&model](std::int64_t number) {
        return model.values[static_cast<std::size_t>(number)];
    };
    const auto stepBetween = [&](std::int64_t one, std::int64_t other) {
        const double step = std::abs(static_cast<double>(valueOf(one)) - static_cast<double>(valueOf(other)));
        if (is_plausible(valueOf(one)) && step > summary.largestStep) {
            summary.largestStep = step;
            summary.stepFrom = one;
            summary.stepTo = other;
        }
    };
    for (std::int64_t number = 0; model.is_there(number); ++number) {
        const float value = valueOf(number);
        const std::int64_t column = number % columns;
        const std::int64_t row = number / columns;
        if (is_hole(value)) {
            if (summary.holes++ == 0) {
                summary.firstHoleColumn = summary.lastHoleColumn = column;
                summary.firstHoleRow = row;
            }
            summary.firstHoleColumn = std::min(summary.firstHoleColumn, column);
            summary.lastHoleColumn = std::max(summary.lastHoleColumn, column);
            summary.lastHoleRow = row;
        } else if (is_plausible(value)) {
            if (summary.plausible++ == 0) {
                summary.smallest = summary.largest = number;
            }
            summary.smallest = value < valueOf(summary.smallest) ? number : summary.smallest;
            summary.largest = value > valueOf(summary.largest) ? number : summary.largest;
            if (column > 0) {
                stepBetween(number - 1, number);
            }
            if (row > 0) {
                stepBetween(number - columns, number);
            }
        }
    }
    return summary;
}

namespace {

// What the library must say about a place inside a cell: the first of its corners without a value decides.
int expected_status(const HeldModel& model, std::int64_t first) {
    const std::int64_t columns = model.longitude.count;
    for (const std::int64_t number : {first, first + 1, first + columns, first + columns + 1}) {
        if (!model.is_there(number)) {
            return status::heightModel + status::fileEnds;
        }
        const float value = model.values[static_cast<std::size_t>(number)];
        if (is_hole(value) || is_unreadable(value)) {
            return status::heightModel + status::gridValue;
        }
    }
    return 0;
}

// The latitude and longitude on Bessel that leads to a place of the grid; nothing if it cannot be found.
std::optional<std::array<double, 2>> on_bessel(const std::array<double, 2>& place, const HeldModel& model,
                                               Status& status) {
    std::array<double, 2> point = place;
    constexpr int passes = 20;
    for (int pass = 0; pass < passes; ++pass) {
        Geographic at;
        status = HeightLookup(model).bessel_to_grid(point[1] * degree, point[0] * degree, at);
        if (status != status::ok) {
            return std::nullopt;
        }
        const double north = place[0] - at.phi / degree;
        const double east = place[1] - at.lam / degree;
        constexpr double closeEnough = 0.1;  // of the spacing: the place is in the middle of a cell
        if (std::abs(north) < closeEnough * model.latitude.spacing &&
            std::abs(east) < closeEnough * model.longitude.spacing) {
            return point;
        }
        point[0] += north;
        point[1] += east;
    }
    return std::nullopt;
}

}  // namespace

LibraryAnswers ask_library(const HeightAnomalies& library, const HeldModel& model, Findings& findings) {
    constexpr int steps = 4;
    LibraryAnswers answers;
    const std::int64_t columns = model.longitude.count;
    const std::int64_t rows = model.latitude.count;
    int unreached = 0;
    Status lastFailure = status::ok;
    // Cells from the first to the last, at equal distances, as far as there are so many.
    const auto cells = [](std::int64_t nodes) {
        std::set<std::int64_t> chosen;
        for (int number = 0; number <= steps && nodes > 1; ++number) {
            chosen.insert((nodes - 2) * number / steps);
        }
        return chosen;
    };
    const auto textOf = [](Status status) {
        return status == status::ok ? std::string("0") : status_text(status, fileName);
    };
    for (const std::int64_t row : cells(rows)) {
        for (const std::int64_t column : cells(columns)) {
            const std::array<double, 2> place = {model.latitude.at(row) + model.latitude.spacing / 2,
                                                 model.longitude.at(column) + model.longitude.spacing / 2};
            Status failure = status::ok;
            const auto point = on_bessel(place, model, failure);
            if (!point) {
                ++unreached;
                lastFailure = failure;
                continue;
            }
            ++answers.asked;
            const Status expected = expected_status(model, columns * row + column);
            answers.withValue += expected == status::ok ? 1 : 0;
            double zeta = 0.0;
            const Status found = library.at((*point)[1] * degree, (*point)[0] * degree, zeta);
            const Status answered = found == status::ok ? found : status::heightModel + found;
            if (answered != expected) {
                findings.defect("library",
                                fileName + ": at " + fixed_text(place[0], 5) + "° N " +
                                    fixed_text(place[1], 5) + "° E status " + std::to_string(expected) +
                                    " was to be expected, but the library says " + textOf(answered));
            }
        }
    }
    if (answers.asked == 0 && unreached > 0) {
        findings.defect("library",
                        fileName +
                            ": the datum transformation of its header leads no point of the Bessel datum to "
                            "the grid" +
                            (lastFailure == status::ok ? "" : ": " + textOf(lastFailure)));
    }
    return answers;
}

}  // namespace cli
