// Parameter files (.tra, .tr0): the description of one system.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/status.h"
#include "base/system_description.h"
#include "datafiles/definition_file.h"
#include "datafiles/field_check.h"
#include "datafiles/line_reader.h"

namespace lagestatus {

enum class ParameterScan : std::uint8_t {
    code,           // integer, the system's own code
    systemName,     // quoted texts
    ellipsoidName,  //
    kind,           //
    number,         // one number, anything behind it is ignored
    longitude,      // one number, then a word that may begin with the zone number
    columns,        // two numbers; a source needs the first, a target both
};

struct ParameterField {
    ParameterScan scan = ParameterScan::number;
    Status failure = status::ok;
    std::size_t slot = 0;  // of number, longitude and columns
    Check check = Check::none;
};

// The format: one data line a field, in this order, those of the datum sets last. Latitudes are degrees in the file and
// radians in their slot.
inline constexpr auto parameterFields = [] {
    using enum ParameterScan;
    constexpr auto ahead = std::to_array<ParameterField>({
        {code, status::codeUnreadable},
        {systemName, 10},
        {ellipsoidName, 11},
        {kind, status::projectionKind},
        {number, 13, slot::latitudeOfOrigin, Check::latitude},
        {longitude, 14, slot::longitudeOfOrigin, Check::notNegative},
        {number, 15, slot::additiveY},
        {number, 16, slot::additiveX},
        {number, 17, slot::decadicComplement},
        {number, 18, slot::meridianScale},
        {number, 19, slot::shiftY},
        {number, 20, slot::shiftX},
        {number, 21, slot::planeRotation},
        {number, 22, slot::secondShiftY},
        {number, 23, slot::secondShiftX},
        {number, 24, slot::originY},
        {number, 25, slot::originX},
        {number, 26, slot::planeScale},
        {number, 27, slot::semiMajorAxis, Check::positive},
        {number, 28, slot::semiMinorAxis, Check::positive},
    });
    std::array<ParameterField, ahead.size() + datumSlots.size()> fields = {};
    std::copy(ahead.begin(), ahead.end(), fields.begin());
    for (std::size_t at = 0; at < datumSlots.size(); ++at) {
        fields[ahead.size() + at] = {columns, status::firstTwoColumns + static_cast<Status>(at),
                                     datumSlots[at]};
    }
    return fields;
}();

static_assert(parameterFields.back().failure == status::lastTwoColumns);

inline constexpr std::string_view plainExtension = ".tra";
inline constexpr std::string_view scrambledExtension = ".tr0";
inline constexpr std::size_t parameterFileNameSize = nameSize + plainExtension.size();

// The name of a system's parameter file.
[[nodiscard]] FixedText<parameterFileNameSize> parameter_file_name(std::string_view baseName,
                                                                   bool scrambled) noexcept;

// Which column of the two-column lines is read: the datum transformation into the Bessel datum for the source
// of a transformation, the one out of it for the target.
enum class Column { intoBessel, outOfBessel };

// Reads the parameter file of one system.
//
// Given:    column       which direction of the datum transformation the parameters hold
//           directory    at most 99 characters; "." for the current directory
//           baseName     at most 99 characters, without extension
//           scrambled    the file is baseName.tr0, its lines scrambled with the key at its head; else it is
//                        baseName.tra
//           code         the code that the file must declare
// Returned: status       0; 7 not opened; 100 the key or a line is missing; 8 code unreadable; 9 another code;
//                        10 to 28 a field unreadable or outside its range; 29 to 48 (second column: 70 to 89) a
//                        parameter of the datum transformation unreadable
//           description  parameters only on success, the array unchanged otherwise; the texts and the zone
//                        number as far as they were read (empty and 0 before that), a refused projection kind
//                        included
[[nodiscard]] Status read_parameter_file(Column column, std::string_view directory, std::string_view baseName,
                                         bool scrambled, int code, SystemDescription& description) noexcept;

// The two steps of it, for callers that want to ask the reader where it stands: opens the file and reads its key; and
// reads the fields into a description whose texts are empty and whose zone number is 0. Statuses as above.
[[nodiscard]] Status open_parameter_file(LineReader& lines, std::string_view directory,
                                         std::string_view baseName, bool scrambled,
                                         PathText encoding = PathText::western) noexcept;
[[nodiscard]] Status read_parameters(LineReader& lines, Column column, int code,
                                     SystemDescription& description) noexcept;

}  // namespace lagestatus
