// What the fast calculation costs beside PROJ's held operations and beside the reference calculation, in columns, one
// core; both sides in turn, so that both meet the same machine. LAGESTATUS_INSTRUCTIONS chooses the instruction set.
#include <benchmark/benchmark.h>
#include <lagestatus_bulk.h>
#include <proj.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "bulk_support.h"

namespace {

using namespace bench;

constexpr int ellipsoidal = LAGESTATUS_HEIGHT_ELLIPSOIDAL;
constexpr int both = LAGESTATUS_HEIGHT_BOTH;

struct Columns {
    explicit Columns(std::size_t count) : values{} {
        for (auto& column : values) {
            column.resize(count);
        }
    }

    [[nodiscard]] std::size_t size() const { return values[0].size(); }

    std::array<std::vector<double>, 4> values;
};

std::int64_t carry(const Transformation& way, const Columns& from, Columns& to, std::size_t first,
                   std::size_t count) {
    std::array<const double*, 3> input = {};
    std::array<double*, 4> output = {};
    for (std::size_t column = 0; column < 4; ++column) {
        output[column] = &to.values[column][first];
        if (column < 3) {
            input[column] = &from.values[column][first];
        }
    }
    return lagestatus_transform(way.get(), count, input.data(), nullptr, output.data(), nullptr, nullptr,
                                nullptr);
}

// Places in the third strip of Gauss-Krueger and in zone 32 with heights of the sample, in the source system of a road.
Columns points_for(int code, std::size_t count) {
    constexpr double latStep = 0.7548776662466927;
    constexpr double lonStep = 0.5698402909980532;
    Columns places(count);
    for (std::size_t i = 0; i < count; ++i) {
        const auto n = static_cast<double>(i);
        places.values[0][i] = 48.0 + 5.0 * std::fmod(n * latStep, 1.0);
        places.values[1][i] = 8.4 + 2.0 * std::fmod(n * lonStep, 1.0);
        places.values[2][i] = 100.0;
    }
    Columns points(count);
    if (carry(open_transformation(SAMPLE_DIR, {201, code, ellipsoidal, ellipsoidal}), places, points, 0,
              count) != 0) {
        points = Columns(0);
    }
    return points;
}

// The sample's height model as PROJ reads one, without the datum step and the correction: what a lookup costs.
class Grid {
  public:
    Grid() : file((std::filesystem::temp_directory_path() / "lagestatus-bench.gtx").string()) {
        const Directory directory = open_directory(SAMPLE_DIR);
        lagestatus_height_model model = {};
        model.size = sizeof(model);
        lagestatus_directory_height_model(directory.get(), &model, nullptr);
        std::ofstream out(file, std::ios::binary);
        for (const double value : {model.south, model.west, model.rowSpacing, model.columnSpacing}) {
            put(out, std::bit_cast<std::uint64_t>(value), 8);
        }
        put(out, static_cast<std::uint64_t>(model.rows), 4);
        put(out, static_cast<std::uint64_t>(model.columns), 4);
        for (std::int64_t value = 0; value < model.rows * model.columns; ++value) {
            put(out, std::bit_cast<std::uint32_t>(45.0F), 4);
        }
    }
    ~Grid() { std::filesystem::remove(file); }
    Grid(const Grid&) = delete;
    Grid& operator=(const Grid&) = delete;

    const std::string file;

  private:
    static void put(std::ofstream& out, std::uint64_t bits, int bytes) {
        for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8) {
            out.put(static_cast<char>(bits >> static_cast<unsigned>(shift) & 0xFFU));
        }
    }
};

struct Case {
    const char* name;
    Road road;
    const char* pipeline;  // PROJ's; null: the reference calculation is the other side
    bool degrees = false;  // what PROJ is given, in radians
    bool withGrid = false;
};

constexpr Case cases[] = {
    {"gauss_krueger_to_utm", {103, 203, ellipsoidal, ellipsoidal, true}, ""},
    {"gauss_krueger_to_utm_normal_heights", {103, 203, ellipsoidal, both, true}, "", false, true},
    {"geographic_to_gauss_krueger",
     {101, 104, ellipsoidal, ellipsoidal, true},
     "+proj=tmerc +lon_0=9 +x_0=3500000 +ellps=bessel",
     true},
    {"gauss_krueger_to_geographic",
     {104, 101, ellipsoidal, ellipsoidal, true},
     "+inv +proj=tmerc +lon_0=9 +x_0=3500000 +ellps=bessel"},
    {"geographic_to_soldner_beside_reference", {101, 105, ellipsoidal, ellipsoidal, true}, nullptr},
    {"soldner_to_geographic_beside_reference", {105, 101, ellipsoidal, ellipsoidal, true}, nullptr},
    {"normal_heights_given_and_wanted_beside_reference",
     {203, 303, LAGESTATUS_HEIGHT_NORMAL, LAGESTATUS_HEIGHT_NORMAL, true},
     nullptr},
};

// Counters: nanoseconds a point on both sides; ratio: how many times as fast ours is.
void fast_beside(benchmark::State& state, const Case& what, std::size_t count) {
    const Columns points = points_for(what.road.from, count);
    const Transformation ours = open_transformation(SAMPLE_DIR, what.road);
    Road plainRoad = what.road;
    plainRoad.fast = false;
    const Transformation reference = open_transformation(SAMPLE_DIR, plainRoad);
    const ProjContext context(proj_context_create());
    const Grid grid;
    std::string pipeline = what.pipeline != nullptr ? what.pipeline : "";
    if (pipeline.empty()) {
        pipeline = std::string(gaussKruegerToEtrs89);
        if (what.withGrid) {
            pipeline += "+step +inv +proj=vgridshift +grids=" + grid.file + " ";
        }
        pipeline += etrs89ToUtm;
    }
    const ProjOperation operation(proj_create(context.get(), pipeline.c_str()));
    Columns results(count);
    if (points.size() != count || !operation || carry(ours, points, results, 0, count) != 0) {
        state.SkipWithError("the sample data cannot be read, or PROJ has no such operation");
        return;
    }
    Columns theirPoints = points;
    if (what.degrees) {
        for (int column : {0, 1}) {
            for (double& value : theirPoints.values[static_cast<std::size_t>(column)]) {
                value = proj_torad(value);
            }
        }
    }
    Nanos ourTime = {};
    Nanos theirTime = {};
    for (auto _ : state) {
        const auto start = Clock::now();
        benchmark::DoNotOptimize(carry(ours, points, results, 0, count));
        const auto middle = Clock::now();
        ourTime += middle - start;
        state.SetIterationTime(std::chrono::duration<double>(middle - start).count());
        if (what.pipeline == nullptr) {
            const auto again = Clock::now();
            benchmark::DoNotOptimize(carry(reference, points, results, 0, count));
            theirTime += Clock::now() - again;
            continue;
        }
        Columns changed = theirPoints;
        const auto again = Clock::now();
        benchmark::DoNotOptimize(proj_trans_generic(operation.get(), PJ_FWD, changed.values[1].data(),
                                                    sizeof(double), count, changed.values[0].data(),
                                                    sizeof(double), count, changed.values[2].data(),
                                                    sizeof(double), count, nullptr, 0, 0));
        theirTime += Clock::now() - again;
    }
    const double all = static_cast<double>(state.iterations()) * static_cast<double>(count);
    state.counters["ns"] = ourTime.count() / all;
    state.counters["their_ns"] = theirTime.count() / all;
    state.counters["ratio"] = theirTime / ourTime;
}

// Every pair of kinds, the datum step between: nanoseconds a point, and how many times as fast as the reference.
void fast_by_kinds(benchmark::State& state, int from, int to) {
    constexpr std::size_t count = planePointCount;
    const Columns points = points_for(from, count);
    const Transformation ours = open_transformation(SAMPLE_DIR, {from, to, ellipsoidal, ellipsoidal, true});
    const Transformation reference = open_transformation(SAMPLE_DIR, {from, to, ellipsoidal, ellipsoidal});
    Columns results(count);
    Nanos ourTime = {};
    Nanos theirTime = {};
    for (auto _ : state) {
        const auto start = Clock::now();
        benchmark::DoNotOptimize(carry(ours, points, results, 0, count));
        const auto middle = Clock::now();
        benchmark::DoNotOptimize(carry(reference, points, results, 0, blockSize));
        theirTime += Clock::now() - middle;
        ourTime += middle - start;
        state.SetIterationTime(std::chrono::duration<double>(middle - start).count());
    }
    const auto rounds = static_cast<double>(state.iterations());
    state.counters["ns"] = ourTime.count() / rounds / static_cast<double>(count);
    state.counters["ratio"] =
        theirTime.count() / static_cast<double>(blockSize) / (ourTime.count() / static_cast<double>(count));
}

// Two threads beside one, each with half of a million points.
void fast_on_two_threads(benchmark::State& state) {
    constexpr std::size_t count = 1'000'000;
    const Columns points = points_for(103, count);
    const Transformation ours = open_transformation(SAMPLE_DIR, {103, 203, ellipsoidal, ellipsoidal, true});
    Columns results(count);
    Nanos one = {};
    Nanos two = {};
    for (auto _ : state) {
        const auto start = Clock::now();
        benchmark::DoNotOptimize(carry(ours, points, results, 0, count));
        const auto middle = Clock::now();
        std::thread other([&] { carry(ours, points, results, count / 2, count / 2); });
        benchmark::DoNotOptimize(carry(ours, points, results, 0, count / 2));
        other.join();
        const auto end = Clock::now();
        one += middle - start;
        two += end - middle;
        state.SetIterationTime(std::chrono::duration<double>(end - middle).count());
    }
    state.counters["ratio"] = one / two;
}
BENCHMARK(fast_on_two_threads)->UseManualTime()->Unit(benchmark::kMillisecond);

const bool registered = [] {
    for (const Case& each : cases) {
        for (const std::size_t count : {planePointCount, std::size_t{1'000'000}}) {
            benchmark::RegisterBenchmark(
                ("fast/" + std::string(each.name) + "/" + std::to_string(count)).c_str(), fast_beside, each,
                count)
                ->UseManualTime()
                ->Unit(benchmark::kMicrosecond);
        }
    }
    for (const int from : {101, 102, 103, 105}) {
        for (const int to : {201, 202, 203, 105}) {
            benchmark::RegisterBenchmark(
                ("fast_by_kinds/" + std::to_string(from) + "/" + std::to_string(to)).c_str(), fast_by_kinds,
                from, to)
                ->UseManualTime()
                ->Unit(benchmark::kMicrosecond);
        }
    }
    return true;
}();

}  // namespace
