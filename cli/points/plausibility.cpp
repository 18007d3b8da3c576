#include "points/plausibility.h"

#include <cmath>

#include "base/angles.h"
#include "geodesy/plane_reductions.h"
#include "keeper/data_directory.h"
#include "system/text.h"

namespace cli {
namespace {

struct Interval {
    double low;
    double high;
    [[nodiscard]] bool holds(double value) const { return value >= low && value <= high; }
};
// Germany and its neighbours, widely.
constexpr Interval latitudes = {45.0, 58.0};               // degrees
constexpr Interval longitudes = {0.0, 24.0};               // degrees, of meridians too
constexpr Interval northingsFromEquator = {5.0e6, 6.4e6};  // metres, for those latitudes
constexpr double localReach = 300e3;                       // metres from the origin of a local system

bool within_circle(const std::array<double, 3>& point) {
    return std::fabs(point[0]) <= 90.0 && std::fabs(point[1]) <= 360.0;
}

}  // namespace

Plausibility::Plausibility(const SystemDescription& source)
    : zones(zones_of(source)), zoneNumber(source.zoneNumber) {
    const auto& p = source.parameters;
    constantX = p[slot::additiveX];
    constantY = p[slot::additiveY];
    originLatitude = p[slot::latitudeOfOrigin];
    if (is(ProjectionKind::geographic, source)) {
        scheme = Scheme::degrees;
    } else if (has_more_than_constants(p)) {
        scheme = Scheme::unchecked;
    } else if (is(ProjectionKind::soldner, source)) {
        scheme = Scheme::local;
    } else if (is(ProjectionKind::gaussKrueger, source)) {
        scheme = zones.hasStrips ? Scheme::strips : Scheme::meridian;
    }
}

Plausibility::Easting Plausibility::parted(double easting) const {
    const int strip = zone_of(easting);
    return {strip, easting - constantY - strip * zoneUnit};
}

double Plausibility::meridian_of(int strip) const {
    return central_meridian(zones, strip) / degree;
}

bool Plausibility::strip_fits(double easting) const {
    constexpr double metresOfDegree = 78e3;  // along the parallel of 45.5 degrees
    constexpr double widest = 6.0;           // degrees, of the strips in use
    const auto [strip, fromMeridian] = parted(easting);
    const bool known = scheme == Scheme::strips ? strip != 0 && longitudes.holds(meridian_of(strip))
                                                : strip == 0 || strip == zoneNumber;
    return known &&
           std::fabs(fromMeridian) <=
               (scheme == Scheme::strips ? static_cast<double>(zones.width) : widest) * metresOfDegree;
}

bool Plausibility::northing_fits(double northing) const {
    return originLatitude != 0.0 || northingsFromEquator.holds(northing - constantX);
}

// Roughly, for strips and systems that count from the equator: a degree is taken as a sphere's.
bool Plausibility::lies_in_germany(double northing, double easting) const {
    constexpr Interval germanLatitudes = {47.0, 55.2};
    constexpr Interval germanLongitudes = {5.5, 15.4};
    constexpr double metresOfMeridian = 111.2e3;
    const double latitude = (northing - constantX) / metresOfMeridian;
    const auto [strip, fromMeridian] = parted(easting);
    const double meridian = meridian_of(strip);
    return germanLatitudes.holds(latitude) &&
           germanLongitudes.holds(meridian + fromMeridian / (metresOfMeridian * std::cos(latitude * degree)));
}

bool Plausibility::looks_exchanged(const std::array<double, 3>& point) const {
    return (northing_fits(point[1]) && !northing_fits(point[0])) ||
           (scheme == Scheme::strips && originLatitude == 0.0 && !lies_in_germany(point[0], point[1]) &&
            lies_in_germany(point[1], point[0]));
}

bool Plausibility::fits(const std::array<double, 3>& point) const {
    if (scheme == Scheme::degrees) {
        return within_circle(point) &&
               (latitudes.holds(point[0]) || !latitudes.holds(point[1]) || !longitudes.holds(point[0]));
    }
    if (scheme == Scheme::local) {
        return std::fabs(point[0] - constantX) <= localReach && std::fabs(point[1] - constantY) <= localReach;
    }
    return scheme == Scheme::unchecked || (strip_fits(point[1]) && !looks_exchanged(point));
}

std::string Plausibility::likely_mistake(const std::array<double, 3>& point) const {
    if (scheme == Scheme::degrees) {
        return within_circle(point) ? "latitude and longitude look exchanged (--swap, or other --columns)"
                                    : "angles beyond the circle; are these plane coordinates?";
    }
    if (scheme == Scheme::local) {
        return "coordinates of more than " + fixed_text(localReach / 1e3, 0) +
               " km from the origin; do they belong to another system?";
    }
    if (looks_exchanged(point)) {
        return "northing and easting look exchanged (--swap, or other --columns)";
    }
    const int strip = parted(point[1]).strip;
    const std::string easting = "the easting " + fixed_text(point[1], 0);
    if (scheme == Scheme::strips && strip == 0) {
        return easting + " has no number of a strip in front, which this system wants";
    }
    if (scheme == Scheme::meridian && strip != 0 && strip != zoneNumber) {
        return easting + " has the number of another strip than this system's";
    }
    return easting + " lies far from every meridian of this system";
}

}  // namespace cli
