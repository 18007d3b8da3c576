#include "closure.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "directory.h"
#include "numbers.h"
#include "output.h"

namespace cli {
namespace {

constexpr std::size_t semiMajor = 24;
constexpr std::size_t semiMinor = 25;

// Bessel 1841, EPSG:7004.
constexpr double besselSemiMajorAxis = 6377397.155;
constexpr double besselSemiMinorAxis = 6356078.962818189;

// Calls use(latitude, longitude) for a grid over the area; what it throws gets the place.
template <typename Use>
void for_each_node(const Area& area, Use use) {
    constexpr int steps = 20;
    const auto between = [](double first, double last, int step) {
        return first + (last - first) * step / steps;
    };
    for (int row = 0; row <= steps; ++row) {
        for (int column = 0; column <= steps; ++column) {
            const double latitude = between(area.south, area.north, row);
            const double longitude = between(area.west, area.east, column);
            try {
                use(latitude, longitude);
            } catch (const ClosureError& error) {
                throw ClosureError("at " + number_text(latitude) + " N, " + number_text(longitude) +
                                   " E: " + error.what());
            }
        }
    }
}

Point transformed(const Road& road, const Point& point) {
    constexpr int answered = 1000;  // from here on the statuses concern heights that are not asked for
    const Transformed done = road.transform(point, {});
    const Point result = {done.result[0], done.result[1], done.result[2]};
    if (done.status != 0 && done.status < answered) {
        throw ClosureError(status_text(done.status, ""));
    }
    if (!std::all_of(result.begin(), result.end(), [](double value) { return std::isfinite(value); })) {
        throw ClosureError("the result is no finite number");
    }
    return result;
}

}  // namespace

System neutral_system(const std::string& ellipsoid, double semiMajorAxis, double semiMinorAxis) {
    System system;
    system.name = "-";
    system.kind = "Geographisch";
    system.ellipsoid = ellipsoid;
    for (const std::size_t scale : {5U, 13U, 20U, 32U}) {
        system.parameters.at(scale) = 1.0;
    }
    system.parameters[semiMajor] = semiMajorAxis;
    system.parameters[semiMinor] = semiMinorAxis;
    return system;
}

BothRoles geographic_of(BothRoles system) {
    system.source.kind = "Geographisch";
    system.target.kind = "Geographisch";
    return system;
}

Point carried(const Point& point, const System& source, const System& target) {
    return transformed(Road(".", source, target), point);
}

Point metres_between(const Point& from, const Point& to, double semiMajorAxis, double semiMinorAxis) {
    constexpr double radian = std::numbers::pi / 180.0;
    const double latitude = from[0] * radian;
    const double ratio = semiMinorAxis / semiMajorAxis;
    const double squaredEccentricity = 1.0 - ratio * ratio;
    const double sine = std::sin(latitude);
    const double W = std::sqrt(1.0 - squaredEccentricity * sine * sine);
    const double acrossMeridian = semiMajorAxis / W;
    const double alongMeridian = acrossMeridian * (1.0 - squaredEccentricity) / (W * W);
    return {(to[1] - from[1]) * radian * acrossMeridian * std::cos(latitude),
            (to[0] - from[0]) * radian * alongMeridian, to[2] - from[2]};
}

Closure closure_of(const BothRoles& system, const Area& area) {
    const System bessel = neutral_system("Bessel", besselSemiMajorAxis, besselSemiMinorAxis);
    const Road out(".", bessel, system.target);
    const Road back(".", system.source, bessel);
    constexpr double height = 100.0;
    constexpr double millimetres = 1000.0;
    Closure closure;
    double sum = 0.0;
    for_each_node(area, [&](double latitude, double longitude) {
        const Point start = {latitude, longitude, height};
        const Point end = transformed(back, transformed(out, start));
        const Point gap = metres_between(start, end, besselSemiMajorAxis, besselSemiMinorAxis);
        const double distance = std::hypot(gap[0], gap[1], gap[2]) * millimetres;
        closure.largest = std::max(closure.largest, distance);
        sum += distance;
        ++closure.points;
    });
    closure.mean = sum / closure.points;
    return closure;
}

void check_eastings(const BothRoles& system, const Area& area) {
    constexpr double million = 1e6;
    constexpr double edge = 1e-6;  // degrees: at a strip's edge either neighbour will do
    const ZoneLayout layout = zone_layout_of(system.source);
    const Road road(".", geographic_of(system).source, system.target);
    for_each_node(area, [&](double latitude, double longitude) {
        const double easting = transformed(road, {latitude, longitude, 0.0})[1];
        const double number = std::trunc(easting / million);
        const bool right = layout.strips ? std::fabs(longitude - (layout.width * number + layout.offset)) <=
                                               layout.width / 2.0 + edge
                                         : number == system.target.zoneNumber;
        if (!right) {
            throw ClosureError("the easting is " + data_text(std::round(easting)) +
                               ", which a reader takes for strip " + number_text(number) +
                               ": eastings must not leave their million within the area of use (--area)");
        }
    });
}

}  // namespace cli
