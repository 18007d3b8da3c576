// The exported functions: across the boundary, call inside, and back.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "base/caller_memory.h"
#include "base/float_environment.h"
#include "base/projection_kind.h"
#include "bulk/directory.h"
#include "bulk/lagestatus_bulk.h"
#include "bulk/texts.h"
#include "bulk/transformation.h"
#include "datafiles/data_file.h"
#include "geodesy/zones.h"

struct lagestatus_directory {
    explicit lagestatus_directory(std::string path) : directory(std::move(path)) {}

    lagestatus::Directory directory;
};

struct lagestatus_transformation {
    lagestatus::Transformation transformation;
};

namespace {

using namespace lagestatus;

static_assert(LAGESTATUS_PATH_MAX == DataFile::maxDirectory);
#define TEXT_OF(number) #number
#define NUMBER_TEXT(number) TEXT_OF(number)

// The bytes of a text that fit before its end, without half a character.
std::size_t fitting(std::string_view utf8, std::size_t size) noexcept {
    std::size_t length = std::min(utf8.size(), size - 1);
    while (length < utf8.size() && length > 0 && (static_cast<unsigned char>(utf8[length]) & 0xC0U) == 0x80) {
        --length;
    }
    return length;
}

void put_text(std::string_view utf8, char* buffer, std::size_t size) noexcept {
    const std::size_t length = fitting(utf8, size);
    utf8.copy(buffer, length);
    buffer[length] = '\0';
}

// Of the statuses of this interface alone.
std::string_view own_message(Status status) noexcept {
    switch (status) {
        case LAGESTATUS_ARGUMENT:
            return "Ein Argument ist ungültig";
        case LAGESTATUS_MEMORY:
            return "Der Arbeitsspeicher reicht nicht aus";
        case LAGESTATUS_UNAVAILABLE:
            return "Das gibt es in dieser Version nicht";
        default:
            return {};
    }
}

constexpr std::string_view nullPointer = "Ein Zeiger, der nicht fehlen darf, ist null";

// Tells the caller what failed. Needs no memory for the statuses of this interface.
Status tell(lagestatus_failure* told, Status status, std::string_view reason = {}) noexcept {
    if (told != nullptr) {
        lagestatus_failure failure = {};
        failure.status = status;
        put_text(reason.empty() ? own_message(status) : reason, failure.message, sizeof(failure.message));
        store<lagestatus_failure>(told, 0, failure);
    }
    return status;
}

Status tell(lagestatus_failure* told, const Failure& failed) {
    if (told != nullptr) {
        lagestatus_failure failure = {};
        failure.status = failed.status;
        if (failed.status != status::ok) {
            failure.line = failed.line;
            put_text(failed.file, failure.file, sizeof(failure.file));
            put_text(failed.text, failure.text, sizeof(failure.text));
            put_text(message_text(failed.status, failed.file) + failed.more, failure.message,
                     sizeof(failure.message));
        }
        store<lagestatus_failure>(told, 0, failure);
    }
    return failed.status;
}

// Runs what may run out of memory, in the floating-point environment that it expects.
template <typename Work>
Status guarded(lagestatus_failure* told, Work work) noexcept {
    const DefaultFloatEnvironment environment;
    try {
        return work();
    } catch (...) {  // nothing but memory and the locks of the system can fail
        return tell(told, LAGESTATUS_MEMORY);
    }
}

// Whether a caller's structure has the members of this version.
template <typename Structure>
bool has_size(const Structure* structure) noexcept {
    return load<std::size_t>(structure) >= sizeof(Structure);
}

// Fills a caller's structure, which may have more members than this version knows, and keeps its size.
template <typename Structure>
void fill(Structure* structure, Structure values) noexcept {
    values.size = load<std::size_t>(structure);
    store<Structure>(structure, 0, values);
}

// The entry of a code; null if there is none, and failure says so.
const DefinitionEntry* find_entry(const Directory& directory, int code, Failure& failure) {
    const DefinitionEntry* const entry = directory.definition().find(code);
    if (entry == nullptr) {
        failure = {status::codeNotListed, directory.path_of(definitionFileName)};
        failure.more = ": " + std::to_string(code);
    }
    return entry;
}

// The system of a code, read for a role; null if that fails, and failure says why.
const ReadSystem* read_system(const Directory& directory, int code, Column column, Failure& failure) {
    const DefinitionEntry* const entry = find_entry(directory, code, failure);
    if (entry == nullptr) {
        return nullptr;
    }
    const ReadSystem& system = directory.system(*entry, column);
    failure = system.failure;
    return failure.status == status::ok ? &system : nullptr;
}

// What a caller's options are, or why they cannot be meant.
struct GivenOptions {
    TransformationOptions options;
    Status status = status::ok;  // of this interface
    std::string_view reason;     // German; empty for the status' own
};

GivenOptions refused(std::string_view reason) noexcept {
    return {{}, LAGESTATUS_ARGUMENT, reason};
}

GivenOptions read_options(const lagestatus_options* given) noexcept {
    if (given == nullptr) {
        return {};
    }
    if (!has_size(given)) {
        return refused("size der Optionen ist nicht gesetzt");
    }
    const auto values = load<lagestatus_options>(given);
    const auto* const bytes = reinterpret_cast<const char*>(given);  // NOLINT(*-reinterpret-cast)
    if (std::any_of(bytes + sizeof(values), bytes + values.size, [](char byte) { return byte != 0; })) {
        return {{}, LAGESTATUS_UNAVAILABLE, "Diese Version kennt eine der Optionen nicht"};
    }
    struct Choice {
        int value;
        int last;
        std::string_view reason;
    };
    for (const auto& [value, last, reason] :
         {Choice{values.heightGiven, LAGESTATUS_HEIGHT_NORMAL, "heightGiven hat einen unbekannten Wert"},
          Choice{values.heightWanted, LAGESTATUS_HEIGHT_BOTH, "heightWanted hat einen unbekannten Wert"},
          Choice{values.sourceAxes, LAGESTATUS_AXES_EASTING_FIRST, "sourceAxes hat einen unbekannten Wert"},
          Choice{values.targetAxes, LAGESTATUS_AXES_EASTING_FIRST, "targetAxes hat einen unbekannten Wert"},
          Choice{values.calculation, LAGESTATUS_FAST, "calculation hat einen unbekannten Wert"},
          Choice{values.hasDefaultHeight, 1, "hasDefaultHeight ist weder 0 noch 1"}}) {
        if (value < 0 || value > last) {
            return refused(reason);
        }
    }
    GivenOptions read;
    read.options = {static_cast<HeightGiven>(values.heightGiven),
                    static_cast<HeightWanted>(values.heightWanted),
                    values.sourceAxes == LAGESTATUS_AXES_EASTING_FIRST,
                    values.targetAxes == LAGESTATUS_AXES_EASTING_FIRST,
                    values.calculation == LAGESTATUS_FAST,
                    {}};
    if (values.hasDefaultHeight != 0) {
        read.options.defaultHeight = values.defaultHeight;
    }
    return read;
}

// The numbers of the interface are those inside.
consteval bool is_same(auto inside, int outside) {
    return static_cast<int>(inside) == outside;
}
static_assert(is_same(ProjectionKind::unknown, LAGESTATUS_KIND_UNKNOWN) &&
              is_same(ProjectionKind::soldner, LAGESTATUS_KIND_SOLDNER) &&
              is_same(ProjectionKind::gaussKrueger, LAGESTATUS_KIND_GAUSS_KRUEGER) &&
              is_same(ProjectionKind::geographic, LAGESTATUS_KIND_GEOGRAPHIC) &&
              is_same(ProjectionKind::geocentric, LAGESTATUS_KIND_GEOCENTRIC));
static_assert(is_same(HeightGiven::ellipsoidal, LAGESTATUS_HEIGHT_ELLIPSOIDAL) &&
              is_same(HeightGiven::none, LAGESTATUS_HEIGHT_NONE) &&
              is_same(HeightGiven::normal, LAGESTATUS_HEIGHT_NORMAL) &&
              is_same(HeightWanted::ellipsoidal, LAGESTATUS_HEIGHT_ELLIPSOIDAL) &&
              is_same(HeightWanted::none, LAGESTATUS_HEIGHT_NONE) &&
              is_same(HeightWanted::normal, LAGESTATUS_HEIGHT_NORMAL) &&
              is_same(HeightWanted::both, LAGESTATUS_HEIGHT_BOTH));

lagestatus_system described(const DefinitionEntry& entry, const ReadSystem& source,
                            const ReadSystem& target) noexcept {
    const SystemDescription& system = source.description;
    const double origin = system.parameters[slot::longitudeOfOrigin];
    const ZoneLayout zones = decode_longitude_of_origin(origin);
    const KindTraits traits = kind_traits(system.projectionKind.view());
    const bool hasStrips = traits.hasStrips && zones.hasStrips;
    lagestatus_system told = {};
    told.code = entry.code;
    told.auxiliary = entry.auxiliary;
    told.sourceStatus = source.failure.status;
    told.targetStatus = target.failure.status;
    told.kind = static_cast<int>(traits.kind);
    told.inBesselDatum = lies_in_bessel_datum(system.ellipsoidName.view()) ? 1 : 0;
    told.hasStrips = hasStrips ? 1 : 0;
    told.zoneNumber = traits.hasStrips && !hasStrips ? system.zoneNumber : 0;
    told.stripWidth = hasStrips ? zones.width : 0;
    told.stripOffset = hasStrips ? zones.offset : 0;
    told.centralMeridian = traits.isPlane && !hasStrips ? origin : 0.0;
    told.semiMajor = system.parameters[slot::semiMajorAxis];
    told.semiMinor = system.parameters[slot::semiMinorAxis];
    told.name = source.name.c_str();
    told.kindName = source.kind.c_str();
    told.ellipsoid = source.ellipsoid.c_str();
    told.file = source.file.c_str();
    return told;
}

// The columns of a caller, dense where there are no strides.
template <typename Columns, typename Value>
void take_columns(Columns& columns, Value* const* values, const std::ptrdiff_t* strides) noexcept {
    for (std::size_t number = 0; number < columns.size(); ++number) {
        columns[number].values = load<Value*>(values, number);
        if (strides != nullptr) {
            columns[number].stride = load<std::ptrdiff_t>(strides, number);
        }
    }
}

}  // namespace

int lagestatus_directory_open(const char* path, int flags, lagestatus_directory** directory,
                              lagestatus_failure* failure) {
    if (directory != nullptr) {
        store<lagestatus_directory*>(directory, 0, nullptr);
    }
    if (path == nullptr || directory == nullptr) {
        return tell(failure, LAGESTATUS_ARGUMENT, nullPointer);
    }
    const std::size_t length = strnlen(path, LAGESTATUS_PATH_MAX + 1);
    if (length == 0 || length > LAGESTATUS_PATH_MAX) {
        return tell(failure, LAGESTATUS_ARGUMENT,
                    length == 0 ? "Der Pfad ist leer; das aktuelle Verzeichnis ist \".\""
                                : "Der Pfad des Verzeichnisses hat mehr als " NUMBER_TEXT(
                                      LAGESTATUS_PATH_MAX) " Bytes");
    }
    if ((flags & ~LAGESTATUS_READ_NOW) != 0) {
        return tell(failure, LAGESTATUS_ARGUMENT, "flags hat einen unbekannten Wert");
    }
    return guarded(failure, [=] {
        auto opened = std::make_unique<lagestatus_directory>(path);
        const Status status = tell(failure, opened->directory.failure());
        if (status == status::ok) {
            if ((flags & LAGESTATUS_READ_NOW) != 0) {
                opened->directory.read_all();
            }
            store<lagestatus_directory*>(directory, 0, opened.release());
        }
        return status;
    });
}

void lagestatus_directory_close(lagestatus_directory* directory) {
    delete directory;  // NOLINT(cppcoreguidelines-owning-memory): the caller's until now
}

size_t lagestatus_directory_count(const lagestatus_directory* directory) {
    return directory != nullptr ? directory->directory.entries().size() : 0;
}

int lagestatus_directory_system(const lagestatus_directory* directory, size_t index,
                                lagestatus_system* system) {
    if (index >= lagestatus_directory_count(directory) || system == nullptr || !has_size(system)) {
        return LAGESTATUS_ARGUMENT;
    }
    return guarded(nullptr, [=] {
        const DefinitionEntry& entry = directory->directory.entries()[index];
        fill(system, described(entry, directory->directory.system(entry, Column::intoBessel),
                               directory->directory.system(entry, Column::outOfBessel)));
        return status::ok;
    });
}

int lagestatus_directory_read(const lagestatus_directory* directory, int code, int role,
                              lagestatus_failure* failure) {
    if (directory == nullptr || (role != LAGESTATUS_SOURCE && role != LAGESTATUS_TARGET)) {
        return tell(failure, LAGESTATUS_ARGUMENT,
                    directory == nullptr ? nullPointer : "role ist weder Quelle noch Ziel");
    }
    return guarded(failure, [=] {
        Failure told;
        (void)read_system(directory->directory, code,
                          role == LAGESTATUS_SOURCE ? Column::intoBessel : Column::outOfBessel, told);
        return tell(failure, told);
    });
}

int lagestatus_directory_height_model(const lagestatus_directory* directory, lagestatus_height_model* model,
                                      lagestatus_failure* failure) {
    if (directory == nullptr || (model != nullptr && !has_size(model))) {
        return tell(failure, LAGESTATUS_ARGUMENT,
                    directory == nullptr ? nullPointer : "size des Höhenmodells ist nicht gesetzt");
    }
    return guarded(failure, [=] {
        const auto held = directory->directory.height_model();
        const auto& defect = held->defect();
        const Status status =
            tell(failure, Failure{defect.status, directory->directory.path_of(heightModelFileName),
                                  defect.line, utf8_of(defect.text)});
        if (status == status::ok && model != nullptr) {
            const auto& [longitude, latitude] = std::tie(held->header().longitude, held->header().latitude);
            lagestatus_height_model values = {};
            values.columns = longitude.count;
            values.rows = latitude.count;
            values.values = static_cast<std::int64_t>(held->count());
            values.memory = static_cast<std::int64_t>(held->memory());
            values.west = longitude.smallest;
            values.east = longitude.largest;
            values.south = latitude.smallest;
            values.north = latitude.largest;
            values.columnSpacing = longitude.spacing;
            values.rowSpacing = latitude.spacing;
            fill(model, values);
        }
        return status;
    });
}

int lagestatus_transformation_open(const lagestatus_directory* directory, int source, int target,
                                   const lagestatus_options* options,
                                   lagestatus_transformation** transformation, lagestatus_failure* failure) {
    if (transformation != nullptr) {
        store<lagestatus_transformation*>(transformation, 0, nullptr);
    }
    if (directory == nullptr || transformation == nullptr) {
        return tell(failure, LAGESTATUS_ARGUMENT, nullPointer);
    }
    const auto [how, given, reason] = read_options(options);
    if (given != status::ok) {
        return tell(failure, given, reason);
    }
    return guarded(failure, [&, &how = how]() -> Status {
        const Directory& files = directory->directory;
        Failure told;
        const ReadSystem* const from = read_system(files, source, Column::intoBessel, told);
        const ReadSystem* const to =
            from != nullptr ? read_system(files, target, Column::outOfBessel, told) : nullptr;
        if (to == nullptr) {
            return tell(failure, told);
        }
        const auto& [here, there] = std::tie(from->description, to->description);
        if (const char* const contradiction = Transformation::contradiction(here, there, how);
            contradiction != nullptr) {
            return tell(failure, LAGESTATUS_ARGUMENT, contradiction);
        }
        const bool needsModel = Transformation::needs_height_model(here, there, how);
        store<lagestatus_transformation*>(
            transformation, 0,
            new lagestatus_transformation{
                Transformation(here, there, how, needsModel ? files.height_model() : nullptr)});
        return tell(failure, Failure{});
    });
}

void lagestatus_transformation_close(lagestatus_transformation* transformation) {
    delete transformation;  // NOLINT(cppcoreguidelines-owning-memory): the caller's until now
}

int64_t lagestatus_transform(const lagestatus_transformation* transformation, size_t count,
                             const double* const* input, const ptrdiff_t* inputStrides, double* const* output,
                             const ptrdiff_t* outputStrides, int* status, size_t* defaulted) {
    if (transformation == nullptr || input == nullptr || output == nullptr) {
        return LAGESTATUS_ARGUMENT;
    }
    if (defaulted != nullptr) {
        store<std::size_t>(defaulted, 0, 0);
    }
    if (count == 0) {  // empty arrays often lie at null
        return 0;
    }
    const Transformation& how = transformation->transformation;
    std::array<InputColumn, 3> given;
    std::array<OutputColumn, 4> wanted;
    take_columns(given, input, inputStrides);
    take_columns(wanted, output, outputStrides);
    const bool complete = given[0].values != nullptr && given[1].values != nullptr &&
                          (given[2].values != nullptr || !how.needs_third_input()) &&
                          wanted[0].values != nullptr && wanted[1].values != nullptr &&
                          (wanted[2].values != nullptr || !how.has_third_output()) &&
                          (wanted[3].values != nullptr || !how.has_normal_output());
    const bool heaped =
        count > 1 && std::any_of(wanted.begin(), wanted.end(), [](const OutputColumn& column) {
            return column.values != nullptr && column.stride == 0;
        });
    if (!complete || heaped) {
        return LAGESTATUS_ARGUMENT;
    }
    const DefaultFloatEnvironment environment;
    const Transformation::Outcome outcome = how.carry(count, given, wanted, status);
    if (defaulted != nullptr) {
        store<std::size_t>(defaulted, 0, outcome.defaulted);
    }
    return outcome.failures;
}

size_t lagestatus_message(int status, const char* file, char* buffer, size_t size) {
    if (buffer == nullptr) {
        size = 0;
    }
    const auto put = [=](std::string_view message) {
        if (size > 0) {
            put_text(message, buffer, size);
        }
        return message.size();
    };
    try {
        return put(status < 0 ? std::string(own_message(status))
                              : message_text(status, file != nullptr ? file : ""));
    } catch (...) {
        return put("");
    }
}

const char* lagestatus_version() {
    return LAGESTATUS_VERSION;
}
