/*
 * Classes over lagestatus_bulk.h, for programs in C++20: directories and transformations that close themselves, columns
 * whose lengths are compared, failures as exceptions.
 *
 * What the functions do is described in lagestatus_bulk.h, and holds here. This header is for programs in C++ and is
 * compiled into them; the library itself throws nothing across its boundary. Every text is UTF-8.
 *
 * A whole program
 *     const lagestatus::Directory directory("data/sample");
 *     const lagestatus::Transformation transformation(directory, 103, 203);
 *     std::vector<double> northing = {5808000.0, 5812000.0}, easting = {4590000.0, 4595000.0}, height = {80.0, 90.0};
 *     std::vector<int> statuses(northing.size());
 *     transformation.transform({northing, easting, height}, {northing, easting, height}, statuses);
 *
 * Exceptions
 *   Error                  a status of the library other than 0 and LAGESTATUS_MEMORY
 *   std::bad_alloc         no memory
 *   std::invalid_argument  columns that are missing or of different lengths, and other arguments that this header itself
 *                          refuses
 *   std::out_of_range      the number of a system that there is not
 *
 * Threads
 *   Const functions may be called by any number of threads at once, as long as their outputs are apart.
 */
#ifndef LAGESTATUS_HPP
#define LAGESTATUS_HPP

#if (defined(_MSVC_LANG) ? _MSVC_LANG : __cplusplus) < 202002L
#error "lagestatus.hpp needs C++20"
#endif

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "lagestatus_bulk.h"

namespace lagestatus {
// Keeps the names of programs apart from those inside a static library.
inline namespace bulk {

enum class Kind : int {
    unknown = LAGESTATUS_KIND_UNKNOWN,
    soldner = LAGESTATUS_KIND_SOLDNER,
    gaussKrueger = LAGESTATUS_KIND_GAUSS_KRUEGER,
    geographic = LAGESTATUS_KIND_GEOGRAPHIC,
    geocentric = LAGESTATUS_KIND_GEOCENTRIC
};
enum class Role : int { source = LAGESTATUS_SOURCE, target = LAGESTATUS_TARGET };
enum class Reading : int { whenNeeded = 0, now = LAGESTATUS_READ_NOW };
enum class HeightGiven : int {
    ellipsoidal = LAGESTATUS_HEIGHT_ELLIPSOIDAL,
    none = LAGESTATUS_HEIGHT_NONE,
    normal = LAGESTATUS_HEIGHT_NORMAL
};
enum class HeightWanted : int {
    ellipsoidal = LAGESTATUS_HEIGHT_ELLIPSOIDAL,
    none = LAGESTATUS_HEIGHT_NONE,
    normal = LAGESTATUS_HEIGHT_NORMAL,
    both = LAGESTATUS_HEIGHT_BOTH
};
enum class Axes : int { asSystem = LAGESTATUS_AXES_AS_SYSTEM, eastingFirst = LAGESTATUS_AXES_EASTING_FIRST };
enum class Calculation : int { reference = LAGESTATUS_REFERENCE, fast = LAGESTATUS_FAST };

// Returns the German message for a status, with the file that it concerns; empty for a status without one. Throws
// std::bad_alloc.
[[nodiscard]] inline std::string message(int status, const std::string& file = {}) {
    std::string text(lagestatus_message(status, file.c_str(), nullptr, 0), '\0');
    lagestatus_message(status, file.c_str(), text.data(), text.size() + 1);
    return text;
}

// Returns the version of the library that is linked, "0.1.0". Throws std::bad_alloc.
[[nodiscard]] inline std::string version() {
    return lagestatus_version();
}

// What the library says of a failure; what() is its message.
class Error : public std::runtime_error {
  public:
    // Takes what a function has told. Throws std::bad_alloc.
    explicit Error(const lagestatus_failure& failure)
        : std::runtime_error(failure.message), told(std::make_shared<const lagestatus_failure>(failure)) {}

    [[nodiscard]] int status() const noexcept { return told->status; }
    // Of the file, from 1; 0 where the failure concerns no line.
    [[nodiscard]] std::int64_t line() const noexcept { return told->line; }
    // Path of the file, and that line of it; empty where there is none. They live as long as the exception.
    [[nodiscard]] const char* file() const noexcept { return told->file; }
    [[nodiscard]] const char* text() const noexcept { return told->text; }

  private:
    std::shared_ptr<const lagestatus_failure> told;  // shared, since copies of an exception may not throw
};

namespace detail {

inline void check(int status, const lagestatus_failure& failure) {
    if (status == LAGESTATUS_MEMORY) {
        throw std::bad_alloc();
    }
    if (status != 0) {
        throw Error(failure);
    }
}

// The library reads and writes C strings: a zero byte within would cut a path.
inline const char* whole(const std::string& path) {
    if (path.find('\0') != std::string::npos) {
        throw std::invalid_argument("lagestatus: a zero byte within a path");
    }
    return path.c_str();
}

// What a column of the values can be made of: anything that is a span of them, and, to read, a column to write.
template <typename Range, typename Value>
concept Numbers = std::is_convertible_v<Range&&, std::span<Value>>;
template <typename Other, typename Value>
concept WritableFor = std::is_const_v<Value> && std::is_same_v<Other, double>;

}  // namespace detail

// One system of a directory; its members are those of lagestatus_system.
struct System {
    // Of a family of strips: the central meridian of strip z is width * z + offset, degrees.
    struct Strips {
        std::int64_t width = 0;
        std::int64_t offset = 0;
    };

    int code = 0;
    std::optional<int> auxiliary;
    int sourceStatus = 0;
    int targetStatus = 0;
    Kind kind = Kind::unknown;
    bool inBesselDatum = false;
    int zoneNumber = 0;  // 0: none
    std::optional<Strips> strips;
    double centralMeridian = 0.0;  // degrees, where there are no strips
    double semiMajor = 0.0;        // metres
    double semiMinor = 0.0;
    std::string name;
    std::string kindName;
    std::string ellipsoid;
    std::string file;
};

using HeightModel = lagestatus_height_model;

// A data directory. It may be moved; then nothing but assignment and destruction is left to the one it was moved from.
class Directory {
  public:
    // Takes a path, "." for the current directory. Throws Error if DEFAULT cannot be read, std::invalid_argument for a
    // zero byte within the path, std::bad_alloc.
    explicit Directory(const std::string& path, Reading reading = Reading::whenNeeded) {
        lagestatus_directory* opened = nullptr;
        lagestatus_failure failure;
        detail::check(
            lagestatus_directory_open(detail::whole(path), static_cast<int>(reading), &opened, &failure),
            failure);
        handle.reset(opened);
    }

    // Returns how many systems DEFAULT lists. Throws nothing.
    [[nodiscard]] std::size_t size() const noexcept { return lagestatus_directory_count(handle.get()); }

    // Takes a number below size(). Returns that system, also where its file has faults (see its statuses). Throws
    // std::out_of_range, std::bad_alloc.
    [[nodiscard]] System system(std::size_t index) const {
        lagestatus_system told = {};
        told.size = sizeof(told);
        const int status = lagestatus_directory_system(handle.get(), index, &told);
        if (status == LAGESTATUS_ARGUMENT) {
            throw std::out_of_range("lagestatus: there is no system of this number");
        }
        detail::check(status, {});
        System system;
        system.code = told.code;
        if (told.auxiliary != -1) {
            system.auxiliary = told.auxiliary;
        }
        system.sourceStatus = told.sourceStatus;
        system.targetStatus = told.targetStatus;
        system.kind = static_cast<Kind>(told.kind);
        system.inBesselDatum = told.inBesselDatum != 0;
        system.zoneNumber = told.zoneNumber;
        if (told.hasStrips != 0) {
            system.strips = System::Strips{told.stripWidth, told.stripOffset};
        }
        system.centralMeridian = told.centralMeridian;
        system.semiMajor = told.semiMajor;
        system.semiMinor = told.semiMinor;
        system.name = told.name;
        system.kindName = told.kindName;
        system.ellipsoid = told.ellipsoid;
        system.file = told.file;
        return system;
    }

    // Returns all systems, in the order of DEFAULT. Throws std::bad_alloc.
    [[nodiscard]] std::vector<System> systems() const {
        std::vector<System> all;
        all.reserve(size());
        for (std::size_t index = 0; index < size(); ++index) {
            all.push_back(system(index));
        }
        return all;
    }

    // Takes the code of a system, and what it is to serve as. Throws Error if its parameter file does not, or the code
    // is not listed; std::bad_alloc.
    void read(int code, Role role) const {
        lagestatus_failure failure;
        detail::check(lagestatus_directory_read(handle.get(), code, static_cast<int>(role), &failure),
                      failure);
    }

    // Returns what the height model is. Throws Error if its head cannot be read, std::bad_alloc.
    [[nodiscard]] HeightModel height_model() const {
        HeightModel model = {};
        model.size = sizeof(model);
        lagestatus_failure failure;
        detail::check(lagestatus_directory_height_model(handle.get(), &model, &failure), failure);
        return model;
    }

    // Returns the directory for the functions of lagestatus_bulk.h, and keeps it. Throws nothing.
    [[nodiscard]] const lagestatus_directory* get() const noexcept { return handle.get(); }

  private:
    struct Close {
        void operator()(lagestatus_directory* directory) const noexcept {
            lagestatus_directory_close(directory);
        }
    };
    std::unique_ptr<lagestatus_directory, Close> handle;
};

// How points are to be carried; the members are those of lagestatus_options.
struct Options {
    HeightGiven heightGiven = HeightGiven::ellipsoidal;
    HeightWanted heightWanted = HeightWanted::ellipsoidal;
    Axes sourceAxes = Axes::asSystem;
    Axes targetAxes = Axes::asSystem;
    Calculation calculation = Calculation::reference;
    std::optional<double> defaultHeight = std::nullopt;
};

// One value of every point: dense, a member of records, or at any distance from each other. Like std::span it owns
// nothing. Column<const double> is read from, Column<double> written to.
template <typename Value>
class Column {
    static_assert(std::is_same_v<std::remove_const_t<Value>, double>);

  public:
    // No column.
    constexpr Column() noexcept = default;

    // Takes numbers that lie side by side: a std::span, std::vector, std::array. Throws nothing.
    template <detail::Numbers<Value> Range>
    // NOLINTNEXTLINE(bugprone-forwarding-reference-overload): a column is no range
    constexpr Column(Range&& range) noexcept : Column(std::span<Value>(std::forward<Range>(range))) {}
    constexpr Column(std::span<Value> values) noexcept
        : first(values.data()), count(values.size()), isGiven(true) {}

    // Takes a column that may be written to, to read from it. Throws nothing.
    template <detail::WritableFor<Value> Other>
    constexpr Column(const Column<Other>& other) noexcept
        : first(other.data()), count(other.size()), distance(other.stride()), isGiven(other.is_given()) {}

    // Takes records, and which of their members is meant. Throws nothing.
    template <typename Record, std::size_t Extent, typename Class>
    Column(std::span<Record, Extent> records, double Class::*member) noexcept
        : count(records.size()), distance(static_cast<std::ptrdiff_t>(sizeof(Record))), isGiven(true) {
        if (!records.empty()) {
            first = &(records.front().*member);
        }
    }

    // Takes where the first value lies, how many there are, and the bytes from one to the next; may be negative, or 0
    // for one value that all points share, which cannot be written to. Throws std::invalid_argument for that.
    static constexpr Column strided(Value* firstValue, std::size_t size, std::ptrdiff_t bytes) {
        if constexpr (!std::is_const_v<Value>) {
            if (bytes == 0 && size > 1) {
                throw std::invalid_argument("lagestatus: one place for the results of many points");
            }
        }
        Column column(std::span<Value>(firstValue, size));
        column.distance = bytes;
        return column;
    }

    [[nodiscard]] constexpr Value* data() const noexcept { return first; }
    [[nodiscard]] constexpr std::size_t size() const noexcept { return count; }
    [[nodiscard]] constexpr std::ptrdiff_t stride() const noexcept { return distance; }
    // Whether it is a column at all, if only one of no points.
    [[nodiscard]] constexpr bool is_given() const noexcept { return isGiven; }

  private:
    Value* first = nullptr;
    std::size_t count = 0;
    std::ptrdiff_t distance = sizeof(double);
    bool isGiven = false;
};

// The columns of the points given; the third may be left out where no height is given.
struct Input {
    Column<const double> first;  // northing, latitude, X; with Axes::eastingFirst easting, longitude
    Column<const double> second;
    Column<const double> height = {};  // or Z
};

// The columns for the points carried: heights that are not wanted may be left out, and are filled with NaN if not. A
// column may be one of the input.
struct Output {
    Column<double> first;
    Column<double> second;
    Column<double> height = {};  // ellipsoidal, or Z
    Column<double> normalHeight = {};
};

// How many points were carried, with what luck.
struct Outcome {
    std::size_t failures = 0;   // points with a status other than 0
    std::size_t defaulted = 0;  // points that took the default height
};

// The way from one system to another. It keeps what it needs of its directory. It may be moved; then nothing but
// assignment and destruction is left to the one it was moved from.
class Transformation {
  public:
    // Takes a directory, two codes of it, and how. Throws Error if a code is not listed, a parameter file cannot be
    // read, the options contradict each other or the version has not what they ask for; std::bad_alloc.
    Transformation(const Directory& directory, int source, int target, const Options& options = {}) {
        lagestatus_options given = {};
        given.size = sizeof(given);
        given.heightGiven = static_cast<int>(options.heightGiven);
        given.heightWanted = static_cast<int>(options.heightWanted);
        given.sourceAxes = static_cast<int>(options.sourceAxes);
        given.targetAxes = static_cast<int>(options.targetAxes);
        given.calculation = static_cast<int>(options.calculation);
        given.hasDefaultHeight = options.defaultHeight ? 1 : 0;
        given.defaultHeight = options.defaultHeight.value_or(0.0);
        lagestatus_transformation* opened = nullptr;
        lagestatus_failure failure;
        detail::check(
            lagestatus_transformation_open(directory.get(), source, target, &given, &opened, &failure),
            failure);
        handle.reset(opened);
    }

    // Takes the columns of the points and those for the results, and where each point's status goes, if that is wanted.
    // Returns how many failed; a point that fails throws nothing. Throws std::invalid_argument, with nothing written,
    // for columns of different lengths, and for a column that the options ask for and that is missing (not found out
    // where there are no points).
    Outcome transform(const Input& input, const Output& output, std::span<int> statuses = {}) const {
        const std::size_t count = input.first.size();
        const auto length = [count](const auto& column) { return column.is_given() ? column.size() : count; };
        for (const std::size_t each :
             {length(input.second), length(input.height), length(output.first), length(output.second),
              length(output.height), length(output.normalHeight),
              statuses.data() != nullptr ? statuses.size() : count}) {
            if (each != count) {
                throw std::invalid_argument("lagestatus: columns of different lengths");
            }
        }
        Outcome outcome;
        if (count == 0) {  // the columns of no points have no place
            return outcome;
        }
        const double* const given[] = {input.first.data(), input.second.data(), input.height.data()};
        const std::ptrdiff_t from[] = {input.first.stride(), input.second.stride(), input.height.stride()};
        double* const wanted[] = {output.first.data(), output.second.data(), output.height.data(),
                                  output.normalHeight.data()};
        const std::ptrdiff_t to[] = {output.first.stride(), output.second.stride(), output.height.stride(),
                                     output.normalHeight.stride()};
        const std::int64_t failed = lagestatus_transform(handle.get(), count, given, from, wanted, to,
                                                         statuses.data(), &outcome.defaulted);
        if (failed < 0) {
            throw std::invalid_argument("lagestatus: a column is missing that the options ask for");
        }
        outcome.failures = static_cast<std::size_t>(failed);
        return outcome;
    }

    // Returns the transformation for the functions of lagestatus_bulk.h, and keeps it. Throws nothing.
    [[nodiscard]] const lagestatus_transformation* get() const noexcept { return handle.get(); }

  private:
    struct Close {
        void operator()(lagestatus_transformation* transformation) const noexcept {
            lagestatus_transformation_close(transformation);
        }
    };
    std::unique_ptr<lagestatus_transformation, Close> handle;
};

}  // namespace bulk
}  // namespace lagestatus

#endif
