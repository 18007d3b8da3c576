#include "commands.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

#include "library.h"
#include "platform.h"
#include "point_line.h"

namespace cli {
namespace {

constexpr int codeNotListed = 93;
constexpr int heightModelFrom = 1000;  // statuses from here on concern the height model

// A file that is only used as a source may leave out the second column; its first line of two is then the first to
// miss it.
constexpr int firstOfSecondColumn = 70;

bool is_source_only(const System& source, const System& target) {
    return source.status == 0 && target.status == firstOfSecondColumn;
}

void put(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

std::string in_directory(const std::string& directory, const std::string& name) {
    constexpr char separator = static_cast<char>(std::filesystem::path::preferred_separator);
    return directory == "." ? name : directory + separator + name;
}

void complain(int status, const std::string& fileName) {
    const std::string text = message(status, fileName);
    std::fprintf(stderr, "lagestatus: status %d: %s\n", status, text.c_str());
}

std::string padded(std::string text, std::size_t width) {
    text.append(width - std::min(width, display_width(text)), ' ');
    return text;
}

// Rows of texts, printed as a table with columns as wide as their widest text.
void print_table(const std::vector<std::vector<std::string>>& rows) {
    std::vector<std::size_t> widths;
    for (const auto& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t column = 0; column + 1 < row.size(); ++column) {
            widths[column] = std::max(widths[column], display_width(row[column]));
        }
    }
    for (const auto& row : rows) {
        std::string line;
        for (std::size_t column = 0; column < row.size(); ++column) {
            line += column + 1 < row.size() ? padded(row[column], widths[column] + 2) : row[column];
        }
        put(line + '\n');
    }
}

const Entry* find_entry(const Definition& definition, int code) {
    const auto found = std::find_if(definition.entries.begin(), definition.entries.end(),
                                    [code](const Entry& entry) { return entry.code == code; });
    return found == definition.entries.end() ? nullptr : &*found;
}

// Reads DEFAULT; says on stderr what is wrong with it.
bool open_directory(const std::string& directory, Definition& definition) {
    const std::optional<std::string> bytes = directory_bytes(directory);
    if (!bytes) {
        std::fprintf(stderr,
                     "lagestatus: %s: data directories may have the characters of Windows-1252 only\n",
                     directory.c_str());
        return false;
    }
    if (bytes->size() >= LAGESTATUS_NAME_SIZE) {
        std::fprintf(stderr, "lagestatus: the name of the data directory has more than %d characters\n",
                     LAGESTATUS_NAME_SIZE - 1);
        return false;
    }
    definition = read_definition(directory);
    if (definition.status != 0) {
        complain(definition.status, in_directory(directory, "DEFAULT"));
    }
    return definition.status == 0;
}

// Reads one system of an open directory; says on stderr what is wrong with it.
bool open_system(const std::string& directory, const Definition& definition, int code, Role role,
                 System& system) {
    const Entry* const entry = find_entry(definition, code);
    if (entry == nullptr) {
        std::fprintf(stderr, "lagestatus: %d: status %d: %s\n", code, codeNotListed,
                     message(codeNotListed, "").c_str());
        return false;
    }
    system = read_system(directory, definition, *entry, role);
    if (system.status != 0) {
        complain(system.status, in_directory(directory, parameter_file_name(definition, *entry)));
    }
    return system.status == 0;
}

struct Slot {
    const char* name;
    const char* unit;
};

constexpr std::array<Slot, LAGESTATUS_PARAMETER_COUNT> slots = {{
    {"latitude of origin", "rad"},
    {"longitude of origin", "deg, above 360 a zone layout"},
    {"second shift in Y", "m"},
    {"second shift in X", "m"},
    {"decadic complement", "m, 0 not used"},
    {"scale of the meridian", ""},
    {"shift in Y", "m"},
    {"shift in X", "m"},
    {"rotation of the plane system", ""},
    {"additive constant in Y", "m"},
    {"additive constant in X", "m"},
    {"origin coordinate in Y", "m"},
    {"origin coordinate in X", "m"},
    {"scale of the plane system", "1 not used"},
    {"translation in Y", "m"},
    {"translation in X", "m"},
    {"translation in Z", "m"},
    {"rotation about X", "rad"},
    {"rotation about Y", "rad"},
    {"rotation about Z", "rad"},
    {"scale of the datum transformation", ""},
    {"reduction point in Y", "m"},
    {"reduction point in X", "m"},
    {"reduction point in Z", "m"},
    {"semi-major axis", "m"},
    {"semi-minor axis", "m"},
    {"intermediate: translation in Y", "m"},
    {"intermediate: translation in X", "m"},
    {"intermediate: translation in Z", "m"},
    {"intermediate: rotation about X", "rad"},
    {"intermediate: rotation about Y", "rad"},
    {"intermediate: rotation about Z", "rad"},
    {"intermediate: scale", ""},
    {"intermediate: reduction point in Y", "m"},
    {"intermediate: reduction point in X", "m"},
    {"intermediate: reduction point in Z", "m"},
}};

constexpr std::array<int, 6> intermediateSwitches = {26, 27, 28, 29, 30, 31};

bool has_two_stages(const System& system) {
    return std::any_of(intermediateSwitches.begin(), intermediateSwitches.end(), [&system](int slot) {
        return system.parameters[static_cast<std::size_t>(slot)] != 0.0;
    });
}

std::string number_text(double value) {
    std::array<char, 32> text = {};
    std::snprintf(text.data(), text.size(), "%.15g", value);
    return text.data();
}

// Decimals that show a tenth of a millimetre.
constexpr int metreDecimals = 4;
constexpr int degreeDecimals = 9;

// Writes the rows of one run and counts what became of them.
class PointWriter {
  public:
    // toFile: the parameter file of the target, as messages name it.
    PointWriter(const TransformOptions& transformOptions, const System& from, const System& to,
                std::string toFile)
        : options(transformOptions),
          source(from),
          target(to),
          targetFile(std::move(toFile)),
          targetGeographic(to.kind.starts_with("Geographisch")) {}

    void line(std::string_view text, const std::string& place) {
        if (is_passed_through(text)) {
            put(text);
            put("\n");
            return;
        }
        ++rows;
        PointLine read = read_point_line(text);
        if (read.error.empty() && source.geocentric() && !read.hasHeight) {
            read.error = "the third coordinate is missing";
        }
        if (!read.error.empty()) {
            ++unreadable;
            std::fprintf(stderr, "lagestatus: %s: %s\n", place.c_str(), read.error.c_str());
            failed_row(text, read.error);
            return;
        }
        // Where normal heights play no part, none is asked for, and their failing is none of the row.
        const bool normalGiven =
            options.normalGiven && !source.geocentric() && (read.hasHeight || target.geocentric());
        const bool heightsMatter = normalGiven || writes_normal_heights(read);
        const Transformed transformed =
            transform(options.directory, source, target, {normalGiven, heightsMatter}, read.point);
        const int status = transformed.status;
        const bool complete = status == 0 || (has_place(transformed) && !heightsMatter);
        // All of X, Y, Z hangs on the height.
        const bool hasPlace = has_place(transformed) && !target.geocentric();
        std::string reason;
        if (!complete) {
            ++statuses[status];
            const std::string file =
                status >= heightModelFrom ? in_directory(options.directory, "hoehe.ini") : targetFile;
            reason = std::to_string(status) + " " + message(status, file);
        }
        if (complete || hasPlace) {
            row(transformed.result, read, complete, reason);
        } else {
            failed_row(read.rest, reason);
        }
    }

    // Whether there was no point yet.
    [[nodiscard]] bool empty() const { return rows == 0; }

    // The exit status; the summary goes to stderr when anything failed.
    [[nodiscard]] int finish() const {
        if (unreadable == 0 && statuses.empty()) {
            return allGood;
        }
        std::size_t failed = unreadable;
        std::string reasons = unreadable > 0 ? std::to_string(unreadable) + " unreadable" : "";
        for (const auto& [status, count] : statuses) {
            failed += count;
            reasons += (reasons.empty() ? "" : ", ") + std::to_string(count) + " with status " +
                       std::to_string(status);
        }
        std::fprintf(stderr, "lagestatus: %zu of %zu points failed: %s\n", failed, rows, reasons.c_str());
        return someFailed;
    }

  private:
    // A place without its height: all coordinates were computed, the height model gave nothing.
    [[nodiscard]] static bool has_place(const Transformed& transformed) {
        const auto& at = transformed.result;
        return transformed.status >= heightModelFrom && (at[0] != 0.0 || at[1] != 0.0 || at[2] != 0.0);
    }

    [[nodiscard]] bool writes_normal_heights(const PointLine& read) const {
        return options.normalWanted && !target.geocentric() && read.hasHeight;
    }

    // The coordinates; where the height model gave nothing, stars for the heights that need it.
    void row(const std::array<double, LAGESTATUS_RESULT_SIZE>& result, const PointLine& read, bool complete,
             const std::string& reason) const {
        const int decimals = targetGeographic ? degreeDecimals : metreDecimals;
        const auto column = [](bool known, double value) {
            known ? std::printf(" %14.*f", metreDecimals, value) : std::printf(" %14s", "*");
        };
        std::printf("%14.*f %14.*f", decimals, result[0], decimals, result[1]);
        if (read.hasHeight || target.geocentric()) {
            column(complete || !options.normalGiven || source.geocentric(), result[2]);
        }
        if (writes_normal_heights(read)) {
            column(complete, result[3]);
        }
        for (const std::string_view text : {read.rest, std::string_view(reason)}) {
            put(text.empty() ? "" : "  ");
            put(text);
        }
        put("\n");
    }

    static void failed_row(std::string_view rest, const std::string& reason) {
        std::printf("%14s %14s %14s  ", "*", "*", "*");
        put(rest);
        put(rest.empty() ? "" : "  ");
        put(reason);
        put("\n");
    }

    const TransformOptions& options;
    const System& source;
    const System& target;
    std::string targetFile;
    bool targetGeographic;
    std::size_t rows = 0;
    std::size_t unreadable = 0;
    std::map<int, std::size_t> statuses;
};

bool transform_stream(std::istream& stream, const std::string& name, PointWriter& writer) {
    std::string line;
    for (std::size_t number = 1; std::getline(stream, line); ++number) {
        if (line.ends_with('\r')) {
            line.pop_back();
        }
        if (number == 1 && line.starts_with("\xEF\xBB\xBF")) {  // byte order mark of UTF-8
            line.erase(0, 3);
        }
        writer.line(line, name + ":" + std::to_string(number));
    }
    if (stream.bad()) {
        std::fprintf(stderr, "lagestatus: %s: cannot be read\n", name.c_str());
        return false;
    }
    return true;
}

}  // namespace

int list_systems(const std::string& directory) {
    Definition definition;
    if (!open_directory(directory, definition)) {
        return nothingDone;
    }
    int exitStatus = allGood;
    std::vector<std::vector<std::string>> rows = {{"code", "aux", "file", "kind", "ellipsoid", "name"}};
    for (const Entry& entry : definition.entries) {
        const System source = read_system(directory, definition, entry, Role::source);
        const System target = read_system(directory, definition, entry, Role::target);
        const std::string file = parameter_file_name(definition, entry);
        const bool sourceOnly = is_source_only(source, target);
        const int status = source.status != 0 || sourceOnly ? source.status : target.status;
        std::vector<std::string> row = {std::to_string(entry.code),
                                        entry.auxiliary == -1 ? "-" : std::to_string(entry.auxiliary), file};
        if (status != 0) {
            exitStatus = someFailed;
            row.push_back("*");
            row.push_back("*");
            row.push_back("status " + std::to_string(status) + ": " + message(status, file));
        } else {
            row.insert(row.end(), {source.kind, source.ellipsoid,
                                   source.name + (sourceOnly ? " (source only: status 70)" : "")});
        }
        rows.push_back(row);
    }
    print_table(rows);
    return exitStatus;
}

int show_system(const std::string& directory, int code) {
    Definition definition;
    System source;
    if (!open_directory(directory, definition) ||
        !open_system(directory, definition, code, Role::source, source)) {
        return nothingDone;
    }
    const Entry& entry = *find_entry(definition, code);
    const System target = read_system(directory, definition, entry, Role::target);
    const std::string file = parameter_file_name(definition, entry);
    const bool sourceOnly = is_source_only(source, target);
    if (target.status != 0 && !sourceOnly) {
        complain(target.status, in_directory(directory, file));
        return nothingDone;
    }
    const auto stages = [](const System& system) {
        return has_two_stages(system) ? "two stages" : "one stage";
    };
    print_table({{"code", std::to_string(code)},
                 {"auxiliary", entry.auxiliary == -1 ? "-" : std::to_string(entry.auxiliary)},
                 {"file", file},
                 {"name", source.name},
                 {"kind", source.kind},
                 {"ellipsoid", source.ellipsoid},
                 {"zone number", std::to_string(target.zoneNumber)},
                 {"into Bessel", stages(source)},
                 {"out of Bessel", sourceOnly ? "not given (status 70)" : stages(target)}});
    put("\n");
    std::vector<std::vector<std::string>> rows = {{"slot", "value", "into Bessel", "out of Bessel", "unit"}};
    for (std::size_t slot = 0; slot < slots.size(); ++slot) {
        rows.push_back({std::to_string(slot), slots[slot].name, number_text(source.parameters[slot]),
                        sourceOnly ? "-" : number_text(target.parameters[slot]), slots[slot].unit});
    }
    print_table(rows);
    return allGood;
}

int transform_points(const TransformOptions& options) {
    Definition definition;
    System source;
    System target;
    if (!open_directory(options.directory, definition) ||
        !open_system(options.directory, definition, options.from, Role::source, source) ||
        !open_system(options.directory, definition, options.to, Role::target, target)) {
        return nothingDone;
    }
    // All files are opened before the first row: a wrong name must not be found out half way.
    std::vector<std::ifstream> files;
    for (const std::string& name : options.files) {
        files.emplace_back(file_path(name), std::ios::binary);
        if (!files.back() || std::filesystem::is_directory(file_path(name))) {
            std::fprintf(stderr, "lagestatus: %s: cannot be opened\n", name.c_str());
            return nothingDone;
        }
    }
    const Entry& targetEntry = *find_entry(definition, options.to);
    PointWriter writer(options, source, target,
                       in_directory(options.directory, parameter_file_name(definition, targetEntry)));
    bool readable = true;
    if (files.empty()) {
        readable = transform_stream(std::cin, "standard input", writer);
        if (std::ferror(stdin) != 0) {  // the stream over it tells no error from the end
            std::fprintf(stderr, "lagestatus: standard input: cannot be read\n");
            readable = false;
        }
    }
    for (std::size_t number = 0; number < files.size(); ++number) {
        readable = transform_stream(files[number], options.files[number], writer) && readable;
    }
    const int exitStatus = writer.finish();
    return readable ? exitStatus : (writer.empty() ? nothingDone : someFailed);
}

int show_message(int status, const std::string& fileName) {
    const std::string text = message(status, fileName);
    if (text.empty()) {
        std::fprintf(stderr, "lagestatus: there is no message for status %d\n", status);
        return someFailed;
    }
    put(text + '\n');
    return allGood;
}

}  // namespace cli
