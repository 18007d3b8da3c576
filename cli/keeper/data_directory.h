// A data directory and its systems, with the types of this program; what is said on stderr when one of them is broken;
// and the road from one system to another.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "base/projection_kind.h"
#include "base/system_description.h"
#include "datafiles/definition_file.h"
#include "datafiles/parameter_file.h"
#include "engine/pipeline.h"
#include "geodesy/zones.h"

namespace cli {

using namespace lagestatus;  // NOLINT(google-build-using-namespace): one floor of the same house

struct System : SystemDescription {
    Status status = status::ok;

    [[nodiscard]] std::string name() const;
    [[nodiscard]] std::string ellipsoid() const;
    [[nodiscard]] std::string kind_text() const;
    [[nodiscard]] KindTraits kind() const { return kind_traits(projectionKind.view()); }
    [[nodiscard]] bool is(ProjectionKind which) const { return kind().kind == which; }
    [[nodiscard]] bool in_bessel_datum() const { return lies_in_bessel_datum(ellipsoidName.view()); }
    [[nodiscard]] ZoneLayout zones() const {
        return decode_longitude_of_origin(parameters[slot::longitudeOfOrigin]);
    }
    [[nodiscard]] bool has_axes_of(const System& other) const;
    [[nodiscard]] bool has_datum_sets_of(const System& other) const;
};

struct DataDirectory {
    std::string name;   // in UTF-8, for messages
    std::string bytes;  // as files are opened by it
    Status status = status::ok;
    DefinitionRecord definition;

    [[nodiscard]] std::span<const DefinitionEntry> entries() const {
        return std::span(definition.entries).first(definition.complete);
    }
    // The name of an entry's parameter file in UTF-8; and with the directory, as messages name it.
    [[nodiscard]] std::string file_name(const DefinitionEntry& entry) const;
    [[nodiscard]] std::string path_of(const std::string& fileName) const;
};

// The library's German message for a status, fileName inserted where it names a file; empty if it has none.
std::string message(Status status, std::string_view fileName);

// "status 12: Lesefehler in ...", for a file as messages name it.
std::string status_text(Status status, std::string_view fileName);

// Reads DEFAULT; says on stderr what is wrong with it. Returned: whether it was read.
bool open_directory(const std::string& name, DataDirectory& directory);

// The entry of a code; says on stderr if there is none, and is null then.
const DefinitionEntry* find_entry(const DataDirectory& directory, int code);

// One system, read as the source or the target of a transformation.
System read_system(const DataDirectory& directory, const DefinitionEntry& entry, Column column);

// The same of a code; says on stderr what is wrong with it. Returned: whether it was read.
bool open_system(const DataDirectory& directory, int code, Column column, System& system);

// Whether a system's file leaves out the second column, of which its first line of two numbers is the first to tell: it
// then serves as a source only.
bool is_source_only(const System& source, const System& target);

// Where no normal height is given or wanted, the height model is not looked at.
struct Heights {
    bool normalGiven = false;
    bool normalWanted = false;
};

struct Transformed {
    Status status = status::ok;
    Result result = {};
};

// The way from one system, read as a source, to another, read as a target. It holds all that a point needs; any number
// of threads may use one at once.
class Road {
  public:
    Road(std::string heightDirectory, const System& source, const System& target);
    Road(const Road&) = delete;
    Road& operator=(const Road&) = delete;
    ~Road() = default;

    // As transform_point.
    [[nodiscard]] Transformed transform(const Point& point, Heights heights) const;

  private:
    std::string directory;  // its bytes
    System from;
    System to;
    Side source;
    Side target;
};

}  // namespace cli
