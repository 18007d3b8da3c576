#include "keeper/height_model.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "keeper/closure.h"
#include "keeper/data_lines.h"
#include "keeper/directory.h"
#include "system/output.h"

namespace cli {
namespace {

constexpr int valuesPerLine = 7;
constexpr double noValue = 999999.0;
constexpr float hole = std::numeric_limits<float>::infinity();
constexpr float unreadable = std::numeric_limits<float>::quiet_NaN();
constexpr double largestPlausible = 200.0;     // metres; the geoid stays within 110 of the ellipsoid
constexpr std::size_t mostValues = 1U << 25U;  // that are held in memory

// Statuses of the library without the 1000 that it adds to them.
constexpr int statusFileEnds = 100;
constexpr int statusLongitudes = 106;
constexpr int statusLatitudes = 107;
constexpr int statusNoValue = 109;

constexpr const char* effectOfNothing =
    ": all height anomalies are 0, and normal heights outside the Bessel datum fail with status 1100";

enum class Sign { any, notNegative, positive };

struct HeaderLine {
    int status;
    Sign sign = Sign::any;
};

constexpr std::array<HeaderLine, heightHeaderSize> headerLines = {{{27, Sign::positive},
                                                                   {28, Sign::positive},
                                                                   {127, Sign::positive},
                                                                   {128, Sign::positive},
                                                                   {29},
                                                                   {30},
                                                                   {31},
                                                                   {32},
                                                                   {33},
                                                                   {34},
                                                                   {35},
                                                                   {36},
                                                                   {37},
                                                                   {38},
                                                                   {39},
                                                                   {40},
                                                                   {41},
                                                                   {42},
                                                                   {43},
                                                                   {44},
                                                                   {45},
                                                                   {46},
                                                                   {47},
                                                                   {48},
                                                                   {101, Sign::notNegative},
                                                                   {102, Sign::notNegative},
                                                                   {103},
                                                                   {104},
                                                                   {105}}};

constexpr char degreeSign = '\xB0';

bool sexagesimal(Fields& fields, double& angle) {
    int degrees = 0;
    int minutes = 0;
    double seconds = 0.0;
    if (!fields.integer(degrees) || !fields.literal(degreeSign) || !fields.integer(minutes) ||
        !fields.literal('\'') || !fields.number(seconds)) {
        return false;
    }
    angle = degrees + minutes / 60.0 + seconds / 3600.0;
    return degrees >= 0 && degrees <= 359 && minutes >= 0 && minutes <= 59 && seconds >= 0.0 &&
           seconds <= 60.0;
}

bool read_range(std::string_view text, GridRange& range) {
    Fields fields(text);
    if (text.find(degreeSign) != std::string_view::npos) {
        if (!sexagesimal(fields, range.smallest) || !fields.literal('"') ||
            !sexagesimal(fields, range.largest) || !fields.literal('"') ||
            !sexagesimal(fields, range.spacing)) {
            return false;
        }
    } else if (!fields.number(range.smallest) || !fields.number(range.largest) ||
               !fields.number(range.spacing)) {
        return false;
    }
    const double count = (range.largest - range.smallest) / range.spacing + 1.000005;
    constexpr double limit = std::numeric_limits<int>::max();
    if (!(range.smallest >= 0.0 && range.largest > range.smallest && range.spacing > 0.0 && count <= limit)) {
        return false;
    }
    range.count = static_cast<int>(count);
    return true;
}

bool on_globe(const GridRange& range) {
    constexpr double furthest = 90.0;
    return range.largest <= furthest;
}

// One reading of a file, finding by finding.
class Reading {
  public:
    Reading(std::string bytes, const std::string& name, Findings& list)
        : lines(std::move(bytes)), fileName(name), findings(list) {}

    HeightModel model() {
        HeightModel model;
        read(model);
        for (const std::size_t number : lines.long_lines()) {
            findings.defect("too long lines", line_text(number) +
                                                  ": 1000 characters or more: what is beyond the first "
                                                  "999 is read as another line");
        }
        return model;
    }

  private:
    void read(HeightModel& model) {
        if (!lines.read_key()) {
            status(statusFileEnds, ": the scrambling key at its head is missing");
            return;
        }
        model.key = lines.key();
        if (model.key < 0) {
            findings.defect("key", fileName + ": the key is negative: the library reads nothing behind it" +
                                       effectOfNothing);
            return;
        }
        if (!lines.next()) {
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

    [[nodiscard]] std::string line_text(std::size_t number) const {
        return fileName + ": line " + std::to_string(number);
    }

    void status(int code, const std::string& where) {
        findings.defect("header", fileName + ": " + status_text(heightModelFrom + code, fileName) + where);
    }

    [[nodiscard]] std::string here() const {
        return " (line " + std::to_string(lines.number()) + ": " + excerpt(lines.text()) + ")";
    }

    bool next_line() {
        if (!lines.next()) {
            status(statusFileEnds, ": the file ends before its header does");
            return false;
        }
        return true;
    }

    // The first line has been read. False where the file ends too early.
    bool read_header(HeightModel& model) {
        for (std::size_t index = 0; index < headerLines.size(); ++index) {
            if (index > 0 && !next_line()) {
                return false;
            }
            const HeaderLine& line = headerLines[index];
            Fields fields(lines.text());
            double& value = model.header[index];
            if (!fields.number(value) || (line.sign == Sign::positive && !(value > 0.0)) ||
                (line.sign == Sign::notNegative && value < 0.0)) {
                status(line.status, here());
            } else if (fields.rest().starts_with(',')) {
                findings.defect("header", line_text(lines.number()) + ": " + excerpt(lines.text()) +
                                              " is read as " + number_text(value) +
                                              ": numbers have a decimal point");
            }
        }
        for (const auto& [range, code] :
             {std::pair{&model.longitude, statusLongitudes}, std::pair{&model.latitude, statusLatitudes}}) {
            if (!next_line()) {
                return false;
            }
            if (!read_range(lines.text(), *range)) {
                status(code, here());
                *range = {};
            }
        }
        return true;
    }

    void check_range(const GridRange& range, const std::string& which) {
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

    void read_grid(HeightModel& model) {
        const std::int64_t wanted = model.size();
        std::int64_t number = 0;
        std::int64_t superfluous = 0;
        while (lines.next()) {
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
                                        std::to_string(heightModelFrom + statusFileEnds));
        }
    }

    // The next line of the grid, of which left values are still to come.
    void read_grid_line(HeightModel& model, std::int64_t left) {
        const auto places = static_cast<int>(std::min<std::int64_t>(left, valuesPerLine));
        std::string_view rest = lines.text();
        for (int place = 0; place < places; ++place) {
            read_value(model, rest, place);
            rest.remove_prefix(std::min(rest.find_first_of(" \n"), rest.size()));
            rest.remove_prefix(std::min(rest.find_first_not_of(" \t"), rest.size()));
        }
        if (std::any_of(rest.begin(), rest.end(), [](char character) { return !is_blank(character); })) {
            findings.defect("lines with too many values",
                            line_text(lines.number()) + ": behind the last value that belongs there stands " +
                                excerpt(rest));
        }
    }

    void read_value(HeightModel& model, std::string_view text, int place) {
        Fields fields(text);
        double value = 0.0;
        const bool isNumber = fields.number(value);
        const std::string_view token = text.substr(0, std::min(text.find_first_of(" \n"), text.size()));
        const auto where = [this, place] {
            return line_text(lines.number()) + ", value " + std::to_string(place + 1);
        };
        if (!isNumber) {
            const bool missing = std::all_of(text.begin(), text.end(), is_blank);
            findings.defect(missing ? "missing values" : "values that cannot be read",
                            where() + (missing ? " is missing" : ": " + excerpt(token) + " is no number") +
                                " (status " + std::to_string(heightModelFrom + statusNoValue) + ")");
            model.values.push_back(unreadable);
            return;
        }
        const std::size_t length = text.size() - fields.rest().size();
        if (length < token.size() &&
            !std::all_of(token.begin() + static_cast<std::ptrdiff_t>(length), token.end(), is_blank)) {
            findings.defect("values with something behind them",
                            where() + ": " + excerpt(token) + " is read as " + number_text(value) +
                                "; numbers have a decimal point, and a space behind them");
        }
        if (value == noValue) {
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

    DataLines lines;
    const std::string& fileName;
    Findings& findings;
};

}  // namespace

bool HeightModel::has_grid() const {
    return readable && longitude.count > 1 && latitude.count > 1 && on_globe(longitude) && on_globe(latitude);
}

std::string trimmed_text(double value, int decimals) {
    std::string text = fixed_text(value, decimals);
    if (text.find('.') != std::string::npos) {
        text.erase(text.find_last_not_of('0') + 1);
        text.erase(text.find_last_not_of('.') + 1);
    }
    return text;
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

HeightModel read_height_model(std::string bytes, const std::string& fileName, Findings& findings) {
    return Reading(std::move(bytes), fileName, findings).model();
}

GridSummary summary_of(const HeightModel& model) {
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
int expected_status(const HeightModel& model, std::int64_t first) {
    const std::int64_t columns = model.longitude.count;
    for (const std::int64_t number : {first, first + 1, first + columns, first + columns + 1}) {
        if (!model.is_there(number)) {
            return heightModelFrom + statusFileEnds;
        }
        const float value = model.values[static_cast<std::size_t>(number)];
        if (is_hole(value) || is_unreadable(value)) {
            return heightModelFrom + statusNoValue;
        }
    }
    return 0;
}

// From the Bessel datum to that of the height model, as its file says.
Road road_to_model(const std::string& directory, const System& bessel, const HeightModel& model) {
    System grid = neutral_system("Geographisch", "Grid", model.header[2], model.header[3]);
    constexpr std::size_t firstOfDatum = 4;
    for (std::size_t index = 0; index < slots::datumSets.size(); ++index) {
        grid.parameters.at(slots::datumSets.at(index)) = model.header.at(firstOfDatum + index);
    }
    return {directory, bessel, grid};
}

// The latitude and longitude on Bessel that a road leads to a place of the grid; nothing if it cannot be found.
std::optional<Point> on_bessel(const Road& road, const std::array<double, 2>& place, const HeightModel& model,
                               int& status) {
    Point point = {place[0], place[1], 0.0};
    constexpr int passes = 20;
    for (int pass = 0; pass < passes; ++pass) {
        const Transformed reached = road.transform(point, {});
        status = reached.status;
        if (status != 0) {
            return std::nullopt;
        }
        const double north = place[0] - reached.result[0];
        const double east = place[1] - reached.result[1];
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

LibraryAnswers ask_library(const std::string& directory, const HeightModel& model,
                           const std::string& fileName, Findings& findings) {
    constexpr int steps = 4;
    LibraryAnswers answers;
    const System bessel = neutral_system("Geographisch", "Bessel", model.header[0], model.header[1]);
    const Road toModel = road_to_model(directory, bessel, model);
    const Road itself(directory, bessel, bessel);
    const std::int64_t columns = model.longitude.count;
    const std::int64_t rows = model.latitude.count;
    int unreached = 0;
    int lastFailure = 0;
    // Cells from the first to the last, at equal distances, as far as there are so many.
    const auto cells = [](std::int64_t nodes) {
        std::set<std::int64_t> chosen;
        for (int number = 0; number <= steps && nodes > 1; ++number) {
            chosen.insert((nodes - 2) * number / steps);
        }
        return chosen;
    };
    for (const std::int64_t row : cells(rows)) {
        for (const std::int64_t column : cells(columns)) {
            const std::array<double, 2> place = {model.latitude.at(row) + model.latitude.spacing / 2,
                                                 model.longitude.at(column) + model.longitude.spacing / 2};
            int status = 0;
            const auto point = on_bessel(toModel, place, model, status);
            if (!point) {
                ++unreached;
                lastFailure = status;
                continue;
            }
            ++answers.asked;
            const int expected = expected_status(model, columns * row + column);
            answers.withValue += expected == 0 ? 1 : 0;
            const int answered = itself.transform(*point, {false, true}).status;
            if (answered != expected) {
                findings.defect("library",
                                fileName + ": at " + fixed_text(place[0], 5) + "° N " +
                                    fixed_text(place[1], 5) + "° E status " + std::to_string(expected) +
                                    " was to be expected, but the library says " +
                                    (answered == 0 ? std::string("0") : status_text(answered, fileName)));
            }
        }
    }
    if (answers.asked == 0 && unreached > 0) {
        findings.defect("library",
                        fileName +
                            ": the datum transformation of its header leads no point of the Bessel datum to "
                            "the grid" +
                            (lastFailure == 0 ? std::string() : ": " + status_text(lastFailure, fileName)));
    }
    return answers;
}

}  // namespace cli
