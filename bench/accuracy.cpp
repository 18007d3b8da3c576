// Measures the four projection routines against GeographicLib.
//
// Without an argument it prints the table docs/accuracy.tsv: for each routine, band of latitude and distance from the
// central meridian the largest deviation of either result, or the status of a failure. With the argument "figures" it
// prints the numbers of docs/accuracy.md.
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
          fromEquator({a, a * (1 - 1 / inverseFlattening)}, 0.0, {}, true),
          fromOrigin({fromEquator.a, fromEquator.b}, phi0, {}, true),
          mercator(a, 1 / inverseFlattening, 1.0),
          series(a, 1 / inverseFlattening, 1.0),
          cassini(lat0, 0.0, GeographicLib::Geodesic(a, 1 / inverseFlattening)) {}

    double a;
    lagestatus::ArcSeries fromEquator;
    lagestatus::ArcSeries fromOrigin;
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
          lat(std::clamp(in_degrees(phi), -90.0, 90.0)),
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
    lagestatus::PlanePoint plane;
    lagestatus::LatLon back;
    double y = 0.0;
    double x = 0.0;
    double unused = 0.0;
    double scale = 1.0;
    const auto keep = [&](Routine routine, int status, const Pair& deviations) {
        outcomes[routine] = status != 0 ? Outcome{status} : Outcome{0, deviations[0], deviations[1]};
    };

    e.mercator.Forward(0.0, p.lat, p.lon, y, x, unused, scale);
    const lagestatus::LatLon given = {p.phi, p.lam};
    int status = lagestatus::geo_to_gauss_krueger(e.fromEquator, given, lam0, plane);
    keep(toKrueger, status, {(plane.easting - y) / scale, (plane.northing - x) / scale});
    status = lagestatus::gauss_krueger_to_geo(e.fromEquator, {x, y}, 0.0, back);
    keep(fromKrueger, status, {(back.phi - p.phi) * e.a, (back.lam - p.l) * alongParallel});

    e.cassini.Forward(p.lat, p.lon, y, x, unused, scale);
    status = lagestatus::geo_to_soldner(e.fromOrigin, given, lam0, plane);
    keep(toSoldner, status,
         {plane.easting - y, (plane.northing - x) * scale});  // the scale is that of x, inverted
    status = lagestatus::soldner_to_geo(e.fromOrigin, {x, y}, lam0, back);
    keep(fromSoldner, status, {(back.phi - p.phi) * e.a, (back.lam - p.lam) * alongParallel});
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
    for (int divisor = 100000; divisor >= 1; divisor /= 10) {
        for (const int mantissa : mantissas) {
            const double distance = static_cast<double>(mantissa) / divisor;
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
    std::puts("# routine, band of latitude, degrees from the central meridian; largest deviation of");
    std::puts("# the first and of the second result (y, x or latitude, longitude) in metres on the");
    std::puts("# ground, or the status of a failure");
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

// ---- The figures

// Places at random, the same in every run.
class Scatter {
  public:
    double between(double low, double high) {
        return low + (high - low) * (static_cast<double>(generator() >> 11) * 0x1p-53);
    }
    double either_sign(double magnitude) { return generator() % 2 == 0 ? magnitude : -magnitude; }
    // Denser toward the pole and toward the meridian: evenly over the logarithms of the distance from either.
    double latitude(double low, double high) { return either_sign(90 - spread(90 - high, 90 - low)); }
    double distance(double low = nearest, double high = farthest) { return either_sign(spread(low, high)); }
    const Ellipsoid& ellipsoid() { return ellipsoids()[generator() % ellipsoids().size()]; }

  private:
    double spread(double low, double high) { return low * std::exp(between(0.0, std::log(high / low))); }

    std::mt19937_64 generator;
};

constexpr int manyPlaces = 300000;
constexpr int somePlaces = 3000;

void print_records(const char* what, const Records& records) {
    std::printf("%-26s", what);
    for (const Record& r : records) {
        std::printf(" | %7.2g %7.2g", r.first.get(), r.second.get());
        if (r.failures != 0) {
            std::printf(" (%d x status %d)", r.failures, r.status);
        }
    }
    std::puts("");
}

void print_records(double number, const Records& records) {
    std::array<char, 32> name;
    std::snprintf(name.data(), name.size(), "%g", number);
    print_records(name.data(), records);
}

void print_largest() {
    std::puts("Largest deviations: y, x | latitude, longitude | y, x | latitude, longitude");
    // Latitudes off by so much belong to the strip of print_coincidences.
    constexpr double stray = 1e-3;
    Scatter scatter;
    int strays = 0;
    const auto over = [&](const Band& latitude, const Band& distance, Records& records) {
        for (int n = 0; n < manyPlaces; ++n) {
            const Place place(scatter.latitude(latitude.low, latitude.high),
                              scatter.distance(distance.low, distance.high));
            Outcomes o = measure(scatter.ellipsoid(), place);
            if (std::fabs(o[fromSoldner].first) > stray) {
                o[fromSoldner] = {};
                ++strays;
            }
            add(records, o);
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
    over({"", lowest, 1}, {"", nearest, farthest}, records);
    for (const Band& latitude :
         {Band{"up to 80, up to 40", lowest, 80}, Band{"up to 85, up to 40", 80, 85},
          Band{"up to 89, up to 40", 85, 89}, Band{"up to 89.9, up to 40", 89, 89.9}}) {
        over(latitude, {"", nearest, farthest}, records);
        print_records(latitude.name, records);
    }
    std::printf("Places in the strip of soldner_to_geo, left out above: %d\n", strays);

    Largest difference;
    for (int n = 0; n < manyPlaces; ++n) {
        const Ellipsoid& e = scatter.ellipsoid();
        const Place p(scatter.between(home.low, home.high), scatter.distance(nearest, 4));
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
    int failures = 0;
    const auto made = [&](int status) { failures += status != 0 ? 1 : 0; };
    for (const auto& [low, high] : {Pair{nearest, 0.05}, Pair{0.05, 4.0}}) {
        std::array<Largest, 2> krueger;
        std::array<Largest, 2> soldner;
        for (int n = 0; n < manyPlaces; ++n) {
            const Ellipsoid& e = scatter.ellipsoid();
            const Place p(scatter.between(46, 56), scatter.distance(low, high));
            const lagestatus::LatLon given = {p.phi, p.lam};
            lagestatus::PlanePoint plane;
            lagestatus::LatLon back;
            made(lagestatus::geo_to_gauss_krueger(e.fromEquator, given, lam0, plane));
            made(lagestatus::gauss_krueger_to_geo(e.fromEquator, plane, 0.0, back));
            krueger[0].add(back.phi - p.phi);
            krueger[1].add(back.lam - p.l);
            made(lagestatus::geo_to_soldner(e.fromOrigin, given, lam0, plane));
            made(lagestatus::soldner_to_geo(e.fromOrigin, plane, lam0, back));
            soldner[0].add(back.phi - p.phi);
            soldner[1].add(back.lam - p.lam);
        }
        std::printf("%g to %g: Gauss-Krueger %.2g %.2g, Soldner %.2g %.2g\n", low, high, krueger[0].get(),
                    krueger[1].get(), soldner[0].get(), soldner[1].get());
    }
    std::printf("failures: %d\n", failures);
}

// The loops end when a pass changes nothing more, and in a few spots one does so by coincidence, too early. They were
// found by looking for the places where the change of an early pass is zero.
void print_coincidences() {
    std::puts("\nWhere a loop ends by coincidence: routine, ellipsoid, largest deviation in the window;");
    std::puts("the part of it that is off by more than 0.01 mm: latitudes, distances");
    struct Window {
        Routine routine;
        Band latitude;
        Band distance;
        int steps;  // each way
    };
    const std::array<Window, 5> windows = {
        {{toKrueger, {"", 49.288, 49.298}, {"", 24.538, 24.552}, 200},
         {fromKrueger, {"", 36.4908, 36.4932}, {"", 42.7073, 42.7097}, 200},
         {fromKrueger, {"", 67.7993, 67.7995}, {"", 0, 0}, 1000},
         {fromKrueger, {"", 67.7993, 67.7995}, {"", 0, 4e-5}, 400},
         {fromSoldner, {"", 67.798, 67.801}, {"", 0, 0}, 3000}}};
    for (const Window& w : windows) {
        for (const Ellipsoid& e : ellipsoids()) {
            Largest largest;
            Band lat = {"", 90, 0};
            Band distance = {"", 90, 0};
            const auto keep = [](Band& band, double value) {
                band.low = std::min(band.low, value);
                band.high = std::max(band.high, value);
            };
            for (int i = 0; i <= w.steps; ++i) {
                for (int j = 0; j <= (w.distance.low < w.distance.high ? w.steps : 0); ++j) {
                    const double atLat = w.latitude.low + (w.latitude.high - w.latitude.low) * i / w.steps;
                    const double at = w.distance.low + (w.distance.high - w.distance.low) * j / w.steps;
                    const Outcome o = measure(e, {atLat, at})[w.routine];
                    const double deviation = std::max(std::fabs(o.first), std::fabs(o.second));
                    largest.add(deviation);
                    if (deviation > 1e-5) {
                        keep(lat, atLat);
                        keep(distance, at);
                    }
                }
            }
            std::printf("%s, a = %.3f: %.2g; %.6f to %.6f, %.6f to %.6f\n", routineNames[w.routine], e.a,
                        largest.get(), lat.low, lat.high, distance.low, distance.high);
        }
    }
}

// geo_to_gauss_krueger on rings about the poles, where it loses the northing's sign.
void print_pole_of_krueger() {
    std::puts("\ngeo_to_gauss_krueger near the poles: degrees from the pole; largest deviation of y and x");
    std::puts("where x has its sign; how many of 3000 places have the other sign / are refused: east of");
    std::puts("the meridian, west, on it in the north, on it in the south");
    constexpr double otherPole = 1e7;
    enum Side : std::size_t { east, west, north, south, sideCount };
    Scatter scatter;
    Band turning = {"", 1,
                    0};  // innermost place in the east that is right, outermost place anywhere that is not
    const auto measureAt = [&](double fromPole, Side side) {
        const double lat = 90 - fromPole;
        const double distance = std::fabs(scatter.distance());
        const Ellipsoid& e = scatter.ellipsoid();
        const Place place = side == east    ? Place(scatter.either_sign(lat), distance)
                            : side == west  ? Place(scatter.either_sign(lat), -distance)
                            : side == north ? Place(lat, 0.0)
                                            : Place(-lat, 0.0);
        const Outcome o = measure(e, place)[toKrueger];
        if (o.status != 0 || std::fabs(o.second) > otherPole) {
            turning.high = std::max(turning.high, fromPole);
        } else if (side == east) {
            turning.low = std::min(turning.low, fromPole);
        }
        return o;
    };
    for (int n = 0; n < manyPlaces; ++n) {
        measureAt(scatter.between(0.004, 0.008), Side(static_cast<std::size_t>(n) % sideCount));
    }
    std::printf("outermost place turned or refused %.5f, innermost in the east that is neither %.5f\n",
                turning.high, turning.low);
    for (const double ring : {5.0,   2.0,    1.0,   0.5,   0.2,   0.1,  0.05, 0.02, 0.01,   0.007, 0.0065,
                              0.006, 0.0055, 0.005, 0.002, 0.001, 1e-4, 1e-5, 1e-6, 6.1e-7, 6e-7,  0.0}) {
        Record right;
        std::array<int, sideCount> turned = {};
        std::array<int, sideCount> refused = {};
        for (const Side side : {east, west, north, south}) {
            for (int n = 0; n < somePlaces; ++n) {
                const Outcome o = measureAt(ring * scatter.between(0.995, 1.0), side);
                if (o.status != 0) {
                    ++refused[side];
                } else if (std::fabs(o.second) > otherPole) {
                    ++turned[side];
                } else {
                    right.add(o);
                }
            }
        }
        std::printf("%-7g %8.2g %8.2g", ring, right.first.get(), right.second.get());
        for (const Side side : {east, west, north, south}) {
            std::printf(" | %d / %d", turned[side], refused[side]);
        }
        std::puts("");
    }
}

void print_rings() {
    std::puts("\nNear the poles: degrees from the pole; deviations as at the top");
    Scatter scatter;
    for (const double ring : {1.0, 0.1, 0.01, 0.003, 1e-3, 1e-4, 1e-5, 1e-6, 1e-7, 1e-8, 0.0}) {
        Records records;
        for (int n = 0; n < somePlaces; ++n) {
            const double lat = scatter.either_sign(90 - ring * scatter.between(0.9, 1.0));
            add(records, measure(scatter.ellipsoid(), {lat, scatter.distance()}));
        }
        print_records(ring, records);
    }
    std::puts("\nNear the equator: degrees from it; the same");
    for (const double latitude : {1e-2, 1e-4, 1e-6, 1e-8, 1e-12, 1e-16, 1e-100, 0.0}) {
        Records records;
        for (int n = 0; n < somePlaces; ++n) {
            const double lat = scatter.either_sign(latitude);
            add(records, measure(scatter.ellipsoid(), {lat, scatter.distance()}));
        }
        print_records(latitude, records);
    }
    std::puts("geo_to_soldner 10 degrees from the meridian: latitude, status, deviation of y");
    for (const double latitude : {1e-100, 1e-300, 1e-305, 1e-307, 1e-308, 1e-310, 1e-315, 1e-320, 0.0}) {
        const Outcome o = measure(ellipsoids()[0], {latitude, 10.0})[toSoldner];
        std::printf("%g: %d, %.2g\n", latitude, o.status, o.first);
    }
}

void print_far() {
    std::puts("\nFar from the meridian: latitude; the first distance, in steps of 0.01 from 40, that is");
    std::puts("refused or off by more than 1 m (its status; the largest deviation before it). Then,");
    std::puts("north-east on the first ellipsoid, the status and the deviations at some distances");
    for (const double latitude : {lowest, 10.0, 30.0, 50.0, 70.0, 80.0, 89.0}) {
        std::array<double, routineCount> first = {};
        Records before;
        Records failed;
        for (int hundredths = 4000; hundredths <= 18000; ++hundredths) {
            const double distance = hundredths / 100.0;
            Records here;
            measure_all_around(latitude, distance, here);
            for (std::size_t routine = 0; routine < routineCount; ++routine) {
                const bool good = here[routine].status == 0 && here[routine].worst() <= 1;
                if (first[routine] == 0.0 && good) {
                    before[routine].first.add(here[routine].worst());
                } else if (first[routine] == 0.0) {
                    first[routine] = distance;
                    failed[routine] = here[routine];
                }
            }
        }
        std::printf("%g", latitude);
        for (std::size_t routine = 0; routine < routineCount; ++routine) {
            std::printf(" | %.2f (%d; %.2g)", first[routine], failed[routine].status,
                        before[routine].worst());
        }
        std::puts("");
        for (const double distance : {60.0, 80.0, 89.0, 100.0}) {
            std::printf("  %g", distance);
            for (const Outcome& o : measure(ellipsoids()[0], {latitude, distance})) {
                std::printf(" | %d, %.2g %.2g", o.status, o.first, o.second);
            }
            std::puts("");
        }
    }
}

void print_near_meridian() {
    std::puts("\nSoldner near the meridian, 46 to 56: y in metres; smallest and largest deviation of y");
    std::puts("forward and of the longitude back, east of the meridian; in brackets times y");
    Scatter scatter;
    for (const double y : {100.0, 170.0, 190.0, 199.0, 201.0, 230.0, 300.0, 1e3, 1e4, 1e5, 2.5e5}) {
        std::array<Band, 2> ranges = {{{"forward", 1, -1}, {"back", 1, -1}}};
        for (int n = 0; n < somePlaces; ++n) {
            const Ellipsoid& e = scatter.ellipsoid();
            const double lat = scatter.between(46, 56);
            double onMeridian = 0.0;
            double x = 0.0;
            double pointLat = 0.0;
            double distance = 0.0;
            e.cassini.Forward(lat, 0.0, onMeridian, x);
            e.cassini.Reverse(y, x, pointLat, distance);
            const Outcomes o = measure(e, {pointLat, distance});
            const Pair deviations = {o[toSoldner].first, o[fromSoldner].second};
            for (std::size_t i = 0; i < ranges.size(); ++i) {
                ranges[i].low = std::min(ranges[i].low, deviations[i]);
                ranges[i].high = std::max(ranges[i].high, deviations[i]);
            }
        }
        std::printf("%-7g", y);
        for (const Band& r : ranges) {
            std::printf(" | %s %8.1e %8.1e (%6.3f %6.3f)", r.name, r.low, r.high, r.low * y, r.high * y);
        }
        std::puts("");
    }
}

}  // namespace

int main(int count, char** arguments) {
    if (count == 1) {
        print_table();
    } else if (count == 2 && std::strcmp(arguments[1], "figures") == 0) {
        print_largest();
        print_closures();
        print_coincidences();
        print_pole_of_krueger();
        print_rings();
        print_far();
        print_near_meridian();
    } else {
        std::fputs("Usage: lagestatus_accuracy [figures]\n", stderr);
        return 2;
    }
}
