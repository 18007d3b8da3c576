#include "datafiles/parameter_file.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "base/angles.h"
#include "base/projection_kind.h"
#include "datafiles/data_file.h"
#include "datafiles/definition_file.h"
#include "datafiles/field_check.h"
#include "datafiles/field_scanner.h"
#include "datafiles/line_reader.h"

namespace lagestatus {
namespace {

enum class Scan : std::uint8_t {
    code,           // integer, the system's own code
    systemName,     // quoted texts
    ellipsoidName,  //
    kind,           //
    number,         // one number, anything behind it is ignored
    longitude,      // one number, then a word that may begin with the zone number
    columns,        // two numbers; a source needs the first, a target both
};

struct Field {
    Scan scan;
    Status failure;
    std::size_t slot = 0;
    Check check = Check::none;
};

constexpr Status secondColumnStatus = 41;  // from the first column's status to the second's

// The format: one data line a field, in this order. Latitudes are degrees in the file and radians in their slot.
constexpr std::array<Field, 40> fields = {{
    {Scan::code, status::codeUnreadable},
    {Scan::systemName, 10},
    {Scan::ellipsoidName, 11},
    {Scan::kind, status::projectionKind},
    {Scan::number, 13, slot::latitudeOfOrigin, Check::latitude},
    {Scan::longitude, 14, slot::longitudeOfOrigin, Check::notNegative},
    {Scan::number, 15, slot::additiveY},
    {Scan::number, 16, slot::additiveX},
    {Scan::number, 17, slot::decadicComplement},
    {Scan::number, 18, slot::meridianScale},
    {Scan::number, 19, slot::shiftY},
    {Scan::number, 20, slot::shiftX},
    {Scan::number, 21, slot::planeRotation},
    {Scan::number, 22, slot::secondShiftY},
    {Scan::number, 23, slot::secondShiftX},
    {Scan::number, 24, slot::originY},
    {Scan::number, 25, slot::originX},
    {Scan::number, 26, slot::planeScale},
    {Scan::number, 27, slot::semiMajorAxis, Check::positive},
    {Scan::number, 28, slot::semiMinorAxis, Check::positive},
    {Scan::columns, 29, slot::translationX},
    {Scan::columns, 30, slot::translationY},
    {Scan::columns, 31, slot::translationZ},
    {Scan::columns, 32, slot::rotationX},
    {Scan::columns, 33, slot::rotationY},
    {Scan::columns, 34, slot::rotationZ},
    {Scan::columns, 35, slot::datumScale},
    {Scan::columns, 36, slot::reductionX},
    {Scan::columns, 37, slot::reductionY},
    {Scan::columns, 38, slot::reductionZ},
    {Scan::columns, 39, slot::intermediateTranslationX},
    {Scan::columns, 40, slot::intermediateTranslationY},
    {Scan::columns, 41, slot::intermediateTranslationZ},
    {Scan::columns, 42, slot::intermediateRotationX},
    {Scan::columns, 43, slot::intermediateRotationY},
    {Scan::columns, 44, slot::intermediateRotationZ},
    {Scan::columns, 45, slot::intermediateScale},
    {Scan::columns, 46, slot::intermediateReductionX},
    {Scan::columns, 47, slot::intermediateReductionY},
    {Scan::columns, 48, slot::intermediateReductionZ},
}};

// A name in the file may be longer than what is stored of it: it is cut without error.
constexpr std::size_t quotedLimit = 300;

template <std::size_t N>
bool store_text(std::string_view line, FixedText<N>& text) noexcept {
    const std::string_view quoted = quoted_text(line, quotedLimit);
    text.assign(quoted);
    return !quoted.empty();
}

// Reads one field out of its line; what it holds goes into description or, for numbers, into parameters.
Status read_field(const Field& field, std::string_view line, Column column, int code,
                  SystemDescription& description, ParameterArray& parameters) noexcept {
    FieldScanner scanner(line);
    double value = 0.0;
    switch (field.scan) {
        case Scan::code: {
            int declared = 0;
            if (!scanner.integer(declared)) {
                return field.failure;
            }
            return declared == code ? status::ok : status::codeDiffers;
        }
        case Scan::systemName:
            return store_text(line, description.systemName) ? status::ok : field.failure;
        case Scan::ellipsoidName:
            return store_text(line, description.ellipsoidName) ? status::ok : field.failure;
        case Scan::kind: {
            const bool known = store_text(line, description.projectionKind) &&
                               projection_kind(description.projectionKind.view()) != ProjectionKind::unknown;
            return known ? status::ok : field.failure;
        }
        case Scan::columns:
            if (column == Column::outOfBessel) {
                if (!scanner.number(value) || !scanner.number(value)) {
                    return field.failure + secondColumnStatus;
                }
                break;
            }
            [[fallthrough]];
        case Scan::number:
        case Scan::longitude:
            if (!scanner.number(value) || !passes(field.check, value)) {
                return field.failure;
            }
            break;
    }
    if (field.scan == Scan::longitude) {
        int zone = 0;
        description.zoneNumber = scanner.integer(zone) ? zone : 0;
    }
    parameters[field.slot] = field.check == Check::latitude ? value * degree : value;
    return status::ok;
}

}  // namespace

Status read_parameter_file(Column column, std::string_view directory, std::string_view baseName,
                           bool scrambled, int code, SystemDescription& description) noexcept {
    description.zoneNumber = 0;
    description.systemName.clear();
    description.ellipsoidName.clear();
    description.projectionKind.clear();

    constexpr std::string_view plainExtension = ".tra";
    constexpr std::string_view scrambledExtension = ".tr0";
    FixedText<nameSize + plainExtension.size()> name(baseName);
    name.append(scrambled ? scrambledExtension : plainExtension);
    DataFile file;
    if (!file.open(directory, name.view())) {
        return status::parameterFileNotOpened;
    }
    int key = 0;
    if (scrambled) {
        if (const Status read = read_key(file, key); read != status::ok) {
            return read;
        }
    }
    Line line;
    ParameterArray parameters;
    for (const Field& field : fields) {
        if (const Status read = next_data_line(file, line, key); read != status::ok) {
            return read;
        }
        if (const Status read = read_field(field, line.text(), column, code, description, parameters);
            read != status::ok) {
            return read;
        }
    }
    description.parameters = parameters;
    return status::ok;
}

}  // namespace lagestatus
