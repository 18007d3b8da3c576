// The work of trans_dll: from two codes of a data directory to a transformed point.
#pragma once

#include <array>
#include <string_view>

#include "base/status.h"
#include "base/system_description.h"
#include "datafiles/definition_file.h"
#include "engine/pipeline.h"

namespace lagestatus {

// What a transformation tells of its two systems, as far as they were read.
struct SystemPair {
    std::array<int, 2> auxiliary = {noAuxiliary, noAuxiliary};
    SystemDescription source;
    SystemDescription target;
};

// Looks both codes up in DEFAULT, reads the source's and then the target's parameter file, and transforms.
//
// Given:    point        in the source system
//           directory    at most 99 characters
//           heightMode   'N' or 'n': the height is a normal height (never for a geocentric source); else it is
//                        ellipsoidal
// Returned: status       of the first step that fails: those of read_definition_file, 93 for a code that is not
//                        listed (of two entries the first counts), those of read_parameter_file, those of
//                        transform_point
//           result       as transform_point leaves it; 0.0 throughout when it was not reached
//           systems      as far as they were read
[[nodiscard]] Status run_driver(const Point& point, int sourceCode, int targetCode,
                                std::string_view directory, char heightMode, Result& result,
                                SystemPair& systems) noexcept;

}  // namespace lagestatus
