// Whether a system leads back to where it came from: through its plane coordinates, and through the Bessel datum.
#pragma once

#include <cstddef>
#include <map>
#include <string>

#include "library.h"

namespace cli {

struct Closure {
    std::size_t points = 0;  // that went all the way
    double largest = 0.0;    // metres
    double mean = 0.0;       // metres
};

struct Closures {
    Closure own;     // its own latitude and longitude, to the system, and back
    Closure bessel;  // from the system into the Bessel datum, and back; not if it lies there
    std::map<int, std::size_t> failures;  // how many points ended with which status
    std::size_t outOfReach = 0;           // points that the decadic complement leaves no unambiguous value
    bool unusualPlace =
        false;  // the origin lies where no longitude comes out of a datum transformation: not tried
};

// Carries points of the system's area. A system that has no second column is not tried.
Closures closures_of(const std::string& directory, const System& source, const System& target);

}  // namespace cli
