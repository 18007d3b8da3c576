#include "bulk/carrier.h"

#include <algorithm>

#include "bulk/held_height_model.h"

namespace lagestatus {

fast::HeldHeights fast_heights(const HeldHeightModel* model) noexcept {
    return model != nullptr && model->defect().status == status::ok && model->count() > 0
               ? fast::HeldHeights{&model->header(), model->grid()}
               : fast::HeldHeights{};
}

CarriedPoint carried_point(const fast::Block& block, int number, const Road& road,
                           HeightFlags flags) noexcept {
    const auto at = [number](const fast::Triple& triple) {
        return Point{triple.first[number], triple.second[number], triple.third[number]};
    };
    const auto [x, y, z] = at(block.reached);
    if (!block.leaves(number)) {
        return {status::ok, {x, y, z, block.normal[number]}, true, true, true};
    }
    CarriedPoint point = road.carry(at(block.given), flags);
    if (block.outside[number] == 0.0 && point.hasPlace) {
        point.at = {x, y, z, point.at[3]};  // the same place as without a normal height
    }
    return point;
}

Carrier::Carrier(const Road& onRoad, HeightFlags heights, const HeldHeightModel* model, bool isFast)
    : road(onRoad),
      flags(heights),
      fastRoad(isFast ? fast::FastRoad(onRoad.source(), onRoad.target(), heights, fast_heights(model))
                      : fast::FastRoad()) {}

void Carrier::carry(std::span<const Point> points, std::span<CarriedPoint> results) const noexcept {
    if (!fastRoad.serves()) {
        std::transform(points.begin(), points.end(), results.begin(),
                       [this](const Point& point) { return road.carry(point, flags); });
        return;
    }
    fast::Block block;
    for (std::size_t first = 0; first < points.size(); first += fast::blockSize) {
        const std::size_t count = std::min<std::size_t>(points.size() - first, fast::blockSize);
        for (std::size_t i = 0; i < count; ++i) {
            const Point& point = points[first + i];
            block.given.first[i] = point[0];
            block.given.second[i] = point[1];
            block.given.third[i] = point[2];
        }
        fastRoad.carry(block, static_cast<int>(count));
        for (std::size_t i = 0; i < count; ++i) {
            results[first + i] = carried_point(block, static_cast<int>(i), road, flags);
        }
    }
}

}  // namespace lagestatus
