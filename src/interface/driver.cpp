#include "interface/driver.h"

#include "base/projection_kind.h"
#include "datafiles/parameter_file.h"

namespace lagestatus {
namespace {

// Finds a system in the definition record and reads its parameter file.
Status read_system(const DefinitionRecord& definition, int code, Column column, std::string_view directory,
                   int& auxiliary, SystemDescription& description) noexcept {
    const DefinitionEntry* const entry = definition.find(code);
    if (entry == nullptr) {
        return status::codeNotListed;
    }
    auxiliary = entry->auxiliary;
    return read_parameter_file(column, directory, entry->name.view(), definition.scrambled, code,
                               description);
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
    const Side sourceSide(Side::source, source);
    const Side targetSide(Side::target, target);
    const bool normalHeight = heightMode == 'N' || heightMode == 'n';
    const HeightFlags heights = {
        .sourceIsNormal = normalHeight && sourceSide.kind != ProjectionKind::geocentric,
        .targetWantsNormal = targetSide.kind != ProjectionKind::geocentric,
    };
    return transform_point(point, sourceSide, targetSide, heights, StreamedHeightModel(directory), result);
}

}  // namespace lagestatus
