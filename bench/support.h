// What several benchmarks share: systems whose descriptions are held, a generated height model, points on a plane.
#pragma once

#include <array>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <proj.h>

#include "lagestatus.h"

namespace bench {

using Clock = std::chrono::steady_clock;
using Nanos = std::chrono::duration<double, std::nano>;
using Micros = std::chrono::duration<double, std::micro>;

inline std::u16string wide(std::string_view text) {
    return {text.begin(), text.end()};
}

// The descriptions of two systems of the sample, read once as a caller does who holds them.
class HeldDescriptions {
  public:
    struct System {
        const char16_t* fileBase;
        int code;
    };

    [[nodiscard]] bool read(const System& from, const System& to) {
        std::array<lagestatus_char, LAGESTATUS_NAME_SIZE> name;
        return transla_dll(directory.c_str(), from.fileBase, 0, from.code, name.data(),
                           sourceEllipsoid.data(), sourceKind.data(), source.data()) == 0 &&
               translz_dll(directory.c_str(), to.fileBase, 0, to.code, name.data(), targetEllipsoid.data(),
                           targetKind.data(), &zone, target.data()) == 0;
    }

    // Ellipsoidal heights; a normal one is computed only where that cannot be refused.
    int call_transr_dll(const std::array<double, 3>& point,
                        std::array<double, LAGESTATUS_RESULT_SIZE>& result) const {
        return transr_dll(point.data(), sourceKind.data(), targetKind.data(), result.data(),
                          sourceEllipsoid.data(), source.data(), targetEllipsoid.data(), target.data(), zone,
                          0, 0, directory.c_str());
    }

  private:
    std::u16string directory = wide(SAMPLE_DIR);
    std::array<double, LAGESTATUS_PARAMETER_COUNT> source = {};
    std::array<double, LAGESTATUS_PARAMETER_COUNT> target = {};
    std::array<lagestatus_char, LAGESTATUS_ELLIPSOID_SIZE> sourceEllipsoid = {};
    std::array<lagestatus_char, LAGESTATUS_ELLIPSOID_SIZE> targetEllipsoid = {};
    std::array<lagestatus_char, LAGESTATUS_KIND_SIZE> sourceKind = {};
    std::array<lagestatus_char, LAGESTATUS_KIND_SIZE> targetKind = {};
    int zone = 0;
};

struct Destroy {
    void operator()(PJ_CONTEXT* context) const { proj_context_destroy(context); }
    void operator()(PJ* operation) const { proj_destroy(operation); }
};
using ProjContext = std::unique_ptr<PJ_CONTEXT, Destroy>;
using ProjOperation = std::unique_ptr<PJ, Destroy>;

// From strip 3 on Bessel to latitude and longitude on GRS80 in radians, by the sample's parameters, and on to zone 32.
inline constexpr std::string_view gaussKruegerToEtrs89 =
    "+proj=pipeline +step +inv +proj=tmerc +lon_0=9 +x_0=3500000 +ellps=bessel "
    "+step +proj=cart +ellps=bessel "
    "+step +proj=helmert +exact +convention=coordinate_frame +x=598.1 +y=73.7 +z=418.2 "
    "+rx=-0.202 +ry=-0.045 +rz=2.455 +s=6.7 +step +inv +proj=cart +ellps=GRS80 ";
inline constexpr std::string_view etrs89ToUtm = "+step +proj=utm +zone=32 +ellps=GRS80";

inline PJ_COORD call_proj(PJ* operation, const std::array<double, 3>& point) {
    return proj_trans(operation, PJ_FWD, proj_coord(point[1], point[0], point[2], 0.0));
}

inline constexpr std::size_t planePointCount = 4096;
inline constexpr std::size_t blockSize = 256;  // reading the clock twice is nothing beside it
static_assert(planePointCount % blockSize == 0);

// The third Gauss-Krueger strip from 47.5 to 55 degrees north and 7.6 to 10.4 east, spread evenly in an order without a
// pattern that a processor could learn: the multiples of two irrational steps. Northing, easting, height.
inline std::vector<std::array<double, 3>> points_of_the_third_strip(PJ_CONTEXT* context) {
    constexpr double latStep = 0.7548776662466927;
    constexpr double lonStep = 0.5698402909980532;
    std::vector<std::array<double, 3>> points;
    const ProjOperation strip(proj_create(context, "+proj=tmerc +lon_0=9 +x_0=3500000 +ellps=bessel"));
    for (std::size_t i = 0; strip && i < planePointCount; ++i) {
        const auto n = static_cast<double>(i);
        const double lat = 47.5 + 7.5 * std::fmod(n * latStep, 1.0);
        const double lon = 7.6 + 2.8 * std::fmod(n * lonStep, 1.0);
        const PJ_COORD plane =
            proj_trans(strip.get(), PJ_FWD, proj_coord(proj_torad(lon), proj_torad(lat), 0.0, 0.0));
        points.push_back({plane.xy.y, plane.xy.x, 100.0});
    }
    return points;
}

// A generated height model in a data directory of its own, which goes with the object. It takes some 8 bytes a value.
class GeneratedModel {
  public:
    // Given: key     0 plain, else scrambled
    //        cells   in both directions
    GeneratedModel(int key, int cells) {
        std::string name =
            (std::filesystem::temp_directory_path() / ("lagestatus-bench-" + std::string(6, 'X'))).string();
        directory = mkdtemp(name.data());
        std::filesystem::copy(SAMPLE_DIR "/DEFAULT", directory);
        std::string text = std::to_string(key) + "\n";
        const auto add = [&text, key](std::string line) {
            for (std::size_t j = 0; key > 0 && j < line.size(); ++j) {
                line[j] = static_cast<char>(line[j] + key - 1 - static_cast<int>(j) % key);
            }
            text += line + "\n";
        };
        for (const char* const number : {"6377397.155", "6356078.962818", "6378137.0", "6356752.31414"}) {
            add(number);
        }
        for (int line = 5; line <= 29; ++line) {
            add(line == 11 || line == 21 ? "1.0" : "0.0");
        }
        add("5.0 15.0 " + std::to_string(10.0 / cells));
        add("47.0 56.0 " + std::to_string(9.0 / cells));
        std::string line;
        for (int value = 0; value < (cells + 1) * (cells + 1); ++value) {
            std::array<char, 16> number = {};
            std::snprintf(number.data(), number.size(), "%.4f", 40 + value % 99991 * 1e-4);
            line += number.data();
            if (value % 7 < 6) {
                line += ' ';
            } else {
                add(line);
                line.clear();
            }
        }
        add(line);
        std::ofstream(file(), std::ios::binary) << text;
    }
    ~GeneratedModel() { std::filesystem::remove_all(directory); }
    GeneratedModel(const GeneratedModel&) = delete;
    GeneratedModel& operator=(const GeneratedModel&) = delete;

    [[nodiscard]] const std::string& path() const { return directory; }
    [[nodiscard]] std::string file() const { return directory + "/hoehe.ini"; }

  private:
    std::string directory;
};

// Reads a whole file in large blocks and counts its line feeds, by bare system calls.
std::size_t read_bare(const std::string& path);

}  // namespace bench
