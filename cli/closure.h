// What a system's two columns are worth: whether they undo each other, and how far they move a point.
#pragma once

#include <array>
#include <stdexcept>
#include <string>

#include "library.h"

namespace cli {

// A system's description in both roles.
struct BothRoles {
    System source;
    System target;
};

// Degrees.
struct Area {
    double west;
    double south;
    double east;
    double north;
};

// A point that the library refuses, or that a reader would take for another one.
class ClosureError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

struct Closure {
    int points = 0;
    double largest = 0.0;  // millimetres
    double mean = 0.0;
};

// A grid of points goes from the Bessel datum into the system and back.
Closure closure_of(const BothRoles& system, const Area& area);

// Throws where a Gauss-Krueger easting of the area has another number in its millions than its strip's.
void check_eastings(const BothRoles& system, const Area& area);

using Point = std::array<double, 3>;

// The system as latitude and longitude in its own datum.
BothRoles geographic_of(BothRoles system);

// Latitude, longitude and height for those who need no more than an ellipsoid, neutral otherwise.
System neutral_system(const std::string& ellipsoid, double semiMajorAxis, double semiMinorAxis);

// Throws unless the library gives a point.
Point carried(const Point& point, const System& source, const System& target);

// East, north and up in metres between two positions, in degrees and metres, that lie close together.
Point metres_between(const Point& from, const Point& to, double semiMajorAxis, double semiMinorAxis);

}  // namespace cli
