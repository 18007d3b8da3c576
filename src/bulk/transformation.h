// Points in columns, carried as options say.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "base/system_description.h"
#include "bulk/road.h"
#include "heights/height_anomaly.h"

namespace lagestatus {

enum class HeightGiven : std::uint8_t { ellipsoidal, none, normal };
enum class HeightWanted : std::uint8_t { ellipsoidal, none, normal, both };

struct TransformationOptions {
    HeightGiven given = HeightGiven::ellipsoidal;
    HeightWanted wanted = HeightWanted::ellipsoidal;
    bool sourceEastingFirst = false;  // nothing to geocentric systems
    bool targetEastingFirst = false;
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
                   const TransformationOptions& how, std::shared_ptr<const HeightAnomalies> model);

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
    TransformationOptions options;
    Road road;
    bool sourceGeocentric;
    bool targetGeocentric;
    HeightFlags flags;
};

}  // namespace lagestatus
