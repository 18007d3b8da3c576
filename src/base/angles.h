// The one conversion factor between degrees and radians, and pi.
#pragma once

namespace lagestatus {

// Radians per degree, to the digits that the data files and all results are based on: degrees become radians
// by multiplication with it and radians become degrees by division. Not pi / 180 computed afresh, which
// differs in the last bits.
inline constexpr double degree = 0.0174532925199433;

// The double nearest to pi / 2, which is what asin(1) gives, and twice it.
inline constexpr double halfPi = 0x1.921fb54442d18p+0;
inline constexpr double pi = 2.0 * halfPi;

}  // namespace lagestatus
