// Points carried there and back: what a system's description is worth.
#pragma once

#include <cstddef>
#include <map>
#include <stdexcept>
#include <string>

#include "bulk/road.h"
#include "keeper/data_directory.h"

namespace cli {

// A system's description in both roles.
struct BothRoles {
    SystemDescription source;
    SystemDescription target;
};

// A system that has no more than an ellipsoid.
SystemDescription neutral_system(ProjectionKind kind, std::string_view ellipsoidName, const Ellipsoid& axes);

// A system of another kind in the same datum.
SystemDescription of_kind(SystemDescription system, ProjectionKind kind);

// A point that the library refuses.
class NotCarried : public std::runtime_error {
  public:
    explicit NotCarried(Status status) : std::runtime_error(status_text(status, "")), refusedWith(status) {}
    [[nodiscard]] Status status() const noexcept { return refusedWith; }

  private:
    Status refusedWith;
};

// Throws NotCarried.
Point carried(const Road& road, const Point& point);
Point carried(const Point& point, const SystemDescription& source, const SystemDescription& target);

// Places at equal distances, in degrees.
struct Places {
    double first;
    double last;
    int count;

    [[nodiscard]] double at(int index) const { return first + (last - first) * index / (count - 1); }
    [[nodiscard]] double middle() const { return (first + last) / 2; }
};

struct Area {
    Places latitude;
    Places longitude;
};

// "52.5 N, 13.4 E"
std::string place_text(double latitude, double longitude);

// Calls use(latitude, longitude) for the places of an area.
template <typename Use>
void for_each_place(const Area& area, Use use) {
    for (int row = 0; row < area.latitude.count; ++row) {
        for (int column = 0; column < area.longitude.count; ++column) {
            use(area.latitude.at(row), area.longitude.at(column));
        }
    }
}

struct Closure {
    std::size_t points = 0;  // that went all the way
    double largest = 0.0;    // metres
    double mean = 0.0;       // metres
};

struct Failure {
    std::size_t count = 0;
    std::string firstPlace;
};

struct Closures {
    Closure own;                      // from latitude and longitude in its own datum to the system, and back
    Closure bessel;                   // from the system into the Bessel datum, and back; not if it lies there
    std::map<int, Failure> failures;  // by their status
    std::size_t outOfReach = 0;       // points that the decadic complement leaves no unambiguous value
};

Closures closures_of(const BothRoles& system, const Area& area);

}  // namespace cli
