// The exported interface with the types of this program: strings in UTF-8, records instead of buffers.
#pragma once

#include <array>
#include <cstddef>
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

// Places in the array of parameters.
namespace slots {
inline constexpr std::size_t latitudeOfOrigin = 0;
inline constexpr std::size_t longitudeOfOrigin = 1;
inline constexpr std::size_t complement = 4;
inline constexpr std::size_t meridianScale = 5;
inline constexpr std::size_t constantY = 9;
inline constexpr std::size_t constantX = 10;
inline constexpr std::size_t planeScale = 13;
inline constexpr std::size_t datumScale = 20;
inline constexpr std::size_t semiMajorAxis = 24;
inline constexpr std::size_t semiMinorAxis = 25;
inline constexpr std::size_t intermediateScale = 32;
// The main set and the intermediate set, each in the order of data files: translation in X, Y, Z, rotation about X, Y,
// Z, scale, reduction point in X, Y, Z.
inline constexpr std::array<std::size_t, 20> datumSets = {15, 14, 16, 17, 18, 19, 20, 22, 21, 23,
                                                          27, 26, 28, 29, 30, 31, 32, 34, 33, 35};
}  // namespace slots

enum class Kind { geographic, geocentric, gaussKrueger, soldner };

struct System {
    int status = 0;
    std::string name;
    std::string ellipsoid;
    std::string kind;  // as its file writes it
    int zoneNumber = 0;
    std::array<double, LAGESTATUS_PARAMETER_COUNT> parameters = {};

    [[nodiscard]] bool is(Kind which) const;
    [[nodiscard]] bool in_bessel_datum() const { return ellipsoid.starts_with("Bessel"); }
    // Whether its datum step leads through an intermediate system.
    [[nodiscard]] bool has_two_stages() const;
    [[nodiscard]] bool has_axes_of(const System& other) const;
    [[nodiscard]] bool has_datum_sets_of(const System& other) const;
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

// The meridian strips that a longitude of origin stands for: strip z has the central meridian width z + offset.
struct ZoneLayout {
    bool strips = false;  // else one fixed meridian, and both 0
    int width = 0;        // degrees
    int offset = 0;       // degrees
};
ZoneLayout zone_layout_of(const System& system);

// Which heights are normal heights. A normal height given outside the Bessel datum is corrected only if one is wanted.
struct Heights {
    bool normalGiven = false;
    bool normalWanted = false;
};

// The way from one system, read as a source, to another, read as a target. It holds all that a call needs, so that
// a million points cost a million calls and nothing else; any number of threads may use one at once.
class Road {
  public:
    // directory: where the height model lies.
    Road(const std::string& directory, const System& source, const System& target);

    // Where no normal heights play a part the height model is not looked at; statuses of 1000 and above then mean
    // nothing: latitude, longitude and ellipsoidal height are complete.
    [[nodiscard]] Transformed transform(const std::array<double, 3>& point, Heights heights) const;

  private:
    struct End {
        explicit End(const System& system);
        std::u16string kind;
        std::u16string ellipsoid;
        std::array<double, LAGESTATUS_PARAMETER_COUNT> parameters;
    };

    std::u16string heightDirectory;
    std::u16string plainDirectory;  // where no normal height plays a part
    End from;
    End to;
    int zoneNumber;
};

// The library's German message for a status, fileName inserted where it names a file; empty if it has none.
std::string message(int status, std::string_view fileName);

}  // namespace cli
