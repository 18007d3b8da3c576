// The exported interface with the types of this program: strings in UTF-8, records instead of buffers.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "lagestatus.h"

namespace cli {

struct Entry {
    int code = 0;
    int auxiliary = -1;
    std::u16string fileBase;
};

struct Definition {
    int status = 0;
    bool scrambled = false;
    std::vector<Entry> entries;
};

struct System {
    int status = 0;
    std::string name;
    std::string ellipsoid;
    std::string kind;
    [[nodiscard]] bool geocentric() const { return kind.starts_with("Geozentrisch"); }
    int zoneNumber = 0;
    std::array<double, LAGESTATUS_PARAMETER_COUNT> parameters = {};
};

enum class Role { source, target };

struct Transformed {
    int status = 0;
    std::array<double, LAGESTATUS_RESULT_SIZE> result = {};
};

// The systems of a data directory; entries is empty after a failure.
Definition read_definition(const std::string& directory);

// One system, read as the source or the target of a transformation.
System read_system(const std::string& directory, const Definition& definition, const Entry& entry, Role role);

// The name of an entry's parameter file, in UTF-8.
std::string parameter_file_name(const Definition& definition, const Entry& entry);

// One point between two systems that were read as source and target; directory is where the height model lies. A normal
// height given outside the Bessel datum is corrected only if one is wanted.
struct Heights {
    bool normalGiven = false;
    bool normalWanted = false;
};
Transformed transform(const std::string& directory, const System& source, const System& target,
                      Heights heights, const std::array<double, 3>& point);

// The library's German message for a status, fileName inserted where it names a file; empty if it has none.
std::string message(int status, std::string_view fileName);

// The number of columns that a UTF-8 text takes on a terminal, for the texts of data files (ISO 8859-1).
std::size_t display_width(std::string_view utf8);

}  // namespace cli
