// The way from one system to another, with all that a point needs.
#pragma once

#include <memory>

#include "base/status.h"
#include "base/system_description.h"
#include "engine/pipeline.h"
#include "engine/side.h"
#include "heights/height_anomaly.h"

namespace lagestatus {

// A point that was carried, and what there is of it.
struct CarriedPoint {
    Status status = status::ok;
    Result at = {};
    bool hasPlace = false;   // at[0] and at[1], of a geocentric target all three coordinates
    bool hasHeight = false;  // at[2]
    bool hasNormal = false;  // at[3]
};

// Nothing changes once it is made: any number of threads may use one at once.
class Road {
  public:
    // Given: source   read for a source
    //        target   read for a target
    //        model    null where no normal height will be given or wanted
    Road(const SystemDescription& source, const SystemDescription& target,
         std::shared_ptr<const HeightAnomalies> model);
    Road(const Road&) = delete;
    Road& operator=(const Road&) = delete;
    ~Road() = default;

    // As transform_point, but a height model that gives nothing costs heights alone, never the place: unless the target
    // is geocentric, where all hangs on the height.
    [[nodiscard]] CarriedPoint carry(const Point& point, HeightFlags heights) const noexcept;

    [[nodiscard]] const Side& source() const noexcept { return from; }
    [[nodiscard]] const Side& target() const noexcept { return to; }

  private:
    SystemDescription sourceDescription;
    SystemDescription targetDescription;
    Side from;
    Side to;
    std::shared_ptr<const HeightAnomalies> heightModel;
};

}  // namespace lagestatus
