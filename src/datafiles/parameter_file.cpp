#include "datafiles/parameter_file.h"

#include "base/angles.h"
#include "base/projection_kind.h"
#include "datafiles/field_scanner.h"

namespace lagestatus {
namespace {

// A name in the file may be longer than what is stored of it: it is cut without error.
constexpr std::size_t quotedLimit = 300;

template <std::size_t N>
bool store_text(std::string_view line, FixedText<N>& text) noexcept {
    const std::string_view quoted = quoted_text(line, quotedLimit);
    text.assign(quoted);
    return !quoted.empty();
}

// Reads one field out of its line; what it holds goes into description or, for numbers, into parameters.
Status read_field(const ParameterField& field, std::string_view line, Column column, int code,
                  SystemDescription& description, ParameterArray& parameters) noexcept {
    FieldScanner scanner(line);
    double value = 0.0;
    switch (field.scan) {
        case ParameterScan::code: {
            int declared = 0;
            if (!scanner.integer(declared)) {
                return field.failure;
            }
            return declared == code ? status::ok : status::codeDiffers;
        }
        case ParameterScan::systemName:
            return store_text(line, description.systemName) ? status::ok : field.failure;
        case ParameterScan::ellipsoidName:
            return store_text(line, description.ellipsoidName) ? status::ok : field.failure;
        case ParameterScan::kind: {
            const bool known = store_text(line, description.projectionKind) &&
                               projection_kind(description.projectionKind.view()) != ProjectionKind::unknown;
            return known ? status::ok : field.failure;
        }
        case ParameterScan::columns:
            if (column == Column::outOfBessel) {
                if (!scanner.number(value) || !scanner.number(value)) {
                    return field.failure + status::secondColumn;
                }
                break;
            }
            [[fallthrough]];
        case ParameterScan::number:
        case ParameterScan::longitude:
            if (!scanner.number(value) || !passes(field.check, value)) {
                return field.failure;
            }
            break;
    }
    if (field.scan == ParameterScan::longitude) {
        int zone = 0;
        description.zoneNumber = scanner.integer(zone) ? zone : 0;
    }
    parameters[field.slot] = field.check == Check::latitude ? value * degree : value;
    return status::ok;
}

}  // namespace

FixedText<parameterFileNameSize> parameter_file_name(std::string_view baseName, bool scrambled) noexcept {
    FixedText<parameterFileNameSize> name(baseName);
    name.append(scrambled ? scrambledExtension : plainExtension);
    return name;
}

Status open_parameter_file(LineReader& lines, std::string_view directory, std::string_view baseName,
                           bool scrambled, PathText encoding) noexcept {
    if (!lines.open(directory, parameter_file_name(baseName, scrambled).view(), encoding)) {
        return status::parameterFileNotOpened;
    }
    return scrambled ? lines.read_key() : status::ok;
}

Status read_parameters(LineReader& lines, Column column, int code, SystemDescription& description) noexcept {
    ParameterArray parameters;
    for (const ParameterField& field : parameterFields) {
        if (const Status read = lines.next(); read != status::ok) {
            return read;
        }
        if (const Status read = read_field(field, lines.text(), column, code, description, parameters);
            read != status::ok) {
            return read;
        }
    }
    description.parameters = parameters;
    return status::ok;
}

Status read_parameter_file(Column column, std::string_view directory, std::string_view baseName,
                           bool scrambled, int code, SystemDescription& description) noexcept {
    description.zoneNumber = 0;
    description.systemName.clear();
    description.ellipsoidName.clear();
    description.projectionKind.clear();
    LineReader lines;
    const Status opened = open_parameter_file(lines, directory, baseName, scrambled);
    return opened == status::ok ? read_parameters(lines, column, code, description) : opened;
}

}  // namespace lagestatus
