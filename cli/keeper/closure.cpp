#include "keeper/closure.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "keeper/data_directory.h"
#include "system/output.h"
#include "system/text.h"

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
    Writable(const SystemDescription& geographic, SystemDescription target)
        : half(target.parameters[slot::decadicComplement] / 2) {
        if (!(half > 0.0) || !kind_of(target).isPlane) {
            return;
        }
        for (const std::size_t slot : {slot::decadicComplement, slot::additiveY, slot::additiveX}) {
            target.parameters.at(slot) = 0.0;
        }
        target.parameters[slot::planeScale] = 1.0;
        road.emplace(geographic, target, nullptr);
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

SystemDescription neutral_system(ProjectionKind kind, std::string_view ellipsoidName, const Ellipsoid& axes) {
    SystemDescription system;
    system.projectionKind.assign(kind_name(kind));
    system.ellipsoidName.assign(ellipsoidName);
    for (const std::size_t scale :
         {slot::meridianScale, slot::planeScale, slot::datumScale, slot::intermediateScale}) {
        system.parameters.at(scale) = 1.0;
    }
    system.parameters[slot::semiMajorAxis] = axes.a;
    system.parameters[slot::semiMinorAxis] = axes.b;
    return system;
}

SystemDescription of_kind(SystemDescription system, ProjectionKind kind) {
    system.projectionKind.assign(kind_name(kind));
    return system;
}

Point carried(const Road& road, const Point& point) {
    const CarriedPoint carried = road.carry(point, {.alsoUnasked = false});
    if (carried.status != status::ok) {
        throw NotCarried(carried.status);
    }
    return {carried.at[0], carried.at[1], carried.at[2]};
}

Point carried(const Point& point, const SystemDescription& source, const SystemDescription& target) {
    return carried(Road(source, target, nullptr), point);
}

std::string place_text(double latitude, double longitude) {
    return number_text(latitude) + " N, " + number_text(longitude) + " E";
}

Closures closures_of(const BothRoles& system, const Area& area) {
    constexpr double height = 100.0;
    const SystemDescription bessel =
        neutral_system(ProjectionKind::geocentric, "Bessel", {6377397.155, 6356078.962818189});
    // Between equal names no datum step is made, whichever the system has.
    BothRoles own = system;
    own.source.ellipsoidName.assign("own");
    own.target.ellipsoidName.assign("own");
    const SystemDescription geographic = of_kind(own.source, ProjectionKind::geographic);
    const SystemDescription geocentric = of_kind(own.target, ProjectionKind::geocentric);
    const Road start(geographic, geocentric, nullptr);
    const Road there(geographic, own.target, nullptr);
    const Road back(own.source, geocentric, nullptr);
    const Road intoBessel(system.source, bessel, nullptr);
    const Road outOfBessel(bessel, system.target, nullptr);
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
        if (!in_bessel_datum(system.source)) {
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
