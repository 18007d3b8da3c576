// import: a parameter file from published parameters.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <initializer_list>
#include <memory>
#include <numbers>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "closure.h"
#include "commands.h"
#include "directory.h"
#include "files.h"
#include "library.h"
#include "numbers.h"
#include "output.h"
#include "parameter_text.h"

namespace cli {
namespace {

struct Options {
    std::string code;
    std::string name;
    std::string kind;
    std::string ellipsoid, ellipsoidName, semiMajorAxis, inverseFlattening, semiMinorAxis;
    std::string latitude, longitude, scale, easting, northing, strips;
    std::string set, convention, reduction;
    std::string hubSet, hubConvention, hubReduction, hubCode, directory;
    std::string area, point;
    std::string output;
    bool force = false;
};

// A description that is not complete or that a parameter file cannot express.
class Refused : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

struct Ellipsoid {
    const char* title;
    const char* name;  // at most 10 characters
    int epsg;
    const char* semiMajorAxis;
    const char* inverseFlattening;  // or else
    const char* semiMinorAxis;
    std::array<const char*, 2> aliases;
};

// EPSG Geodetic Parameter Dataset, version 10.076.
constexpr std::array<Ellipsoid, 8> ellipsoids = {{
    {"Bessel 1841", "Bessel", 7004, "6377397.155", "299.1528128", "", {"bessel1841", "bessel"}},
    {"GRS 1980", "GRS80", 7019, "6378137", "298.257222101", "", {"grs1980", "grs80"}},
    {"WGS 84", "WGS84", 7030, "6378137", "298.257223563", "", {"wgs1984", "wgs84"}},
    {"Krassowski 1940", "Krassowski", 7024, "6378245", "298.3", "", {"krassowski1940", "krassowski"}},
    {"International 1924", "Hayford", 7022, "6378388", "297", "", {"international1924", "hayford"}},
    {"Airy 1830", "Airy", 7001, "6377563.396", "299.3249646", "", {"airy1830", "airy"}},
    {"Clarke 1866", "Clarke1866", 7008, "6378206.4", "", "6356583.8", {"clarke1866", "clarke1866"}},
    {"Clarke 1880 (IGN)", "Clarke1880", 7011, "6378249.2", "", "6356515", {"clarke1880ign", "clarke1880ign"}},
}};

// Letters and digits alone, in lower case.
std::string plain_letters(std::string_view text) {
    std::string letters;
    for (const char character : text) {
        const bool upper = character >= 'A' && character <= 'Z';
        const bool kept =
            upper || (character >= 'a' && character <= 'z') || (character >= '0' && character <= '9');
        if (kept) {
            letters += upper ? static_cast<char>(character - 'A' + 'a') : character;
        }
    }
    return letters;
}

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

// A number as people write it.
std::string short_text(double value) {
    const std::string text = data_text(value);
    return text.ends_with(".0") ? text.substr(0, text.size() - 2) : text;
}

std::string quoted_text(const char* option, const std::string& text, std::size_t longest) {
    const std::optional<std::string> bytes = latin1(text);
    const auto isControl = [](char byte) {
        return static_cast<unsigned char>(byte) < 0x20 ||
               (static_cast<unsigned char>(byte) & 0x7FU) == 0x7F ||
               (static_cast<unsigned char>(byte) >= 0x80 && static_cast<unsigned char>(byte) < 0xA0);
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

// ---- the ellipsoid

void set_axes(ParameterText& content, const std::string& semiMajorAxis, const std::string& inverseFlattening,
              const std::string& semiMinorAxis) {
    const double a = number_in("--a", semiMajorAxis);
    const bool byFlattening = !inverseFlattening.empty();
    const double divisor = byFlattening ? number_in("--rf", inverseFlattening) : 0.0;
    if (byFlattening && !(divisor > 1.0)) {
        throw Refused("--rf " + inverseFlattening + ": the inverse flattening must be above 1");
    }
    const double b = byFlattening ? a * (1.0 - 1.0 / divisor) : number_in("--b", semiMinorAxis);
    if (!(a > 0.0 && b > 0.0 && b <= a)) {
        throw Refused("the semi-axes must be above 0, the minor one no longer than the major one");
    }
    content.semiMajorAxis = a;
    content.semiMinorAxis = b;
    content.ellipsoidComments.back() +=
        byFlattening ? ", 1/f = " + short_text(divisor) : ", b = " + short_text(b) + " m";
}

void set_ellipsoid(ParameterText& content, const Options& options) {
    constexpr std::size_t longest = LAGESTATUS_ELLIPSOID_SIZE - 1;
    const bool ownAxes = !options.semiMajorAxis.empty() || !options.inverseFlattening.empty() ||
                         !options.semiMinorAxis.empty();
    content.ellipsoid = options.ellipsoidName;
    if (ownAxes == !options.ellipsoid.empty()) {
        throw Refused(
            "the ellipsoid is given by --ellipsoid, or by --ellipsoid-name, --a and one of --rf and --b");
    }
    if (ownAxes) {
        if (options.ellipsoidName.empty() || options.semiMajorAxis.empty() ||
            options.inverseFlattening.empty() == options.semiMinorAxis.empty()) {
            throw Refused("an ellipsoid of one's own needs --ellipsoid-name, --a and one of --rf and --b");
        }
        content.ellipsoidComments = {"Ellipsoid: " + options.ellipsoidName};
        set_axes(content, options.semiMajorAxis, options.inverseFlattening, options.semiMinorAxis);
    } else {
        const auto* const found =
            std::find_if(ellipsoids.begin(), ellipsoids.end(), [&](const Ellipsoid& one) {
                const auto& names = one.aliases;
                return std::find(names.begin(), names.end(), plain_letters(options.ellipsoid)) != names.end();
            });
        if (found == ellipsoids.end()) {
            std::string known;
            for (const Ellipsoid& one : ellipsoids) {
                known += (known.empty() ? "" : ", ") + std::string(one.title);
            }
            throw Refused("--ellipsoid " + options.ellipsoid + ": is not known; these are: " + known);
        }
        content.ellipsoid = content.ellipsoid.empty() ? found->name : content.ellipsoid;
        content.ellipsoidComments = {"Ellipsoid: " + std::string(found->title) +
                                     ", EPSG:" + std::to_string(found->epsg)};
        set_axes(content, found->semiMajorAxis, found->inverseFlattening, found->semiMinorAxis);
    }
    quoted_text("--ellipsoid-name", content.ellipsoid, longest);
}

struct Given {
    const char* option;
    const std::string& text;
};

void refuse_given(std::initializer_list<Given> several, const std::string& why) {
    for (const auto& [option, text] : several) {
        if (!text.empty()) {
            throw Refused(
                std::string(option).append(" ").append(text).append(": has no meaning ").append(why));
        }
    }
}

// ---- the projection

void set_strips(ParameterText& content, const std::string& strips) {
    constexpr double widest = 9.0;
    constexpr double lowest = -239.0;  // 600 + offset stays above 360
    constexpr double highest = 360.0;
    constexpr int offsetZero = 600;
    const std::vector<double> values = numbers_in("--strips", strips);
    const double width = values[0];
    const double offset = values.size() > 1 ? values[1] : 0.0;
    const auto isWhole = [](double value, double least, double most) {
        return value >= least && value <= most && std::trunc(value) == value;
    };
    if (values.size() > 2 || !isWhole(width, 1.0, widest) || !isWhole(offset, lowest, highest)) {
        throw Refused("--strips " + strips +
                      ": a layout of strips has a width of 1 to 9 whole degrees and an " +
                      "offset of -239 to 360 whole degrees");
    }
    const int degrees = static_cast<int>(offset);
    const std::string widthText = std::to_string(static_cast<int>(width));
    const std::string sign = degrees < 0 ? " - " : " + ";
    const std::string size = std::to_string(std::abs(degrees));
    content.longitudeOfOrigin = std::to_string(offsetZero + degrees) + '.' + widthText;
    content.originComments = {"Streifen: 600" + sign + size + " und Zehntel " + widthText +
                              " stehen für Streifen von " + widthText + "° mit dem Mittelmeridian " +
                              widthText + "° mal Nummer" + (degrees == 0 ? "" : sign + size + "°") + "."};
}

// What is left of a false easting without the strip number in its millions.
double split_easting(ParameterText& content, const std::string& text) {
    constexpr double million = 1e6;
    constexpr double largestNumber = 999.0;
    const double easting = number_in("--x-0", text, 0.0);
    const double number = std::trunc(easting / million);
    if (number < 0.0 || number > largestNumber) {
        throw Refused(
            "--x-0 " + text + ": does not split into a strip number from 0 to 999 in the millions and an " +
            "additive constant: a reader would take the millions of every easting for a strip number");
    }
    content.originComments = {number == 0.0
                                  ? "Ein Mittelmeridian; vor dem Rechtswert steht keine Nummer."
                                  : "Ein Mittelmeridian; dahinter die Nummer, die vor dem Rechtswert steht."};
    if (number > 0.0) {
        content.longitudeOfOrigin += ' ' + std::to_string(static_cast<int>(number));
    }
    return easting - number * million;
}

void set_meridian(ParameterText& content, const Options& options) {
    constexpr double million = 1e6;
    const double scale = number_in("--k-0", options.scale, 1.0);
    if (!(scale > 0.0)) {
        throw Refused("--k-0 " + options.scale + ": the scale of the meridian must be above 0");
    }
    content.meridianScale = scale;
    if (options.strips.empty() == options.longitude.empty()) {
        throw Refused("a Gauss-Krueger system has either --lon-0, its one meridian, or --strips");
    }
    if (!options.strips.empty()) {
        set_strips(content, options.strips);
        content.additiveY = number_in("--x-0", options.easting, 0.0);
        if (!(std::fabs(content.additiveY) < million)) {
            throw Refused("--x-0 " + options.easting +
                          ": of a layout of strips it is the additive constant alone, " +
                          "below 1000000; the strip number is put before it");
        }
        return;
    }
    if (number_in("--lon-0", options.longitude) == 0.0) {
        throw Refused("--lon-0 " + options.longitude +
                      ": a Gauss-Krueger meridian of 0 is not possible: it stands for " + "no strip");
    }
    content.additiveY = split_easting(content, options.easting);
}

void set_projection(ParameterText& content, const Options& options) {
    const std::string why = "for the kind " + content.kind;
    const bool meridian = content.kind == "Gauss-Krueger";
    if (!meridian && content.kind != "Soldner") {
        refuse_given({{"--lat-0", options.latitude},
                      {"--lon-0", options.longitude},
                      {"--k-0", options.scale},
                      {"--x-0", options.easting},
                      {"--y-0", options.northing},
                      {"--strips", options.strips}},
                     why);
        return;
    }
    constexpr double pole = 90.0;
    constexpr double quarterTurn = 90.0;
    const double latitude = number_in("--lat-0", options.latitude, 0.0);
    const double longitude = number_in("--lon-0", options.longitude, 0.0);
    if (!(std::fabs(latitude) <= pole)) {
        throw Refused("--lat-0 " + options.latitude + ": must be from -90 to 90 degrees");
    }
    if (!(longitude >= 0.0 && longitude <= quarterTurn)) {
        throw Refused("--lon-0 " + options.longitude +
                      ": must be from 0 to 90 degrees; datum steps mirror longitudes beyond");
    }
    content.latitudeOfOrigin = data_text(latitude);
    content.longitudeOfOrigin = data_text(longitude);
    content.additiveX = number_in("--y-0", options.northing, 0.0);
    if (meridian) {
        set_meridian(content, options);
        return;
    }
    refuse_given({{"--strips", options.strips}}, why);
    if (number_in("--k-0", options.scale, 1.0) != 1.0) {
        throw Refused("--k-0 " + options.scale + ": a Soldner system has no scale");
    }
    if (options.latitude.empty() || options.longitude.empty()) {
        throw Refused("a Soldner system needs --lat-0 and --lon-0, its origin");
    }
    content.additiveY = number_in("--x-0", options.easting, 0.0);
}

// ---- the datum

struct Published {
    Similarity set;
    std::vector<std::string> comments;
};

struct SetOptions {
    const char* name;  // the options as messages name them
    const char* conventionName;
    const char* reductionName;
    const std::string& set;
    const std::string& convention;
    const std::string& reduction;
};

Published published_set(const SetOptions& given, const std::string& way) {
    constexpr std::size_t shiftOnly = 3;
    constexpr std::size_t complete = 7;
    constexpr double secondsInHalfTurn = 648000.0;
    constexpr double partsPerMillion = 1e-6;
    const std::string which = std::string(given.name) + " " + given.set + ": ";
    std::vector<double> values = numbers_in(given.name, given.set);
    if (values.size() != shiftOnly && values.size() != complete) {
        throw Refused(
            which + "must be three or seven numbers: dx,dy,dz in metres, rx,ry,rz in arc seconds, ds in ppm");
    }
    values.resize(complete, 0.0);
    const bool turns = values[3] != 0.0 || values[4] != 0.0 || values[5] != 0.0;
    if (turns && given.convention.empty()) {
        throw Refused(which + "has rotations, whose sign depends on the convention: give " +
                      given.conventionName + " position_vector or coordinate_frame, as published");
    }
    const bool positionVector = given.convention == "position_vector";
    Published published;
    Similarity& set = published.set;
    for (std::size_t axis = 0; axis < shiftOnly; ++axis) {
        const double angle = values[3 + axis] * std::numbers::pi / secondsInHalfTurn;
        set.translation.at(axis) = values[axis];
        set.rotation.at(axis) = (positionVector ? -angle : angle) + 0.0;  // no negative zero
    }
    set.scale = 1.0 + values[6] * partsPerMillion;
    if (!(set.scale > 0.0)) {
        throw Refused(which + "the scale must stay above 0");
    }
    std::string text;
    constexpr std::array<const char*, complete> units = {" m, ", " m, ", " m, ", "\", ",
                                                         "\", ", "\", ", " ppm"};
    for (std::size_t at = 0; at < complete; ++at) {
        text += short_text(values[at]) + units.at(at);
    }
    published.comments = {set.changes_nothing() ? way + ": kein Unterschied."
                                                : way + ", veröffentlicht: " + text + "."};
    if (turns) {
        published.comments.emplace_back(
            positionVector
                ? "Drehwinkel als \"position vector\". Hier drehen positive Winkel das Achsenkreuz: "
                  "umgekehrtes Vorzeichen, Bogenmaß."
                : "Drehwinkel als \"coordinate frame\": wie hier drehen positive Winkel das Achsenkreuz; "
                  "Bogenmaß.");
    }
    if (!given.reduction.empty()) {
        const std::vector<double> centre = numbers_in(given.reductionName, given.reduction);
        if (centre.size() != shiftOnly) {
            throw Refused(std::string(given.reductionName) + " " + given.reduction +
                          ": must be three numbers, X,Y,Z");
        }
        // Published as Q = P + T + scale R (P - P0) + P0 - P; here P0 is not added back.
        for (std::size_t axis = 0; axis < shiftOnly; ++axis) {
            set.reduction.at(axis) = centre[axis];
            set.translation.at(axis) += centre[axis];
        }
        published.comments.push_back("Nullpunktreduktion (Molodensky-Badekas): " + short_text(centre[0]) +
                                     " m, " + short_text(centre[1]) + " m, " + short_text(centre[2]) +
                                     " m; um sie ist die Translation größer als veröffentlicht.");
    }
    return published;
}

// The step from the Bessel datum to WGS84/ETRS89, as a system of a directory has it.
Published hub_of_directory(const Options& options, const Definition& definition) {
    const std::optional<int> code = integer_of(options.hubCode);
    if (!code) {
        throw Refused("--hub " + options.hubCode + ": is no whole number");
    }
    System hub;
    if (!open_system(options.directory, definition, *code, Role::target, hub)) {
        throw Refused("--hub " + options.hubCode + ": cannot be used");
    }
    if (hub.in_bessel_datum()) {
        throw Refused("--hub " + options.hubCode +
                      ": lies in the Bessel datum itself and has no step out of it");
    }
    if (hub.has_two_stages()) {
        throw Refused("--hub " + options.hubCode +
                      ": its step out of the Bessel datum has two stages; take a system in " +
                      "WGS84 or ETRS89 itself");
    }
    return {main_set_of(hub),
            {"Vom Besseldatum nach WGS84/ETRS89: Spalte 2 des Lagestatus " + std::to_string(*code) + "."}};
}

void check_intermediate(const char* option, const Similarity& set) {
    if (!set.is_seen_as_intermediate() && !set.changes_nothing()) {
        throw Refused(std::string(option) +
                      ": a change of scale without translation and rotation cannot be undone by a " +
                      "parameter file, which looks at an intermediate set only if one of those is not 0");
    }
}

void set_datum(ParameterText& content, const Options& options, const Definition& definition) {
    const bool ownHub = !options.hubSet.empty();
    if (content.ellipsoid.starts_with("Bessel")) {
        if (!options.set.empty() || ownHub || !options.hubCode.empty()) {
            throw Refused("--ellipsoid-name " + content.ellipsoid +
                          ": begins with Bessel, so the system counts as lying in the Bessel datum and no "
                          "datum step is "
                          "ever made; for a datum of its own give the ellipsoid another name, for example "
                          "--ellipsoid-name MGI-Bessel");
        }
        refuse_given({{"--convention", options.convention},
                      {"--reduction", options.reduction},
                      {"--hub-convention", options.hubConvention},
                      {"--hub-reduction", options.hubReduction}},
                     "in the Bessel datum");
        content.headComments.emplace_back(
            "Das System liegt im Besseldatum: Die Datumsübergänge am Ende der Datei bleiben neutral.");
        content.datumComments = {
            "Bessel-Systeme brauchen keinen Datumsübergang; die Zeilen stehen der Form wegen da."};
        return;
    }
    if (options.set.empty()) {
        throw Refused(
            "--towgs84 is missing: the step from the system to WGS84/ETRS89; 0,0,0 for a system in that "
            "datum");
    }
    if (ownHub == !options.hubCode.empty()) {
        throw Refused(
            "the step from the Bessel datum to WGS84/ETRS89 is given either by --hub-towgs84, or by --hub, a "
            "system of the directory -d");
    }
    const Published system = published_set(
        {"--towgs84", "--convention", "--reduction", options.set, options.convention, options.reduction},
        "Vom System nach WGS84/ETRS89");
    const Published hub = ownHub
                              ? published_set({"--hub-towgs84", "--hub-convention", "--hub-reduction",
                                               options.hubSet, options.hubConvention, options.hubReduction},
                                              "Vom Besseldatum nach WGS84/ETRS89")
                              : hub_of_directory(options, definition);
    check_intermediate("--towgs84", system.set);
    check_intermediate(ownHub ? "--hub-towgs84" : "--hub", hub.set);
    content.intoBessel = {system.set, hub.set};
    content.outOfBessel = {hub.set, system.set};
    content.datumComments = system.comments;
    content.datumComments.insert(content.datumComments.end(), hub.comments.begin(), hub.comments.end());
    content.datumComments.emplace_back(
        "Spalte 1 (nach Bessel): Hauptsatz vom System nach WGS84/ETRS89, von dort genau umgekehrt nach "
        "Bessel.");
    content.datumComments.emplace_back(
        "Spalte 2 (von Bessel): Hauptsatz von Bessel nach WGS84/ETRS89, von dort genau umgekehrt ins "
        "System.");
}

// ---- what the user is told

// Systems of the directory that count as lying in the same datum though they do not.
void note_equal_names(const BothRoles& system, const std::string& directory, const Definition& definition) {
    constexpr std::size_t firstOfDatum = 14;
    constexpr std::size_t axes = 24;
    constexpr std::size_t endOfAxes = 26;
    const bool bessel = system.source.in_bessel_datum();
    const auto differ = [bessel](const System& one, const System& other) {
        const std::size_t first = bessel ? axes : firstOfDatum;
        const std::size_t end = bessel ? endOfAxes : one.parameters.size();
        for (std::size_t slot = first; slot < end; ++slot) {
            if (one.parameters.at(slot) != other.parameters.at(slot)) {
                return true;
            }
        }
        return false;
    };
    std::string codes;
    for (const Entry& entry : definition.entries) {
        const System source = read_system(directory, definition, entry, Role::source);
        const System target = read_system(directory, definition, entry, Role::target);
        if (source.status == 0 && source.ellipsoid == system.source.ellipsoid &&
            (differ(source, system.source) || (target.status == 0 && differ(target, system.target)))) {
            codes += (codes.empty() ? "" : ", ") + std::to_string(entry.code);
        }
    }
    if (!codes.empty()) {
        complain("note: no datum step will be made between this system and " + codes + " in " + directory +
                 ": the ellipsoid name is " + system.source.ellipsoid +
                 " there too, which counts as the same datum, but the parameters differ");
    }
}

Area area_of(const ParameterText& content, const Options& options) {
    constexpr int places = 21;  // in each direction
    constexpr Range germanLatitudes = {47.0, 55.5, places};
    constexpr double pole = 90.0;
    constexpr double halfTurn = 180.0;
    if (!options.area.empty()) {
        const std::vector<double> values = numbers_in("--area", options.area);
        if (values.size() != 4 || !(values[0] < values[2] && values[1] < values[3]) ||
            !(values[0] >= -halfTurn && values[2] <= halfTurn && values[1] >= -pole && values[3] <= pole)) {
            throw Refused("--area " + options.area + ": must be WEST,SOUTH,EAST,NORTH in degrees");
        }
        return {{values[1], values[3], places}, {values[0], values[2], places}};
    }
    const auto around = [](double middle, double reach) {
        return Range{middle - reach, middle + reach, places};
    };
    const double longitude = number_in("--lon-0", options.longitude, 0.0);
    if (content.kind == "Soldner") {
        return {around(number_in("--lat-0", options.latitude, 0.0), 0.5), around(longitude, 0.5)};
    }
    if (content.kind == "Gauss-Krueger" && options.strips.empty()) {
        return {germanLatitudes, around(longitude, 3.0)};
    }
    return {germanLatitudes, {5.5, 15.5, places}};
}

// Without a sign at zero.
std::string rounded_text(double value, int decimals) {
    const std::string text = fixed_text(value, decimals);
    return text.starts_with('-') && text.find_first_of("123456789") == std::string::npos ? text.substr(1)
                                                                                         : text;
}

std::string point_text(const Point& point, bool geographic) {
    constexpr int degreeDecimals = 9;  // a tenth of a millimetre
    constexpr int metreDecimals = 4;
    const int decimals = geographic ? degreeDecimals : metreDecimals;
    return rounded_text(point[0], decimals) + ' ' + rounded_text(point[1], decimals) + ' ' +
           rounded_text(point[2], metreDecimals);
}

// How far a published set, whose formula is for small angles, and the rotation matrices of the library are apart at a
// geocentric point: the products of the angles. Metres.
double gap_of_small_angles(const Similarity& set, const Point& from, const Point& to) {
    const auto& [a, b, c] = set.rotation;
    const Point reduced = {from[0] - set.reduction[0], from[1] - set.reduction[1],
                           from[2] - set.reduction[2]};
    const auto& [x, y, z] = reduced;
    const Point turned = {x + c * y - b * z, y - c * x + a * z, z + b * x - a * y};
    Point gap = {};
    for (std::size_t axis = 0; axis < gap.size(); ++axis) {
        gap.at(axis) = set.translation.at(axis) + set.scale * turned.at(axis) - to.at(axis);
    }
    return std::hypot(gap[0], gap[1], gap[2]);
}

// East, north and up in metres between two positions of a geographic system that lie close together.
Point metres_between(const Point& from, const Point& to, const System& system) {
    constexpr double radian = std::numbers::pi / 180.0;
    const double latitude = from[0] * radian;
    const double a = system.parameters[slots::semiMajorAxis];
    const double ratio = system.parameters[slots::semiMinorAxis] / a;
    const double squaredEccentricity = 1.0 - ratio * ratio;
    const double sine = std::sin(latitude);
    const double W = std::sqrt(1.0 - squaredEccentricity * sine * sine);
    const double acrossMeridian = a / W;
    const double alongMeridian = acrossMeridian * (1.0 - squaredEccentricity) / (W * W);
    return {(to[1] - from[1]) * radian * acrossMeridian * std::cos(latitude),
            (to[0] - from[0]) * radian * alongMeridian, to[2] - from[2]};
}

// Throws where a Gauss-Krueger easting of the area has another number in its millions than its strip's.
void check_eastings(const BothRoles& system, const Area& area) {
    constexpr double million = 1e6;
    constexpr double edge = 1e-6;  // degrees: at a strip's edge either neighbour will do
    const ZoneLayout layout = zone_layout_of(system.source);
    const Road road(".", of_kind(system.source, "Geographisch"), system.target);
    for_each_place(area, [&](double latitude, double longitude) {
        const std::string where = "at " + place_text(latitude, longitude) + ": ";
        double easting = 0.0;
        try {
            easting = carried(road, {latitude, longitude, 0.0})[1];
        } catch (const NotCarried& refused) {
            throw Refused(where + refused.what());
        }
        const double number = std::trunc(easting / million);
        const bool right = layout.strips ? std::fabs(longitude - (layout.width * number + layout.offset)) <=
                                               layout.width / 2.0 + edge
                                         : number == system.target.zoneNumber;
        if (!right) {
            throw Refused(where + "the easting is " + data_text(std::round(easting)) +
                          ", which a reader takes for strip " + number_text(number) +
                          ": eastings must not leave their million within the area of use (--area)");
        }
    });
}

// One point, with and without the datum step, so that a wrong sign is seen.
std::string report_of_point(const BothRoles& system, const Options& options, const DatumStep& intoBessel,
                            const Area& area) {
    const System ownSource = of_kind(system.source, "Geographisch");
    const System ownTarget = of_kind(system.target, "Geographisch");
    Point point = {};
    if (options.point.empty()) {
        point = carried({area.latitude.middle(), area.longitude.middle(), 0.0}, ownSource, system.target);
    } else {
        const std::vector<double> values = numbers_in("--point", options.point);
        if (values.size() != 2 && values.size() != point.size()) {
            throw Refused("--point " + options.point + ": must be two coordinates and a height, if any");
        }
        std::copy(values.begin(), values.end(), point.begin());
    }
    const Point before = carried(point, system.source, ownTarget);
    std::string report =
        "point: " + point_text(point, system.source.is(Kind::geographic)) +
        "\n  latitude, longitude, height in the system's datum: " + point_text(before, true) + '\n';
    if (system.source.in_bessel_datum()) {
        return report;
    }
    // GRS 1980, EPSG:7019. The ellipsoid's name differs from every name that a file can have.
    System common = neutral_system("Geographisch", "", 6378137.0, 6356752.314140356);
    set_main_set(common, intoBessel.intermediate);
    const Point after = carried(point, system.source, common);
    const Point shift = metres_between(before, after, common);
    constexpr int decimals = 2;
    report += "  in WGS84/ETRS89 by this file:                      " + point_text(after, true) +
              "\n  so the datum step moves it by " + rounded_text(shift[0], decimals) + " m east, " +
              rounded_text(shift[1], decimals) + " m north, " + rounded_text(shift[2], decimals) + " m up\n";
    const std::string geocentric = "Geozentrisch";
    const Point from = carried(point, system.source, of_kind(system.target, geocentric));
    const Point to = carried(from, of_kind(system.source, geocentric), of_kind(common, geocentric));
    constexpr double worthSaying = 0.001;  // metres
    const double gap = gap_of_small_angles(intoBessel.main, from, to);
    if (gap >= worthSaying) {
        report += "  note: the published formula, for small angles, leads to a place " +
                  fixed_text(gap * 1000.0, 1) + " mm away: here the angles stand for rotation matrices\n";
    }
    return report;
}

std::string report_of(const BothRoles& system, const Options& options, const DatumStep& intoBessel,
                      const Area& area) {
    constexpr double largestAllowed = 1.0;  // millimetre
    constexpr double millimetres = 1000.0;
    constexpr int decimals = 4;
    if (system.source.is(Kind::gaussKrueger)) {
        check_eastings(system, area);
    }
    const Closures closures = closures_of(system, area);
    for (const auto& [status, failure] : closures.failures) {
        throw Refused("at " + failure.firstPlace + ": " + refusal_text(status, ""));
    }
    const Closure& closure = system.source.in_bessel_datum() ? closures.own : closures.bessel;
    const double largest = std::max(closures.own.largest, closure.largest) * millimetres;
    const std::string sizes = "largest " + fixed_text(largest, decimals) + " mm, mean " +
                              fixed_text(closure.mean * millimetres, decimals) + " mm";
    if (!(largest <= largestAllowed)) {
        throw Refused("out of the Bessel datum and back points do not close within 1 mm: " + sizes);
    }
    return "closure: " + std::to_string(closure.points) + " points, " + number_text(area.latitude.first) +
           " to " + number_text(area.latitude.last) + " N, " + number_text(area.longitude.first) + " to " +
           number_text(area.longitude.last) + " E, out of the Bessel datum and back: " + sizes + '\n' +
           report_of_point(system, options, intoBessel, area);
}

// ---- all together

struct Imported {
    std::string text;
    std::string report;
};

Imported imported(const Options& options) {
    Definition definition;
    if (!options.hubCode.empty() && options.directory.empty()) {
        throw Refused("--hub " + options.hubCode + ": the directory -d that lists it is missing");
    }
    if (!options.directory.empty() && !open_directory(options.directory, definition)) {
        throw Refused("-d " + options.directory + ": cannot be used");
    }
    ParameterText content;
    const std::optional<int> code = integer_of(options.code);
    if (!code) {
        throw Refused("CODE " + options.code + ": is no whole number of 32 bits");
    }
    content.code = *code;
    content.name = quoted_text("--name", options.name, LAGESTATUS_NAME_SIZE - 1);
    content.kind = options.kind;
    content.headComments = {content.name +
                            ", geschrieben von lagestatus import aus veröffentlichten Parametern."};
    set_ellipsoid(content, options);
    set_projection(content, options);
    set_datum(content, options, definition);

    const std::string text = text_of(content);
    const BothRoles system = {system_of(text, Role::source), system_of(text, Role::target)};
    Imported done = {latin1(text).value(),
                     report_of(system, options, content.intoBessel, area_of(content, options))};
    note_equal_names(system, options.directory, definition);
    return done;
}

int import_system(const Options& options) {
    const bool toFile = !options.output.empty() && options.output != "-";
    try {
        if (toFile && !options.output.ends_with(".tra")) {
            throw Refused("-o " + options.output + ": a parameter file's name ends in .tra");
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

void add_import(CLI::App& program, int& exitStatus) {
    const auto options = std::make_shared<Options>();
    CLI::App& command = *program.add_subcommand("import", "Write a parameter file from published parameters");
    const auto add = [&command](const char* names, std::string& text, const char* type,
                                const char* description) {
        return command.add_option(names, text, description)->type_name(type);
    };
    add("CODE", options->code, "", "Lagestatus of the system")->required();
    add("-o,--output", options->output, "FILE.tra", "File to write; without it, standard output");
    command.add_flag("--force", options->force, "Replace an existing file");
    add("--name", options->name, "TEXT", "Name of the system")->required();
    add("--kind", options->kind, "KIND", "Kind of projection")
        ->required()
        ->check(CLI::IsMember({"Geographisch", "Geozentrisch", "Gauss-Krueger", "Soldner"}));
    const CLI::IsMember conventions({"position_vector", "coordinate_frame"});
    add("--ellipsoid", options->ellipsoid, "NAME",
        "Bessel 1841, GRS80, WGS84, Krassowski 1940, International 1924 (Hayford), Airy 1830, Clarke 1866, "
        "Clarke 1880 (IGN)");
    add("--ellipsoid-name", options->ellipsoidName, "TEXT",
        "Its name in the file: equal names are one datum, and one that begins with Bessel is the Bessel "
        "datum");
    add("--a", options->semiMajorAxis, "METRES", "Semi-major axis");
    add("--rf", options->inverseFlattening, "NUMBER", "Inverse flattening");
    add("--b", options->semiMinorAxis, "METRES", "Semi-minor axis");
    add("--lat-0", options->latitude, "DEGREES", "Latitude of origin");
    add("--lon-0", options->longitude, "DEGREES", "Longitude of origin, the central meridian");
    add("--k-0", options->scale, "NUMBER", "Scale of the meridian");
    add("--x-0", options->easting, "METRES", "False easting; the millions are the strip number");
    add("--y-0", options->northing, "METRES", "False northing");
    add("--strips", options->strips, "WIDTH[,OFFSET]",
        "Strips instead of one meridian: strip z has the meridian WIDTH z + OFFSET, in degrees");
    add("--towgs84", options->set, "NUMBERS",
        "From the system to WGS84/ETRS89: dx,dy,dz in metres or dx,dy,dz,rx,ry,rz,ds with arc seconds and "
        "ppm");
    add("--convention", options->convention, "WORD", "What its rotations turn")->check(conventions);
    add("--reduction", options->reduction, "X,Y,Z",
        "Point that it turns about (Molodensky-Badekas), in metres");
    add("--hub-towgs84", options->hubSet, "NUMBERS",
        "From the Bessel datum to WGS84/ETRS89, in the same way");
    add("--hub-convention", options->hubConvention, "WORD", "Its convention")->check(conventions);
    add("--hub-reduction", options->hubReduction, "X,Y,Z", "Its point");
    add("--hub", options->hubCode, "CODE", "Or: the system of a data directory whose second column this is");
    add("-d,--dir", options->directory, "DIR", "The data directory");
    add("--area", options->area, "W,S,E,N", "Area of use in degrees, where the file is tried");
    add("--point", options->point, "COORDINATES",
        "A point in the system to show; without it, the area's centre");
    add_examples(
        command,
        "lagestatus import 303 -o data/system-42-83.tra --name \"System 42/83\" --kind Gauss-Krueger \\\n"
        "    --ellipsoid \"Krassowski 1940\" --strips 3 --x-0 500000 --convention position_vector \\\n"
        "    --towgs84 24.9,-126.4,-93.2,-0.063,-0.247,-0.041,1.01 --hub 201 -d data");
    command.callback([options, &exitStatus] { exitStatus = import_system(*options); });
}

}  // namespace cli
