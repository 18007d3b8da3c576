// check: what is wrong with a data directory.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <system_error>
#include <vector>

#include "base/angles.h"
#include "bulk/held_height_model.h"
#include "commands/commands.h"
#include "datafiles/data_file.h"
#include "datafiles/field_scanner.h"
#include "keeper/anomaly_map.h"
#include "keeper/closure.h"
#include "keeper/data_directory.h"
#include "keeper/findings.h"
#include "keeper/height_model.h"
#include "system/files.h"
#include "system/output.h"
#include "system/platform.h"
#include "system/text.h"

namespace cli {
namespace {

constexpr double closureLimit = 0.001;  // metres
constexpr double millimetres = 1000.0;

const std::string definitionName(definitionFileName);  // NOLINT(cert-err58-cpp): nothing to throw

// Reads the lines behind what a description or definition took of its file. Returned: how many there are.
std::size_t lines_left(LineReader& lines, const std::string& file, Findings& findings) {
    std::size_t count = 0;
    for (; lines.next() == status::ok; ++count) {
        findings.overlong_line(lines, file);
    }
    findings.overlong_line(lines, file);
    findings.reading_error(lines, file);
    return count;
}

// The definition file as it stands, beside what the library makes of it.
struct DefinitionText {
    int announced = 0;
    std::size_t linesBehindHead = 0;
};

// What is found is added to the findings.
DefinitionText read_definition_text(const Directory& directory, Findings& findings) {
    LineReader lines;
    if (!lines.open(directory.path(), definitionFileName, PathText::utf8) || lines.next() != status::ok) {
        findings.reading_error(lines, definitionName);
        return {};
    }
    findings.overlong_line(lines, definitionName);
    const DefinitionRecord& record = directory.definition();
    if (directory.failure().status == status::definitionHead) {
        return {};
    }
    if (record.flag != 0 && record.flag != 1) {
        findings.defect("flag", definitionName + ": the head line marks scrambled files by " +
                                    std::to_string(record.flag) + ", which counts as 0: plain");
    }
    return {record.announced, lines_left(lines, definitionName, findings)};
}

std::string entries_there(const DefinitionText& text) {
    const std::size_t whole = text.linesBehindHead / 2;
    return "announces " + plural(static_cast<std::size_t>(std::max(text.announced, 0)), "system") +
           " and has " + plural(text.linesBehindHead, "line") + " for them, enough for " +
           std::to_string(whole);
}

void check_definition(const Directory& directory, Findings& findings) {
    const DefinitionText text = read_definition_text(directory, findings);
    const std::size_t read = directory.entries().size();
    const std::string most = std::to_string(maxEntries);
    if (text.announced > static_cast<int>(maxEntries)) {
        findings.defect("count", definitionName + ": announces " + std::to_string(text.announced) +
                                     " systems; only the first " + most + " are read");
    } else {
        if (read == 0) {
            findings.defect("count", definitionName + ": announces no system");
        }
        if (text.linesBehindHead > 2 * read) {
            findings.defect("count", definitionName + ": " + entries_there(text) +
                                         (text.linesBehindHead % 2 == 0 ? "" : " and a half") +
                                         "; what is behind the announced ones is not read");
        }
    }
    std::set<int> known;
    for (const DefinitionEntry& entry : directory.entries()) {
        if (!known.insert(entry.code).second) {
            findings.defect("codes", definitionName + ": " + std::to_string(entry.code) +
                                         " is listed more than once; only the first counts, not " +
                                         directory.file_name(entry));
        }
    }
}

// Where DEFAULT was refused: the reason that a message cannot tell.
void explain_definition(const Directory& directory) {
    Findings findings;
    const DefinitionText text = read_definition_text(directory, findings);
    const int entries = std::clamp(text.announced, 0, static_cast<int>(maxEntries));
    if (text.linesBehindHead < 2 * static_cast<std::size_t>(entries)) {
        complain(definitionName + " " + entries_there(text));
    }
    findings.print();
}

// What the library does not say about a parameter file that it reads.
void check_parameter_text(const Directory& directory, const DefinitionEntry& entry, const std::string& file,
                          Findings& findings) {
    LineReader lines;
    if (open_parameter_file(lines, directory.path(), entry.name.view(), directory.definition().scrambled,
                            PathText::utf8) != status::ok) {
        return;
    }
    const auto checkText = [&](const std::string& name, std::size_t kept) {
        if (quoted_text(lines.text(), LineReader::maxLength).size() > kept) {
            findings.note("cut texts in " + file, file + ": line " + std::to_string(lines.number()) +
                                                      ": of the " + name + " only the first " +
                                                      std::to_string(kept) + " characters are kept");
        }
    };
    for (const ParameterField& field : parameterFields) {
        if (lines.next() != status::ok) {
            break;
        }
        findings.overlong_line(lines, file);
        switch (field.scan) {
            case ParameterScan::code:
                break;
            case ParameterScan::systemName:
                checkText("name of the system", SystemDescription::SystemName::maxLength);
                break;
            case ParameterScan::ellipsoidName:
                checkText("name of the ellipsoid", SystemDescription::EllipsoidName::maxLength);
                break;
            case ParameterScan::kind:
                checkText("kind of the system", SystemDescription::KindText::maxLength);
                break;
            case ParameterScan::number:
            case ParameterScan::longitude:
                findings.decimal_commas(lines, 1, file);
                break;
            case ParameterScan::columns:
                findings.decimal_commas(lines, 2, file);
                break;
        }
    }
    if (const std::size_t left = lines_left(lines, file, findings); left > 0) {
        findings.note("lines behind " + file,
                      file + ": " + plural(left, "line") + " behind the fortieth, which are not read");
    }
}

struct Examined {
    std::string file;
    const ReadSystem& source;
    const ReadSystem& target;
};

// Systems whose ellipsoids have one name are taken to lie in one datum.
void check_ellipsoids(const std::vector<Examined>& systems, Findings& findings) {
    const auto isRead = [](const ReadSystem& system) { return system.failure.status == status::ok; };
    const auto sameSets = [&isRead](const ReadSystem& one, const ReadSystem& other) {
        return !isRead(one) || !isRead(other) || have_same_datum_sets(one.description, other.description);
    };
    for (std::size_t number = 0; number < systems.size(); ++number) {
        const Examined& one = systems[number];
        const auto end = systems.begin() + static_cast<std::ptrdiff_t>(number);
        const auto other = std::find_if(systems.begin(), end, [&](const Examined& earlier) {
            return isRead(earlier.source) && isRead(one.source) &&
                   earlier.source.ellipsoid == one.source.ellipsoid;
        });
        if (other == end) {
            continue;
        }
        const std::string both =
            one.file + ": has the ellipsoid \"" + one.source.ellipsoid + "\" as " + other->file;
        if (!have_same_axes(one.source.description, other->source.description)) {
            findings.defect("ellipsoids", both + ", but other semi-axes");
        } else if (!in_bessel_datum(one.source.description) &&
                   !(sameSets(one.source, other->source) && sameSets(one.target, other->target))) {
            findings.note("ellipsoids",
                          both +
                              ", but another datum transformation: between systems of one ellipsoid name "
                              "none is made");
        }
    }
}

// Where points of a system are tried.
Area area_of(const SystemDescription& system) {
    constexpr Places germanLatitudes = {47.0, 55.5, 18};
    const auto around = [](double middle, double reach, int count) {
        return Places{middle - reach, middle + reach, count};
    };
    const double origin = system.parameters[slot::longitudeOfOrigin];
    if (is(ProjectionKind::soldner, system)) {
        constexpr double furthest = 89.0;  // short of the poles
        constexpr double reach = 0.4375;
        const double latitude = system.parameters[slot::latitudeOfOrigin] / degree;
        return {around(std::clamp(latitude, -furthest, furthest), reach, 8), around(origin, reach, 8)};
    }
    if (is(ProjectionKind::gaussKrueger, system) && !zones_of(system).hasStrips) {
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
    const Area area = area_of(system.target.description);
    if (!(std::abs(area.longitude.middle()) < furthestLongitude)) {
        findings.note("places", system.file + ": its meridian lies beyond 85°: no points were tried");
        return {"-"};
    }
    const Closures closures = closures_of({system.source.description, system.target.description}, area);
    for (const auto& [status, failure] : closures.failures) {
        findings.defect("closures", system.file + ": " + status_text(status, system.file) + " (" +
                                        plural(failure.count, "point") + " of its area, the first at " +
                                        failure.firstPlace + ")");
    }
    if (closures.outOfReach > 0) {
        const std::string what =
            system.file + ": the decadic complement leaves " +
            (closures.own.points == 0 ? "no point" : "only " + plural(closures.own.points, "point")) +
            " of the area that was tried a coordinate of its own";
        if (closures.own.points == 0) {
            findings.defect("complements", what);
        } else {
            findings.note("complements", what);
        }
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
    if (in_bessel_datum(system.source.description)) {
        return {"Bessel"};
    }
    return {millimetre_text(shown.largest), millimetre_text(shown.mean), std::to_string(shown.points)};
}

void check_systems(const Directory& directory, Findings& findings) {
    std::vector<Examined> systems;
    std::vector<std::vector<std::string>> rows = {
        {"  code", "file", "source", "target", "largest closure, mm", "mean, mm", "points"}};
    for (const DefinitionEntry& entry : directory.entries()) {
        systems.push_back({directory.file_name(entry), directory.system(entry, Column::intoBessel),
                           directory.system(entry, Column::outOfBessel)});
        const Examined& system = systems.back();
        const Status source = system.source.failure.status;
        const Status target = system.target.failure.status;
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
        check_parameter_text(directory, entry, system.file, findings);
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

std::string node_text(const HeldModel& model, std::int64_t number) {
    constexpr int decimals = 6;
    const std::int64_t columns = model.longitude.count;
    return trimmed_text(model.latitude.at(number / columns), decimals) + "° N " +
           trimmed_text(model.longitude.at(number % columns), decimals) + "° E";
}

std::string range_text(const GridAxis& range, const std::string& lines) {
    return number_text(range.smallest) + "° to " + number_text(range.largest) + "°, spacing " +
           spacing_text(range.spacing) + ": " + std::to_string(range.count) + ' ' + lines;
}

using Rows = std::vector<std::vector<std::string>>;

Rows grid_rows(const HeldModel& model, const GridSummary& summary) {
    const auto valueText = [&model](std::int64_t number) {
        return fixed_text(static_cast<double>(model.values[static_cast<std::size_t>(number)]), 3) + " m at " +
               node_text(model, number);
    };
    Rows rows = {{"  key", std::to_string(model.key) + (model.key == 0 ? ", plain" : ", scrambled")},
                 {"  longitude", range_text(model.longitude, "columns")},
                 {"  latitude", range_text(model.latitude, "rows")},
                 {"  values", std::to_string(model.values.size()) + " of " + std::to_string(model.size())}};
    if (summary.holes > 0) {
        const auto corner = [&](std::int64_t column, std::int64_t row) {
            return node_text(model, row * model.longitude.count + column);
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
                                              node_text(model, summary.stepFrom) + " and " +
                                              node_text(model, summary.stepTo)});
    }
    return rows;
}

// The bytes of an open file. Returned: whether it could be read to its end.
bool read_stored(DataFile& file, std::string& bytes) {
    constexpr std::size_t block = std::size_t{1} << 20;
    for (;;) {
        const std::size_t had = bytes.size();
        bytes.resize(had + block);
        const std::ptrdiff_t count = file.read_stored(bytes.data() + had, block);
        bytes.resize(had + static_cast<std::size_t>(std::max<std::ptrdiff_t>(count, 0)));
        if (count <= 0) {
            return count == 0;
        }
    }
}

// The path of the map is empty where none is wanted.
void check_height_model(const Directory& directory, const std::string& map, Findings& findings) {
    const std::string name(heightModelFileName);
    put("\nHeight model\n");
    const auto noMap = [&map, &findings](const std::string& reason) {
        if (!map.empty()) {
            findings.defect("map", map + ": not written: " + reason);
        }
    };
    DataFile file;
    if (!file.open(directory.path(), heightModelFileName, PathText::utf8)) {
        std::error_code none;
        if (std::filesystem::exists(file_path(directory.path_of(name)), none)) {
            findings.defect("file", name + ": is no regular file, or cannot be opened");
            noMap("the height model cannot be read");
        } else {
            findings.note("file", "there is no height model; wherever one is needed, " +
                                      status_text(status::heightModel + status::heightModelNotOpened, name));
            noMap("there is no height model");
        }
        return;
    }
    std::string bytes;
    const bool complete = read_stored(file, bytes);
    LineReader lines(bytes, !complete);
    const HeldModel model = read_height_model(lines, findings);
    if (lines.failed()) {
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
        const LibraryAnswers answers =
            ask_library(HeldHeightModel(HeldHeightModel::Bytes{bytes}), model, findings);
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

int check_directory(const std::string& name, const std::string& map) {
    std::optional<Directory> opened;
    if (!open_directory(name, opened)) {
        if (opened) {
            explain_definition(*opened);
        }
        return nothingDone;
    }
    const Directory& directory = *opened;
    std::size_t defects = 0;
    const auto closeSection = [&defects](const Findings& findings) {
        findings.print();
        defects += findings.defects();
    };
    put("Definition file\n  " + plural(directory.entries().size(), "system") + ", parameter files " +
        (directory.definition().scrambled ? "scrambled" : "plain") + " (" +
        std::string(directory.definition().scrambled ? scrambledExtension : plainExtension) + ")" + '\n');
    Findings inDefinition;
    check_definition(directory, inDefinition);
    closeSection(inDefinition);

    Findings inSystems;
    check_systems(directory, inSystems);
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
