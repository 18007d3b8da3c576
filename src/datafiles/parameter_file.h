// Parameter files (.tra, .tr0): the description of one system.
#pragma once

#include <string_view>

#include "base/status.h"
#include "base/system_description.h"

namespace lagestatus {

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

}  // namespace lagestatus
