#include "engine/plane_systems.h"

#include <algorithm>
#include <array>

#include "geodesy/plane_reductions.h"

namespace lagestatus {
namespace {

constexpr std::array<PlaneRoutines, 2> planeRoutines = {{
    {ProjectionKind::soldner, soldner_to_geo, geo_to_soldner, true},
    {ProjectionKind::gaussKrueger, gauss_krueger_to_geo, geo_to_gauss_krueger, false},
}};
static_assert(std::ranges::all_of(projectionKinds, [](const KindTraits& traits) {
    return traits.isPlane ==
           (std::ranges::find(planeRoutines, traits.kind, &PlaneRoutines::kind) != planeRoutines.end());
}));

}  // namespace

const PlaneRoutines* plane_routines(ProjectionKind kind) noexcept {
    const auto* const found = std::ranges::find(planeRoutines, kind, &PlaneRoutines::kind);
    return found != planeRoutines.end() ? found : nullptr;
}

Status plane_to_geographic(const Side& source, const Point& point, Geographic& result) noexcept {
    const Parameters p = source.parameters;
    PlanePoint plane = reduce_to_projection(p, {point[0], point[1]});
    double lam0 = source.zones.lam0;
    if (source.traits.hasStrips) {
        const double m0 = p[slot::meridianScale];
        const int zone = zone_of(plane.easting + p[slot::additiveY]);
        plane = {plane.northing / m0, (plane.easting - zone * zoneUnit) / m0};
        lam0 = central_meridian(source.zones, zone);
    }
    LatLon reached;
    const Status status = source.plane->toGeographic(*source.series, plane, lam0, reached);
    if (status == status::ok) {
        result = {reached.phi, reached.lam, point[2]};
    }
    return status;
}

Status geographic_to_plane(const Side& target, const Geographic& point, Point& result) noexcept {
    const Parameters p = target.parameters;
    Zone zone = {.meridian = target.zones.lam0};
    if (target.traits.hasStrips) {
        const auto found = target_zone(target.zones, point.lam, target.zoneNumber);
        if (!found) {
            return status::longitudeOfOrigin;
        }
        zone = *found;
    }
    PlanePoint plane;
    const Status status = target.plane->toPlane(*target.series, {point.phi, point.lam}, zone.meridian, plane);
    if (status != status::ok) {
        return status;
    }
    if (target.traits.hasStrips) {
        const double m0 = p[slot::meridianScale];
        plane = {plane.northing * m0, plane.easting * m0 + zone.number * zoneUnit};
    }
    const auto [X, Y] = reduce_to_system(p, plane);
    result = {X, Y, point.h};
    return status::ok;
}

}  // namespace lagestatus
