#include "interface/driver.h"

#include <algorithm>
#include <cstddef>

#include "base/projection_kind.h"
#include "datafiles/parameter_file.h"

namespace lagestatus {
namespace {

// Finds a system in the definition record and reads its parameter file.
Status read_system(const DefinitionRecord& definition, int code, Column column, std::string_view directory,
                   int& auxiliary, SystemDescription& description) noexcept {
    const auto* const end = definition.entries.data() + definition.complete;
    const auto* const entry = std::find_if(definition.entries.data(), end,
                                           [code](const DefinitionEntry& e) { return e.code == code; });
    if (entry == end) {
        return status::codeNotListed;
    }
    auxiliary = entry->auxiliary;
    return read_parameter_file(column, directory, entry->name.view(), definition.scrambled, code,
                               description);
}

Side side_of(Side::Role role, const SystemDescription& system) noexcept {
    return {role, system.projectionKind.view(), system.ellipsoidName.view(), system.parameters,
            system.zoneNumber};
}

}  // namespace

Status run_driver(const Point& point, int sourceCode, int targetCode, std::string_view directory,
                  char heightMode, Result& result, SystemPair& systems) noexcept {
    result = {};
    auto& [auxiliary, source, target] = systems;
    auxiliary = {noAuxiliary, noAuxiliary};

    DefinitionRecord definition;
    if (const Status read = read_definition_file(directory, definition); read != status::ok) {
        return read;
    }
    if (const Status read =
            read_system(definition, sourceCode, Column::intoBessel, directory, auxiliary[0], source);
        read != status::ok) {
        return read;
    }
    if (const Status read =
            read_system(definition, targetCode, Column::outOfBessel, directory, auxiliary[1], target);
        read != status::ok) {
        return read;
    }
    const Side sourceSide = side_of(Side::source, source);
    const Side targetSide = side_of(Side::target, target);
    const bool normalHeight = heightMode == 'N' || heightMode == 'n';
    const HeightFlags heights = {
        .sourceIsNormal = normalHeight && sourceSide.kind != ProjectionKind::geocentric,
        .targetWantsNormal = targetSide.kind != ProjectionKind::geocentric,
    };
    return transform_point(point, sourceSide, targetSide, heights, directory, result);
}

}  // namespace lagestatus
