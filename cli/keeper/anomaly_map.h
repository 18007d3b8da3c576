// The height anomalies of a grid as a map.
#pragma once

#include <string>

#include "keeper/height_model.h"

namespace cli {

// An SVG image of less than 1.5 MB; the same for the same model. The model has a grid with plausible values.
std::string anomaly_map(const HeldModel& model, const GridSummary& summary);

}  // namespace cli
