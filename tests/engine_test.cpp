// The road of a point, against independent answers.
#include <GeographicLib/Geocentric.hpp>
#include <algorithm>
#include <cmath>
#include <limits>

#include "base/angles.h"
#include "engine/datum_step.h"
#include "engine/geocentric.h"
#include "support.h"

using namespace testing_support;
using namespace lagestatus;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double radian = 180 / M_PI;  // degrees, for GeographicLib

struct NamedEllipsoid {
    const char* name;
    double a;
    double inverseFlattening;
    [[nodiscard]] Ellipsoid axes() const { return {a, a * (1 - 1 / inverseFlattening)}; }
};
constexpr NamedEllipsoid ellipsoids[] = {{"Bessel", 6377397.155, 299.1528128},
                                         {"GRS80", 6378137.0, 298.257222101},
                                         {"Krassowski", 6378245.0, 298.3}};

TEST(Geocentric, AgreesWithGeographicLib) {
    // Rounding of coordinates of 6.4e6 m.
    constexpr double tolForward = 5e-9;
    // The iteration ends when a step is below 0.0001 m; the step it leaves out is smaller by e2, 1/150.
    // Metres.
    constexpr double tolInverse = 1e-6;
    double worstForward = 0;
    double worstInverse = 0;
    for (const NamedEllipsoid& e : ellipsoids) {
        const GeographicLib::Geocentric truth(e.a, 1 / e.inverseFlattening);
        for (double lat = -89; lat <= 89; lat += 1) {
            for (double lon = -89; lon <= 89; lon += 8.9) {
                for (const double h : {-5000.0, 0.0, 3000.0, 400e3}) {
                    double x = 0;
                    double y = 0;
                    double z = 0;
                    truth.Forward(lat, lon, h, x, y, z);
                    const Geographic given = {lat / radian, lon / radian, h};
                    const Geocentric p = geographic_to_geocentric(e.axes(), given);
                    worstForward =
                        std::max({worstForward, std::fabs(p.x - x), std::fabs(p.y - y), std::fabs(p.z - z)});
                    Geographic g;
                    ASSERT_EQ(geocentric_to_geographic(e.axes(), {x, y, z}, g), 0)
                        << lat << ' ' << lon << ' ' << h;
                    worstInverse = std::max({worstInverse, std::fabs(g.phi - given.phi) * e.a,
                                             std::fabs(g.lam - given.lam) * e.a * std::cos(given.phi),
                                             std::fabs(g.h - h)});
                }
            }
        }
    }
    EXPECT_LT(worstForward, tolForward);
    EXPECT_LT(worstInverse, tolInverse);
    RecordProperty("forward_m", std::to_string(worstForward * 1e9) + " nm");
    RecordProperty("inverse_m", std::to_string(worstInverse * 1e9) + " nm");
}

TEST(Geocentric, SpecialPlaces) {
    const Ellipsoid e = ellipsoids[0].axes();
    const Ellipsoid sphere = {6370000.0, 6370000.0};
    struct Place {
        Ellipsoid ellipsoid;
        Geocentric point;
        int status;
        Geographic expected;
    };
    const Geographic unwritten = {untouched, untouched, untouched};
    const Place places[] = {
        {e, {e.a + 10, 0, 0}, 0, {0, 0, 10}},
        {sphere, {0, 6370100.0, 0}, 0, {0, std::asin(1.0), 100}},
        {e, {-3000000, 4000000, 0}, 0, {0, std::asin(0.8), 5000000 - e.a}},  // the sign of x is not used
        {e, {0, 0, e.b}, 90, unwritten},
        {e, {0, 0, 0}, 90, unwritten},
        {e, {1e-200, 1e-200, 6e6}, 90, unwritten},  // p underflows
        {e, {1e200, 0, 0}, 90, unwritten},          // p overflows
        {e, {notANumber, 1, 1}, 90, unwritten},
        {e, {4e6, infinity, 1}, 90, unwritten},
        {e, {4e6, 1, -infinity}, 90, unwritten},
        {{0, 0}, {4e6, 1, 4e6}, 90, unwritten},
        {e, {30000, 0, 30000}, 90, unwritten},  // inside the ellipsoid's core the iteration swings
    };
    for (const Place& row : places) {
        SCOPED_TRACE(::testing::Message() << row.point.x << ' ' << row.point.y << ' ' << row.point.z);
        Geographic reached = unwritten;
        EXPECT_EQ(geocentric_to_geographic(row.ellipsoid, row.point, reached), row.status);
        EXPECT_EQ(reached.phi, row.expected.phi);
        EXPECT_EQ(reached.lam, row.expected.lam);
        EXPECT_NEAR(reached.h, row.expected.h, 1e-9);
    }
    // 100 degrees east comes back at 80.
    Geographic mirrored;
    const Geocentric east = geographic_to_geocentric(e, {0.9, 100 / radian, 50});
    ASSERT_EQ(geocentric_to_geographic(e, east, mirrored), 0);
    EXPECT_NEAR(mirrored.lam, 80 / radian, 1e-15);
}

using Matrix = std::array<std::array<double, 3>, 3>;

Matrix product(const Matrix& left, const Matrix& right) {
    Matrix m = {};
    for (std::size_t i = 0; i < 9; ++i) {
        for (std::size_t k = 0; k < 3; ++k) {
            m[i / 3][i % 3] += left[i / 3][k] * right[k][i % 3];
        }
    }
    return m;
}

// A parameter array for datum steps: every slot of the main and the intermediate set has a value of its own.
ParameterArray datum_parameters() {
    ParameterArray p = {};
    for (std::size_t s = 0; s < p.size(); ++s) {
        p[s] = 0.01 * static_cast<double>(s) + 0.3;
    }
    return p;
}

TEST(DatumStep, IsTheProductOfTheThreeRotationsInTwoStages) {
    // Large angles, so that order, signs and slots all show. Rounding of numbers around 10.
    constexpr double tol = 1e-13;
    const auto similarity = [](const ParameterArray& p, std::size_t first, const Geocentric& at) {
        // first: slot of the translation in Y; then translations X, Z, angles, scale, reduction point Y, X,
        // Z.
        const double a = p[first + 3];
        const double b = p[first + 4];
        const double c = p[first + 5];
        using std::cos;
        using std::sin;
        const Matrix R1 = {{{1, 0, 0}, {0, cos(a), sin(a)}, {0, -sin(a), cos(a)}}};
        const Matrix R2 = {{{cos(b), 0, -sin(b)}, {0, 1, 0}, {sin(b), 0, cos(b)}}};
        const Matrix R3 = {{{cos(c), sin(c), 0}, {-sin(c), cos(c), 0}, {0, 0, 1}}};
        const Matrix R = product(R3, product(R2, R1));
        const double d[] = {at.x - p[first + 8], at.y - p[first + 7], at.z - p[first + 9]};
        const double T[] = {p[first + 1], p[first], p[first + 2]};
        double q[3];
        for (std::size_t i = 0; i < 3; ++i) {
            q[i] = T[i] + p[first + 6] * (R[i][0] * d[0] + R[i][1] * d[1] + R[i][2] * d[2]);
        }
        return Geocentric{q[0], q[1], q[2]};
    };
    const auto near = [&](const Geocentric& left, const Geocentric& right) {
        EXPECT_NEAR(left.x, right.x, tol);
        EXPECT_NEAR(left.y, right.y, tol);
        EXPECT_NEAR(left.z, right.z, tol);
    };
    constexpr std::size_t mainSet = 14;
    constexpr std::size_t intermediateSet = 26;
    const Geocentric point = {4, -5, 6};
    const ParameterArray both = datum_parameters();
    // Two stages: the intermediate similarity leads from the outcome to where the main one leads to.
    near(similarity(both, intermediateSet, datum_step(both, point)), similarity(both, mainSet, point));
    // One stage, when the six translations and angles are 0; the scale and the reduction point do not matter.
    ParameterArray one = both;
    std::fill_n(one.begin() + intermediateSet, 6, 0.0);
    one[slot::intermediateScale] = 0.0;
    near(datum_step(one, point), similarity(one, mainSet, point));
    // Each of the six alone switches to two stages.
    for (std::size_t s = intermediateSet; s < intermediateSet + 6; ++s) {
        ParameterArray p = one;
        p[s] = 0.1;
        EXPECT_FALSE(std::isfinite(datum_step(p, point).x)) << s;
    }
    // The main set as the intermediate one cancels.
    ParameterArray same = both;
    std::copy_n(same.begin() + mainSet, 10, same.begin() + intermediateSet);
    near(datum_step(same, point), point);
}

// transr_dll in place: point and result are the same memory.
int transr(std::array<double, 4>& point, const std::string& sourceKind, const std::string& targetKind,
           const std::string& sourceEllipsoid, const std::string& targetEllipsoid,
           const ParameterArray& source, const ParameterArray& target, int sourceFlag = 0,
           int targetFlag = -1) {
    return transr_dll(point.data(), wide(sourceKind).c_str(), wide(targetKind).c_str(), point.data(),
                      wide(sourceEllipsoid).c_str(), source.data(), wide(targetEllipsoid).c_str(),
                      target.data(), 0, sourceFlag, targetFlag, u".");
}

ParameterArray on(const NamedEllipsoid& ellipsoid, double shift) {
    ParameterArray p = {};
    p[slot::semiMajorAxis] = ellipsoid.axes().a;
    p[slot::semiMinorAxis] = ellipsoid.axes().b;
    p[slot::datumScale] = 1.0;
    p[slot::translationX] = shift;
    return p;
}

TEST(Pipeline, ChoosesTheDatumStepsByTheEllipsoidNames) {
    const ParameterArray source = on(ellipsoids[1], 100);
    const ParameterArray target = on(ellipsoids[2], 20);
    for (const Row& row : rows("datum_routes.tsv")) {
        SCOPED_TRACE(row[0] + " to " + row[1]);
        std::array<double, 4> point = {4e6, 1e6, 5e6, untouched};
        ASSERT_EQ(transr(point, "Geozentrisch", "Geozentrisch", row[0], row[1], source, target, 0, 0), 0);
        EXPECT_EQ(point, (std::array<double, 4>{4e6 + std::stod(row[2]), 1e6, 5e6, 5e6}));
    }
    // The same Bessel ellipsoid: degrees go to radians and back and nothing else happens, whatever the axes.
    std::array<double, 4> same = {51.0, 120.0, 7.0, untouched};
    ASSERT_EQ(transr(same, "Geographisch", "Geographisch", "Bessel", "Bessel", source, target), 0);
    EXPECT_EQ(same, (std::array<double, 4>{51.0 * degree / degree, 120.0 * degree / degree, 7.0, 7.0}));
    // Not so for any other: there the longitude comes back from an arc sine.
    std::array<double, 4> other = {51.0, 120.0, 7.0, untouched};
    ASSERT_EQ(transr(other, "Geographisch", "Geographisch", "GRS80", "GRS80", source, source), 0);
    EXPECT_NEAR(other[1], 60.0, 1e-13);
    // Two Bessel names: other axes are used, no datum step is.
    std::array<double, 4> equator = {0.0, 0.0, 0.0, untouched};
    ASSERT_EQ(transr(equator, "Geographisch", "Geographisch", "Bessel", "Bessel 2", source, target), 0);
    EXPECT_NEAR(equator[2], ellipsoids[1].a - ellipsoids[2].a, 1e-8);
}

TEST(Pipeline, RefusesWhatItCannotCarry) {
    const ParameterArray source = on(ellipsoids[1], 100);
    const ParameterArray target = on(ellipsoids[2], 20);
    for (const Row& row : rows("refusals.tsv")) {
        SCOPED_TRACE(::testing::PrintToString(row));
        const double height = std::stod(row[5]);
        std::array<double, 4> point = {std::stod(row[3]), std::stod(row[4]), height, untouched};
        const int status = std::stoi(row[8]);
        ASSERT_EQ(transr(point, row[0], row[1], row[2], "Krass", source, target, std::stoi(row[6]),
                         std::stoi(row[7])),
                  status);
        EXPECT_EQ(point[3], height);
        EXPECT_EQ(point[0] == 0.0 && point[1] == 0.0 && point[2] == 0.0, status != 0);
    }
}

// Metres on the ground for one unit of a coordinate.
std::array<double, 3> metres_per_unit(int code, double latitude) {
    const double perDegree = 6.4e6 / radian;
    return code % 10 == 2 ? std::array{1.0, 1.0, 1.0}
                          : std::array{perDegree, perDegree * std::cos(latitude / radian), 1.0};
}

TEST(Sample, AgreesWithProj) {
    constexpr double tol = 10e-6;  // metres; the promise of the sample data
    double worst = 0;
    for (const Row& row : rows("proj_points.tsv")) {
        SCOPED_TRACE(row[8]);
        const int from = std::stoi(row[0]);
        const int to = std::stoi(row[1]);
        const std::array given = {std::stod(row[2]), std::stod(row[3]), std::stod(row[4])};
        const std::array expected = {std::stod(row[5]), std::stod(row[6]), std::stod(row[7])};
        for (const char* directory : {SAMPLE_DIR, SCRAMBLED_DIR}) {
            const Transformed done = transform(directory, from, to, given);
            ASSERT_EQ(done.status, 0);
            EXPECT_EQ(done.result[3], given[2]);
            const auto scale = metres_per_unit(to, expected[0]);
            for (std::size_t i = 0; i < 3; ++i) {
                worst = std::max(worst, std::fabs(done.result[i] - expected[i]) * scale[i]);
            }
        }
    }
    EXPECT_LT(worst, tol);
    RecordProperty("worst_nm", std::to_string(worst * 1e9));
}

TEST(Sample, ColumnsCloseThereAndBack) {
    constexpr double tolSets = 10e-9;       // metres: the two columns as similarities
    constexpr double tolGeographic = 2e-6;  // metres: through the iteration of the latitude
    double worstSets = 0;
    double worstGeographic = 0;
    const std::pair<int, const char*> systems[] = {
        {201, "etrs89-geographisch"}, {202, "etrs89-geozentrisch"}, {301, "system-42-83-geographisch"}};
    for (const auto& [code, base] : systems) {
        const Description in = describe(Role::source, SAMPLE_DIR, base, 0, code);
        const Description out = describe(Role::target, SAMPLE_DIR, base, 0, code);
        const std::span<const double, parameterCount> into(in.parameters.data(), parameterCount);
        const std::span<const double, parameterCount> outOf(out.parameters.data(), parameterCount);
        for (double lat = 47; lat <= 55.1; lat += 0.5) {
            for (double lon = 5.5; lon <= 15.1; lon += 0.5) {
                const Geocentric p =
                    geographic_to_geocentric(ellipsoids[1].axes(), {lat / radian, lon / radian, 100});
                const Geocentric q = datum_step(outOf, datum_step(into, p));
                worstSets =
                    std::max({worstSets, std::fabs(q.x - p.x), std::fabs(q.y - p.y), std::fabs(q.z - p.z)});
                const Transformed there = transform(SAMPLE_DIR, 101, code, {lat, lon, 100});
                const Transformed back =
                    transform(SAMPLE_DIR, code, 101, {there.result[0], there.result[1], there.result[2]});
                ASSERT_EQ(there.status + back.status, 0);
                const auto scale = metres_per_unit(101, lat);
                const std::array<double, 3> given = {lat, lon, 100};
                for (std::size_t i = 0; i < 3; ++i) {
                    worstGeographic =
                        std::max(worstGeographic, std::fabs(back.result[i] - given[i]) * scale[i]);
                }
            }
        }
    }
    EXPECT_LT(worstSets, tolSets);
    EXPECT_LT(worstGeographic, tolGeographic);
    RecordProperty("sets_nm", std::to_string(worstSets * 1e9));
    RecordProperty("geographic_nm", std::to_string(worstGeographic * 1e9));
}

}  // namespace
