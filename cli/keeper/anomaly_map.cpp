// The map is drawn in layers: hatching for places without a value, then for each class the region of its values and all
// larger ones, so that no gaps show between the classes; isolines, their labels, graticule and frame above.
#include "keeper/anomaly_map.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/angles.h"
#include "system/text.h"

namespace cli {

using lagestatus::degree;
using lagestatus::GridAxis;

namespace {

struct Pixel {
    double x;
    double y;
};

double distance(const Pixel& one, const Pixel& other) {
    return std::hypot(other.x - one.x, other.y - one.y);
}

std::string px(double value) {
    return trimmed_text(value, 1);
}

// Paths are written in tenths of a pixel, whole and relative, which takes the least room.
constexpr double pathUnit = 10.0;

class Path {
  public:
    void move(const Pixel& to) {
        data += 'm';
        append(to);
    }
    void line(const Pixel& to) {
        data += 'l';
        append(to);
    }
    void close() {
        data += 'z';
        x = startX;
        y = startY;
    }
    void start(const Pixel& at) {
        move(at);
        startX = x;
        startY = y;
    }
    [[nodiscard]] const std::string& text() const { return data; }

  private:
    void append(const Pixel& to) {
        const std::int64_t newX = std::llround(to.x * pathUnit);
        const std::int64_t newY = std::llround(to.y * pathUnit);
        data += std::to_string(newX - x);
        if (newY - y >= 0) {
            data += ' ';
        }
        data += std::to_string(newY - y);
        x = newX;
        y = newY;
    }

    std::string data;
    std::int64_t x = 0;
    std::int64_t y = 0;
    std::int64_t startX = 0;
    std::int64_t startY = 0;
};

// Every so many-th node of the grid, and its border. A cell between four of them counts only if all the nodes in it and
// around it have values, as the library needs them.
struct Mesh {
    std::vector<std::int64_t> columns;  // of the grid
    std::vector<std::int64_t> rows;
    std::vector<double> values;
    std::vector<bool> cells;

    [[nodiscard]] std::size_t node(std::size_t column, std::size_t row) const {
        return row * columns.size() + column;
    }
};

std::vector<std::int64_t> every(std::int64_t count, std::int64_t factor) {
    std::vector<std::int64_t> places;
    for (std::int64_t place = 0; place < count - 1; place += factor) {
        places.push_back(place);
    }
    places.push_back(count - 1);
    return places;
}

bool all_plausible(const HeldModel& model, std::int64_t west, std::int64_t east, std::int64_t south,
                   std::int64_t north) {
    const std::int64_t columns = model.longitude.count;
    if (!model.is_there(north * columns + east)) {
        return false;
    }
    for (std::int64_t row = south; row <= north; ++row) {
        for (std::int64_t column = west; column <= east; ++column) {
            if (!is_plausible(model.values[static_cast<std::size_t>(row * columns + column)])) {
                return false;
            }
        }
    }
    return true;
}

Mesh mesh_of(const HeldModel& model, std::int64_t columnFactor, std::int64_t rowFactor) {
    Mesh mesh = {every(model.longitude.count, columnFactor), every(model.latitude.count, rowFactor), {}, {}};
    mesh.values.resize(mesh.columns.size() * mesh.rows.size());
    mesh.cells.resize(mesh.values.size());
    for (std::size_t row = 0; row < mesh.rows.size(); ++row) {
        for (std::size_t column = 0; column < mesh.columns.size(); ++column) {
            const std::int64_t number = model.longitude.count * mesh.rows[row] + mesh.columns[column];
            const float value =
                model.is_there(number) ? model.values[static_cast<std::size_t>(number)] : 0.0F;
            mesh.values[mesh.node(column, row)] = static_cast<double>(value);
            mesh.cells[mesh.node(column, row)] =
                column + 1 < mesh.columns.size() && row + 1 < mesh.rows.size() &&
                all_plausible(model, mesh.columns[column], mesh.columns[column + 1], mesh.rows[row],
                              mesh.rows[row + 1]);
        }
    }
    return mesh;
}

// Where everything stands on the sheet, in pixels.
struct Sheet {
    double left = 84.0;
    double top = 92.0;
    double width = 0.0;
    double height = 0.0;
    const GridAxis* longitude = nullptr;
    const GridAxis* latitude = nullptr;
    double columnWidth = 0.0;
    double rowHeight = 0.0;

    [[nodiscard]] double right() const { return left + width; }
    [[nodiscard]] double bottom() const { return top + height; }
    [[nodiscard]] Pixel at(double column, double row) const {
        return {left + column * columnWidth, bottom() - row * rowHeight};
    }
    [[nodiscard]] Pixel place(double lon, double lat) const {
        return at((lon - longitude->smallest) / longitude->spacing,
                  (lat - latitude->smallest) / latitude->spacing);
    }
};

Sheet sheet_of(const HeldModel& model) {
    constexpr double widest = 760.0;
    constexpr double highest = 860.0;
    constexpr double least = 60.0;  // of a strip that is all too narrow
    Sheet sheet;
    sheet.longitude = &model.longitude;
    sheet.latitude = &model.latitude;
    const double columns = model.longitude.count - 1;
    const double rows = model.latitude.count - 1;
    const double middle = model.latitude.smallest + model.latitude.spacing * rows / 2;
    const double east =
        columns * model.longitude.spacing * std::max(std::cos(middle * std::numbers::pi / 180.0), 1e-3);
    const double north = rows * model.latitude.spacing;
    const double scale = std::min(widest / east, highest / north);
    sheet.width = std::clamp(east * scale, least, widest);
    sheet.height = std::clamp(north * scale, least, highest);
    sheet.columnWidth = sheet.width / columns;
    sheet.rowHeight = sheet.height / rows;
    return sheet;
}

// Classes at a round interval.
struct Classes {
    double step;         // metres
    std::int64_t first;  // times the step
    int count;
    int decimals;

    [[nodiscard]] double level(int index) const { return static_cast<double>(first + index) * step; }
    [[nodiscard]] std::string label(int index) const { return fixed_text(level(index), decimals); }
};

Classes classes_of(double smallest, double largest) {
    constexpr int most = 18;
    int decimals = 3;
    for (double power = 1e-3;; power *= 10.0, --decimals) {
        for (const double digit : {1.0, 2.0, 5.0}) {
            const double step = digit * power;
            const auto first = static_cast<std::int64_t>(std::floor(smallest / step));
            const auto last = static_cast<std::int64_t>(std::floor(largest / step));
            if (last - first < most) {
                return {step, first, static_cast<int>(last - first) + 1, std::max(decimals, 0)};
            }
        }
    }
}

// From dark blue to yellow: its lightness grows evenly, which colour-blind eyes and grey copies keep.
std::string colour_of(double share) {
    using Colour = std::array<double, 3>;
    constexpr std::array<Colour, 6> ramp = {
        {{43, 28, 94}, {45, 74, 140}, {36, 121, 148}, {58, 164, 126}, {142, 201, 84}, {247, 230, 74}}};
    const double place = std::clamp(share, 0.0, 1.0) * (ramp.size() - 1);
    const auto below = std::min(static_cast<std::size_t>(place), ramp.size() - 2);
    const double onward = place - static_cast<double>(below);
    std::string text = "#";
    for (std::size_t channel = 0; channel < 3; ++channel) {
        const double value =
            ramp[below][channel] + onward * (ramp[below + 1][channel] - ramp[below][channel]);
        const auto byte = static_cast<unsigned>(std::lround(std::clamp(value, 0.0, 255.0)));
        constexpr std::string_view digits = "0123456789abcdef";
        text += digits[byte / 16];
        text += digits[byte % 16];
    }
    return text;
}

std::string colour_of_class(const Classes& classes, int index) {
    return colour_of(classes.count < 2 ? 0.5 : static_cast<double>(index) / (classes.count - 1));
}

struct Corner {
    std::size_t column;
    std::size_t row;
};

// A drawing of one mesh.
class Drawing {
  public:
    Drawing(const Mesh& drawnMesh, const Sheet& onSheet) : mesh(drawnMesh), sheet(onSheet) {}

    // The region of the values that reach a level.
    [[nodiscard]] std::string region(double level) const {
        Path path;
        for (std::size_t row = 0; row + 1 < mesh.rows.size(); ++row) {
            std::optional<std::size_t> runStart;
            for (std::size_t column = 0; column < mesh.columns.size(); ++column) {
                const bool isCell = mesh.cells[mesh.node(column, row)];
                const int reaching = isCell ? corners_reaching(column, row, level) : 0;
                if (reaching == 4 && !runStart) {
                    runStart = column;
                }
                if (reaching < 4 && runStart) {
                    add_polygon(path, {corner_pixel({*runStart, row}), corner_pixel({column, row}),
                                       corner_pixel({column, row + 1}), corner_pixel({*runStart, row + 1})});
                    runStart.reset();
                }
                if (reaching > 0 && reaching < 4) {
                    add_polygon(path, clipped(column, row, level));
                }
            }
        }
        return path.text();
    }

    // The lines along which the values are a level.
    [[nodiscard]] std::vector<std::vector<Pixel>> isolines(double level) const {
        constexpr std::int32_t none = -1;
        using Neighbours = std::array<std::int32_t, 2>;
        // Two edges a node, to the east and to the north; a line crosses each once, from one neighbour to the other.
        std::vector<Neighbours> neighbours(mesh.values.size() * 2, {none, none});
        const auto connect = [&neighbours](std::size_t one, std::size_t other) {
            for (const auto& [from, to] : {std::pair{one, other}, std::pair{other, one}}) {
                Neighbours& known = neighbours[from];
                known[known[0] == none ? 0 : 1] = static_cast<std::int32_t>(to);
            }
        };
        for (std::size_t row = 0; row + 1 < mesh.rows.size(); ++row) {
            for (std::size_t column = 0; column + 1 < mesh.columns.size(); ++column) {
                if (mesh.cells[mesh.node(column, row)]) {
                    connect_crossings(column, row, level, connect);
                }
            }
        }
        std::vector<std::vector<Pixel>> lines;
        std::vector<bool> taken(neighbours.size());
        const auto follow = [&](std::size_t edge) {
            std::vector<Pixel> line;
            const std::size_t start = edge;
            for (bool onward = true; onward;) {
                taken[edge] = true;
                line.push_back(crossing(edge, level));
                onward = false;
                for (const std::int32_t next : neighbours[edge]) {
                    if (!onward && next != none && !taken[static_cast<std::size_t>(next)]) {
                        edge = static_cast<std::size_t>(next);
                        onward = true;
                    }
                }
            }
            const Neighbours& last = neighbours[edge];
            const auto back = static_cast<std::int32_t>(start);
            if (line.size() > 2 && (last[0] == back || last[1] == back)) {
                line.push_back(line.front());
            }
            lines.push_back(std::move(line));
        };
        // The open lines first, from one of their ends, then those that are closed.
        for (const bool closed : {false, true}) {
            for (std::size_t edge = 0; edge < neighbours.size(); ++edge) {
                const Neighbours& known = neighbours[edge];
                if (!taken[edge] && known[0] != none && (closed || known[1] == none)) {
                    follow(edge);
                }
            }
        }
        return lines;
    }

  private:
    // Counter-clockwise from the south-west.
    static constexpr std::array<Corner, 4> around = {{{0, 0}, {1, 0}, {1, 1}, {0, 1}}};

    [[nodiscard]] double value_at(const Corner& corner) const {
        return mesh.values[mesh.node(corner.column, corner.row)];
    }
    [[nodiscard]] Pixel corner_pixel(const Corner& corner) const {
        return sheet.at(static_cast<double>(mesh.columns[corner.column]),
                        static_cast<double>(mesh.rows[corner.row]));
    }
    [[nodiscard]] static Corner corner_of(std::size_t column, std::size_t row, std::size_t number) {
        const Corner& offset = around[number % around.size()];
        return {column + offset.column, row + offset.row};
    }
    [[nodiscard]] int corners_reaching(std::size_t column, std::size_t row, double level) const {
        int count = 0;
        for (std::size_t number = 0; number < around.size(); ++number) {
            count += value_at(corner_of(column, row, number)) >= level ? 1 : 0;
        }
        return count;
    }
    // Where the way from one corner to another comes upon a level that lies between them.
    [[nodiscard]] Pixel between(const Corner& one, const Corner& other, double level) const {
        const double share = (level - value_at(one)) / (value_at(other) - value_at(one));
        const Pixel from = corner_pixel(one);
        const Pixel to = corner_pixel(other);
        return {from.x + share * (to.x - from.x), from.y + share * (to.y - from.y)};
    }
    [[nodiscard]] std::vector<Pixel> clipped(std::size_t column, std::size_t row, double level) const {
        std::vector<Pixel> polygon;
        for (std::size_t number = 0; number < around.size(); ++number) {
            const Corner here = corner_of(column, row, number);
            const Corner next = corner_of(column, row, number + 1);
            const bool reaches = value_at(here) >= level;
            if (reaches) {
                polygon.push_back(corner_pixel(here));
            }
            if (reaches != (value_at(next) >= level)) {
                polygon.push_back(between(here, next, level));
            }
        }
        return polygon;
    }
    static void add_polygon(Path& path, const std::vector<Pixel>& polygon) {
        path.start(polygon.front());
        for (std::size_t number = 1; number < polygon.size(); ++number) {
            path.line(polygon[number]);
        }
        path.close();
    }
    // The edge of a cell from one corner, counted around, to the next.
    [[nodiscard]] std::size_t edge_of(std::size_t column, std::size_t row, std::size_t number) const {
        switch (number % around.size()) {
            case 0:
                return 2 * mesh.node(column, row);
            case 1:
                return 2 * mesh.node(column + 1, row) + 1;
            case 2:
                return 2 * mesh.node(column, row + 1);
            default:
                return 2 * mesh.node(column, row) + 1;
        }
    }
    template <typename Connect>
    void connect_crossings(std::size_t column, std::size_t row, double level, Connect connect) const {
        // A line enters where the values, going around, come to reach the level no more, and leaves where they reach
        // it again: so two corners that reach it stay on one side also when they lie across from each other.
        for (std::size_t number = 0; number < around.size(); ++number) {
            const auto reaches = [&](std::size_t at) {
                return value_at(corner_of(column, row, at)) >= level;
            };
            if (!reaches(number) || reaches(number + 1)) {
                continue;
            }
            std::size_t end = number + 1;
            while (!reaches(end + 1)) {
                ++end;
            }
            connect(edge_of(column, row, number), edge_of(column, row, end));
        }
    }
    [[nodiscard]] Pixel crossing(std::size_t edge, double level) const {
        const std::size_t node = edge / 2;
        const Corner one = {node % mesh.columns.size(), node / mesh.columns.size()};
        const bool northward = edge % 2 == 1;
        const Corner other = {one.column + (northward ? 0 : 1), one.row + (northward ? 1 : 0)};
        return between(one, other, level);
    }

    const Mesh& mesh;
    const Sheet& sheet;
};

// Finds places for the labels of isolines: apart from each other, where the line is straight and well inside the map.
class Labels {
  public:
    Labels(const Sheet& onSheet, const std::optional<Pixel>& keptFree) : sheet(onSheet) {
        if (keptFree) {  // a symbol with its name to the right of it
            constexpr double step = 30.0;
            for (int number = 0; number < 4; ++number) {
                places.push_back({keptFree->x + number * step, keptFree->y});
            }
        }
    }

    // Texts for one line, if there is room.
    [[nodiscard]] std::string along(const std::vector<Pixel>& line, const std::string& label) {
        constexpr double between = 260.0;  // labels of one line
        constexpr double halfWidth = 15.0;
        std::vector<double> lengths = {0.0};
        for (std::size_t number = 1; number < line.size(); ++number) {
            lengths.push_back(lengths.back() + distance(line[number - 1], line[number]));
        }
        std::string texts;
        constexpr double shortest = 70.0;
        if (lengths.back() < shortest) {
            return texts;
        }
        constexpr double stride = 6.0;
        double next = std::min(lengths.back() * 0.3, between / 3);
        while (next + halfWidth < lengths.back()) {
            const Pixel from = at(line, lengths, next - halfWidth);
            const Pixel middle = at(line, lengths, next);
            const Pixel to = at(line, lengths, next + halfWidth);
            constexpr double straight = 1.94;
            if (distance(from, to) > straight * halfWidth && is_free(middle)) {
                texts += text_at(middle, from, to, label);
                places.push_back(middle);
                next += between;
            } else {
                next += stride;
            }
        }
        return texts;
    }

  private:
    [[nodiscard]] static Pixel at(const std::vector<Pixel>& line, const std::vector<double>& lengths,
                                  double length) {
        const auto behind = std::upper_bound(lengths.begin() + 1, lengths.end() - 1, length);
        const auto number = static_cast<std::size_t>(behind - lengths.begin());
        const double piece = lengths[number] - lengths[number - 1];
        const double share = piece > 0.0 ? (length - lengths[number - 1]) / piece : 0.0;
        const Pixel& from = line[number - 1];
        const Pixel& to = line[number];
        return {from.x + share * (to.x - from.x), from.y + share * (to.y - from.y)};
    }
    [[nodiscard]] bool is_free(const Pixel& place) const {
        constexpr double apart = 44.0;
        constexpr double margin = 20.0;
        return place.x > sheet.left + margin && place.x < sheet.right() - margin &&
               place.y > sheet.top + margin && place.y < sheet.bottom() - margin &&
               std::none_of(places.begin(), places.end(),
                            [&place](const Pixel& other) { return distance(place, other) < apart; });
    }
    [[nodiscard]] static std::string text_at(const Pixel& place, const Pixel& from, const Pixel& to,
                                             const std::string& label) {
        double angle = std::atan2(to.y - from.y, to.x - from.x) * 180.0 / std::numbers::pi;
        constexpr double upright = 90.0;
        angle += angle > upright ? -2 * upright : angle < -upright ? 2 * upright : 0.0;
        constexpr double baseline = 4.0;
        return "<text transform=\"translate(" + px(place.x) + ' ' + px(place.y) + ")rotate(" +
               trimmed_text(angle, 0) + ")\" y=\"" + px(baseline) + "\">" + label + "</text>\n";
    }

    const Sheet& sheet;
    std::vector<Pixel> places;
};

std::string text(const Pixel& at, const std::string& attributes, const std::string& words) {
    return "<text x=\"" + px(at.x) + "\" y=\"" + px(at.y) + "\"" +
           (attributes.empty() ? "" : " " + attributes) + ">" + words + "</text>\n";
}

std::string line(const Pixel& from, const Pixel& to) {
    return "<path d=\"M" + px(from.x) + ' ' + px(from.y) + 'L' + px(to.x) + ' ' + px(to.y) + "\"/>\n";
}

// Whole degrees and minutes where the ticks are that far apart, else decimals.
std::string tick_text(std::int64_t number, std::int64_t perDegree) {
    constexpr std::int64_t minutes = 60;
    if (perDegree > minutes) {
        const auto scale = static_cast<double>(perDegree);
        return fixed_text(static_cast<double>(number) / scale,
                          static_cast<int>(std::lround(std::log10(scale)))) +
               "°";
    }
    const std::int64_t degrees = number / perDegree;
    const std::int64_t rest = number % perDegree * (minutes / perDegree);
    return std::to_string(degrees) + "°" + (rest == 0 ? "" : std::to_string(rest) + "′");
}

// The ticks of an axis: how many there are to a degree, or none to less than one.
std::int64_t ticks_per_degree(const GridAxis& range, double pixels) {
    constexpr double apart = 58.0;
    const double wanted = pixels / apart / ((range.count - 1) * range.spacing);
    constexpr std::array<std::int64_t, 7> divisors = {1, 2, 3, 6, 12, 30, 60};
    std::int64_t best = 1;
    for (const std::int64_t divisor : divisors) {
        best = static_cast<double>(divisor) <= wanted ? divisor : best;
    }
    constexpr std::int64_t finest = 1'000'000'000;
    for (std::int64_t decimal = 100; decimal <= finest; decimal *= 10) {
        best = static_cast<double>(decimal) <= wanted ? decimal : best;
    }
    return best;
}

// Graticule, ticks and their labels of one axis.
void draw_axis(const Sheet& sheet, bool isLongitude, std::string& graticule, std::string& labels) {
    const GridAxis& range = isLongitude ? *sheet.longitude : *sheet.latitude;
    const double pixels = isLongitude ? sheet.width : sheet.height;
    const std::int64_t perDegree = ticks_per_degree(range, pixels);
    const auto scale = static_cast<double>(perDegree);
    const auto first = static_cast<std::int64_t>(std::ceil(range.smallest * scale - 1e-9));
    const auto last = static_cast<std::int64_t>(std::floor(range.at(range.count - 1) * scale + 1e-9));
    constexpr double apart = 42.0;
    const auto spread = static_cast<double>(last - first + 1) * apart / pixels;
    constexpr std::array<std::int64_t, 6> strides = {1, 2, 5, 10, 15, 30};
    const auto wide = std::find_if(strides.begin(), strides.end() - 1, [spread](std::int64_t stride) {
        return static_cast<double>(stride) >= spread;
    });
    for (std::int64_t number = (first + *wide - 1) / *wide * *wide; number <= last; number += *wide) {
        const double degrees = static_cast<double>(number) / scale;
        constexpr double tick = 6.0;
        if (isLongitude) {
            const double x = sheet.place(degrees, range.smallest).x;
            graticule += line({x, sheet.top}, {x, sheet.bottom() + tick});
            labels +=
                text({x, sheet.bottom() + 21}, "text-anchor=\"middle\"", tick_text(number, perDegree) + " E");
        } else {
            const double y = sheet.place(range.smallest, degrees).y;
            graticule += line({sheet.left - tick, y}, {sheet.right(), y});
            labels +=
                text({sheet.left - 10, y + 4}, "text-anchor=\"end\"", tick_text(number, perDegree) + " N");
        }
    }
}

std::string draw_legend(const Sheet& sheet, const Classes& classes) {
    constexpr double boxWidth = 22.0;
    constexpr double boxHeight = 21.0;
    const double x = sheet.right() + 26;
    double y = sheet.top + 8;
    std::string legend =
        text({x, y}, "font-weight=\"bold\"", "Height anomaly") + text({x, y + 17}, "", "metres");
    y += 34;
    std::string labels;
    for (int index = classes.count - 1; index >= 0; --index) {
        legend += "<rect x=\"" + px(x) + "\" y=\"" + px(y) + "\" width=\"" + px(boxWidth) + "\" height=\"" +
                  px(boxHeight) + "\" fill=\"" + colour_of_class(classes, index) + "\"/>\n";
        if (index > 0 || classes.count == 1) {
            labels += text({x + boxWidth + 6, y + boxHeight + 4}, "", classes.label(index));
        }
        y += boxHeight;
    }
    legend += labels;
    y += 18;
    legend += "<rect x=\"" + px(x) + "\" y=\"" + px(y) + "\" width=\"" + px(boxWidth) + "\" height=\"" +
              px(boxHeight) + "\" fill=\"url(#none)\" stroke=\"#777\" stroke-width=\".6\"/>\n" +
              text({x + boxWidth + 6, y + 15}, "", "no value");
    y += boxHeight + 20;
    legend += "<path d=\"M" + px(x) + ' ' + px(y) + "h" + px(boxWidth) +
              "\" stroke=\"#111\" stroke-width=\".8\"/>\n" +
              text({x + boxWidth + 6, y + 4}, "", "isoline, every " + trimmed_text(classes.step, 3) + " m");
    return legend;
}

std::string draw_fundamental_point(const Pixel& at) {
    constexpr double size = 7.0;
    return "<path d=\"M" + px(at.x) + ' ' + px(at.y - size) + 'l' + px(size) + ' ' + px(size * 1.7) + 'h' +
           px(-2 * size) +
           "z\" fill=\"#fff\" stroke=\"#111\" stroke-width=\"1.6\" stroke-linejoin=\"round\"/>\n" +
           "<circle cx=\"" + px(at.x) + "\" cy=\"" + px(at.y) + "\" r=\"1.4\" fill=\"#111\"/>\n" +
           text({at.x + 12, at.y + 5},
                "font-size=\"14\" font-weight=\"bold\" fill=\"#111\" stroke=\"#fff\" stroke-width=\"3.5\" "
                "stroke-linejoin=\"round\" stroke-opacity=\".85\" paint-order=\"stroke\"",
                "Rauenberg");
}

std::string extent_text(const GridAxis& range) {
    constexpr int decimals = 6;
    return trimmed_text(range.smallest, decimals) + "° to " + trimmed_text(range.largest, decimals) + "°";
}

std::string draw(const HeldModel& model, const GridSummary& summary, std::int64_t columnFactor,
                 std::int64_t rowFactor) {
    const Mesh mesh = mesh_of(model, columnFactor, rowFactor);
    const Sheet sheet = sheet_of(model);
    const Drawing drawing(mesh, sheet);
    const auto valueOf = [&model](std::int64_t number) {
        return static_cast<double>(model.values[static_cast<std::size_t>(number)]);
    };
    const Classes classes = classes_of(valueOf(summary.smallest), valueOf(summary.largest));

    std::optional<Pixel> fundamental;
    const double lon = model.lamR / degree;
    const double lat = model.phiR / degree;
    if (lon > 0.0 && lat > 0.0 && lon >= model.longitude.smallest && lon <= model.longitude.largest &&
        lat >= model.latitude.smallest && lat <= model.latitude.largest) {
        fundamental = sheet.place(lon, lat);
    }

    std::string regions;
    std::string lines;
    std::string labels;
    Labels labelling(sheet, fundamental);
    for (int index = 0; index < classes.count; ++index) {
        const double level = index == 0 ? valueOf(summary.smallest) : classes.level(index);
        regions +=
            "<path fill=\"" + colour_of_class(classes, index) + "\" d=\"" + drawing.region(level) + "\"/>\n";
        if (index == 0) {
            continue;
        }
        Path path;
        for (const std::vector<Pixel>& isoline : drawing.isolines(level)) {
            path.move(isoline.front());
            for (std::size_t number = 1; number < isoline.size(); ++number) {
                path.line(isoline[number]);
            }
            labels += labelling.along(isoline, classes.label(index));
        }
        lines += "<path d=\"" + path.text() + "\"/>\n";
    }
    std::string graticule;
    std::string ticks;
    draw_axis(sheet, true, graticule, ticks);
    draw_axis(sheet, false, graticule, ticks);

    constexpr double legendWidth = 190.0;
    constexpr double least = 560.0;  // for the lines above the map
    constexpr double legendHeight = 160.0;
    const double width = std::max(sheet.right() + legendWidth, least);
    const double height = std::max(sheet.bottom() + 40, sheet.top + legendHeight + classes.count * 21.0);
    const std::string size = "width=\"" + px(width) + "\" height=\"" + px(height) + "\"";
    const std::string frame = "x=\"" + px(sheet.left) + "\" y=\"" + px(sheet.top) + "\" width=\"" +
                              px(sheet.width) + "\" height=\"" + px(sheet.height) + "\"";
    const std::string inTenths = " transform=\"scale(.1)\"";
    const std::string drawn =
        columnFactor == 1 && rowFactor == 1
            ? ""
            : " (drawn: one in " + std::to_string(columnFactor) + " × " + std::to_string(rowFactor) + ")";
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" " + size + " viewBox=\"0 0 " + px(width) + ' ' +
           px(height) +
           "\" font-family=\"Helvetica,Arial,sans-serif\" font-size=\"12\" fill=\"#222\">\n"
           "<defs><pattern id=\"none\" width=\"6\" height=\"6\" patternUnits=\"userSpaceOnUse\" "
           "patternTransform=\"rotate(45)\"><path d=\"M0 0h6v6h-6z\" fill=\"#ececec\"/>"
           "<path d=\"M0 0v6\" stroke=\"#b5b5b5\" stroke-width=\"1.6\"/></pattern></defs>\n"
           "<rect " +
           size + " fill=\"#fff\"/>\n" +
           text({sheet.left, 32}, "font-size=\"20\" font-weight=\"bold\"", "Height anomalies of hoehe.ini") +
           text({sheet.left, 54}, "font-size=\"13\"",
                extent_text(model.longitude) + " E, " + extent_text(model.latitude) + " N") +
           text({sheet.left, 73}, "font-size=\"13\"",
                "spacing " + spacing_text(model.longitude.spacing) + " in longitude, " +
                    spacing_text(model.latitude.spacing) +
                    " in latitude: " + std::to_string(model.longitude.count) + " × " +
                    std::to_string(model.latitude.count) + " nodes" + drawn) +
           "<rect " + frame + " fill=\"url(#none)\"/>\n<g" + inTenths + ">\n" + regions + "</g>\n<g" +
           inTenths + " fill=\"none\" stroke=\"#111\" stroke-width=\"8\" stroke-linejoin=\"round\">\n" +
           lines + "</g>\n<g stroke=\"#000\" stroke-width=\".7\" stroke-opacity=\".3\">\n" + graticule +
           "</g>\n" + "<rect " + frame + " fill=\"none\" stroke=\"#222\" stroke-width=\"1.2\"/>\n" + ticks +
           "<g text-anchor=\"middle\" font-size=\"11\" font-weight=\"bold\" fill=\"#111\" stroke=\"#fff\" "
           "stroke-width=\"3\" stroke-linejoin=\"round\" stroke-opacity=\".8\" paint-order=\"stroke\">\n" +
           labels + "</g>\n" + (fundamental ? draw_fundamental_point(*fundamental) : std::string()) +
           draw_legend(sheet, classes) + "</svg>\n";
}

}  // namespace

std::string anomaly_map(const HeldModel& model, const GridSummary& summary) {
    constexpr std::int64_t mostNodes = 300;  // along one axis
    constexpr std::size_t mostBytes = 1'450'000;
    for (std::int64_t nodes = mostNodes;; nodes = nodes * 2 / 3) {
        const auto factor = [nodes](int count) {
            return std::max<std::int64_t>(1, (count + nodes - 2) / nodes);
        };
        std::string map = draw(model, summary, factor(model.longitude.count), factor(model.latitude.count));
        constexpr std::int64_t fewest = 8;
        if (map.size() <= mostBytes || nodes < fewest) {
            return map;
        }
    }
}

}  // namespace cli
