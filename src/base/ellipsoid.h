// An ellipsoid, and a point on it as on the plane of a projection.
#pragma once

namespace lagestatus {

// Semi-axes in metres, both above 0. Nothing else describes an ellipsoid: every other quantity is derived on use.
struct Ellipsoid {
    double a = 0.0;
    double b = 0.0;
};

// Radians, north and east positive.
struct LatLon {
    double phi = 0.0;
    double lam = 0.0;
};

// Metres.
struct PlanePoint {
    double northing = 0.0;  // X, x
    double easting = 0.0;   // Y, y
};

}  // namespace lagestatus
