// The one conversion factor between degrees and radians.
#pragma once

namespace lagestatus {

// Radians per degree, to the digits that the data files and all results are based on: degrees become radians
// by multiplication with it and radians become degrees by division. Not pi / 180 computed afresh, which
// differs in the last bits.
inline constexpr double degree = 0.0174532925199433;

}  // namespace lagestatus
