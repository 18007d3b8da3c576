// The ellipsoid and the projection of an imported system.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "keeper/import_steps.h"
#include "system/text.h"

namespace cli {
namespace {

struct NamedEllipsoid {
    const char* title;
    const char* name;  // at most 10 characters
    int epsg;
    const char* semiMajorAxis;
    const char* inverseFlattening;  // or else
    const char* semiMinorAxis;
    std::array<const char*, 2> aliases;
};

// EPSG Geodetic Parameter Dataset, version 10.076.
constexpr std::array<NamedEllipsoid, 8> ellipsoids = {{
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

void set_strips(ParameterText& content, const std::string& strips) {
    constexpr double widest = 9.0;
    constexpr double lowest = layoutsFrom + 1.0 - layoutZero;
    constexpr double highest = 360.0;
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
    content.longitudeOfOrigin = std::to_string(layoutZero + degrees) + '.' + widthText;
    content.originComments = {"Streifen: 600" + sign + size + " und Zehntel " + widthText +
                              " stehen für Streifen von " + widthText + "° mit dem Mittelmeridian " +
                              widthText + "° mal Nummer" + (degrees == 0 ? "" : sign + size + "°") + "."};
}

// What is left of a false easting without the strip number in its millions.
double split_easting(ParameterText& content, const std::string& text) {
    constexpr int largestNumber = 999;
    const double easting = number_in("--x-0", text, 0.0);
    const int number = zone_of(easting);
    if (number < 0 || number > largestNumber) {
        throw Refused(
            "--x-0 " + text + ": does not split into a strip number from 0 to 999 in the millions and an " +
            "additive constant: a reader would take the millions of every easting for a strip number");
    }
    content.originComments = {number == 0
                                  ? "Ein Mittelmeridian; vor dem Rechtswert steht keine Nummer."
                                  : "Ein Mittelmeridian; dahinter die Nummer, die vor dem Rechtswert steht."};
    if (number > 0) {
        content.longitudeOfOrigin += ' ' + std::to_string(number);
    }
    return easting - number * zoneUnit;
}

void set_meridian(ParameterText& content, const ImportOptions& options) {
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
        if (!(std::fabs(content.additiveY) < zoneUnit)) {
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

}  // namespace

void set_ellipsoid(ParameterText& content, const ImportOptions& options) {
    constexpr std::size_t longest = SystemDescription::EllipsoidName::maxLength;
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
            std::find_if(ellipsoids.begin(), ellipsoids.end(), [&](const NamedEllipsoid& one) {
                const auto& names = one.aliases;
                return std::find(names.begin(), names.end(), plain_letters(options.ellipsoid)) != names.end();
            });
        if (found == ellipsoids.end()) {
            std::string known;
            for (const NamedEllipsoid& one : ellipsoids) {
                known += (known.empty() ? "" : ", ") + std::string(one.title);
            }
            throw Refused("--ellipsoid " + options.ellipsoid + ": is not known; these are: " + known);
        }
        content.ellipsoid = content.ellipsoid.empty() ? found->name : content.ellipsoid;
        content.ellipsoidComments = {"Ellipsoid: " + std::string(found->title) +
                                     ", EPSG:" + std::to_string(found->epsg)};
        set_axes(content, found->semiMajorAxis, found->inverseFlattening, found->semiMinorAxis);
    }
    quotable_text("--ellipsoid-name", content.ellipsoid, longest);
}

void set_projection(ParameterText& content, const ImportOptions& options) {
    const KindTraits kind = kind_traits(options.kind);
    content.kind = kind.kind;
    const std::string why = "for the kind " + options.kind;
    if (!kind.isPlane) {
        refuse_given({{"--lat-0", options.latitude},
                      {"--lon-0", options.longitude},
                      {"--k-0", options.scale},
                      {"--x-0", options.easting},
                      {"--y-0", options.northing},
                      {"--strips", options.strips}},
                     why);
        return;
    }
    const double latitude = number_in("--lat-0", options.latitude, 0.0);
    const double longitude = number_in("--lon-0", options.longitude, 0.0);
    if (!(std::fabs(latitude) <= 90.0)) {
        throw Refused("--lat-0 " + options.latitude + ": must be from -90 to 90 degrees");
    }
    if (!(longitude >= 0.0 && longitude <= 90.0)) {
        throw Refused("--lon-0 " + options.longitude +
                      ": must be from 0 to 90 degrees; datum steps mirror longitudes beyond");
    }
    content.latitudeOfOrigin = latitude;
    content.longitudeOfOrigin = data_text(longitude);
    content.additiveX = number_in("--y-0", options.northing, 0.0);
    if (kind.hasStrips) {
        set_meridian(content, options);
        return;
    }
    if (kind.kind != ProjectionKind::soldner) {
        throw Refused("--kind " + options.kind + ": published parameters of this kind are not known");
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

}  // namespace cli
