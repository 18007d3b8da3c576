// The seven exported functions: across the boundary, call inside, and back.
#include <array>
#include <cstddef>

#include "base/caller_memory.h"
#include "base/float_environment.h"
#include "base/system_description.h"
#include "datafiles/data_file.h"
#include "datafiles/definition_file.h"
#include "datafiles/parameter_file.h"
#include "engine/pipeline.h"
#include "interface/driver.h"
#include "interface/lagestatus.h"
#include "interface/messages.h"
#include "interface/wide_text.h"

namespace {

using namespace lagestatus;

// The sizes that the header promises are those inside.
static_assert(LAGESTATUS_NAME_SIZE == nameSize && LAGESTATUS_MAX_ENTRIES == maxEntries);
static_assert(LAGESTATUS_NAME_SIZE == SystemDescription::SystemName::maxLength + 1);
static_assert(LAGESTATUS_ELLIPSOID_SIZE == SystemDescription::EllipsoidName::maxLength + 1);
static_assert(LAGESTATUS_KIND_SIZE == SystemDescription::KindText::maxLength + 1);
static_assert(LAGESTATUS_PARAMETER_COUNT == parameterCount &&
              LAGESTATUS_RESULT_SIZE == std::tuple_size_v<Result>);

constexpr int flagSet = -1;        // of the two height flags
constexpr int scrambledFiles = 1;  // of the scrambled flag

// What transr_dll takes of its texts, with a terminator.
constexpr std::size_t kindSize = 15;
constexpr std::size_t ellipsoidSize = 12;
// One character more than a directory may have: a longer one is refused as a whole when a file is to be opened.
constexpr std::size_t directorySize = DataFile::maxDirectory + 2;

Status describe(Column column, const lagestatus_char* dataDir, const lagestatus_char* fileBase, int scrambled,
                int code, SystemDescription& description) noexcept {
    const auto directory = narrow_whole<nameSize>(dataDir);
    const auto baseName = narrow_whole<nameSize>(fileBase);
    if (!directory || !baseName) {
        return status::parameterFileNotOpened;
    }
    return read_parameter_file(column, directory->view(), baseName->view(), scrambled == scrambledFiles, code,
                               description);
}

void hand_over(Status status, const SystemDescription& description, lagestatus_char* systemName,
               lagestatus_char* ellipsoidName, lagestatus_char* projectionKind, double* parameters) noexcept {
    widen(description.systemName, systemName);
    widen(description.ellipsoidName, ellipsoidName);
    widen(description.projectionKind, projectionKind);
    if (status == lagestatus::status::ok) {
        store_array(parameters, description.parameters);
    }
}

}  // namespace

int test_dll(double a, double b, double c, double* out) {
    store_array(out, Result{a, b, c, c});
    return status::ok;
}

int trans_dll(double coord1, double coord2, double height, int sourceCode, int targetCode,
              const lagestatus_char* dataDir, const char* heightMode, double* result,
              lagestatus_char* sourceName, int* auxiliary, lagestatus_char* sourceEllipsoid,
              lagestatus_char* sourceKind, lagestatus_char* targetName, lagestatus_char* targetEllipsoid,
              lagestatus_char* targetKind) {
    const DefaultFloatEnvironment environment;
    const auto directory = narrow_whole<nameSize>(dataDir);
    SystemPair systems;
    Result reached = {};
    const Status status = directory ? run_driver({coord1, coord2, height}, sourceCode, targetCode,
                                                 directory->view(), *heightMode, reached, systems)
                                    : status::definitionFileNotOpened;
    if (status > status::ok && status <= status::lastWithoutResult) {
        reached = {};
    }
    store_array(result, reached);
    widen(systems.source.systemName, sourceName);
    widen(systems.source.ellipsoidName, sourceEllipsoid);
    widen(systems.source.projectionKind, sourceKind);
    widen(systems.target.systemName, targetName);
    widen(systems.target.ellipsoidName, targetEllipsoid);
    widen(systems.target.projectionKind, targetKind);
    store_array(auxiliary, systems.auxiliary);
    return status;
}

int transla_dll(const lagestatus_char* dataDir, const lagestatus_char* fileBase, int scrambled, int code,
                lagestatus_char* systemName, lagestatus_char* ellipsoidName, lagestatus_char* projectionKind,
                double* parameters) {
    const DefaultFloatEnvironment environment;
    SystemDescription description;
    const Status status = describe(Column::intoBessel, dataDir, fileBase, scrambled, code, description);
    hand_over(status, description, systemName, ellipsoidName, projectionKind, parameters);
    return status;
}

int translz_dll(const lagestatus_char* dataDir, const lagestatus_char* fileBase, int scrambled, int code,
                lagestatus_char* systemName, lagestatus_char* ellipsoidName, lagestatus_char* projectionKind,
                int* zoneNumber, double* parameters) {
    const DefaultFloatEnvironment environment;
    SystemDescription description;
    const Status status = describe(Column::outOfBessel, dataDir, fileBase, scrambled, code, description);
    hand_over(status, description, systemName, ellipsoidName, projectionKind, parameters);
    store<int>(zoneNumber, 0, description.zoneNumber);
    return status;
}

int translD_dll(const lagestatus_char* dataDir, int* scrambled, int* count, int* codes, int* auxiliary,
                lagestatus_char* fileNames) {
    const auto directory = narrow_whole<nameSize>(dataDir);
    DefinitionRecord record;
    const Status status =
        directory ? read_definition_file(directory->view(), record) : status::definitionFileNotOpened;
    store<int>(scrambled, 0, record.scrambled ? scrambledFiles : 0);
    store<int>(count, 0, record.count);
    for (std::size_t number = 0; number < record.complete; ++number) {
        const DefinitionEntry& entry = record.entries[number];
        store<int>(codes, number, entry.code);
        store<int>(auxiliary, number, entry.auxiliary);
        widen(entry.name, fileNames + number * nameSize);
    }
    return status;
}

int transr_dll(const double* point, const lagestatus_char* sourceKind, const lagestatus_char* targetKind,
               double* result, const lagestatus_char* sourceEllipsoid, const double* sourceParameters,
               const lagestatus_char* targetEllipsoid, const double* targetParameters, int zoneNumber,
               int sourceHeightFlag, int targetHeightFlag, const lagestatus_char* dataDir) {
    const DefaultFloatEnvironment environment;
    const auto given = load_array<double, 3>(point);
    const auto sourceValues = load_array<double, parameterCount>(sourceParameters);
    const auto targetValues = load_array<double, parameterCount>(targetParameters);
    const auto sourceKindText = narrow_cut<kindSize>(sourceKind);
    const auto targetKindText = narrow_cut<kindSize>(targetKind);
    const auto sourceEllipsoidText = narrow_cut<ellipsoidSize>(sourceEllipsoid);
    const auto targetEllipsoidText = narrow_cut<ellipsoidSize>(targetEllipsoid);
    const Side source(Side::source, sourceKindText.view(), sourceEllipsoidText.view(), sourceValues);
    const Side target(Side::target, targetKindText.view(), targetEllipsoidText.view(), targetValues,
                      zoneNumber);
    const HeightFlags heights = {.sourceIsNormal = sourceHeightFlag == flagSet,
                                 .targetWantsNormal = targetHeightFlag == flagSet};
    const auto directory = narrow_cut<directorySize>(dataDir);
    Result reached = {};
    const Status status =
        transform_point(given, source, target, heights, StreamedHeightModel(directory.view()), reached);
    store_array(result, reached);
    return status;
}

void transfm_dll(int code, const lagestatus_char* fileName, lagestatus_char* buffer) {
    write_message(code, fileName, buffer);
}
