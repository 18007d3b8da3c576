// What one call costs, beside what its files cost by bare system calls and what PROJ costs: one stateless call, and an
// operation that is held.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <proj.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "lagestatus.h"
#include "support.h"

namespace {

using namespace bench;

struct Files {
    int from;
    int to;
    std::array<const char*, 3> paths;
};

// Towards geocentric coordinates, since those have no height: the height model has benchmarks of its own.
constexpr Files dhdnToEtrs89 = {
    101,
    202,
    {SAMPLE_DIR "/DEFAULT", SAMPLE_DIR "/dhdn-geographisch.tra", SAMPLE_DIR "/etrs89-geozentrisch.tra"}};
constexpr Files system42ToEtrs89 = {301,
                                    202,
                                    {SAMPLE_DIR "/DEFAULT", SAMPLE_DIR "/system-42-83-geographisch.tra",
                                     SAMPLE_DIR "/etrs89-geozentrisch.tra"}};

const std::u16string sampleDirectory = wide(SAMPLE_DIR);

int call_trans_dll(const Files& files, std::array<double, LAGESTATUS_RESULT_SIZE>& result) {
    std::array<lagestatus_char, LAGESTATUS_NAME_SIZE> sourceName;
    std::array<lagestatus_char, LAGESTATUS_NAME_SIZE> targetName;
    std::array<lagestatus_char, LAGESTATUS_ELLIPSOID_SIZE> sourceEllipsoid;
    std::array<lagestatus_char, LAGESTATUS_ELLIPSOID_SIZE> targetEllipsoid;
    std::array<lagestatus_char, LAGESTATUS_KIND_SIZE> sourceKind;
    std::array<lagestatus_char, LAGESTATUS_KIND_SIZE> targetKind;
    std::array<int, 2> auxiliary;
    return trans_dll(52.5, 13.4, 100.0, files.from, files.to, sampleDirectory.c_str(), "e", result.data(),
                     sourceName.data(), auxiliary.data(), sourceEllipsoid.data(), sourceKind.data(),
                     targetName.data(), targetEllipsoid.data(), targetKind.data());
}

// Opens, reads and closes the three files of the call; each fits into one read.
bool read_bare(const Files& files) {
    std::array<char, 8192> buffer;
    for (const char* path : files.paths) {
        const int handle = open(path, O_RDONLY | O_CLOEXEC);
        if (handle < 0) {
            return false;
        }
        const ssize_t bytes = read(handle, buffer.data(), buffer.size());
        benchmark::DoNotOptimize(buffer);
        close(handle);
        if (bytes <= 0 || bytes == static_cast<ssize_t>(buffer.size())) {
            return false;
        }
    }
    return true;
}

// The call and the bare reading in turn, so that both meet the same machine; "ratio" is what the promise is about.
void trans_dll_beside_bare_files(benchmark::State& state, const Files& files) {
    std::array<double, LAGESTATUS_RESULT_SIZE> result = {};
    Clock::duration ours = {};
    Clock::duration bare = {};
    for (auto _ : state) {
        const auto start = Clock::now();
        const int status = call_trans_dll(files, result);
        const auto middle = Clock::now();
        const bool read = read_bare(files);
        const auto end = Clock::now();
        if (status != 0 || !read) {
            state.SkipWithError("the sample data cannot be read");
            break;
        }
        benchmark::DoNotOptimize(result);
        ours += middle - start;
        bare += end - middle;
        state.SetIterationTime(std::chrono::duration<double>(middle - start).count());
    }
    const auto iterations = static_cast<double>(state.iterations());
    state.counters["bare_us"] = std::chrono::duration<double, std::micro>(bare).count() / iterations;
    state.counters["ratio"] = static_cast<double>(ours.count()) / static_cast<double>(bare.count());
}
BENCHMARK_CAPTURE(trans_dll_beside_bare_files, dhdn_to_etrs89, dhdnToEtrs89)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(trans_dll_beside_bare_files, system_42_83_to_etrs89, system42ToEtrs89)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

void transr_dll_with_held_descriptions(benchmark::State& state) {
    HeldDescriptions held;
    if (!held.read({u"dhdn-geographisch", 101}, {u"etrs89-geographisch", 201})) {
        state.SkipWithError("the sample data cannot be read");
        return;
    }
    const std::array<double, 3> point = {52.5, 13.4, 100.0};
    std::array<double, LAGESTATUS_RESULT_SIZE> result = {};
    for (auto _ : state) {
        benchmark::DoNotOptimize(held.call_transr_dll(point, result));
        benchmark::DoNotOptimize(result);
    }
}
BENCHMARK(transr_dll_with_held_descriptions);

// Whether both reach the same places; PROJ leaves out the zone in front of the easting.
bool agree_in_zone_32(const HeldDescriptions& held, PJ* operation,
                      const std::vector<std::array<double, 3>>& points) {
    constexpr double millimetre = 1e-3;
    std::array<double, LAGESTATUS_RESULT_SIZE> result = {};
    for (const auto& point : points) {
        const int status = held.call_transr_dll(point, result);
        const PJ_COORD expected = call_proj(operation, point);
        if (status != 0 || !(std::fabs(result[0] - expected.xyz.y) < millimetre) ||
            !(std::fabs(result[1] - 32e6 - expected.xyz.x) < millimetre) ||
            !(std::fabs(result[2] - expected.xyz.z) < millimetre)) {
            return false;
        }
    }
    return !points.empty();
}

// Gauss-Krueger on Bessel to UTM on GRS80, and PROJ's pipeline for the same, both held; in turn, block by block, so
// that both meet the same machine.
void transr_dll_gauss_krueger_to_utm_beside_held_proj(benchmark::State& state) {
    HeldDescriptions held;
    if (!held.read({u"dhdn-gauss-krueger", 103}, {u"etrs89-utm", 203})) {
        state.SkipWithError("the sample data cannot be read");
        return;
    }
    const ProjContext context(proj_context_create());
    const ProjOperation operation(
        proj_create(context.get(), (std::string(gaussKruegerToEtrs89) += etrs89ToUtm).c_str()));
    const std::vector<std::array<double, 3>> points = points_of_the_third_strip(context.get());
    if (!operation || !agree_in_zone_32(held, operation.get(), points)) {
        state.SkipWithError("PROJ has no such operation or does not agree");
        return;
    }

    Nanos ours = {};
    Nanos proj = {};
    std::array<double, LAGESTATUS_RESULT_SIZE> result = {};
    std::size_t at = 0;
    for (auto _ : state) {
        const auto block = std::span(points).subspan(at, blockSize);
        at = (at + blockSize) % planePointCount;
        const auto start = Clock::now();
        for (const auto& point : block) {
            benchmark::DoNotOptimize(held.call_transr_dll(point, result));
            benchmark::DoNotOptimize(result);
        }
        const auto middle = Clock::now();
        for (const auto& point : block) {
            benchmark::DoNotOptimize(call_proj(operation.get(), point));
        }
        const auto end = Clock::now();
        ours += middle - start;
        proj += end - middle;
        state.SetIterationTime(std::chrono::duration<double>(middle - start).count());
    }
    const double calls = static_cast<double>(state.iterations()) * static_cast<double>(blockSize);
    state.counters["ns"] = ours.count() / calls;
    state.counters["proj_ns"] = proj.count() / calls;
    state.counters["ratio"] = ours / proj;
}
BENCHMARK(transr_dll_gauss_krueger_to_utm_beside_held_proj)->UseManualTime()->Unit(benchmark::kMicrosecond);

// One stateless call of PROJ: what it takes to make the operation is part of it, the context is kept.
template <typename Create>
void proj_once(benchmark::State& state, Create create) {
    PJ_CONTEXT* const context = proj_context_create();
    for (auto _ : state) {
        PJ* const operation = create(context);
        if (operation == nullptr) {
            state.SkipWithError("PROJ has no such operation");
            break;
        }
        benchmark::DoNotOptimize(proj_trans(operation, PJ_FWD, proj_coord(52.5, 13.4, 100.0, 0.0)));
        proj_destroy(operation);
    }
    proj_context_destroy(context);
}

void proj_once_from_a_parameter_string(benchmark::State& state) {
    proj_once(state, [](PJ_CONTEXT* context) {
        return proj_create(
            context,
            "+proj=pipeline +step +proj=axisswap +order=2,1 "
            "+step +proj=unitconvert +xy_in=deg +xy_out=rad +step +proj=cart +ellps=bessel "
            "+step +proj=helmert +exact +convention=coordinate_frame +x=598.1 +y=73.7 +z=418.2 "
            "+rx=-0.202 +ry=-0.045 +rz=2.455 +s=6.7 +step +inv +proj=cart +ellps=GRS80 "
            "+step +proj=unitconvert +xy_in=rad +xy_out=deg +step +proj=axisswap +order=2,1");
    });
}
BENCHMARK(proj_once_from_a_parameter_string)->Unit(benchmark::kMicrosecond);

void proj_once_from_catalogue_codes(benchmark::State& state) {
    proj_once(state, [](PJ_CONTEXT* context) {
        return proj_create_crs_to_crs(context, "EPSG:4314", "EPSG:4258", nullptr);
    });
}
BENCHMARK(proj_once_from_catalogue_codes)->Unit(benchmark::kMicrosecond);

}  // namespace
