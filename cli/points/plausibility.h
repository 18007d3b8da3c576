// Coordinates that a system can read and that still cannot be meant: the mistakes that cost users kilometres.
#pragma once

#include <array>
#include <string>

#include "base/system_description.h"
#include "geodesy/zones.h"

namespace cli {

class Plausibility {
  public:
    // source: the system that the points are given in, its zone number included.
    explicit Plausibility(const lagestatus::SystemDescription& source);

    // Whether the coordinates can belong to the system, as far as can be told.
    [[nodiscard]] bool fits(const std::array<double, 3>& point) const;

    // What is likely wrong with coordinates that do not fit.
    [[nodiscard]] std::string likely_mistake(const std::array<double, 3>& point) const;

  private:
    struct Easting {
        int strip;            // the number in front
        double fromMeridian;  // metres
    };
    [[nodiscard]] Easting parted(double easting) const;
    [[nodiscard]] double meridian_of(int strip) const;  // degrees
    [[nodiscard]] bool strip_fits(double easting) const;
    [[nodiscard]] bool northing_fits(double northing) const;
    [[nodiscard]] bool looks_exchanged(const std::array<double, 3>& point) const;
    [[nodiscard]] bool lies_in_germany(double northing, double easting) const;

    enum class Scheme { unchecked, degrees, strips, meridian, local };

    Scheme scheme = Scheme::unchecked;
    lagestatus::ZoneLayout zones;
    int zoneNumber;
    double constantX = 0.0;  // added to northings, metres
    double constantY = 0.0;  // added to eastings, metres
    double originLatitude = 0.0;
};

}  // namespace cli
