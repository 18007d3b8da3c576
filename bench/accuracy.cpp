// Measures the four projection routines against GeographicLib.
//
// Without an argument it prints the table docs/accuracy.tsv: for each routine, band of latitude and distance from the
// central meridian the largest deviation of either result, or the status of a failure. With the argument "figures" it
// prints the other numbers of docs/accuracy.md.
//
// Deviations are metres on the ground: those of a longitude are taken along the parallel, those of plane coordinates
// are divided by the projection's scale there. Three ellipsoids, both hemispheres and both sides of the meridian are
// measured. The truth is computed for the very angles, in radians, that a routine is given.
#include <GeographicLib/CassiniSoldner.hpp>
#include <GeographicLib/Geodesic.hpp>
#include <GeographicLib/TransverseMercator.hpp>
#include <GeographicLib/TransverseMercatorExact.hpp>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <numbers>
#include <random>
#include <vector>

#include "base/angles.h"
#include "projections/projections.h"

namespace {

using lagestatus::degree;

constexpr double tolSeries = 1e-12;  // as in plane_systems.cpp
constexpr double tolAngle = 1e-10;
constexpr double tolLength = 1e-4;
constexpr double tolCoord = 1e-4;

constexpr double lat0 =
    50.0;  // origin of the Soldner systems; Gauss-Krueger northings count from the equator
constexpr double lon0 = 9.0;
constexpr double phi0 = lat0 * degree;
constexpr double lam0 = lon0 * degree;

constexpr double nearest = 0.0005;  // distances from the meridian, degrees
constexpr double farthest = 40.0;
constexpr double lowest = 0.01;  // latitude; geo_to_soldner refuses the equator

using Pair = std::array<double, 2>;

enum Routine : std::size_t { toKrueger, fromKrueger, toSoldner, fromSoldner, routineCount };
constexpr std::array<const char*, routineCount> routineNames = {
    "geo_to_gauss_krueger", "gauss_krueger_to_geo", "geo_to_soldner", "soldner_to_geo"};

struct Ellipsoid {
    Ellipsoid(double semiMajor, double inverseFlattening)
        : a(semiMajor),
          b(a * (1 - 1 / inverseFlattening)),
          mercator(a, 1 / inverseFlattening, 1.0),
          series(a, 1 / inverseFlattening, 1.0),
          cassini(lat0, 0.0, GeographicLib::Geodesic(a, 1 / inverseFlattening)) {}

    double a;
    double b;
    GeographicLib::TransverseMercatorExact mercator;
    GeographicLib::TransverseMercator series;
    GeographicLib::CassiniSoldner cassini;
};

const std::array<Ellipsoid, 3>& ellipsoids() {
    static const std::array<Ellipsoid, 3> all = {Ellipsoid(6377397.155, 299.1528128),  // Bessel
                                                 Ellipsoid(6378137.0, 298.257222101),  // GRS80
                                                 Ellipsoid(6378245.0, 298.3)};         // Krassowski
    return all;
}

// A place in the radians that the routines are given, and the same in degrees from the meridian, for GeographicLib.
struct Place {
    Place(double latitude, double distance)
        : phi(latitude * degree),
          lam(lam0 + distance * degree),
          l(static_cast<double>(static_cast<long double>(lam) - lam0)),
          lat(in_degrees(phi)),
          lon(in_degrees(l)) {}

    static double in_degrees(long double radians) {
        return static_cast<double>(radians * 180.0L / std::numbers::pi_v<long double>);
    }

    double phi;
    double lam;
    double l;
    double lat;
    double lon;
};

// What a routine made of a place: its status and the deviations of its results, in the order of the results.
struct Outcome {
    int status = 0;
    double first = 0.0;
    double second = 0.0;
};

using Outcomes = std::array<Outcome, routineCount>;

Outcomes measure(const Ellipsoid& e, const Place& p) {
    const double alongParallel = e.a * std::cos(p.phi);
    Outcomes outcomes;
    Pair res = {};
    double y = 0.0;
    double x = 0.0;
    double unused = 0.0;
    double scale = 1.0;
    const auto keep = [&](Routine routine, int status, const Pair& deviations) {
        outcomes[routine] = status != 0 ? Outcome{status} : Outcome{0, deviations[0], deviations[1]};
    };

    e.mercator.Forward(0.0, p.lat, p.lon, y, x, unused, scale);
    int status =
        lagestatus::geo_to_gauss_krueger(e.a, e.b, p.phi, p.lam, 0.0, lam0, res, tolCoord, tolSeries);
    keep(toKrueger, status, {(res[0] - y) / scale, (res[1] - x) / scale});
    status = lagestatus::gauss_krueger_to_geo(e.a, e.b, y, x, 0.0, res, tolAngle, tolSeries);
    keep(fromKrueger, status, {(res[0] - p.phi) * e.a, (res[1] - p.l) * alongParallel});

    e.cassini.Forward(p.lat, p.lon, y, x, unused, scale);
    status =
        lagestatus::geo_to_soldner(e.a, e.b, p.phi, p.lam, phi0, lam0, res, tolAngle, tolLength, tolSeries);
    keep(toSoldner, status, {res[0] - y, (res[1] - x) * scale});  // the scale is that of x, inverted
    status = lagestatus::soldner_to_geo(e.a, e.b, y, x, phi0, lam0, res, tolAngle, tolLength, tolSeries);
    keep(fromSoldner, status, {(res[0] - p.phi) * e.a, (res[1] - p.lam) * alongParallel});
    return outcomes;
}

// The largest of some deviations; one that is not a number counts as infinite.
class Largest {
  public:
    void add(double deviation) {
        value = std::isnan(deviation) ? std::numeric_limits<double>::infinity()
                                      : std::max(value, std::fabs(deviation));
    }
    [[nodiscard]] double get() const { return value; }

  private:
    double value = 0.0;
};

// What one routine made of many places.
struct Record {
    void add(const Outcome& outcome) {
        if (outcome.status != 0) {
            status = outcome.status;
            ++failures;
        } else {
            first.add(outcome.first);
            second.add(outcome.second);
        }
    }
    [[nodiscard]] double worst() const { return std::max(first.get(), second.get()); }

    Largest first;
    Largest second;
    int status = 0;
    int failures = 0;
};

using Records = std::array<Record, routineCount>;

void add(Records& records, const Outcomes& outcomes) {
    for (std::size_t routine = 0; routine < routineCount; ++routine) {
        records[routine].add(outcomes[routine]);
    }
}

// A place and its images, on every ellipsoid.
void measure_all_around(double latitude, double distance, Records& records) {
    for (const Ellipsoid& e : ellipsoids()) {
        for (const double lat : {latitude, -latitude}) {
            add(records, measure(e, {lat, distance}));
            add(records, measure(e, {lat, -distance}));
        }
    }
}

// ---- The table

struct Band {
    const char* name;
    double low;
    double high;
};

// 0, and twelve round distances a decade from the nearest to the farthest.
std::vector<double> distances() {
    constexpr std::array<int, 12> mantissas = {10, 12, 15, 20, 25, 30, 35, 40, 50, 60, 70, 80};
    std::vector<double> all = {0.0};
    for (double unit = 1e5; unit >= 1; unit /= 10) {  // of a mantissa
        for (const int mantissa : mantissas) {
            const double distance = mantissa / unit;
            if (distance >= nearest && distance <= farthest) {
                all.push_back(distance);
            }
        }
    }
    return all;
}

void print_table() {
    constexpr std::array<Band, 6> bands = {{{"0-30", lowest, 30},
                                            {"46-56", 46, 56},
                                            {"70-80", 70, 80},
                                            {"85", 85, 85},
                                            {"89", 89, 89},
                                            {"89.9", 89.9, 89.9}}};
    constexpr int steps = 20;
    std::puts(
        "# routine, band of latitude, degrees from the central meridian; largest deviation of the first and "
        "of");
    std::puts(
        "# the second result (y, x or latitude, longitude) in metres on the ground, or the status of a "
        "failure");
    for (std::size_t routine = 0; routine < routineCount; ++routine) {
        for (const Band& band : bands) {
            for (const double distance : distances()) {
                Records records;
                for (int step = 0; step <= (band.low < band.high ? steps : 0); ++step) {
                    measure_all_around(band.low + (band.high - band.low) * step / steps, distance, records);
                }
                const Record& r = records[routine];
                std::printf("%s\t%s\t%g\t", routineNames[routine], band.name, distance);
                if (r.status != 0) {
                    std::printf("status\t%d\n", r.status);
                } else {
                    std::printf("%.3g\t%.3g\n", r.first.get(), r.second.get());
                }
            }
        }
    }
}

// ---- The other figures

// Places at random, the same in every run.
class Scatter {
  public:
    double between(double low, double high) {
        return low + (high - low) * (static_cast<double>(generator() >> 11) * 0x1p-53);
    }
    // Evenly over the logarithms, or over none.
    double spread(double low, double high) { return low * std::exp(between(0.0, std::log(high / low))); }
    double either_sign(double magnitude) { return generator() % 2 == 0 ? magnitude : -magnitude; }
    const Ellipsoid& ellipsoid() { return ellipsoids()[generator() % ellipsoids().size()]; }
    Place place(const Band& latitude, const Band& distance) {
        const double lat = either_sign(between(latitude.low, latitude.high));
        return {lat, either_sign(spread(distance.low, distance.high))};
    }

  private:
    std::mt19937_64 generator;
};

constexpr int manyPlaces = 200000;
constexpr int somePlaces = 3000;

void print_records(const char* what, const Records& records) {
    std::printf("%-32s", what);
    for (const Record& r : records) {
        std::printf(" | %8.2g %8.2g", r.first.get(), r.second.get());
        if (r.status != 0) {
            std::printf(" status %d: %d", r.status, r.failures);
        }
    }
    std::puts("");
}

void print_largest() {
    std::puts("Largest deviations, metres: y, x | latitude, longitude | y, x | latitude, longitude");
    Scatter scatter;
    const auto over = [&](const Band& latitude, const Band& distance, Records& records) {
        for (int n = 0; n < manyPlaces; ++n) {
            add(records, measure(scatter.ellipsoid(), scatter.place(latitude, distance)));
        }
    };
    constexpr Band home = {"46 to 56", 46, 56};
    for (const Band& distance :
         {Band{"46 to 56, up to 0.05", nearest, 0.05}, Band{"46 to 56, 0.05 to 4", 0.05, 4},
          Band{"46 to 56, 4 to 40", 4, farthest}}) {
        Records records;
        over(home, distance, records);
        print_records(distance.name, records);
    }
    Records records;
    for (const Band& latitude :
         {Band{"up to 80, up to 40", lowest, 80}, Band{"up to 85, up to 40", 80, 85},
          Band{"up to 89, up to 40", 85, 89}, Band{"up to 89.9, up to 40", 89, 89.9}}) {
        over(latitude, {"", nearest, farthest}, records);
        print_records(latitude.name, records);
    }

    Largest difference;
    for (int n = 0; n < manyPlaces; ++n) {
        const Ellipsoid& e = scatter.ellipsoid();
        const Place p = scatter.place(home, {"", nearest, 4});
        Pair exact = {};
        Pair series = {};
        e.mercator.Forward(0.0, p.lat, p.lon, exact[0], exact[1]);
        e.series.Forward(0.0, p.lat, p.lon, series[0], series[1]);
        difference.add(exact[0] - series[0]);
        difference.add(exact[1] - series[1]);
    }
    std::printf("TransverseMercatorExact against TransverseMercator, 46 to 56, up to 4: %.2g\n",
                difference.get());
}

void print_closures() {
    std::puts("\nThere and back, 46 to 56, up to 4: latitude, longitude, radians");
    Scatter scatter;
    std::array<Largest, 2> krueger;
    std::array<Largest, 2> soldner;
    std::array<Largest, 2> soldnerBeyond;  // 0.05 degrees
    int failures = 0;
    for (int n = 0; n < manyPlaces; ++n) {
        const Ellipsoid& e = scatter.ellipsoid();
        const Place p = scatter.place({"", 46, 56}, {"", nearest, 4});
        Pair plane = {};
        Pair back = {};
        const auto made = [&](int status) { failures += status != 0 ? 1 : 0; };
        made(lagestatus::geo_to_gauss_krueger(e.a, e.b, p.phi, p.lam, 0.0, lam0, plane, tolCoord, tolSeries));
        made(lagestatus::gauss_krueger_to_geo(e.a, e.b, plane[0], plane[1], 0.0, back, tolAngle, tolSeries));
        krueger[0].add(back[0] - p.phi);
        krueger[1].add(back[1] - p.l);
        made(lagestatus::geo_to_soldner(e.a, e.b, p.phi, p.lam, phi0, lam0, plane, tolAngle, tolLength,
                                        tolSeries));
        made(lagestatus::soldner_to_geo(e.a, e.b, plane[0], plane[1], phi0, lam0, back, tolAngle, tolLength,
                                        tolSeries));
        std::array<Largest, 2>& where = std::fabs(p.lon) > 0.05 ? soldnerBeyond : soldner;
        where[0].add(back[0] - p.phi);
        where[1].add(back[1] - p.lam);
    }
    std::printf("Gauss-Krueger %.2g %.2g\n", krueger[0].get(), krueger[1].get());
    std::printf("Soldner up to 0.05 %.2g %.2g, beyond %.2g %.2g\n", soldner[0].get(), soldner[1].get(),
                soldnerBeyond[0].get(), soldnerBeyond[1].get());
    std::printf("failures %d\n", failures);
}

// geo_to_gauss_krueger on rings about the poles, where it loses the northing's sign: the largest honest deviation, and
// how many places land on the other pole or are refused, by side.
void print_pole_of_krueger() {
    std::puts(
        "\ngeo_to_gauss_krueger near the poles: degrees from the pole, largest deviation of y and x; of "
        "3000");
    std::puts(
        "places each that land on the other pole / are refused: east, west, meridian north, meridian south");
    constexpr double otherPole = 1e7;
    Scatter scatter;
    double outermost = 0.0;  // place that lands on the other pole or is refused
    double innermost = 1.0;  // place in the east that does neither
    const auto at = [&](double fromPole, int side, Record& honest, int& mirrored) {
        const double magnitude = scatter.spread(nearest, farthest);
        const double lat = 90 - fromPole;
        const Ellipsoid& e = scatter.ellipsoid();
        Outcome outcome;
        switch (side) {
            case 0:
                outcome = measure(e, {scatter.either_sign(lat), magnitude})[toKrueger];
                break;
            case 1:
                outcome = measure(e, {scatter.either_sign(lat), -magnitude})[toKrueger];
                break;
            case 2:
                outcome = measure(e, {lat, 0.0})[toKrueger];
                break;
            default:
                outcome = measure(e, {-lat, 0.0})[toKrueger];
        }
        const bool lands = std::fabs(outcome.second) > otherPole;
        if (lands) {
            ++mirrored;
        } else {
            honest.add(outcome);
        }
        if (lands || outcome.status != 0) {
            outermost = std::max(outermost, fromPole);
        } else if (side == 0) {
            innermost = std::min(innermost, fromPole);
        }
    };
    for (const double ring : {5.0,   2.0,    1.0,   0.5,   0.2,   0.1,  0.05, 0.02, 0.01, 0.007, 0.0065,
                              0.006, 0.0055, 0.005, 0.002, 0.001, 1e-4, 1e-5, 1e-6, 6e-7, 1e-8}) {
        Record honest;
        std::printf("%-8g", ring);
        std::array<int, 4> mirrored = {};
        std::array<int, 4> refused = {};
        for (int side = 0; side < 4; ++side) {
            const auto s = static_cast<std::size_t>(side);
            const int before = honest.failures;
            for (int n = 0; n < somePlaces; ++n) {
                at(ring * scatter.between(0.98, 1.0), side, honest, mirrored[s]);
            }
            refused[s] = honest.failures - before;
        }
        std::printf("%8.2g %8.2g", honest.first.get(), honest.second.get());
        for (std::size_t s = 0; s < 4; ++s) {
            std::printf(" | %d / %d", mirrored[s], refused[s]);
        }
        std::puts("");
    }
    for (int n = 0; n < manyPlaces; ++n) {
        Record honest;
        int mirrored = 0;
        at(scatter.between(0.004, 0.008), n % 4, honest, mirrored);
    }
    std::printf("outermost place mirrored or refused %.5f, innermost in the east that is not %.5f\n",
                outermost, innermost);
}

void print_rings() {
    std::puts("\nNear the poles: degrees from the pole; deviations as above, the number of refusals of 3000");
    Scatter scatter;
    for (const double ring : {1.0, 0.1, 0.01, 1e-3, 1e-4, 1e-5, 1e-6, 1e-7, 0.0}) {
        Records records;
        for (int n = 0; n < somePlaces; ++n) {
            const double lat = scatter.either_sign(90 - ring * scatter.between(0.9, 1.0));
            add(records,
                measure(scatter.ellipsoid(), {lat, scatter.either_sign(scatter.spread(nearest, farthest))}));
        }
        char name[32];
        std::snprintf(name, sizeof name, "%g", ring);
        print_records(name, records);
    }
    std::puts("\nNear the equator: degrees from it, up to 40 degrees from the meridian");
    for (const double latitude : {1e-2, 1e-4, 1e-6, 1e-8, 1e-12, 1e-16, 1e-100, 0.0}) {
        Records records;
        for (int n = 0; n < somePlaces; ++n) {
            add(records,
                measure(scatter.ellipsoid(), {scatter.either_sign(latitude),
                                              scatter.either_sign(scatter.spread(nearest, farthest))}));
        }
        char name[32];
        std::snprintf(name, sizeof name, "%g", latitude);
        print_records(name, records);
    }
    std::puts("geo_to_soldner at 10 degrees from the meridian (Bessel), deviation of y");
    for (const double latitude : {1e-200, 1e-300, 1e-305, 1e-306, 1e-307, 1e-308, 1e-310, 1e-315, 1e-320}) {
        const Outcome o = measure(ellipsoids()[0], {latitude, 10.0})[toSoldner];
        std::printf("%g: status %d, %.2g\n", latitude, o.status, o.first);
    }
}

// The first distance, in steps of 0.01 degrees from 40, at which a routine is refused or off by more than 1 m.
void print_far() {
    std::puts(
        "\nFar from the meridian: latitude; first distance that is refused or off by more than 1 m, up to "
        "there");
    std::puts("the largest deviation; results at 60, 80 and 89 degrees (Bessel, north-east)");
    for (const double latitude : {lowest, 10.0, 30.0, 46.0, 50.0, 56.0, 70.0, 80.0, 85.0, 89.0}) {
        std::printf("%g", latitude);
        for (std::size_t routine = 0; routine < routineCount; ++routine) {
            double reached = 0.0;
            for (int hundredths = 4000; hundredths <= 18000; ++hundredths) {
                const double distance = hundredths / 100.0;
                Records records;
                measure_all_around(latitude, distance, records);
                const Record& r = records[routine];
                if (r.status != 0 || r.worst() > 1) {
                    std::printf(" | %.2f status %d (%.2g)", distance, r.status, reached);
                    break;
                }
                reached = std::max(reached, r.worst());
            }
        }
        std::puts("");
        for (const double distance : {60.0, 80.0, 89.0}) {
            std::printf("   %g:", distance);
            for (const Outcome& o : measure(ellipsoids()[0], {latitude, distance})) {
                std::printf(" | status %d %.3g %.3g", o.status, o.first, o.second);
            }
            std::puts("");
        }
    }
}

void print_near_meridian() {
    std::puts(
        "\nSoldner near the meridian, latitude 46 to 56: y in metres; smallest and largest deviation of y "
        "forward");
    std::puts("and of the longitude back (east positive), both times y, square metres");
    Scatter scatter;
    for (const double y : {100.0, 180.0, 190.0, 210.0, 250.0, 300.0, 500.0, 1e3, 3e3, 1e4, 3e4, 1e5, 2.5e5}) {
        Pair forward = {1e9, -1e9};
        Pair back = {1e9, -1e9};
        for (int n = 0; n < somePlaces; ++n) {
            const Ellipsoid& e = scatter.ellipsoid();
            const double lat = scatter.between(46, 56);
            const double distance = y / (e.a * std::cos(lat * degree)) / degree;
            const Outcomes o = measure(e, {lat, distance});
            forward = {std::min(forward[0], o[toSoldner].first), std::max(forward[1], o[toSoldner].first)};
            back = {std::min(back[0], o[fromSoldner].second), std::max(back[1], o[fromSoldner].second)};
        }
        std::printf("%-8g forward %9.2g %9.2g (%7.3f %7.3f) back %9.2g %9.2g (%7.3f %7.3f)\n", y, forward[0],
                    forward[1], forward[0] * y, forward[1] * y, back[0], back[1], back[0] * y, back[1] * y);
    }
}

}  // namespace

int main(int count, char** arguments) {
    if (count == 1) {
        print_table();
    } else if (count == 2 && std::strcmp(arguments[1], "figures") == 0) {
        print_largest();
        print_closures();
        print_pole_of_krueger();
        print_rings();
        print_far();
        print_near_meridian();
    } else {
        std::fputs("Usage: lagestatus_accuracy [figures]\n", stderr);
        return 2;
    }
}
