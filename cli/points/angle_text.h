// Angles in degrees, minutes and seconds.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace cli {

// Reads an angle in degrees: D°M'S.S" in UTF-8 or ISO 8859-1, with "d" or ":" also for the degree sign and ":" for the
// minutes' sign; minutes and seconds may be absent. A sign in front or a letter behind: N, S for latitudes, E, O, W for
// longitudes. Minutes and seconds are below 60, whole but for the last part. Nothing when the text is no such angle.
enum class Hemisphere { latitude, longitude };
std::optional<double> read_angle(std::string_view text, Hemisphere hemisphere);

// Writes an angle as 52°27'12.02100"N: decimals of the seconds, and the hemisphere.
void append_angle(std::string& text, double degrees, int decimals, Hemisphere hemisphere);

}  // namespace cli
