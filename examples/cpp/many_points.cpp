// Carries the places of the sample from DHDN Gauss-Krueger to ETRS89 UTM, as records of the program's own.
//
//   c++ -std=c++20 many_points.cpp $(pkg-config --cflags --libs lagestatus_bulk) && ./a.out data/sample
#include <cmath>
#include <cstdio>
#include <exception>
#include <lagestatus.hpp>
#include <span>
#include <vector>

namespace {

struct Place {
    double northing;
    double easting;
    double height;
};

void carry(const char* path) {
    const lagestatus::Directory directory(path);
    for (const lagestatus::System& system : directory.systems()) {
        std::printf("%d %s\n", system.code, system.name.c_str());
    }

    // Berlin, Hamburg, Muenchen, Koeln, whose height is not known.
    std::vector<Place> places = {{5814068.9341, 4592988.2976, 62.0},
                                 {5935902.0197, 3566003.6568, 6.0},
                                 {5333426.0852, 4468447.8071, 515.0},
                                 {5645602.2320, 2567322.8781, std::nan("")}};
    std::vector<int> statuses(places.size());
    const std::span records(places);
    // Results go where the points were.
    const lagestatus::Column<double> northing(records, &Place::northing);
    const lagestatus::Column<double> easting(records, &Place::easting);
    const lagestatus::Column<double> height(records, &Place::height);
    const lagestatus::Transformation transformation(directory, 103, 203,
                                                    {.heightGiven = lagestatus::HeightGiven::ellipsoidal});
    const lagestatus::Outcome outcome =
        transformation.transform({northing, easting, height}, {northing, easting, height}, statuses);

    for (std::size_t number = 0; number < places.size(); ++number) {
        const auto& [north, east, up] = places[number];
        if (statuses[number] == 0) {
            std::printf("%.4f %.4f %.4f\n", north, east, up);
        } else {
            std::printf("%d: %s\n", statuses[number],
                        lagestatus::message(statuses[number], "hoehe.ini").c_str());
        }
    }
    std::printf("%zu of %zu failed\n", outcome.failures, places.size());
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::printf("usage: many_points DIRECTORY\n");
        return 1;
    }
    try {
        carry(argv[1]);
    } catch (const lagestatus::Error& error) {
        std::printf("status %d, line %lld: %s\n", error.status(), static_cast<long long>(error.line()),
                    error.what());
        return 1;
    } catch (const std::exception& exception) {
        std::printf("%s\n", exception.what());
        return 1;
    }
    return 0;
}
