#include "geodesy/zones.h"

#include "base/angles.h"
#include "base/int_cast.h"

namespace lagestatus {
namespace {

constexpr double tenthGuard = 0.05;  // a double may hold 600.3 slightly below

}  // namespace

ZoneLayout decode_longitude_of_origin(double v) noexcept {
    if (!(v > layoutsFrom)) {
        return {.lam0 = v * degree};
    }
    const int whole = truncated_or_smallest(v);
    return {.hasStrips = true,
            .offset = std::int64_t{whole} - layoutZero,
            .width = truncated_or_smallest((v - static_cast<double>(whole) + tenthGuard) * 10.0)};
}

double central_meridian(const ZoneLayout& layout, int zone) noexcept {
    // Products of 32-bit values: 64 bits hold them. One conversion to double, of the whole.
    return static_cast<double>(layout.width * zone + layout.offset) * degree + layout.lam0;
}

std::optional<Zone> target_zone(const ZoneLayout& layout, double lam, int zoneNumber) noexcept {
    if (layout.lam0 != 0.0) {
        return Zone{zoneNumber, layout.lam0};
    }
    const auto nearest = truncated(
        (lam / degree - static_cast<double>(layout.offset)) / static_cast<double>(layout.width) + 0.5);
    if (!nearest) {
        return std::nullopt;
    }
    return Zone{*nearest, central_meridian(layout, *nearest)};
}

}  // namespace lagestatus
