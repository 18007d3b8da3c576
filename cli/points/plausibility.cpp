#include "points/plausibility.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "system/output.h"

namespace cli {
namespace {

// Germany and its neighbours, widely.
struct Range {
    double low;
    double high;
    [[nodiscard]] bool holds(double value) const { return value >= low && value <= high; }
};
constexpr Range latitudes = {45.0, 58.0};               // degrees
constexpr Range longitudes = {0.0, 24.0};               // degrees, of meridians too
constexpr Range northingsFromEquator = {5.0e6, 6.4e6};  // metres, for those latitudes
constexpr double localReach = 300e3;                    // metres from the origin of a local system
constexpr double prefixUnit = 1e6;             // metres; the number of the strip is written in front of them
constexpr double metresOfDegree = 78e3;        // along the parallel of 45.5 degrees
constexpr double radian = 0.0174532925199433;  // of a degree
constexpr double defaultWidth = 6.0;           // degrees, the widest strips in use

// The parameters of plane systems by their slots.
enum Slot : std::size_t {
    originLatitudeSlot = 0,
    secondShiftY = 2,
    secondShiftX = 3,
    complement = 4,
    shiftY = 6,
    shiftX = 7,
    turn = 8,
    constantYSlot = 9,
    constantXSlot = 10,
    scale = 13
};

}  // namespace

Plausibility::Plausibility(const System& source)
    : zones(zone_layout_of(source)), zoneNumber(source.zoneNumber) {
    const auto& p = source.parameters;
    if (source.is(Kind::geographic)) {
        scheme = Scheme::degrees;
        return;
    }
    const bool reduced = p[complement] != 0.0 || p[shiftX] != 0.0 || p[shiftY] != 0.0 || p[turn] != 0.0 ||
                         p[secondShiftX] != 0.0 || p[secondShiftY] != 0.0 || p[scale] != 1.0;
    if (source.is(Kind::geocentric) || reduced) {
        return;
    }
    constantX = p[constantXSlot];
    constantY = p[constantYSlot];
    originLatitude = p[originLatitudeSlot];
    scheme = source.is(Kind::soldner) ? Scheme::local : zones.strips ? Scheme::strips : Scheme::meridian;
}

bool Plausibility::strip_fits(double easting) const {
    const double strip = std::trunc(easting / prefixUnit);
    const double fromMeridian = easting - constantY - strip * prefixUnit;
    if (scheme == Scheme::strips) {
        const double width = zones.width;
        return strip != 0.0 && longitudes.holds(width * strip + zones.offset) &&
               std::fabs(fromMeridian) <= width * metresOfDegree;
    }
    return (strip == 0.0 || strip == static_cast<double>(zoneNumber)) &&
           std::fabs(fromMeridian) <= defaultWidth * metresOfDegree;
}

bool Plausibility::northing_fits(double northing) const {
    return originLatitude != 0.0 || northingsFromEquator.holds(northing - constantX);
}

// Roughly, for strips and systems that count from the equator: a degree is taken as a sphere's.
bool Plausibility::lies_in_germany(double northing, double easting) const {
    constexpr Range germanLatitudes = {47.0, 55.2};
    constexpr Range germanLongitudes = {5.5, 15.4};
    constexpr double metresOfMeridian = 111.2e3;
    const double latitude = (northing - constantX) / metresOfMeridian;
    const double strip = std::trunc(easting / prefixUnit);
    const double meridian = zones.width * strip + zones.offset;
    const double fromMeridian = easting - constantY - strip * prefixUnit;
    return germanLatitudes.holds(latitude) &&
           germanLongitudes.holds(meridian + fromMeridian / (metresOfMeridian * std::cos(latitude * radian)));
}

bool Plausibility::looks_exchanged(const std::array<double, 3>& point) const {
    return scheme == Scheme::strips && originLatitude == 0.0 && !lies_in_germany(point[0], point[1]) &&
           lies_in_germany(point[1], point[0]);
}

bool Plausibility::fits(const std::array<double, 3>& point) const {
    switch (scheme) {
        case Scheme::degrees:
            return std::fabs(point[0]) <= 90.0 && std::fabs(point[1]) <= 360.0 &&
                   (latitudes.holds(point[0]) || !latitudes.holds(point[1]) || !longitudes.holds(point[0]));
        case Scheme::strips:
        case Scheme::meridian:
            return strip_fits(point[1]) && (northing_fits(point[0]) || !northing_fits(point[1])) &&
                   !looks_exchanged(point);
        case Scheme::local:
            return std::fabs(point[0] - constantX) <= localReach &&
                   std::fabs(point[1] - constantY) <= localReach;
        case Scheme::unchecked:
            break;
    }
    return true;
}

std::string Plausibility::likely_mistake(const std::array<double, 3>& point) const {
    constexpr const char* exchanged = "northing and easting look exchanged (--swap, or other --columns)";
    const double easting = point[1];
    const double strip = std::trunc(easting / prefixUnit);
    switch (scheme) {
        case Scheme::degrees:
            return std::fabs(point[0]) <= 90.0 && std::fabs(point[1]) <= 360.0
                       ? "latitude and longitude look exchanged (--swap, or other --columns)"
                       : "angles beyond the circle; are these plane coordinates?";
        case Scheme::local:
            return "coordinates of more than " + fixed_text(localReach / 1e3, 0) +
                   " km from the origin; do they belong to another system?";
        case Scheme::strips:
        case Scheme::meridian:
            break;
        case Scheme::unchecked:
            return "";
    }
    if (looks_exchanged(point) || (northing_fits(easting) && !northing_fits(point[0]))) {
        return exchanged;
    }
    if (scheme == Scheme::strips && strip == 0.0) {
        return "the easting " + fixed_text(easting, 0) +
               " has no number of a strip in front, which this system wants";
    }
    if (scheme == Scheme::meridian && strip != 0.0 && strip != static_cast<double>(zoneNumber)) {
        return "the easting " + fixed_text(easting, 0) +
               " has the number of another strip than this system's";
    }
    return "the easting " + fixed_text(easting, 0) + " lies far from every meridian of this system";
}

}  // namespace cli
