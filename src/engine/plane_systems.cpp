#include "engine/plane_systems.h"

#include "base/int_cast.h"
#include "projections/projections.h"

namespace lagestatus {
namespace {

constexpr double tolSeries = 1e-12;  // terms of the ellipsoid's series
constexpr double tolAngle = 1e-10;   // radians
constexpr double tolLength = 1e-4;   // metres, Soldner arcs
constexpr double tolCoord = 1e-4;    // metres, Gauss-Krueger coordinates

}  // namespace

Status plane_to_geographic(const Side& source, const Point& point, Geographic& result) noexcept {
    const Parameters p = source.parameters;
    const auto [a, b] = source.ellipsoid;
    const auto [X, Y] = reduce_to_projection(p, {point[0], point[1]});
    GeographicResult reached = {};
    if (source.kind == ProjectionKind::soldner) {
        const Status status = soldner_to_geo(a, b, Y, X, p[slot::latitudeOfOrigin], source.zones.lam0,
                                             reached, tolAngle, tolLength, tolSeries);
        if (status != status::ok) {
            return status;
        }
        result = {reached[0], reached[1], point[2]};
        return status::ok;
    }
    const double m0 = p[slot::meridianScale];
    const int zone = truncated_or_smallest((Y + p[slot::additiveY]) / zoneUnit);
    const double y = (Y - zone * zoneUnit) / m0;
    const Status status =
        gauss_krueger_to_geo(a, b, y, X / m0, p[slot::latitudeOfOrigin], reached, tolAngle, tolSeries);
    if (status != status::ok) {
        return status;
    }
    result = {reached[0], strip_meridian(source.zones, zone) + reached[1] + source.zones.lam0, point[2]};
    return status::ok;
}

Status geographic_to_plane(const Side& target, const Geographic& point, Point& result) noexcept {
    const Parameters p = target.parameters;
    const auto [a, b] = target.ellipsoid;
    PlaneResult reached = {};
    PlanePoint plane;
    if (target.kind == ProjectionKind::soldner) {
        const Status status = geo_to_soldner(a, b, point.phi, point.lam, p[slot::latitudeOfOrigin],
                                             target.zones.lam0, reached, tolAngle, tolLength, tolSeries);
        if (status != status::ok) {
            return status;
        }
        plane = {reached[1], reached[0]};
    } else {
        const auto zone = target_zone(target.zones, point.lam, target.zoneNumber);
        if (!zone) {
            return status::longitudeOfOrigin;
        }
        const Status status = geo_to_gauss_krueger(a, b, point.phi, point.lam, p[slot::latitudeOfOrigin],
                                                   zone->meridian, reached, tolCoord, tolSeries);
        if (status != status::ok) {
            return status;
        }
        const double m0 = p[slot::meridianScale];
        plane = {reached[1] * m0, reached[0] * m0 + zone->number * zoneUnit};
    }
    const auto [X, Y] = reduce_to_system(p, plane);
    result = {X, Y, point.h};
    return status::ok;
}

}  // namespace lagestatus
