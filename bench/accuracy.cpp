// Measures the four projection routines against GeographicLib, up to the poles and 40 degrees from the central meridian,
// and prints a table: routine, latitude and longitude from the meridian in degrees, the largest deviation of each of
// the two results over the three ellipsoids of the sample data in metres on the ground, and a status instead where a
// routine fails. Both hemispheres and both sides of the meridian are measured.
#include <GeographicLib/CassiniSoldner.hpp>
#include <GeographicLib/Geodesic.hpp>
#include <GeographicLib/TransverseMercatorExact.hpp>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <vector>

#include "base/angles.h"
#include "projections/projections.h"

namespace {

using lagestatus::degree;

constexpr double tolSeries = 1e-12;
constexpr double tolAngle = 1e-10;
constexpr double tolLength = 1e-4;
constexpr double tolCoord = 1e-4;
constexpr double lat0 = 50.0;  // of the Soldner systems
constexpr double lon0 = 9.0;

struct Deviation {
    int status = 0;
    double first = 0.0;   // y or longitude
    double second = 0.0;  // x or latitude

    void add(int newStatus, double newFirst, double newSecond) {
        status = std::max(status, newStatus);
        first = std::max(first, std::fabs(newFirst));
        second = std::max(second, std::fabs(newSecond));
    }
};

struct Truth {
    Truth(double a, double inverseFlattening)
        : semiMajor(a),
          semiMinor(a * (1 - 1 / inverseFlattening)),
          geodesic(a, 1 / inverseFlattening),
          mercator(a, 1 / inverseFlattening, 1.0),
          cassini(lat0, lon0, geodesic) {}

    double semiMajor;
    double semiMinor;
    GeographicLib::Geodesic geodesic;
    GeographicLib::TransverseMercatorExact mercator;
    GeographicLib::CassiniSoldner cassini;
};

// One place on one ellipsoid: Gauss-Krueger there and back, Soldner there and back.
void measure(const Truth& truth, double lat, double distance, std::array<Deviation, 4>& worst) {
    const double a = truth.semiMajor;
    const double b = truth.semiMinor;
    const double lon = lon0 + distance;
    const double phi = lat * degree;
    const double lam = lon * degree;
    const double alongParallel = a * std::cos(phi);
    std::array<double, 2> res = {};
    double y = 0.0;
    double x = 0.0;

    truth.mercator.Forward(lon0, lat, lon, y, x);
    int status = lagestatus::geo_to_gauss_krueger(a, b, phi, lam, 0.0, lon0 * degree, res, tolCoord, tolSeries);
    worst[0].add(status, status != 0 ? 0.0 : res[0] - y, status != 0 ? 0.0 : res[1] - x);
    status = lagestatus::gauss_krueger_to_geo(a, b, y, x, 0.0, res, tolAngle, tolSeries);
    worst[1].add(status, status != 0 ? 0.0 : (res[1] - distance * degree) * alongParallel,
                 status != 0 ? 0.0 : (res[0] - phi) * a);

    truth.cassini.Forward(lat, lon, y, x);
    status = lagestatus::geo_to_soldner(a, b, phi, lam, lat0 * degree, lon0 * degree, res, tolAngle, tolLength,
                                        tolSeries);
    worst[2].add(status, status != 0 ? 0.0 : res[0] - y, status != 0 ? 0.0 : res[1] - x);
    status = lagestatus::soldner_to_geo(a, b, y, x, lat0 * degree, lon0 * degree, res, tolAngle, tolLength,
                                        tolSeries);
    worst[3].add(status, status != 0 ? 0.0 : (res[1] - lam) * alongParallel,
                 status != 0 ? 0.0 : (res[0] - phi) * a);
}

}  // namespace

int main() {
    const std::array<Truth, 3> ellipsoids = {Truth(6377397.155, 299.1528128), Truth(6378137.0, 298.257222101),
                                             Truth(6378245.0, 298.3)};
    const std::array<const char*, 4> routines = {"geo_to_gauss_krueger", "gauss_krueger_to_geo",
                                                 "geo_to_soldner", "soldner_to_geo"};
    const std::vector<double> latitudes = {0.01, 1, 10, 30, 46, 50, 56, 70, 80, 85, 89, 89.9, 89.999};
    const std::vector<double> distances = {0,   0.001, 0.0028, 0.003, 0.01, 0.05, 0.1, 0.2, 0.5, 1,  1.5, 2,
                                           2.5, 3,     3.5,    4,     5,    6,    8,   10,  12,  15, 20,  25,
                                           30,  35,    40};
    std::puts("# routine, latitude, degrees from the meridian; largest deviation of easting (or longitude) and of");
    std::puts("# northing (or latitude) in metres on the ground, or the status of a failure");
    for (std::size_t routine = 0; routine < routines.size(); ++routine) {
        for (const double latitude : latitudes) {
            for (const double distance : distances) {
                std::array<Deviation, 4> worst = {};
                for (const Truth& truth : ellipsoids) {
                    for (const double lat : {latitude, -latitude}) {
                        measure(truth, lat, distance, worst);
                        measure(truth, lat, -distance, worst);
                    }
                }
                const Deviation& w = worst[routine];
                if (w.status != 0) {
                    std::printf("%s\t%g\t%g\tstatus\t%d\n", routines[routine], latitude, distance, w.status);
                } else {
                    std::printf("%s\t%g\t%g\t%.3g\t%.3g\n", routines[routine], latitude, distance, w.first,
                                w.second);
                }
            }
        }
    }
}
