// What the library for many points costs: a point beside the single call with held descriptions and beside PROJ, a
// model's opening beside bare reading of its file, and several threads beside one. Both sides in turn, block by block,
// so that both meet the same machine; "ratio" is what the promise is about.
#include <benchmark/benchmark.h>
#include <lagestatus_bulk.h>
#include <proj.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "bulk_support.h"
#include "lagestatus.h"

namespace {

using namespace bench;

using Points = std::vector<std::array<double, 3>>;
using Results = std::vector<std::array<double, 4>>;

// Carries points to results, row by row, from one number up to another.
std::int64_t carry(const Transformation& transformation, const Points& points, Results& results,
                   std::size_t first, std::size_t count, int* status = nullptr) {
    const double* const from = points[first].data();
    double* const to = results[first].data();
    const std::array<const double*, 3> input = {from, from + 1, from + 2};
    const std::array<double*, 4> output = {to, to + 1, to + 2, to + 3};
    const std::array<std::ptrdiff_t, 3> inputStrides = {sizeof(points[0]), sizeof(points[0]),
                                                        sizeof(points[0])};
    const std::array<std::ptrdiff_t, 4> outputStrides = {sizeof(results[0]), sizeof(results[0]),
                                                         sizeof(results[0]), sizeof(results[0])};
    return lagestatus_transform(transformation.get(), count, input.data(), inputStrides.data(), output.data(),
                                outputStrides.data(), status, nullptr);
}

// planePointCount points, of those that a road carries.
Points points_of(const Transformation& road, const Points& candidates) {
    Results results(candidates.size());
    std::vector<int> status(candidates.size());
    carry(road, candidates, results, 0, candidates.size(), status.data());
    Points points;
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        if (status[i] == 0) {
            points.push_back(candidates[i]);
        }
    }
    const Points good = points;
    for (std::size_t i = 0; !good.empty() && points.size() < planePointCount; ++i) {
        points.push_back(good[i % good.size()]);
    }
    return points;
}

// The points in the target system of a road.
Points carried_to(const Transformation& road, const Points& points) {
    Results results(points.size());
    carry(road, points, results, 0, points.size());
    Points carried;
    for (const auto& result : results) {
        carried.push_back({result[0], result[1], result[2]});
    }
    return carried;
}

// Runs two sides in turn on a block of points; each is told where the block begins. Counters: nanoseconds a point.
template <typename Ours, typename Theirs>
void in_turn(benchmark::State& state, Ours ours, Theirs theirs) {
    Nanos ourTime = {};
    Nanos theirTime = {};
    std::size_t at = 0;
    for (auto _ : state) {
        const auto start = Clock::now();
        ours(at);
        const auto middle = Clock::now();
        theirs(at);
        const auto end = Clock::now();
        ourTime += middle - start;
        theirTime += end - middle;
        state.SetIterationTime(std::chrono::duration<double>(middle - start).count());
        at = (at + blockSize) % planePointCount;
    }
    const double points = static_cast<double>(state.iterations()) * static_cast<double>(blockSize);
    state.counters["ns"] = ourTime.count() / points;
    state.counters["their_ns"] = theirTime.count() / points;
    state.counters["ratio"] = ourTime / theirTime;
}

// A transformation of blocks beside a call for each of their points.
template <typename Call>
void beside_calls(benchmark::State& state, const Transformation& transformation, const Points& points,
                  Results& results, Call call) {
    in_turn(
        state,
        [&](std::size_t at) {
            benchmark::DoNotOptimize(carry(transformation, points, results, at, blockSize));
        },
        [&](std::size_t at) {
            for (std::size_t i = at; i < at + blockSize; ++i) {
                call(points[i]);
            }
        });
}

constexpr Road plain = {103, 203, LAGESTATUS_HEIGHT_ELLIPSOIDAL, LAGESTATUS_HEIGHT_ELLIPSOIDAL};
constexpr Road bothHeights = {103, 203, LAGESTATUS_HEIGHT_ELLIPSOIDAL, LAGESTATUS_HEIGHT_BOTH};
constexpr Road normalOutsideBessel = {203, 303, LAGESTATUS_HEIGHT_NORMAL, LAGESTATUS_HEIGHT_NORMAL};

Points points_with_heights() {
    const ProjContext context(proj_context_create());
    return points_of(open_transformation(SAMPLE_DIR, bothHeights), points_of_the_third_strip(context.get()));
}

// Beside transr_dll between the same two systems, with ellipsoidal heights and its descriptions held.
void bulk_beside_transr_dll(benchmark::State& state, const Road& road, const HeldDescriptions::System& from,
                            const HeldDescriptions::System& to) {
    const Transformation transformation = open_transformation(SAMPLE_DIR, road);
    HeldDescriptions held;
    Points points = points_with_heights();
    if (road.from == plain.to) {
        points = points_of(transformation, carried_to(open_transformation(SAMPLE_DIR, plain), points));
    }
    std::array<double, LAGESTATUS_RESULT_SIZE> result = {};
    Results results(planePointCount);
    if (points.size() != planePointCount || !held.read(from, to) ||
        carry(transformation, points, results, 0, planePointCount) != 0 ||
        held.call_transr_dll(points[0], result) != 0) {
        state.SkipWithError("the sample data cannot be read");
        return;
    }
    beside_calls(state, transformation, points, results, [&](const auto& point) {
        benchmark::DoNotOptimize(held.call_transr_dll(point, result));
        benchmark::DoNotOptimize(result);
    });
}
constexpr HeldDescriptions::System gaussKrueger = {u"dhdn-gauss-krueger", 103};
constexpr HeldDescriptions::System utm = {u"etrs89-utm", 203};
constexpr HeldDescriptions::System system42 = {u"system-42-83-gauss-krueger", 303};
BENCHMARK_CAPTURE(bulk_beside_transr_dll, gauss_krueger_to_utm, plain, gaussKrueger, utm)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(bulk_beside_transr_dll, both_heights, bothHeights, gaussKrueger, utm)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(bulk_beside_transr_dll, normal_height_outside_bessel, normalOutsideBessel, utm, system42)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

// Normal heights by the full grid of GCG2016, beside the sample's quarter of it.
void full_grid_beside_the_sample(benchmark::State& state) {
    const Transformation full = open_transformation(FULL_GRID_DIR, bothHeights);
    const Transformation sample = open_transformation(SAMPLE_DIR, bothHeights);
    const Points points = full ? points_of(full, points_with_heights()) : Points();
    Results results(planePointCount);
    if (points.size() != planePointCount || carry(sample, points, results, 0, planePointCount) != 0) {
        state.SkipWithError("the directories cannot be read");
        return;
    }
    in_turn(
        state, [&](std::size_t at) { benchmark::DoNotOptimize(carry(full, points, results, at, blockSize)); },
        [&](std::size_t at) { benchmark::DoNotOptimize(carry(sample, points, results, at, blockSize)); });
}
BENCHMARK(full_grid_beside_the_sample)->UseManualTime()->Unit(benchmark::kMicrosecond);

// Beside PROJ's pipeline, with ellipsoidal heights.
void bulk_beside_proj(benchmark::State& state) {
    const Transformation transformation = open_transformation(SAMPLE_DIR, plain);
    const ProjContext context(proj_context_create());
    const ProjOperation operation(
        proj_create(context.get(), (std::string(gaussKruegerToEtrs89) += etrs89ToUtm).c_str()));
    const Points points = points_of_the_third_strip(context.get());
    Results results(planePointCount);
    if (points.empty() || !transformation || !operation ||
        carry(transformation, points, results, 0, planePointCount) != 0) {
        state.SkipWithError("the sample data cannot be read, or PROJ has no such operation");
        return;
    }
    beside_calls(state, transformation, points, results,
                 [&](const auto& point) { benchmark::DoNotOptimize(call_proj(operation.get(), point)); });
}
BENCHMARK(bulk_beside_proj)->UseManualTime()->Unit(benchmark::kMicrosecond);

// A directory opened and its height model read, beside the bare reading of that file.
void open_a_height_model_beside_bare_reading(benchmark::State& state) {
    const GeneratedModel model(0, static_cast<int>(state.range(0)));
    lagestatus_height_model told = {};
    told.size = sizeof(told);
    Micros ours = {};
    Micros bare = {};
    for (auto _ : state) {
        const auto start = Clock::now();
        Directory directory = open_directory(model.path());
        const int status = lagestatus_directory_height_model(directory.get(), &told, nullptr);
        const auto middle = Clock::now();
        directory.reset();
        const auto again = Clock::now();
        const std::size_t lines = read_bare(model.file());
        const auto end = Clock::now();
        if (status != 0 || static_cast<std::int64_t>(lines) < told.values / 7) {
            state.SkipWithError("the generated height model cannot be read");
            break;
        }
        ours += middle - start;
        bare += end - again;
        state.SetIterationTime(std::chrono::duration<double>(middle - start).count());
    }
    state.counters["MB"] = static_cast<double>(std::filesystem::file_size(model.file())) / 1e6;
    state.counters["memory_MB"] = static_cast<double>(told.memory) / 1e6;
    state.counters["bare_us"] = bare.count() / static_cast<double>(state.iterations());
    state.counters["ratio"] = ours / bare;
}
BENCHMARK(open_a_height_model_beside_bare_reading)
    ->ArgName("cells")
    ->Arg(500)
    ->Arg(1000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

// How many times faster eight threads do a piece of work each than one does all eight.
double gain_of_threads(const std::function<void(std::size_t)>& work) {
    constexpr std::size_t threadCount = 8;
    const auto start = Clock::now();
    std::vector<std::thread> threads;
    for (std::size_t number = 0; number < threadCount; ++number) {
        threads.emplace_back(work, number);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const auto middle = Clock::now();
    for (std::size_t number = 0; number < threadCount; ++number) {
        work(number);
    }
    return (Clock::now() - middle) / Nanos(middle - start);
}

// Eight threads on one transformation. "machine" is what the same threads gain where they share nothing: how many cores
// are free just now.
void eight_threads_beside_one(benchmark::State& state) {
    const Transformation transformation = open_transformation(SAMPLE_DIR, bothHeights);
    const Points points = points_with_heights();
    std::vector<Results> results(8, Results(planePointCount));
    if (points.size() != planePointCount) {
        state.SkipWithError("the sample data cannot be read");
        return;
    }
    double gain = 0.0;
    double machine = 0.0;
    for (auto _ : state) {
        gain += gain_of_threads([&](std::size_t number) {
            for (int round = 0; round < 4; ++round) {
                benchmark::DoNotOptimize(carry(transformation, points, results[number], 0, planePointCount));
            }
        });
        machine += gain_of_threads([](std::size_t number) {
            double sum = 0.0;
            for (std::size_t i = 0; i < 2'000'000; ++i) {
                sum += std::sin(static_cast<double>(number + i));
            }
            benchmark::DoNotOptimize(sum);
        });
    }
    const auto iterations = static_cast<double>(state.iterations());
    state.counters["cores"] = std::thread::hardware_concurrency();
    state.counters["machine"] = machine / iterations;
    state.counters["ratio"] = gain / iterations;
}
BENCHMARK(eight_threads_beside_one)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
