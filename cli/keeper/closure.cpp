#include "keeper/closure.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "keeper/directory.h"
#include "system/output.h"

namespace cli {
namespace {

double distance(const Point& one, const Point& other) {
    return std::hypot(other[0] - one[0], other[1] - one[1], other[2] - one[2]);
}

void add_distance(Closure& closure, double metres) {
    ++closure.points;
    closure.largest = std::max(closure.largest, metres);
    closure.mean += metres;  // the sum, to be divided in the end
}

// Tells whether a plane coordinate can be written without being taken for another: with a decadic complement d only
// those within d / 2 of zero can.
class Writable {
  public:
    Writable(const System& geographic, System target) : half(target.parameters[slots::complement] / 2) {
        if (!(half > 0.0) || !(target.is(Kind::soldner) || target.is(Kind::gaussKrueger))) {
            return;
        }
        target.parameters[slots::complement] = 0.0;
        target.parameters[slots::constantY] = 0.0;
        target.parameters[slots::constantX] = 0.0;
        target.parameters[slots::planeScale] = 1.0;
        road.emplace(".", geographic, target);
    }

    [[nodiscard]] bool operator()(const Point& place) const {
        if (!road) {
            return true;
        }
        const Point plane = carried(*road, place);
        return std::abs(plane[0]) < half && std::abs(plane[1]) < half;
    }

  private:
    double half;
    std::optional<Road> road;
};

}  // namespace

System neutral_system(const std::string& kind, const std::string& ellipsoid, double semiMajorAxis,
                      double semiMinorAxis) {
    System system;
    system.kind = kind;
    system.ellipsoid = ellipsoid;
    for (const std::size_t scale :
         {slots::meridianScale, slots::planeScale, slots::datumScale, slots::intermediateScale}) {
        system.parameters.at(scale) = 1.0;
    }
    system.parameters[slots::semiMajorAxis] = semiMajorAxis;
    system.parameters[slots::semiMinorAxis] = semiMinorAxis;
    return system;
}

System of_kind(System system, const std::string& kind) {
    system.kind = kind;
    return system;
}

NotCarried::NotCarried(int refusal) : std::runtime_error(refusal_text(refusal, "")), refusedWith(refusal) {}

std::string refusal_text(int status, const std::string& fileName) {
    return status == 0 ? "the result is no finite number" : status_text(status, fileName);
}

Point carried(const Road& road, const Point& point) {
    const Transformed done = road.transform(point, {});
    const Point result = {done.result[0], done.result[1], done.result[2]};
    const bool complete = done.status == 0 || done.status >= heightModelFrom;  // heights are not asked for
    if (!complete ||
        !std::all_of(result.begin(), result.end(), [](double value) { return std::isfinite(value); })) {
        throw NotCarried(complete ? 0 : done.status);
    }
    return result;
}

Point carried(const Point& point, const System& source, const System& target) {
    return carried(Road(".", source, target), point);
}

std::string place_text(double latitude, double longitude) {
    return number_text(latitude) + " N, " + number_text(longitude) + " E";
}

Closures closures_of(const BothRoles& system, const Area& area) {
    constexpr double height = 100.0;
    const System bessel = neutral_system("Geozentrisch", "Bessel", 6377397.155, 6356078.962818189);
    // Under a name that is not Bessel's the library asks for no heights, and between equal names makes no datum step.
    BothRoles own = system;
    own.source.ellipsoid = "own";
    own.target.ellipsoid = "own";
    const System geographic = of_kind(own.source, "Geographisch");
    const System geocentric = of_kind(own.target, "Geozentrisch");
    const Road start(".", geographic, geocentric);
    const Road there(".", geographic, own.target);
    const Road back(".", own.source, geocentric);
    const Road intoBessel(".", system.source, bessel);
    const Road outOfBessel(".", bessel, system.target);
    const Writable writable(geographic, own.target);

    Closures closures;
    const auto tryPlace = [&](const Point& place) {
        if (!writable(place)) {
            ++closures.outOfReach;
            return;
        }
        const Point point = carried(there, place);
        const Point returned = carried(back, point);
        add_distance(closures.own, distance(carried(start, place), returned));
        if (!system.source.in_bessel_datum()) {
            const Point again = carried(back, carried(outOfBessel, carried(intoBessel, point)));
            add_distance(closures.bessel, distance(returned, again));
        }
    };
    for_each_place(area, [&](double latitude, double longitude) {
        try {
            tryPlace({latitude, longitude, height});
        } catch (const NotCarried& refused) {
            Failure& failure = closures.failures[refused.status()];
            if (failure.count++ == 0) {
                failure.firstPlace = place_text(latitude, longitude);
            }
        }
    });
    for (Closure* const closure : {&closures.own, &closures.bessel}) {
        closure->mean /= static_cast<double>(std::max<std::size_t>(closure->points, 1));
    }
    return closures;
}

}  // namespace cli
