// check: what is wrong with a data directory.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <numbers>
#include <optional>
#include <set>
#include <string>
#include <system_error>
#include <vector>

#include "commands/commands.h"
#include "keeper/anomaly_map.h"
#include "keeper/closure.h"
#include "keeper/data_lines.h"
#include "keeper/directory.h"
#include "keeper/findings.h"
#include "keeper/height_model.h"
#include "system/files.h"
#include "system/output.h"
#include "system/platform.h"

namespace cli {
namespace {

constexpr std::size_t textFileLimit = std::size_t{1} << 24U;     // bytes of DEFAULT or a parameter file
constexpr std::size_t heightModelLimit = std::size_t{1} << 27U;  // bytes of hoehe.ini
constexpr double closureLimit = 0.001;                           // metres
constexpr double millimetres = 1000.0;

std::string plural(std::size_t count, const std::string& word) {
    return std::to_string(count) + ' ' + word + (count == 1 ? "" : "s");
}

void report_long_lines(const DataLines& lines, const std::string& file, Findings& findings) {
    for (const std::size_t number : lines.long_lines()) {
        findings.defect(
            "too long lines in " + file,
            file + ": line " + std::to_string(number) +
                ": 1000 characters or more: what is beyond the first 999 is read as another line");
    }
}

// The definition file as it stands, beside what the library makes of it.
struct DefinitionText {
    int announced = 0;
    std::size_t linesBehindHead = 0;
};

// Nothing where the file cannot be read or has no head line; what is found is added to the findings.
std::optional<DefinitionText> read_definition_text(const std::string& directory, Findings& findings) {
    const auto path = find_data_file(directory, u"DEFAULT");
    if (!path) {
        return std::nullopt;
    }
    DataLines lines(read_file(*path, textFileLimit));
    DefinitionText text;
    const bool hasHead = lines.next();
    Fields head(lines.text());
    if (!hasHead || !head.integer(text.announced)) {
        return std::nullopt;
    }
    int scrambled = 0;
    if (head.integer(scrambled) && scrambled != 0 && scrambled != 1) {
        findings.defect("flag", "DEFAULT: the head line marks scrambled files by " +
                                    std::to_string(scrambled) + ", which counts as 0: plain");
    }
    while (lines.next()) {
        ++text.linesBehindHead;
    }
    report_long_lines(lines, "DEFAULT", findings);
    return text;
}

std::string entries_there(const DefinitionText& text) {
    const std::size_t whole = text.linesBehindHead / 2;
    return "announces " + plural(static_cast<std::size_t>(std::max(text.announced, 0)), "system") +
           " and has " + plural(text.linesBehindHead, "line") + " for them, enough for " +
           std::to_string(whole);
}

void check_definition(const std::string& directory, const Definition& definition, Findings& findings) {
    const auto text = read_definition_text(directory, findings);
    if (text) {
        const int read = static_cast<int>(definition.entries.size());
        if (text->announced > LAGESTATUS_MAX_ENTRIES) {
            findings.defect("count", "DEFAULT: announces " + std::to_string(text->announced) +
                                         " systems; only the first " +
                                         std::to_string(LAGESTATUS_MAX_ENTRIES) + " are read");
        } else if (read == 0) {
            findings.defect("count", "DEFAULT: announces no system");
        }
        if (text->announced <= LAGESTATUS_MAX_ENTRIES &&
            text->linesBehindHead > 2 * static_cast<std::size_t>(read)) {
            findings.defect("count", "DEFAULT: " + entries_there(*text) +
                                         (text->linesBehindHead % 2 == 0 ? "" : " and a half") +
                                         "; what is behind the announced ones is not read");
        }
    }
    std::set<int> known;
    for (const Entry& entry : definition.entries) {
        if (!known.insert(entry.code).second) {
            findings.defect("codes", "DEFAULT: " + std::to_string(entry.code) +
                                         " is listed more than once; only the first counts, not " +
                                         parameter_file_name(definition, entry));
        }
    }
}

// Where DEFAULT was refused: the reason that a message cannot tell.
void explain_definition(const std::string& directory) {
    Findings findings;
    try {
        const auto text = read_definition_text(directory, findings);
        if (text && text->announced > 0 &&
            text->linesBehindHead <
                2 * static_cast<std::size_t>(std::min(text->announced, LAGESTATUS_MAX_ENTRIES))) {
            complain("DEFAULT " + entries_there(*text));
        }
    } catch (const FileError& error) {
        complain(error.what());
    }
    findings.print();
}

// What the library does not say about a parameter file that it reads.
void check_parameter_text(const std::string& directory, const Definition& definition, const Entry& entry,
                          const std::string& file, Findings& findings) {
    const auto path = find_data_file(directory, entry.fileBase + (definition.scrambled ? u".tr0" : u".tra"));
    if (!path) {
        return;
    }
    DataLines lines(read_file(*path, textFileLimit));
    if (definition.scrambled && !lines.read_key()) {
        return;
    }
    constexpr std::size_t firstQuoted = 2;
    constexpr std::size_t firstNumber = 5;
    constexpr std::size_t lastLine = 40;
    constexpr std::size_t firstOfTwo = 21;
    struct Text {
        const char* name;
        std::size_t kept;  // characters
    };
    constexpr std::array<Text, 3> texts = {{{"name of the system", LAGESTATUS_NAME_SIZE - 1},
                                            {"name of the ellipsoid", LAGESTATUS_ELLIPSOID_SIZE - 1},
                                            {"kind of the system", LAGESTATUS_KIND_SIZE - 1}}};
    std::size_t behind = 0;
    for (std::size_t number = 1; lines.next(); ++number) {
        const std::string where = file + ": line " + std::to_string(lines.number()) + ": ";
        if (number >= firstQuoted && number < firstNumber) {
            const Text& text = texts[number - firstQuoted];
            const auto words = quoted(lines.text());
            if (words && words->size() > text.kept) {
                findings.note("cut texts in " + file, where + "of the " + text.name + " only the first " +
                                                          std::to_string(text.kept) + " characters are kept");
            }
        } else if (number >= firstNumber && number <= lastLine) {
            Fields fields(lines.text());
            double value = 0.0;
            const int columns = number >= firstOfTwo ? 2 : 1;
            for (int column = 0; column < columns && fields.number(value); ++column) {
                if (fields.rest().starts_with(',')) {
                    findings.defect("decimal commas in " + file, where + excerpt(lines.text()) +
                                                                     " is read as " + number_text(value) +
                                                                     ": numbers have a decimal point");
                    break;
                }
            }
        }
        behind += number > lastLine ? 1 : 0;
    }
    if (behind > 0) {
        findings.note("lines behind " + file,
                      file + ": " + plural(behind, "line") + " behind the fortieth, which are not read");
    }
    report_long_lines(lines, file, findings);
}

struct Examined {
    std::string file;
    System source;
    System target;
};

// Systems whose ellipsoids have one name are taken to lie in one datum.
void check_ellipsoids(const std::vector<Examined>& systems, Findings& findings) {
    const auto sameSets = [](const System& one, const System& other) {
        return one.status != 0 || other.status != 0 || one.has_datum_sets_of(other);
    };
    for (std::size_t number = 0; number < systems.size(); ++number) {
        const Examined& one = systems[number];
        const auto other =
            std::find_if(systems.begin(), systems.begin() + static_cast<std::ptrdiff_t>(number),
                         [&one](const Examined& earlier) {
                             return earlier.source.status == 0 && one.source.status == 0 &&
                                    earlier.source.ellipsoid == one.source.ellipsoid;
                         });
        if (other == systems.begin() + static_cast<std::ptrdiff_t>(number)) {
            continue;
        }
        const std::string both =
            one.file + ": has the ellipsoid \"" + one.source.ellipsoid + "\" as " + other->file;
        if (!one.source.has_axes_of(other->source)) {
            findings.defect("ellipsoids", both + ", but other semi-axes");
        } else if (!one.source.in_bessel_datum() &&
                   !(sameSets(one.source, other->source) && sameSets(one.target, other->target))) {
            findings.note("ellipsoids",
                          both +
                              ", but another datum transformation: between systems of one ellipsoid name "
                              "none is made");
        }
    }
}

// Where points of a system are tried.
Area area_of(const System& system) {
    constexpr Range germanLatitudes = {47.0, 55.5, 18};
    constexpr double degree = std::numbers::pi / 180.0;
    const auto around = [](double middle, double reach, int count) {
        return Range{middle - reach, middle + reach, count};
    };
    const double origin = system.parameters[slots::longitudeOfOrigin];
    if (system.is(Kind::soldner)) {
        constexpr double furthest = 89.0;  // short of the poles
        constexpr double reach = 0.4375;
        const double latitude = system.parameters[slots::latitudeOfOrigin] / degree;
        return {around(std::clamp(latitude, -furthest, furthest), reach, 8), around(origin, reach, 8)};
    }
    if (system.is(Kind::gaussKrueger) && !zone_layout_of(system).strips) {
        return {germanLatitudes, around(origin, 1.375, 12)};
    }
    return {germanLatitudes, {5.7, 15.2, 20}};
}

std::string millimetre_text(double metres) {
    constexpr double readable = 1e12;
    return metres < readable ? fixed_text(metres * millimetres, 4) : "very large";
}

// Carries points through one system; returned: the last cells of its row.
std::vector<std::string> check_closure(const Examined& system, Findings& findings) {
    constexpr double furthestLongitude = 85.0;  // none beyond 90 comes out of a datum transformation
    const Area area = area_of(system.target);
    if (!(std::abs(area.longitude.middle()) < furthestLongitude)) {
        findings.note("places", system.file + ": its meridian lies beyond 85°: no points were tried");
        return {"-"};
    }
    const Closures closures = closures_of({system.source, system.target}, area);
    for (const auto& [status, failure] : closures.failures) {
        findings.defect("closures", system.file + ": " + refusal_text(status, system.file) + " (" +
                                        plural(failure.count, "point") + " of its area, the first at " +
                                        failure.firstPlace + ")");
    }
    if (closures.outOfReach > 0) {
        const std::string what =
            system.file + ": the decadic complement leaves " +
            (closures.own.points == 0 ? "no point" : "only " + plural(closures.own.points, "point")) +
            " of the area that was tried a coordinate of its own";
        closures.own.points == 0 ? findings.defect("complements", what) : findings.note("complements", what);
    }
    const auto off = [](const Closure& closure) { return !(closure.largest <= closureLimit); };
    if (off(closures.own)) {
        findings.defect("closures",
                        system.file +
                            ": points do not come back from its coordinates to their latitude and "
                            "longitude: up to " +
                            millimetre_text(closures.own.largest) + " mm off");
    } else if (off(closures.bessel)) {
        findings.defect("closures", system.file + ": points do not come back from the Bessel datum: up to " +
                                        millimetre_text(closures.bessel.largest) +
                                        " mm off; the two columns are not each other's inverse");
    }
    const Closure& shown = closures.bessel;
    if (system.source.in_bessel_datum()) {
        return {"Bessel"};
    }
    return {millimetre_text(shown.largest), millimetre_text(shown.mean), std::to_string(shown.points)};
}

void check_systems(const std::string& directory, const Definition& definition, Findings& findings) {
    std::vector<Examined> systems;
    std::vector<std::vector<std::string>> rows = {
        {"  code", "file", "source", "target", "largest closure, mm", "mean, mm", "points"}};
    for (const Entry& entry : definition.entries) {
        systems.push_back({parameter_file_name(definition, entry),
                           read_system(directory, definition, entry, Role::source),
                           read_system(directory, definition, entry, Role::target)});
        const Examined& system = systems.back();
        const int source = system.source.status;
        const int target = system.target.status;
        const bool sourceOnly = is_source_only(system.source, system.target);
        std::vector<std::string> row = {"  " + std::to_string(entry.code), system.file,
                                        std::to_string(source), sourceOnly ? "-" : std::to_string(target)};
        if (source != 0) {
            findings.defect("parameter files", system.file + ": " + status_text(source, system.file));
        }
        if (sourceOnly) {
            findings.note("source only", system.file + ": has no second column and serves as a source only");
        } else if (target != 0 && target != source) {
            findings.defect("parameter files",
                            system.file + ": as a target: " + status_text(target, system.file));
        }
        try {
            check_parameter_text(directory, definition, entry, system.file, findings);
        } catch (const FileError& error) {
            findings.defect("parameter files", error.what());
        }
        if (source == 0 && target == 0) {
            const auto closure = check_closure(system, findings);
            row.insert(row.end(), closure.begin(), closure.end());
        } else {
            row.emplace_back("-");
        }
        rows.push_back(row);
    }
    check_ellipsoids(systems, findings);
    put("\nSystems\n");
    print_table(rows);
}

std::string place_text(const HeightModel& model, std::int64_t number) {
    constexpr int decimals = 6;
    const std::int64_t columns = model.longitude.count;
    return trimmed_text(model.latitude.at(number / columns), decimals) + "° N " +
           trimmed_text(model.longitude.at(number % columns), decimals) + "° E";
}

std::string range_text(const GridRange& range, const std::string& lines) {
    return number_text(range.smallest) + "° to " + number_text(range.largest) + "°, spacing " +
           spacing_text(range.spacing) + ": " + std::to_string(range.count) + ' ' + lines;
}

using Rows = std::vector<std::vector<std::string>>;

Rows grid_rows(const HeightModel& model, const GridSummary& summary) {
    const auto valueText = [&model](std::int64_t number) {
        return fixed_text(static_cast<double>(model.values[static_cast<std::size_t>(number)]), 3) + " m at " +
               place_text(model, number);
    };
    Rows rows = {{"  key", std::to_string(model.key) + (model.key == 0 ? ", plain" : ", scrambled")},
                 {"  longitude", range_text(model.longitude, "columns")},
                 {"  latitude", range_text(model.latitude, "rows")},
                 {"  values", std::to_string(model.values.size()) + " of " + std::to_string(model.size())}};
    if (summary.holes > 0) {
        const auto corner = [&](std::int64_t column, std::int64_t row) {
            return place_text(model, row * model.longitude.count + column);
        };
        rows.push_back({"  without value", std::to_string(summary.holes) + ", between " +
                                               corner(summary.firstHoleColumn, summary.firstHoleRow) +
                                               " and " +
                                               corner(summary.lastHoleColumn, summary.lastHoleRow)});
    }
    if (summary.plausible > 0) {
        rows.push_back({"  smallest", valueText(summary.smallest)});
        rows.push_back({"  largest", valueText(summary.largest)});
    }
    if (summary.largestStep > 0.0) {
        rows.push_back({"  largest step", fixed_text(summary.largestStep, 3) + " m between " +
                                              place_text(model, summary.stepFrom) + " and " +
                                              place_text(model, summary.stepTo)});
    }
    return rows;
}

// The path of the map is empty where none is wanted.
void check_height_model(const std::string& directory, const std::string& map, Findings& findings) {
    const std::string name = "hoehe.ini";
    put("\nHeight model\n");
    const auto noMap = [&map, &findings](const std::string& reason) {
        if (!map.empty()) {
            findings.defect("map", map + ": not written: " + reason);
        }
    };
    const auto path = find_data_file(directory, u"hoehe.ini");
    std::error_code none;
    if (!path && std::filesystem::exists(file_path(in_directory(directory, name)), none)) {
        findings.defect("file", name + ": is no regular file");
        noMap("the height model cannot be read");
        return;
    }
    if (!path) {
        const int status = heightModelFrom + 110;
        findings.note("file",
                      "there is no height model; wherever one is needed, " + status_text(status, name));
        noMap("there is no height model");
        return;
    }
    HeightModel model;
    try {
        model = read_height_model(read_file(*path, heightModelLimit), name, findings);
    } catch (const FileError& error) {
        findings.defect("file", error.what());
        noMap("the height model cannot be read");
        return;
    }
    if (!model.has_grid()) {
        noMap("there is no grid to draw");
        return;
    }
    const GridSummary summary = summary_of(model);
    Rows rows = grid_rows(model, summary);
    if (model.wholeGrid) {
        const LibraryAnswers answers = ask_library(directory, model, name, findings);
        rows.push_back({"  library", plural(answers.asked, "cell") + " asked for, " +
                                         std::to_string(answers.withValue) + " with a height anomaly"});
    }
    if (summary.plausible == 0) {
        findings.defect("values", name + ": no value at all in the grid");
        noMap("there is no grid to draw");
    } else if (!map.empty()) {
        const std::string image = anomaly_map(model, summary);
        try {
            write_file(map, image, Existing::replace);
            rows.push_back({"  map", map + ", " + plural(image.size(), "byte")});
        } catch (const FileError& error) {
            findings.defect("map", error.what());
        }
    }
    print_table(rows);
}

int check_directory(const std::string& directory, const std::string& map) {
    Definition definition;
    if (!open_directory(directory, definition)) {
        if (definition.status != 0) {
            explain_definition(directory);
        }
        return nothingDone;
    }
    std::size_t defects = 0;
    const auto closeSection = [&defects](const Findings& findings) {
        findings.print();
        defects += findings.defects();
    };
    put("Definition file\n  " + plural(definition.entries.size(), "system") + ", parameter files " +
        (definition.scrambled ? "scrambled (.tr0)" : "plain (.tra)") + '\n');
    Findings inDefinition;
    try {
        check_definition(directory, definition, inDefinition);
    } catch (const FileError& error) {
        inDefinition.defect("file", error.what());
    }
    closeSection(inDefinition);

    Findings inSystems;
    check_systems(directory, definition, inSystems);
    closeSection(inSystems);

    Findings inHeights;
    check_height_model(directory, map, inHeights);
    closeSection(inHeights);

    put('\n' + (defects == 0 ? "no defects" : plural(defects, "defect")) + '\n');
    return defects == 0 ? allGood : someFailed;
}

}  // namespace

Command check_command() {
    struct Options {
        std::string directory = ".";
        std::string map;
    };
    const auto options = std::make_shared<Options>();
    Command command{"check", "Say what is wrong with a data directory"};
    command.add_directory(&options->directory);
    command.add("--map FILE.svg", &options->map, "Draw the height anomalies into this file, a map in SVG");
    command.examples = "lagestatus check -d data --map heights.svg";
    command.run = [options] { return check_directory(options->directory, options->map); };
    return command;
}

}  // namespace cli
