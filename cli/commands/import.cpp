// import: a parameter file from published parameters.
#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "keeper/data_directory.h"
#include "keeper/import_steps.h"
#include "system/files.h"
#include "system/output.h"
#include "system/text.h"

namespace cli {

double number_in(const char* option, const std::string& text) {
    const std::optional<double> value = number_of(text);
    if (!value) {
        throw Refused(std::string(option) + " " + text + ": is no number");
    }
    return *value + 0.0;  // no negative zero
}

double number_in(const char* option, const std::string& text, double ifNotGiven) {
    return text.empty() ? ifNotGiven : number_in(option, text);
}

std::vector<double> numbers_in(const char* option, const std::string& text) {
    std::optional<std::vector<double>> values = numbers_of(text);
    if (!values) {
        throw Refused(std::string(option) + " " + text +
                      ": must be numbers with commas between them, and no blanks");
    }
    for (double& value : *values) {
        value += 0.0;
    }
    return *values;
}

std::string short_text(double value) {
    const std::string text = data_text(value);
    return text.ends_with(".0") ? text.substr(0, text.size() - 2) : text;
}

std::string quotable_text(const char* option, const std::string& text, std::size_t longest) {
    const std::optional<std::string> bytes = latin1(text);
    const auto isControl = [](char character) {
        const auto byte = static_cast<unsigned char>(character);
        return byte < 0x20 || (byte >= 0x7F && byte < 0xA0);
    };
    const std::string which = std::string(option) + " " + text + ": ";
    if (!bytes || std::any_of(bytes->begin(), bytes->end(), isControl)) {
        throw Refused(which + "may have the printable characters of ISO 8859-1 only");
    }
    if (bytes->empty() || bytes->size() > longest) {
        throw Refused(which + "must have 1 to " + std::to_string(longest) + " characters, and has " +
                      std::to_string(bytes->size()));
    }
    if (bytes->find('"') != std::string::npos) {
        throw Refused(which + "may have no quotation marks");
    }
    return text;
}

void refuse_given(std::initializer_list<Given> several, const std::string& why) {
    for (const auto& [option, text] : several) {
        if (!text.empty()) {
            throw Refused(
                std::string(option).append(" ").append(text).append(": has no meaning ").append(why));
        }
    }
}

namespace {

struct Imported {
    std::string text;
    std::string report;
};

Imported imported(const ImportOptions& options) {
    std::optional<Directory> opened;
    if (!options.hubCode.empty() && options.directory.empty()) {
        throw Refused("--hub " + options.hubCode + ": the directory -d that lists it is missing");
    }
    if (!options.directory.empty() && !open_directory(options.directory, opened)) {
        throw Refused("-d " + options.directory + ": cannot be used");
    }
    const Directory* const directory = opened ? &*opened : nullptr;
    ParameterText content;
    const std::optional<int> code = integer_of(options.code);
    if (!code) {
        throw Refused("CODE " + options.code + ": is no whole number of 32 bits");
    }
    content.code = *code;
    content.name = quotable_text("--name", options.name, SystemDescription::SystemName::maxLength);
    content.headComments = {content.name +
                            ", geschrieben von lagestatus import aus veröffentlichten Parametern."};
    set_ellipsoid(content, options);
    set_projection(content, options);
    set_datum(content, options, directory);

    const std::string text = text_of(content);
    const BothRoles system = {system_of(text, content.code, Column::intoBessel),
                              system_of(text, content.code, Column::outOfBessel)};
    Imported done = {latin1(text).value(), report_of(system, content, options)};
    note_equal_names(system, content.code, directory);
    return done;
}

int import_system(const ImportOptions& options) {
    const bool toFile = !options.output.empty() && options.output != "-";
    try {
        if (toFile && !options.output.ends_with(plainExtension)) {
            throw Refused("-o " + options.output + ": a parameter file's name ends in " +
                          std::string(plainExtension));
        }
        const Imported done = imported(options);
        if (toFile) {
            write_file(options.output, done.text, options.force ? Existing::replace : Existing::refuse);
            put(done.report);
        } else {
            OutputFile standard;
            standard.write(done.text);
            standard.complete();
            std::fwrite(done.report.data(), 1, done.report.size(), stderr);
        }
    } catch (const Refused& refusal) {
        complain(refusal.what());
        return nothingDone;
    } catch (const NotCarried& error) {
        complain(error.what());
        return nothingDone;
    }
    return allGood;
}

}  // namespace

Command import_command() {
    const auto options = std::make_shared<ImportOptions>();
    std::vector<std::string> kinds;
    kinds.reserve(projectionKinds.size());
    for (const KindTraits& kind : projectionKinds) {
        kinds.emplace_back(kind.name);
    }
    const Rules conventions = {.choices = {"position_vector", "coordinate_frame"}};
    Command command{"import", "Write a parameter file from published parameters"};
    command.add("CODE", &options->code, "Lagestatus of the system", {.required = true});
    command.add("-o, --output FILE.tra", &options->output, "File to write; without it, standard output");
    command.add("--force", &options->force, "Replace an existing file");
    command.add("--name TEXT", &options->name, "Name of the system", {.required = true});
    command.add("--kind KIND", &options->kind, "Kind of projection", {.required = true, .choices = kinds});
    command.add(
        "--ellipsoid NAME", &options->ellipsoid,
        "Bessel 1841, GRS80, WGS84, Krassowski 1940, International 1924 (Hayford), Airy 1830, Clarke 1866, "
        "Clarke 1880 (IGN)");
    command.add(
        "--ellipsoid-name TEXT", &options->ellipsoidName,
        "Its name in the file: equal names are one datum, and one that begins with Bessel is the Bessel "
        "datum");
    command.add("--a METRES", &options->semiMajorAxis, "Semi-major axis");
    command.add("--rf NUMBER", &options->inverseFlattening, "Inverse flattening");
    command.add("--b METRES", &options->semiMinorAxis, "Semi-minor axis");
    command.add("--lat-0 DEGREES", &options->latitude, "Latitude of origin");
    command.add("--lon-0 DEGREES", &options->longitude, "Longitude of origin, the central meridian");
    command.add("--k-0 NUMBER", &options->scale, "Scale of the meridian");
    command.add("--x-0 METRES", &options->easting, "False easting; the millions are the strip number");
    command.add("--y-0 METRES", &options->northing, "False northing");
    command.add("--strips WIDTH[,OFFSET]", &options->strips,
                "Strips instead of one meridian: strip z has the meridian WIDTH z + OFFSET, in degrees");
    command.add(
        "--towgs84 NUMBERS", &options->set,
        "From the system to WGS84/ETRS89: dx,dy,dz in metres or dx,dy,dz,rx,ry,rz,ds with arc seconds and "
        "ppm");
    command.add("--convention WORD", &options->convention, "What its rotations turn", conventions);
    command.add("--reduction X,Y,Z", &options->reduction,
                "Point that it turns about (Molodensky-Badekas), in metres");
    command.add("--hub-towgs84 NUMBERS", &options->hubSet,
                "From the Bessel datum to WGS84/ETRS89, in the same way");
    command.add("--hub-convention WORD", &options->hubConvention, "Its convention", conventions);
    command.add("--hub-reduction X,Y,Z", &options->hubReduction, "Its point");
    command.add("--hub CODE", &options->hubCode,
                "Or: the system of a data directory whose second column this is");
    command.add("-d, --dir DIR", &options->directory, "The data directory");
    command.add("--area W,S,E,N", &options->area, "Area of use in degrees, where the file is tried");
    command.add("--point COORDINATES", &options->point,
                "A point in the system to show; without it, the area's centre");
    command.examples =
        "lagestatus import 303 -o data/system-42-83.tra --name \"System 42/83\" --kind Gauss-Krueger \\\n"
        "    --ellipsoid \"Krassowski 1940\" --strips 3 --x-0 500000 --convention position_vector \\\n"
        "    --towgs84 24.9,-126.4,-93.2,-0.063,-0.247,-0.041,1.01 --hub 201 -d data";
    command.run = [options] { return import_system(*options); };
    return command;
}

}  // namespace cli
