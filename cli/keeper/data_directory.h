// A data directory as the commands ask it: what is said on stderr when it is broken, and what they tell of a system.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/projection_kind.h"
#include "base/system_description.h"
#include "bulk/directory.h"
#include "geodesy/zones.h"

namespace cli {

using namespace lagestatus;  // NOLINT(google-build-using-namespace): one floor of the same house

inline KindTraits kind_of(const SystemDescription& system) {
    return kind_traits(system.projectionKind.view());
}
inline bool is(ProjectionKind which, const SystemDescription& system) {
    return kind_of(system).kind == which;
}
inline bool in_bessel_datum(const SystemDescription& system) {
    return lies_in_bessel_datum(system.ellipsoidName.view());
}
inline ZoneLayout zones_of(const SystemDescription& system) {
    return decode_longitude_of_origin(system.parameters[slot::longitudeOfOrigin]);
}
bool have_same_axes(const SystemDescription& one, const SystemDescription& other);
bool have_same_datum_sets(const SystemDescription& one, const SystemDescription& other);

// Whether a system's file leaves out the second column, of which its first line of two numbers is the first to tell: it
// then serves as a source only.
bool is_source_only(const ReadSystem& source, const ReadSystem& target);

// "status 12: Lesefehler in ...", for a file as messages name it.
std::string status_text(Status status, std::string_view fileName);

// Reads DEFAULT; says on stderr what is wrong with it. Returned: whether it was read; directory is empty where the name
// is none.
bool open_directory(const std::string& name, std::optional<Directory>& directory);

// The entry of a code; says on stderr if there is none, and is null then.
const DefinitionEntry* find_entry(const Directory& directory, int code);

// The system of a code, read as the source or the target of a transformation; says on stderr what is wrong with it, and
// is null then.
const ReadSystem* open_system(const Directory& directory, int code, Column column);

}  // namespace cli
