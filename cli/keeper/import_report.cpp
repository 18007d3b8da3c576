// What an import tells the user: whether the file is right, and what it does.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

#include "base/angles.h"
#include "bulk/texts.h"
#include "geodesy/zones.h"
#include "keeper/import_steps.h"
#include "system/output.h"
#include "system/text.h"

namespace cli {
namespace {

Area area_of(const ParameterText& content, const ImportOptions& options) {
    constexpr int places = 21;  // in each direction
    constexpr Places germanLatitudes = {47.0, 55.5, places};
    if (!options.area.empty()) {
        const std::vector<double> values = numbers_in("--area", options.area);
        if (values.size() != 4 || !(values[0] < values[2] && values[1] < values[3]) ||
            !(values[0] >= -180.0 && values[2] <= 180.0 && values[1] >= -90.0 && values[3] <= 90.0)) {
            throw Refused("--area " + options.area + ": must be WEST,SOUTH,EAST,NORTH in degrees");
        }
        return {{values[1], values[3], places}, {values[0], values[2], places}};
    }
    const auto around = [](double middle, double reach) {
        return Places{middle - reach, middle + reach, places};
    };
    const double longitude = number_in("--lon-0", options.longitude, 0.0);
    if (content.kind == ProjectionKind::soldner) {
        return {around(number_in("--lat-0", options.latitude, 0.0), 0.5), around(longitude, 0.5)};
    }
    if (content.kind == ProjectionKind::gaussKrueger && options.strips.empty()) {
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
Point metres_between(const Point& from, const Point& to, const SystemDescription& system) {
    const double latitude = from[0] * degree;
    const double a = system.parameters[slot::semiMajorAxis];
    const double ratio = system.parameters[slot::semiMinorAxis] / a;
    const double squaredEccentricity = 1.0 - ratio * ratio;
    const double sine = std::sin(latitude);
    const double W = std::sqrt(1.0 - squaredEccentricity * sine * sine);
    const double acrossMeridian = a / W;
    const double alongMeridian = acrossMeridian * (1.0 - squaredEccentricity) / (W * W);
    return {(to[1] - from[1]) * degree * acrossMeridian * std::cos(latitude),
            (to[0] - from[0]) * degree * alongMeridian, to[2] - from[2]};
}

// Throws where a Gauss-Krueger easting of the area has another number in its millions than its strip's.
void check_eastings(const BothRoles& system, const Area& area) {
    constexpr double edge = 1e-6;  // degrees: at a strip's edge either neighbour will do
    const ZoneLayout layout = zones_of(system.source);
    const Road road(of_kind(system.source, ProjectionKind::geographic), system.target, nullptr);
    for_each_place(area, [&](double latitude, double longitude) {
        const std::string where = "at " + place_text(latitude, longitude) + ": ";
        double easting = 0.0;
        try {
            easting = carried(road, {latitude, longitude, 0.0})[1];
        } catch (const NotCarried& refused) {
            throw Refused(where + refused.what());
        }
        const int number = zone_of(easting);
        const bool right = layout.hasStrips
                               ? std::fabs(longitude - central_meridian(layout, number) / degree) <=
                                     static_cast<double>(layout.width) / 2.0 + edge
                               : number == system.target.zoneNumber;
        if (!right) {
            throw Refused(where + "the easting is " + data_text(std::round(easting)) +
                          ", which a reader takes for strip " + std::to_string(number) +
                          ": eastings must not leave their million within the area of use (--area)");
        }
    });
}

// One point, with and without the datum step, so that a wrong sign is seen.
std::string report_of_point(const BothRoles& system, const ImportOptions& options,
                            const DatumSets& intoBessel, const Area& area) {
    const SystemDescription ownSource = of_kind(system.source, ProjectionKind::geographic);
    const SystemDescription ownTarget = of_kind(system.target, ProjectionKind::geographic);
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
        "point: " + point_text(point, is(ProjectionKind::geographic, system.source)) +
        "\n  latitude, longitude, height in the system's datum: " + point_text(before, true) + '\n';
    if (in_bessel_datum(system.source)) {
        return report;
    }
    // GRS 1980, EPSG:7019. The ellipsoid's name differs from every name that a file can have.
    SystemDescription common = neutral_system(ProjectionKind::geographic, "", {6378137.0, 6356752.314140356});
    set_main_set(common, intoBessel.intermediate);
    const Point after = carried(point, system.source, common);
    const Point shift = metres_between(before, after, common);
    constexpr int decimals = 2;
    report += "  in WGS84/ETRS89 by this file:                      " + point_text(after, true) +
              "\n  so the datum step moves it by " + rounded_text(shift[0], decimals) + " m east, " +
              rounded_text(shift[1], decimals) + " m north, " + rounded_text(shift[2], decimals) + " m up\n";
    constexpr ProjectionKind geocentric = ProjectionKind::geocentric;
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

}  // namespace

std::string report_of(const BothRoles& system, const ParameterText& content, const ImportOptions& options) {
    const Area area = area_of(content, options);
    constexpr double largestAllowed = 1.0;  // millimetre
    constexpr double millimetres = 1000.0;
    constexpr int decimals = 4;
    if (kind_of(system.source).hasStrips) {
        check_eastings(system, area);
    }
    const Closures closures = closures_of(system, area);
    if (!closures.failures.empty()) {
        const auto& [status, failure] = *closures.failures.begin();
        throw Refused("at " + failure.firstPlace + ": " + status_text(status, ""));
    }
    const Closure& closure = in_bessel_datum(system.source) ? closures.own : closures.bessel;
    const double largest = std::max(closures.own.largest, closure.largest) * millimetres;
    const std::string sizes = "largest " + fixed_text(largest, decimals) + " mm, mean " +
                              fixed_text(closure.mean * millimetres, decimals) + " mm";
    if (!(largest <= largestAllowed)) {
        throw Refused("out of the Bessel datum and back points do not close within 1 mm: " + sizes);
    }
    return "closure: " + std::to_string(closure.points) + " points, " + number_text(area.latitude.first) +
           " to " + number_text(area.latitude.last) + " N, " + number_text(area.longitude.first) + " to " +
           number_text(area.longitude.last) + " E, out of the Bessel datum and back: " + sizes + '\n' +
           report_of_point(system, options, content.intoBessel, area);
}

void note_equal_names(const BothRoles& system, int code, const Directory* directory) {
    if (directory == nullptr) {
        return;
    }
    const auto differ = [](const SystemDescription& one, const SystemDescription& other) {
        return !have_same_axes(one, other) || (!in_bessel_datum(one) && !have_same_datum_sets(one, other));
    };
    const std::string_view ellipsoid = system.source.ellipsoidName.view();
    std::string codes;
    for (const DefinitionEntry& entry : directory->entries()) {
        const ReadSystem& source = directory->system(entry, Column::intoBessel);
        const ReadSystem& target = directory->system(entry, Column::outOfBessel);
        if (entry.code != code && source.failure.status == status::ok &&
            source.description.ellipsoidName.view() == ellipsoid &&
            (differ(source.description, system.source) ||
             (target.failure.status == status::ok && differ(target.description, system.target)))) {
            codes += (codes.empty() ? "" : ", ") + std::to_string(entry.code);
        }
    }
    if (!codes.empty()) {
        complain("note: no datum step will be made between this system and " + codes + " in " +
                 directory->path() + ": the ellipsoid name is " + utf8_of(ellipsoid) +
                 " there too, which counts as the same datum, but the parameters differ");
    }
}

}  // namespace cli
