#include "bulk/road.h"

#include <utility>

#include "bulk/held_height_model.h"

namespace lagestatus {

Road::Road(const SystemDescription& source, const SystemDescription& target,
           std::shared_ptr<const HeightAnomalies> model)
    : sourceDescription(source),
      targetDescription(target),
      from(Side::source, sourceDescription, true),
      to(Side::target, targetDescription, true),
      heightModel(model != nullptr ? std::move(model)
                                   : std::make_shared<const HeldHeightModel>(HeldHeightModel::Bytes{""})) {}

CarriedPoint Road::carry(const Point& point, HeightFlags heights) const noexcept {
    CarriedPoint carried;
    carried.status = transform_point(point, from, to, heights, *heightModel, carried.at);
    const bool complete = carried.status == status::ok;
    const bool heightFailed = carried.status >= status::heightModel;
    carried.hasPlace = complete;
    if (heightFailed && to.kind != ProjectionKind::geocentric) {
        carried.hasPlace = true;
        if (carried.at[0] == 0.0 && carried.at[1] == 0.0 && carried.at[2] == 0.0) {
            // Without a height model the road may end early; the place does not hang on it. If these zeros are a place,
            // they come again.
            constexpr HeightFlags none = {.alsoUnasked = false};
            carried.hasPlace = transform_point(point, from, to, none, *heightModel, carried.at) == status::ok;
        }
    }
    carried.hasHeight = complete || (carried.hasPlace && !heights.sourceIsNormal);
    carried.hasNormal = complete;
    return carried;
}

}  // namespace lagestatus
