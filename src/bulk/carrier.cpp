#include "bulk/carrier.h"

#include <algorithm>

#include "bulk/held_height_model.h"

namespace lagestatus {

fast::HeldHeights fast_heights(const HeldHeightModel* model) noexcept {
    return model != nullptr && model->defect().status == status::ok && model->count() > 0
               ? fast::HeldHeights{&model->header(), model->grid()}
               : fast::HeldHeights{};
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
            const auto& [x, y, z] = block.reached;
            results[first + i] =
                block.outside[i] == 0.0
                    ? CarriedPoint{status::ok, {x[i], y[i], z[i], block.normal[i]}, true, true, true}
                    : road.carry(points[first + i], flags);
        }
    }
}

}  // namespace lagestatus
