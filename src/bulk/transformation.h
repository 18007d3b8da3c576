// Points in columns, carried as options say.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "base/system_description.h"
#include "bulk/held_height_model.h"
#include "bulk/road.h"
#include "fast/fast_road.h"
#include "heights/height_anomaly.h"

namespace lagestatus {

enum class HeightGiven : std::uint8_t { ellipsoidal, none, normal };
enum class HeightWanted : std::uint8_t { ellipsoidal, none, normal, both };

struct TransformationOptions {
    HeightGiven given = HeightGiven::ellipsoidal;
    HeightWanted wanted = HeightWanted::ellipsoidal;
    bool sourceEastingFirst = false;  // nothing to geocentric systems
    bool targetEastingFirst = false;
    bool fast = false;
    std::optional<double> defaultHeight;
};

// Doubles in the caller's memory, at any address; stride bytes from one to the next.
template <typename Memory>
struct DoubleColumn {
    Memory* values = nullptr;
    std::ptrdiff_t stride = sizeof(double);
};
using InputColumn = DoubleColumn<const void>;
using OutputColumn = DoubleColumn<void>;

class Transformation {
  public:
    // The height model is needed where needs_height_model says so.
    Transformation(const SystemDescription& source, const SystemDescription& target,
                   const TransformationOptions& how, const std::shared_ptr<const HeldHeightModel>& model);

    // Whether normal heights play a part on the way between two systems. What is wrong with the options for them: null,
    // or a German sentence.
    [[nodiscard]] static bool needs_height_model(const SystemDescription& source,
                                                 const SystemDescription& target,
                                                 const TransformationOptions& how) noexcept;
    [[nodiscard]] static const char* contradiction(const SystemDescription& source,
                                                   const SystemDescription& target,
                                                   const TransformationOptions& how) noexcept;

    struct Outcome {
        std::int64_t failures = 0;
        std::size_t defaulted = 0;  // points that took the default height
    };

    [[nodiscard]] bool needs_third_input() const noexcept;
    [[nodiscard]] bool has_third_output() const noexcept;
    [[nodiscard]] bool has_normal_output() const noexcept;

    // Carries points; as lagestatus_transform says. Columns that are needed are there.
    Outcome carry(std::size_t count, const std::array<InputColumn, 3>& input,
                  const std::array<OutputColumn, 4>& output, int* statuses) const noexcept;

  private:
    // The caller's columns, and what was counted of them.
    struct Work {
        const std::array<InputColumn, 3>& input;
        const std::array<OutputColumn, 4>& output;
        int* statuses;
        Outcome outcome;
    };
    [[nodiscard]] Point read_point(Work& work, std::size_t number) const noexcept;
    void write_point(Work& work, std::size_t number, const CarriedPoint& carried) const noexcept;
    void carry_block(Work& work, std::size_t first, int count, fast::Block& block) const noexcept;

    TransformationOptions options;
    Road road;
    bool sourceGeocentric;
    bool targetGeocentric;
    HeightFlags flags;
    fast::FastRoad fastRoad;
};

}  // namespace lagestatus
