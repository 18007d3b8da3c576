// What normal heights cost: nothing is kept between calls, so a lookup is the reading of the file up to its place.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <string>
#include <utility>

#include "lagestatus.h"
#include "support.h"

std::size_t bench::read_bare(const std::string& path) {
    std::array<char, 65536> buffer;
    const int handle = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    std::size_t lines = 0;
    for (ssize_t bytes = 0; handle >= 0 && (bytes = read(handle, buffer.data(), buffer.size())) > 0;) {
        const char* at = buffer.data();
        const char* const end = at + bytes;
        while ((at = static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at)))) !=
               nullptr) {
            ++lines;
            ++at;
        }
    }
    close(handle);
    return lines;
}

namespace {

using namespace bench;

// One lookup of the height anomaly and nothing else: a system in the Bessel datum, onto itself.
int look_up(const std::u16string& directory, double latitude, double longitude,
            std::array<double, 4>& result) {
    const std::array<double, 3> point = {latitude, longitude, 100.0};
    std::array<double, LAGESTATUS_PARAMETER_COUNT> parameters = {};
    parameters[24] = 6377397.155;
    parameters[25] = 6356078.962818;
    return transr_dll(point.data(), u"Geographisch", u"Geographisch", result.data(), u"Bessel",
                      parameters.data(), u"Bessel", parameters.data(), 0, 0, -1, directory.c_str());
}

// The last cell of 5 MB, and the bare reading of the same bytes, in turn; "ratio" is what the promise is about.
void look_up_the_last_cell_beside_bare_reading(benchmark::State& state) {
    const GeneratedModel model(static_cast<int>(state.range(0)), 800);
    const std::u16string directory = wide(model.path());
    std::array<double, 4> result = {};
    Micros ours = {};
    Micros bare = {};
    for (auto _ : state) {
        const auto start = Clock::now();
        const int status = look_up(directory, 55.98, 14.9999, result);
        const auto middle = Clock::now();
        const std::size_t lines = read_bare(model.file());
        const auto end = Clock::now();
        if (status != 0 || lines < 90000) {
            state.SkipWithError("the generated height model cannot be read");
            break;
        }
        ours += middle - start;
        bare += end - middle;
        state.SetIterationTime(std::chrono::duration<double>(middle - start).count());
    }
    state.counters["MB"] = static_cast<double>(std::filesystem::file_size(model.file())) / 1e6;
    state.counters["bare_us"] = bare.count() / static_cast<double>(state.iterations());
    state.counters["ratio"] = ours / bare;
}
BENCHMARK(look_up_the_last_cell_beside_bare_reading)
    ->ArgName("key")
    ->Arg(0)
    ->Arg(7)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

// trans_dll with heights in Hamburg, on the sample and on the full grid that scripts/bench makes. Codes and letter:
// which side lies in the Bessel datum, and whether the normal height is given, decide how often the file is read.
void trans_dll_with_heights(benchmark::State& state, const char* dataDirectory, int from, int to,
                            char letter) {
    const std::u16string directory = wide(dataDirectory);
    std::array<double, LAGESTATUS_RESULT_SIZE> result = {};
    std::array<lagestatus_char, LAGESTATUS_NAME_SIZE> name;
    std::array<lagestatus_char, LAGESTATUS_ELLIPSOID_SIZE> ellipsoid;
    std::array<lagestatus_char, LAGESTATUS_KIND_SIZE> kind;
    std::array<int, 2> auxiliary;
    for (auto _ : state) {
        const int status = trans_dll(53.5506, 9.9922, 48.0, from, to, directory.c_str(), &letter,
                                     result.data(), name.data(), auxiliary.data(), ellipsoid.data(),
                                     kind.data(), name.data(), ellipsoid.data(), kind.data());
        if (status != 0) {
            state.SkipWithError("the place has no normal height, or there is no such directory");
            break;
        }
        benchmark::DoNotOptimize(result);
    }
}

const bool registered = [] {
    struct Road {
        const char* name;
        int from;
        int to;
        char letter;
    };
    for (const auto& [model, directory] :
         {std::pair("sample", SAMPLE_DIR), std::pair("full_grid", FULL_GRID_DIR)}) {
        for (const Road& road :
             {Road{"no_normal_height", 101, 202, 'e'}, Road{"bessel_to_etrs89", 101, 201, 'e'},
              Road{"etrs89_to_utm", 201, 203, 'e'}, Road{"normal_height_etrs89_to_utm", 201, 203, 'n'}}) {
            benchmark::RegisterBenchmark((std::string("trans_dll/") + model + "/" + road.name).c_str(),
                                         trans_dll_with_heights, directory, road.from, road.to, road.letter)
                ->Unit(benchmark::kMicrosecond);
        }
    }
    return true;
}();

}  // namespace
