// What the benchmarks of the library for many points share.
#pragma once

#include <lagestatus_bulk.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "support.h"

namespace bench {

struct Close {
    void operator()(lagestatus_directory* directory) const { lagestatus_directory_close(directory); }
    void operator()(lagestatus_transformation* transformation) const {
        lagestatus_transformation_close(transformation);
    }
};
using Directory = std::unique_ptr<lagestatus_directory, Close>;
using Transformation = std::unique_ptr<lagestatus_transformation, Close>;

inline Directory open_directory(const std::string& path) {
    lagestatus_directory* directory = nullptr;
    lagestatus_directory_open(path.c_str(), 0, &directory, nullptr);
    return Directory(directory);
}

struct Road {
    int from;
    int to;
    int heightGiven;
    int heightWanted;
    bool fast = false;
};

inline Transformation open_transformation(const char* path, const Road& road) {
    const Directory directory = open_directory(path);
    lagestatus_options options = {};
    options.size = sizeof(options);
    options.heightGiven = road.heightGiven;
    options.heightWanted = road.heightWanted;
    options.calculation = road.fast ? LAGESTATUS_FAST : LAGESTATUS_REFERENCE;
    lagestatus_transformation* transformation = nullptr;
    if (directory) {
        lagestatus_transformation_open(directory.get(), road.from, road.to, &options, &transformation,
                                       nullptr);
    }
    return Transformation(transformation);
}

}  // namespace bench
