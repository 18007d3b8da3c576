// What one call of each projection routine costs, beside its word-for-word transcription and beside the routine of PROJ
// or GeographicLib that does the same, all three held ready outside the loop.
#include <benchmark/benchmark.h>
#include <proj.h>

#include <GeographicLib/CassiniSoldner.hpp>
#include <GeographicLib/Geodesic.hpp>
#include <array>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include "base/angles.h"
#include "projections/projections.h"
#include "projections_as_written.h"

namespace {

using lagestatus::degree;

constexpr lagestatus::Tolerances tol;

constexpr double a = 6377397.155;  // Bessel 1841
constexpr double b = 6356078.962818189;
constexpr double inverseFlattening = 299.1528128;
constexpr double lon0 = 9.0;  // of both kinds of systems
constexpr double lam0 = lon0 * degree;
constexpr double gaussKruegerPhi0 = 0.0;
constexpr double soldnerLat0 = 50.0;
constexpr double soldnerPhi0 = soldnerLat0 * degree;

constexpr std::size_t placeCount = 4096;
constexpr std::size_t blockSize = 256;  // reading the clock twice is nothing beside it
static_assert(placeCount % blockSize == 0);

using Pair = std::array<double, 2>;

// Angles of the input in radians and in degrees: no way of calling pays for another one's unit.
struct Place {
    Pair degrees;  // latitude, longitude
    Pair radians;
    Pair gaussKrueger;  // y, x
    Pair soldner;
};

// The library's routines with their series made for the call, as a single transformation makes them.
template <auto routine>
int to_plane(double phi0, bool rectifies, const Place& at, Pair& res) {
    lagestatus::PlanePoint plane;
    const int status = routine({{a, b}, phi0, tol, rectifies}, {at.radians[0], at.radians[1]}, lam0, plane);
    res = {plane.easting, plane.northing};
    return status;
}

template <auto routine>
int to_geographic(double phi0, const Pair& plane, Pair& res) {
    lagestatus::LatLon reached;
    const int status = routine({{a, b}, phi0, tol, true}, {plane[1], plane[0]}, lam0, reached);
    res = {reached.phi, reached.lam};
    return status;
}

int to_gauss_krueger(const Place& at, Pair& res) {
    return to_plane<lagestatus::geo_to_gauss_krueger>(gaussKruegerPhi0, false, at, res);
}

int to_soldner(const Place& at, Pair& res) {
    return to_plane<lagestatus::geo_to_soldner>(soldnerPhi0, true, at, res);
}

// 46 to 56 degrees north and up to 2 degrees from the meridian, spread evenly in an order without a pattern that a
// processor could learn: the multiples of two irrational steps.
const std::vector<Place>& all_places() {
    static const std::vector<Place> places = [] {
        constexpr double latStep = 0.7548776662466927;
        constexpr double lonStep = 0.5698402909980532;
        std::vector<Place> made(placeCount);
        for (std::size_t i = 0; i < placeCount; ++i) {
            Place& place = made[i];
            const auto n = static_cast<double>(i);
            place.degrees = {46.0 + 10.0 * std::fmod(n * latStep, 1.0),
                             lon0 - 2.0 + 4.0 * std::fmod(n * lonStep, 1.0)};
            place.radians = {place.degrees[0] * degree, place.degrees[1] * degree};
            if (to_gauss_krueger(place, place.gaussKrueger) != 0 || to_soldner(place, place.soldner) != 0) {
                made.clear();
                break;
            }
        }
        return made;
    }();
    return places;
}

struct Destroy {
    void operator()(PJ_CONTEXT* context) const { proj_context_destroy(context); }
    void operator()(PJ* operation) const { proj_destroy(operation); }
};

struct ProjMercator {
    std::unique_ptr<PJ_CONTEXT, Destroy> context{proj_context_create()};
    std::unique_ptr<PJ, Destroy> operation{proj_create(context.get(), "+proj=tmerc +lon_0=9 +ellps=bessel")};
};

// What the three agree to, in the unit of the routine's results, and that unit in the unit of the peer's.
struct Agreement {
    double within;
    double peerUnit;
};

constexpr double millimetre = 1e-3;
constexpr Agreement metres = {millimetre, 1.0};
constexpr Agreement radians = {millimetre / a, 1.0};
constexpr Agreement radiansAndDegrees = {millimetre / a, degree};

template <typename Ours, typename Written, typename Peer>
bool agree(const std::vector<Place>& places, const Agreement& agreement, Ours ours, Written written,
           Peer peer) {
    for (const Place& place : places) {
        Pair result = {};
        Pair asWritten = {};
        Pair ofPeer = {};
        if (ours(place, result) != 0 || written(place, asWritten) != 0 || result != asWritten) {
            return false;
        }
        peer(place, ofPeer);
        for (std::size_t i = 0; i < result.size(); ++i) {
            if (!(std::fabs(result[i] - ofPeer[i] * agreement.peerUnit) < agreement.within)) {
                return false;
            }
        }
    }
    return !places.empty();
}

template <typename Call>
std::chrono::duration<double, std::nano> time_of(std::span<const Place> block, Call call) {
    const auto start = std::chrono::steady_clock::now();
    for (const Place& place : block) {
        Pair result = {};
        call(place, result);
        benchmark::DoNotOptimize(result);
    }
    return std::chrono::steady_clock::now() - start;
}

// The three in turn, block by block, so that all meet the same machine; the ratios are what is promised.
template <typename Ours, typename Written, typename Peer>
void beside_written_and_peer(benchmark::State& state, const Agreement& agreement, Ours ours, Written written,
                             Peer peer) {
    const std::vector<Place>& places = all_places();
    if (!agree(places, agreement, ours, written, peer)) {
        state.SkipWithError("the three do not agree");
        return;
    }
    std::chrono::duration<double, std::nano> oursTime = {};
    std::chrono::duration<double, std::nano> writtenTime = {};
    std::chrono::duration<double, std::nano> peerTime = {};
    std::size_t at = 0;
    for (auto _ : state) {
        const auto block = std::span(places).subspan(at, blockSize);
        at = (at + blockSize) % placeCount;
        const auto time = time_of(block, ours);
        oursTime += time;
        writtenTime += time_of(block, written);
        peerTime += time_of(block, peer);
        state.SetIterationTime(std::chrono::duration<double>(time).count());
    }
    const double calls = static_cast<double>(state.iterations()) * static_cast<double>(blockSize);
    state.counters["ns"] = oursTime.count() / calls;
    state.counters["written_ns"] = writtenTime.count() / calls;
    state.counters["peer_ns"] = peerTime.count() / calls;
    state.counters["to_written"] = oursTime / writtenTime;
    state.counters["to_peer"] = oursTime / peerTime;
}

void geo_to_gauss_krueger_beside_proj(benchmark::State& state) {
    const ProjMercator proj;
    beside_written_and_peer(
        state, metres, to_gauss_krueger,
        [](const Place& at, Pair& res) {
            return as_written::geo_to_gauss_krueger(a, b, at.radians[0], at.radians[1], gaussKruegerPhi0,
                                                    lam0, res, tol.coord, tol.series);
        },
        [&proj](const Place& at, Pair& res) {
            const PJ_COORD reached =
                proj_trans(proj.operation.get(), PJ_FWD, proj_coord(at.radians[1], at.radians[0], 0.0, 0.0));
            res = {reached.xy.x, reached.xy.y};
        });
}
BENCHMARK(geo_to_gauss_krueger_beside_proj)->UseManualTime()->Unit(benchmark::kMicrosecond);

void gauss_krueger_to_geo_beside_proj(benchmark::State& state) {
    const ProjMercator proj;
    beside_written_and_peer(
        state, radians,
        [](const Place& at, Pair& res) {
            return to_geographic<lagestatus::gauss_krueger_to_geo>(gaussKruegerPhi0, at.gaussKrueger, res);
        },
        [](const Place& at, Pair& res) {
            const int status = as_written::gauss_krueger_to_geo(a, b, at.gaussKrueger[0], at.gaussKrueger[1],
                                                                gaussKruegerPhi0, res, tol.angle, tol.series);
            res[1] += lam0;
            return status;
        },
        [&proj](const Place& at, Pair& res) {
            const PJ_COORD reached = proj_trans(proj.operation.get(), PJ_INV,
                                                proj_coord(at.gaussKrueger[0], at.gaussKrueger[1], 0.0, 0.0));
            res = {reached.lp.phi, reached.lp.lam};
        });
}
BENCHMARK(gauss_krueger_to_geo_beside_proj)->UseManualTime()->Unit(benchmark::kMicrosecond);

GeographicLib::CassiniSoldner cassini_soldner() {
    return {soldnerLat0, lon0, GeographicLib::Geodesic(a, 1.0 / inverseFlattening)};
}

void geo_to_soldner_beside_geographiclib(benchmark::State& state) {
    const GeographicLib::CassiniSoldner cassini = cassini_soldner();
    beside_written_and_peer(
        state, metres, to_soldner,
        [](const Place& at, Pair& res) {
            return as_written::geo_to_soldner(a, b, at.radians[0], at.radians[1], soldnerPhi0, lam0, res,
                                              tol.angle, tol.length, tol.series);
        },
        [&cassini](const Place& at, Pair& res) {
            cassini.Forward(at.degrees[0], at.degrees[1], res[0], res[1]);
        });
}
BENCHMARK(geo_to_soldner_beside_geographiclib)->UseManualTime()->Unit(benchmark::kMicrosecond);

void soldner_to_geo_beside_geographiclib(benchmark::State& state) {
    const GeographicLib::CassiniSoldner cassini = cassini_soldner();
    beside_written_and_peer(
        state, radiansAndDegrees,
        [](const Place& at, Pair& res) {
            return to_geographic<lagestatus::soldner_to_geo>(soldnerPhi0, at.soldner, res);
        },
        [](const Place& at, Pair& res) {
            return as_written::soldner_to_geo(a, b, at.soldner[0], at.soldner[1], soldnerPhi0, lam0, res,
                                              tol.angle, tol.length, tol.series);
        },
        [&cassini](const Place& at, Pair& res) {
            cassini.Reverse(at.soldner[0], at.soldner[1], res[0], res[1]);
        });
}
BENCHMARK(soldner_to_geo_beside_geographiclib)->UseManualTime()->Unit(benchmark::kMicrosecond);

}  // namespace
