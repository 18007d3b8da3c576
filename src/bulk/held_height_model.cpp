#include "bulk/held_height_model.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace lagestatus {
namespace {

constexpr double none = std::numeric_limits<double>::quiet_NaN();

// What the file says of its own size is believed up to here; beyond, memory grows as values are found.
constexpr std::int64_t mostReserved = std::int64_t{1} << 22U;

bool is_odd(std::string_view text) noexcept {
    if (text.ends_with('\n')) {
        text.remove_suffix(1);
    }
    return std::any_of(text.begin(), text.end(),
                       [](char character) { return character >= '\n' && character <= '\r'; });
}

}  // namespace

HeldHeightModel::HeldHeightModel(std::string_view directory) {
    HeightModelFile file;
    const Status status = file.open(directory, PathText::utf8);
    read(file, status);
}

HeldHeightModel::HeldHeightModel(Bytes contents) {
    HeightModelFile file(contents.bytes);
    const Status status = file.read_key();
    read(file, status);
}

void HeldHeightModel::read(HeightModelFile& file, Status openedStatus) {
    opened = openedStatus;
    const Status status = opened == status::ok ? read_head(file) : opened;
    if (status == status::ok) {
        read_grid(file);
        if (file.failed()) {
            defectFound.status = status::heightModel + status::fileEnds;
        }
    } else if (!isEmpty) {
        const bool hasLine = status != status::heightModelNotOpened && status != status::fileEnds;
        defectFound = {status::heightModel + status, hasLine ? file.line_number() : 0,
                       std::string(hasLine ? file.text().substr(0, file.text().find('\n')) : "")};
    }
}

Status HeldHeightModel::read_head(HeightModelFile& file) {
    axes = file.read_axes(model);
    if (axes != status::ok) {
        isEmpty = file.is_empty();
        return axes;
    }
    rest = file.read_rest_of_header(model);
    if (rest == status::ok) {
        lookup.emplace(model);
    }
    return rest;
}

void HeldHeightModel::read_grid(HeightModelFile& file) {
    const std::int64_t announced = std::int64_t{model.longitude.count} * model.latitude.count;
    values.reserve(static_cast<std::size_t>(std::clamp<std::int64_t>(announced, 0, mostReserved)) +
                   valuesPerLine);
    while (file.next_grid_line() == status::ok) {
        keep_line(file.text());
    }
    values.shrink_to_fit();
}

void HeldHeightModel::keep_line(std::string_view text) {
    if (is_odd(text)) {
        oddLines.push_back({static_cast<std::int64_t>(values.size()) / valuesPerLine, std::string(text)});
        values.insert(values.end(), valuesPerLine, none);
        return;
    }
    GridLine line(text);
    for (int place = 0; place < valuesPerLine; ++place) {
        double value = none;
        (void)line.value(place, value);
        values.push_back(value);
    }
}

std::size_t HeldHeightModel::memory() const noexcept {
    std::size_t bytes = sizeof(*this) + values.capacity() * sizeof(double);
    for (const OddLine& line : oddLines) {
        bytes += sizeof(line) + line.text.capacity();
    }
    return bytes;
}

Status HeldHeightModel::at(double lam, double phi, double& zeta) const noexcept {
    zeta = 0.0;
    if (opened != status::ok) {
        return opened;
    }
    if (axes != status::ok) {
        return isEmpty ? status::ok : axes;
    }
    return anomaly(lam, phi, zeta);
}

Status HeldHeightModel::at(const Geocentric& point, Found& found) const noexcept {
    const Status read = opened != status::ok ? opened : axes;
    if (read != status::ok) {
        return status::heightModel + read;
    }
    return find_on(model.bessel, point, found,
                   [this](double lam, double phi, double& zeta) { return anomaly(lam, phi, zeta); });
}

Status HeldHeightModel::anomaly(double lam, double phi, double& zeta) const noexcept {
    if (rest != status::ok) {
        return rest;
    }
    HeightLookup::Cell cell;
    if (const Status found = lookup->find_cell(lam, phi, cell); found != status::ok) {
        return found;
    }
    std::array<double, 4> corners = {};
    if (const Status read = read_corners(cell.corners, corners); read != status::ok) {
        return read;
    }
    return HeightLookup::interpolate(cell, corners, zeta);
}

// In the order in which the file would be read: the first that fails tells.
Status HeldHeightModel::read_corners(const std::array<std::int64_t, 4>& corners,
                                     std::array<double, 4>& found) const noexcept {
    const OddLine* odd = nullptr;
    GridLine line;
    for (std::size_t corner = 0; corner < corners.size(); ++corner) {
        const std::int64_t number = corners[corner];
        if (number >= static_cast<std::int64_t>(values.size())) {
            return status::fileEnds;
        }
        found[corner] = values[static_cast<std::size_t>(number)];
        if (!std::isnan(found[corner])) {
            continue;
        }
        const std::int64_t lineNumber = number / valuesPerLine;
        if (odd == nullptr || odd->number != lineNumber) {
            const auto next = std::lower_bound(
                oddLines.begin(), oddLines.end(), lineNumber,
                [](const OddLine& each, std::int64_t wanted) { return each.number < wanted; });
            if (next == oddLines.end() || next->number != lineNumber) {
                return status::gridValue;
            }
            odd = &*next;
            line = GridLine(odd->text);
        }
        if (const Status read = line.value(static_cast<int>(number % valuesPerLine), found[corner]);
            read != status::ok) {
            return read;
        }
    }
    return status::ok;
}

}  // namespace lagestatus
