// The longitude of origin of a system, and the meridian strips that it may stand for.
#pragma once

#include <cstdint>
#include <optional>

#include "base/int_cast.h"

namespace lagestatus {

inline constexpr double layoutsFrom = 360.0;  // degrees; a longitude of origin above is a layout of strips
inline constexpr int layoutZero = 600;        // its integer part that stands for an offset of 0

// A longitude of origin v above 360 is a layout of strips: 600.3 stands for strips of 3 degrees with the central
// meridian 3 z, 417.6 for strips of 6 degrees with 6 z - 183. Any other v is one meridian, and the rest is 0.
struct ZoneLayout {
    bool hasStrips = false;   // a layout, whatever the width
    std::int64_t offset = 0;  // degrees; both have the values of 32-bit integers, less 600 for the offset
    std::int64_t width = 0;   // degrees
    double lam0 = 0.0;        // radians; 0 for a layout of strips

    // Whether nothing but strips of no width could give a target its central meridian.
    [[nodiscard]] bool has_no_zones() const noexcept { return lam0 == 0.0 && width == 0; }
};

// Given:    v, degrees, as parameter files have it; any double. A part of a layout that 32 bits cannot hold becomes the
//           smallest integer.
// Returned: the layout.
[[nodiscard]] ZoneLayout decode_longitude_of_origin(double v) noexcept;

// The central meridian of a zone in radians; with one meridian that one.
[[nodiscard]] double central_meridian(const ZoneLayout& layout, int zone) noexcept;

inline constexpr double zoneUnit = 1000000.0;  // metres; the zone's number stands in these of the easting

// The number in front of an easting, cut towards zero; the smallest integer where 32 bits cannot hold it.
[[nodiscard]] constexpr int zone_of(double easting) noexcept {
    return truncated_or_smallest(easting / zoneUnit);
}

struct Zone {
    int number = 0;
    double meridian = 0.0;  // radians
};

// The zone of a target: with strips the one whose central meridian is nearest to the longitude lam (radians), with one
// meridian that one under the number given. Numbers are cut towards zero: west of half a strip west of strip 0 it is
// the strip east of the nearest. Nothing when 32 bits cannot hold the number of the strip, also because lam
// is not finite. The layout must have zones.
[[nodiscard]] std::optional<Zone> target_zone(const ZoneLayout& layout, double lam, int zoneNumber) noexcept;

}  // namespace lagestatus
