// Points one by one or many at once on a road, by the reference calculation or the fast one.
#pragma once

#include <span>

#include "bulk/road.h"
#include "fast/fast_road.h"

namespace lagestatus {

class HeldHeightModel;

// What the fast calculation looks at of a model: nothing of none, or of one whose head cannot be read.
[[nodiscard]] fast::HeldHeights fast_heights(const HeldHeightModel* model) noexcept;

// A point of a block that the fast road has carried, number of them; what it leaves comes from the reference road.
[[nodiscard]] CarriedPoint carried_point(const fast::Block& block, int number, const Road& road,
                                         HeightFlags flags) noexcept;

// For one choice of heights. Nothing changes once it is made.
class Carrier {
  public:
    // Given: road      belongs to the caller as long as the carrier is used, as does the model
    //        flags     what the heights of the points are
    //        model     null where no normal height is given or wanted
    //        isFast    whether the fast calculation is to carry what it serves
    Carrier(const Road& road, HeightFlags flags, const HeldHeightModel* model, bool isFast);

    // Whether the fast calculation carries any of them.
    [[nodiscard]] bool is_fast() const noexcept { return fastRoad.serves(); }

    // Carries points; as Road::carry does each of them. As many results as points.
    void carry(std::span<const Point> points, std::span<CarriedPoint> results) const noexcept;

  private:
    const Road& road;
    HeightFlags flags;
    fast::FastRoad fastRoad;
};

}  // namespace lagestatus
