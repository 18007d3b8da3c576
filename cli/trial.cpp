#include "trial.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <optional>
#include <vector>

namespace cli {
namespace {

using Point = std::array<double, 3>;

constexpr double degree = std::numbers::pi / 180.0;

// Slots of the parameters that are looked at here.
constexpr std::size_t latitudeOfOrigin = 0;
constexpr std::size_t longitudeOfOrigin = 1;
constexpr std::size_t complement = 4;
constexpr std::size_t meridianScale = 5;
constexpr std::size_t constantY = 9;
constexpr std::size_t constantX = 10;
constexpr std::size_t planeScale = 13;
constexpr std::size_t datumScale = 20;
constexpr std::size_t semiMajor = 24;
constexpr std::size_t semiMinor = 25;
constexpr std::size_t intermediateScale = 32;

System pseudo_system(const std::string& kind, const std::string& ellipsoid, double a, double b) {
    System system;
    system.kind = kind;
    system.ellipsoid = ellipsoid;
    for (const std::size_t scale : {meridianScale, planeScale, datumScale, intermediateScale}) {
        system.parameters[scale] = 1.0;
    }
    system.parameters[semiMajor] = a;
    system.parameters[semiMinor] = b;
    return system;
}

struct Range {
    double first;
    double step;
    int count;
};

struct Area {
    Range latitude;
    Range longitude;
};

// Points keep away from the places where coordinates jump: longitudes from the multiples of half a degree, where strips
// meet; points around an origin from itself, where a value a little below 0 is written as a decadic complement.
Area area_of(const System& system) {
    constexpr Range german = {47.0, 0.5, 18};
    constexpr Area germany = {german, {5.7, 0.5, 20}};
    const double origin = system.parameters[longitudeOfOrigin];
    if (system.is(Kind::soldner)) {
        constexpr Range around = {-0.4375, 0.125, 8};
        constexpr double furthest = 89.0;  // short of the poles
        const double latitude =
            std::clamp(system.parameters[latitudeOfOrigin] / degree, -furthest, furthest) + around.first;
        return {{latitude, around.step, around.count}, {origin + around.first, around.step, around.count}};
    }
    if (system.is(Kind::gaussKrueger) && !zone_layout_of(system).strips) {
        return {german, {origin - 1.375, 0.25, 12}};
    }
    return germany;
}

// Metres between two points of a system, given in its own coordinates.
double distance(const System& system, const Point& one,
                const std::array<double, LAGESTATUS_RESULT_SIZE>& other) {
    Point difference = {other[0] - one[0], other[1] - one[1], other[2] - one[2]};
    if (system.is(Kind::geographic)) {
        const double a = system.parameters[semiMajor];
        const double b = system.parameters[semiMinor];
        const double phi = one[0] * degree;
        const double W = std::hypot(a * std::cos(phi), b * std::sin(phi));
        difference[0] *= degree * (a * b / W * a * b / (W * W) + one[2]);
        difference[1] *= degree * (a * a / W + one[2]) * std::cos(phi);
    }
    return std::hypot(difference[0], difference[1], difference[2]);
}

// Tells whether a plane coordinate can be written without being taken for another: with a decadic complement d only
// those within d / 2 of zero can.
class Writable {
  public:
    Writable(const std::string& directory, const System& geographic, System target)
        : half(target.parameters[complement] / 2) {
        target.parameters[complement] = 0.0;
        target.parameters[constantY] = 0.0;
        target.parameters[constantX] = 0.0;
        target.parameters[planeScale] = 1.0;
        road.emplace(directory, geographic, target);
        used = half > 0.0 && (target.is(Kind::soldner) || target.is(Kind::gaussKrueger));
    }

    [[nodiscard]] bool operator()(const Point& geographic) const {
        if (!used) {
            return true;
        }
        const Transformed plane = road->transform(geographic, {});
        return plane.status != 0 || (std::abs(plane.result[0]) < half && std::abs(plane.result[1]) < half);
    }

  private:
    double half;
    bool used = false;
    std::optional<Road> road;
};

void add_distance(Closure& closure, double metres) {
    ++closure.points;
    metres = std::isfinite(metres) ? metres : std::numeric_limits<double>::infinity();
    closure.largest = std::max(closure.largest, metres);
    closure.mean += metres;  // the sum, to be divided in the end
}

}  // namespace

Closures closures_of(const std::string& directory, const System& source, const System& target) {
    constexpr double height = 100.0;
    // Under a name that is not Bessel's the library asks for no heights, and between equal names makes no datum step.
    constexpr const char* own = "own";
    System ownSource = source;
    System ownTarget = target;
    ownSource.ellipsoid = own;
    ownTarget.ellipsoid = own;
    const System geographic =
        pseudo_system("Geographisch", own, source.parameters[semiMajor], source.parameters[semiMinor]);
    const System bessel = pseudo_system("Geozentrisch", "Bessel", 6377397.155, 6356078.962818189);
    const Road there(directory, geographic, ownTarget);
    const Road back(directory, ownSource, geographic);
    const Road intoBessel(directory, source, bessel);
    const Road outOfBessel(directory, bessel, target);
    const Writable writable(directory, geographic, ownTarget);
    const Area area = area_of(target);

    Closures closures;
    const double middle = area.longitude.first + area.longitude.step * area.longitude.count / 2;
    constexpr double furthestLongitude = 85.0;
    if (!(std::abs(middle) < furthestLongitude)) {
        closures.unusualPlace = true;
        return closures;
    }
    for (int row = 0; row < area.latitude.count; ++row) {
        for (int column = 0; column < area.longitude.count; ++column) {
            const Point place = {area.latitude.first + row * area.latitude.step,
                                 area.longitude.first + column * area.longitude.step, height};
            if (!writable(place)) {
                ++closures.outOfReach;
                continue;
            }
            // A road's result, if it has one.
            const auto taken = [&closures](const Road& road, const Point& from) {
                const Transformed transformed = road.transform(from, {});
                if (transformed.status != 0) {
                    ++closures.failures[transformed.status];
                }
                return transformed;
            };
            const auto pointOf = [](const Transformed& transformed) {
                return Point{transformed.result[0], transformed.result[1], transformed.result[2]};
            };
            const Transformed start = taken(there, place);
            if (start.status != 0) {
                continue;
            }
            const Point point = pointOf(start);
            if (const Transformed end = taken(back, point); end.status == 0) {
                add_distance(closures.own, distance(geographic, place, end.result));
            }
            if (source.in_bessel_datum()) {
                continue;
            }
            const Transformed hub = taken(intoBessel, point);
            if (hub.status != 0) {
                continue;
            }
            if (const Transformed end = taken(outOfBessel, pointOf(hub)); end.status == 0) {
                add_distance(closures.bessel, distance(target, point, end.result));
            }
        }
    }
    for (Closure* const closure : {&closures.own, &closures.bessel}) {
        closure->mean /= static_cast<double>(std::max<std::size_t>(closure->points, 1));
    }
    return closures;
}

}  // namespace cli
