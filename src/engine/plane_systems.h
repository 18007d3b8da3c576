// Plane systems: from their coordinates to latitude and longitude and back.
#pragma once

#include "base/status.h"
#include "engine/side.h"
#include "projections/projections.h"

namespace lagestatus {

// What a kind of plane systems has of its own: its projection, both ways.
struct PlaneRoutines {
    ProjectionKind kind;
    Status (*toGeographic)(const ArcSeries&, const PlanePoint&, double lam0, LatLon&) noexcept;
    Status (*toPlane)(const ArcSeries&, const LatLon&, double lam0, PlanePoint&) noexcept;
    bool planeRectifies;  // toPlane needs S for an origin on the equator, too (ArcSeries)
};

// Those of a kind; null where it is not plane.
[[nodiscard]] const PlaneRoutines* plane_routines(ProjectionKind kind) noexcept;

// Given:    source   a plane system
//           point    in it; the height passes through
// Returned: result   latitude and longitude in radians, and the height; written on success only
//           status   0; 201 to 208 (Soldner) or 301 to 305 (Gauss-Krueger), projections.h
//
// Where a kind has strips, the number of the point's stands in the millions of its easting, the additive constant
// counted back in. With one meridian it is cut off and moves nothing.
[[nodiscard]] Status plane_to_geographic(const Side& source, const Point& point, Geographic& result) noexcept;

// Given:    target   a plane system; where its kind has strips, it must have zones
//           point    latitude and longitude in radians; the height passes through
// Returned: result   in the target system; written on success only
//           status   0; 14 no zone of the target can be numbered for this longitude; 401 to 405 (Soldner) or 501 to 503
//                    (Gauss-Krueger), projections.h
[[nodiscard]] Status geographic_to_plane(const Side& target, const Geographic& point, Point& result) noexcept;

}  // namespace lagestatus
