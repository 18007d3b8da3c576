// The commands of the program. Each returns the exit status.
#pragma once

#include <string>
#include <vector>

namespace cli {

inline constexpr int allGood = 0;
inline constexpr int someFailed = 1;
inline constexpr int nothingDone = 2;

struct TransformOptions {
    std::string directory = ".";
    int from = 0;
    int to = 0;
    bool normalGiven = false;        // the heights of the points are normal heights
    bool normalWanted = false;       // a column of normal heights is wanted
    std::vector<std::string> files;  // none: standard input
};

// Lists the systems of a data directory; a system whose file is broken shows its status and message instead.
int list_systems(const std::string& directory);

// Shows the whole description of one system, both directions of its datum transformation.
int show_system(const std::string& directory, int code);

// Transforms points, one a line; a line that fails keeps its row, with its reason.
int transform_points(const TransformOptions& options);

// Prints the library's message for a status.
int show_message(int status, const std::string& fileName);

}  // namespace cli
