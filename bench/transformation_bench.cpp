// What one call costs, beside what its files cost by bare system calls and what one stateless call of PROJ costs.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <proj.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <string>
#include <vector>

#include "lagestatus.h"

namespace {

struct Files {
    int from;
    int to;
    std::array<const char*, 3> paths;
};

constexpr Files dhdnToEtrs89 = {
    101,
    201,
    {SAMPLE_DIR "/DEFAULT", SAMPLE_DIR "/dhdn-geographisch.tra", SAMPLE_DIR "/etrs89-geographisch.tra"}};
constexpr Files system42ToEtrs89 = {301,
                                    202,
                                    {SAMPLE_DIR "/DEFAULT", SAMPLE_DIR "/system-42-83-geographisch.tra",
                                     SAMPLE_DIR "/etrs89-geozentrisch.tra"}};

std::u16string wide(const std::string& text) {
    return {text.begin(), text.end()};
}

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
    using Clock = std::chrono::steady_clock;
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
    std::array<double, LAGESTATUS_PARAMETER_COUNT> source = {};
    std::array<double, LAGESTATUS_PARAMETER_COUNT> target = {};
    std::array<lagestatus_char, LAGESTATUS_NAME_SIZE> name;
    std::array<lagestatus_char, LAGESTATUS_ELLIPSOID_SIZE> sourceEllipsoid;
    std::array<lagestatus_char, LAGESTATUS_ELLIPSOID_SIZE> targetEllipsoid;
    std::array<lagestatus_char, LAGESTATUS_KIND_SIZE> sourceKind;
    std::array<lagestatus_char, LAGESTATUS_KIND_SIZE> targetKind;
    int zone = 0;
    if (transla_dll(sampleDirectory.c_str(), u"dhdn-geographisch", 0, 101, name.data(),
                    sourceEllipsoid.data(), sourceKind.data(), source.data()) != 0 ||
        translz_dll(sampleDirectory.c_str(), u"etrs89-geographisch", 0, 201, name.data(),
                    targetEllipsoid.data(), targetKind.data(), &zone, target.data()) != 0) {
        state.SkipWithError("the sample data cannot be read");
        return;
    }
    const std::array<double, 3> point = {52.5, 13.4, 100.0};
    std::array<double, LAGESTATUS_RESULT_SIZE> result = {};
    for (auto _ : state) {
        benchmark::DoNotOptimize(transr_dll(point.data(), sourceKind.data(), targetKind.data(), result.data(),
                                            sourceEllipsoid.data(), source.data(), targetEllipsoid.data(),
                                            target.data(), zone, 0, -1, sampleDirectory.c_str()));
        benchmark::DoNotOptimize(result);
    }
}
BENCHMARK(transr_dll_with_held_descriptions);

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
