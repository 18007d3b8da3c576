// The fast calculation of a road: blocks of points, without the mathematical library.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "engine/normal_heights.h"
#include "engine/side.h"
#include "fast/block.h"
#include "fast/plan.h"
#include "heights/height_model_file.h"

namespace lagestatus::fast {

// What a height model held in memory has for the fast calculation; both belong to the caller.
struct HeldHeights {
    const HeightModel* header = nullptr;  // null: there is no model, or its head cannot be read
    std::span<const double> values;       // metres, NaN where there is none
};

// A road between two systems. It carries what succeeds in the domain of its series; every other point, and every road
// that it cannot serve at all, is the reference calculation's. Nothing changes once it is made: any number of threads
// may use one at once. Throws std::bad_alloc when it is made.
class FastRoad {
  public:
    // Given: source, target   of the road of the reference calculation
    //        flags            likewise
    //        heights          belongs to the caller as long as the road is used
    FastRoad() noexcept = default;  // serves nothing
    FastRoad(const Side& source, const Side& target, HeightFlags flags, const HeldHeights& heights);

    // Whether it carries any point.
    [[nodiscard]] bool serves() const noexcept { return plan != nullptr; }

    // Carries count points, 1 to blockSize, from block.given to block.reached and block.normal; block.outside tells which
    // it has left alone. The road must serve, and the floating-point environment be the default one.
    void carry(Block& block, int count) const noexcept;

  private:
    std::unique_ptr<const Plan> plan;
};

// The name of the instruction set that is used: "baseline", "avx2" or "avx512". It is chosen when the library is
// loaded: the widest that the processor has and LAGESTATUS_INSTRUCTIONS, if it is one of these names, allows.
[[nodiscard]] const char* instructions() noexcept;

}  // namespace lagestatus::fast
