#include "points/point_writer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "bulk/texts.h"
#include "heights/height_model_file.h"
#include "keeper/data_directory.h"
#include "points/angle_text.h"
#include "points/number_text.h"
#include "system/output.h"
#include "system/text.h"

namespace cli {
namespace {

constexpr const char* unknown = "*";
constexpr std::size_t mostTogether = 256;  // rows

// What the heights of points are. Where normal heights play no part, none is asked for.
HeightFlags flags(bool normalGiven, bool normalWanted) {
    return {.sourceIsNormal = normalGiven,
            .targetWantsNormal = normalGiven || normalWanted,
            .alsoUnasked = false};
}

}  // namespace

// Writes lines with other texts in place of their coordinates.
class Composer {
  public:
    // In place of the coordinates, and behind the third one.
    using Texts = std::array<std::string_view, 4>;

    // plain: whether texts have a byte a character.
    Composer(const LineForm& lineForm, bool plain, TextBuffer& output)
        : delimiter(lineForm.delimiter),
          decimalMark(lineForm.decimalComma ? ',' : '.'),
          isPlain(plain),
          count(lineForm.columns.size()),
          out(output) {
        const auto columnOf = [&](std::size_t part) {
            return part < count ? lineForm.columns[part] : std::string_view::npos;
        };
        std::sort(order.begin(), order.end(),
                  [&](std::size_t a, std::size_t b) { return columnOf(a) < columnOf(b); });
    }

    // An empty text has no column where the line has none, neither has an empty reason.
    void compose(std::string_view line, const Fields& fields, const Texts& texts, bool hasNormal,
                 std::string_view reason) {
        // The fields in the order in which they stand; those that the line lacks behind them.
        std::size_t done = 0;
        std::size_t left = 0;
        for (std::size_t part = 0; part < count; ++part) {
            left += fields[part] ? 1 : 0;
        }
        const bool any = left > 0;
        for (std::size_t place = 0; left > 0; ++place) {
            const std::size_t part = order[place];
            if (!fields[part]) {
                continue;
            }
            const Span& field = *fields[part];
            replace(line.substr(done, field.begin - done), done > 0, field.end - field.begin, texts[part]);
            done = field.end;
            --left;
            // New columns follow the height, or where there is none the last coordinate.
            if (fields[2] ? part != 2 : left > 0) {
                continue;
            }
            if (!fields[2] && !texts[2].empty()) {
                insert(texts[2]);
            }
            if (hasNormal) {
                insert(texts[3]);
            }
        }
        append_passed(line.substr(done), done > 0);
        for (const std::size_t part : {0U, 1U, 2U}) {
            const bool inserted = part == 2 && any;
            if (!fields[part] && !inserted && !texts[part].empty()) {
                insert(texts[part]);
            }
        }
        if (!reason.empty()) {
            append_reason(reason);
        }
    }

    const char delimiter;
    const char decimalMark;

  private:
    // Text that is passed through. Behind a coordinate that stands between blanks, two of them take the place of those
    // that were there: they filled up a number that is gone.
    void append_passed(std::string_view text, bool behindField) {
        if (delimiter == blanks && behindField) {
            while (!text.empty() && is_gap(text.front())) {
                text.remove_prefix(1);
            }
            out.append(text.empty() ? "" : "  ");
        }
        out.append(text);
    }

    // A field behind the text that stands before it.
    void replace(std::string_view before, bool behindField, std::size_t fieldSize, std::string_view text) {
        if (delimiter != blanks) {
            out.append(before);
            out.append(text);
            return;
        }
        std::size_t content = before.size();
        while (content > 0 && is_gap(before[content - 1])) {
            --content;
        }
        append_passed(before.substr(0, content), behindField);
        align(text, before.size() - content + fieldSize);
    }

    void insert(std::string_view text) {
        if (delimiter != blanks) {
            out.append(delimiter);
            out.append(text);
        } else {
            align(text, 0);
        }
    }

    void align(std::string_view text, std::size_t width) {
        constexpr std::size_t columnWidth = 14;  // of coordinates between blanks, so that they stand in line
        const std::size_t separator = out.empty() || out.view().back() == '\n' ? 0 : 1;
        width = std::max(width, columnWidth + separator);
        const std::size_t shown = isPlain ? text.size() : display_width(text);
        out.append(std::max(width - std::min(width, shown), separator), ' ');
        out.append(text);
    }

    void append_reason(std::string_view reason) {
        if (delimiter == blanks) {
            out.append("  ");
            out.append(reason);
            return;
        }
        out.append(delimiter);
        const std::array special = {delimiter, '"'};
        if (reason.find_first_of(special.data(), 0, special.size()) == std::string_view::npos) {
            out.append(reason);
            return;
        }
        out.append('"');
        for (const char character : reason) {
            out.append(character == '"' ? 2 : 1, character);
        }
        out.append('"');
    }

    const bool isPlain;
    const std::size_t count;                       // of parts that can have fields
    std::array<std::size_t, 3> order = {0, 1, 2};  // of these, as their columns stand
    TextBuffer& out;
};

void Tally::add(const Tally& other) {
    rows += other.rows;
    unreadable += other.unreadable;
    for (const auto& [status, count] : other.statuses) {
        statuses[status] += count;
    }
}

std::string Tally::summary() const {
    std::uint64_t failed = unreadable;
    std::string reasons = unreadable > 0 ? std::to_string(unreadable) + " unreadable" : "";
    for (const auto& [status, count] : statuses) {
        failed += count;
        reasons +=
            (reasons.empty() ? "" : ", ") + std::to_string(count) + " with status " + std::to_string(status);
    }
    return std::to_string(failed) + " of " + std::to_string(rows) + " points failed: " + reasons;
}

void Written::clear() {
    text.clear();
    tally = {};
    errors.clear();
    warning.text.clear();
}

PointWriter::PointWriter(const RunOptions& runOptions, const Directory& directory, const ReadSystem& source,
                         const ReadSystem& target)
    : options(runOptions),
      targetPath(target.file),
      modelPath(directory.path_of(heightModelFileName)),
      sourceGeocentric(is(ProjectionKind::geocentric, source.description)),
      targetGeocentric(is(ProjectionKind::geocentric, target.description)),
      targetGeographic(is(ProjectionKind::geographic, target.description)),
      writesAngles(targetGeographic && runOptions.withSeconds),
      normalGiven(runOptions.normalGiven && !sourceGeocentric),
      normalColumn(runOptions.normalWanted && !targetGeocentric),
      model(normalGiven || normalColumn ? directory.height_model() : nullptr),
      road(source.description, target.description, model),
      withHeight(road, flags(normalGiven, normalColumn), model.get(), runOptions.fast),
      withoutHeight(road, flags(normalGiven && targetGeocentric, false), model.get(), runOptions.fast),
      plausibility(source.description) {}

// Points of rows that take the same road, and what became of them.
struct PointWriter::Together {
    std::vector<Point> points;
    std::vector<Row*> rows;
    std::array<CarriedPoint, mostTogether> carried;
};

void PointWriter::lines(std::string_view text, const LineForm& form, std::uint64_t firstLine,
                        Written& written) const {
    PointLineReader reader(form);
    Composer composer(form, !writesAngles, written.text);
    std::vector<Row> rows;
    Together together;
    while (!text.empty()) {
        std::size_t count = 0;
        take_rows(text, reader, firstLine, rows, count);
        const std::span read(rows.data(), count);
        carry(read, together);
        for (const Row& row : read) {
            write_row(row, composer, written);
        }
        firstLine += count;
    }
}

// Takes some lines from a text and reads them. rows: kept for the next ones; count: those that were read.
void PointWriter::take_rows(std::string_view& text, PointLineReader& reader, std::uint64_t firstLine,
                            std::vector<Row>& rows, std::size_t& count) const {
    for (count = 0; count < mostTogether && !text.empty(); ++count) {
        if (count == rows.size()) {
            rows.emplace_back();
        }
        Row& row = rows[count];
        const TextLine taken = take_line(text);
        row.line = taken.text;
        row.end = taken.end;
        row.number = firstLine + count;
        row.passed = is_passed_through(row.line);
        if (!row.passed) {
            reader.read(row.line, row.read);
            if (row.read.error.empty() && sourceGeocentric && !row.read.hasHeight) {
                row.read.error = "no third coordinate";
            }
        }
    }
}

void PointWriter::carry(std::span<Row> rows, Together& together) const {
    auto& [points, taken, carried] = together;
    for (const bool hasHeight : {true, false}) {
        points.clear();
        taken.clear();
        for (Row& row : rows) {
            if (!row.passed && row.read.error.empty() && row.read.hasHeight == hasHeight) {
                points.push_back(row.read.point);
                taken.push_back(&row);
            }
        }
        (hasHeight ? withHeight : withoutHeight).carry(points, carried);
        for (std::size_t i = 0; i < taken.size(); ++i) {
            taken[i]->carried = carried[i];
        }
    }
}

void PointWriter::overlong_line(const LineForm& form, std::uint64_t line, std::size_t limit,
                                Written& written) const {
    Row row;
    row.end = "\n";
    row.number = line;
    row.read.error = "the line is longer than " + std::to_string(limit) + " bytes";
    Composer composer(form, true, written.text);
    write_row(row, composer, written);
}

void PointWriter::write_row(const Row& row, Composer& composer, Written& written) const {
    if (row.passed) {
        written.text.append(row.line);
    } else {
        ++written.tally.rows;
        if (row.read.error.empty()) {
            write_point(row, composer, written);
        } else {
            write_failed(row, composer, written);
        }
    }
    written.text.append(row.end);
}

void PointWriter::write_failed(const Row& row, Composer& composer, Written& written) const {
    ++written.tally.unreadable;
    if (written.errors.size() <= mostErrors) {
        written.errors.push_back({row.number, row.read.error});
    }
    const Fields& fields = row.read.fields;
    const bool hasThird = fields[2] || sourceGeocentric || targetGeocentric;
    composer.compose(row.line, fields, {unknown, unknown, hasThird ? unknown : "", unknown},
                     normalColumn && fields[2], row.read.error);
}

// Whether its normal height is to be written.
bool PointWriter::wants_normal(const PointLine& read) const {
    return normalColumn && read.hasHeight;
}

std::string PointWriter::encoded(const std::string& text) const {
    return options.latin1 ? latin1(text).value_or(text) : text;
}

void PointWriter::write_point(const Row& row, Composer& composer, Written& written) const {
    const PointLine& read = row.read;
    const CarriedPoint& carried = row.carried;
    const auto& at = carried.at;
    if (written.warning.text.empty() && !plausibility.fits(read.point)) {
        written.warning = {row.number, plausibility.likely_mistake(read.point)};
    }
    std::array<std::array<char, longestNumber>, 4> numbers;
    std::array<std::string, 2> angles;
    Composer::Texts texts = {unknown, unknown, "", ""};
    const auto write = [&](std::size_t part, int decimals) {
        char* const number = numbers[part].data();
        texts[part] = {number, write_number(number, at[part], decimals, composer.decimalMark)};
    };
    for (const std::size_t part : {0U, 1U}) {
        if (carried.hasPlace && writesAngles) {
            std::string& angle = angles[part];
            append_angle(angle, at[part], options.degreeDecimals,
                         part == 0 ? Hemisphere::latitude : Hemisphere::longitude);
            std::replace(angle.begin(), angle.end(), '.', composer.decimalMark);
            angle = encoded(angle);
            texts[part] = angle;
        } else if (carried.hasPlace) {
            write(part, targetGeographic ? options.degreeDecimals : options.metreDecimals);
        }
    }
    const auto writeHeight = [&](std::size_t part, bool known) {
        if (known) {
            write(part, options.metreDecimals);
        } else {
            texts[part] = unknown;
        }
    };
    const bool normalWritten = wants_normal(read);
    if (read.hasHeight || targetGeocentric) {
        writeHeight(2, carried.hasHeight);
    }
    if (normalWritten) {
        writeHeight(3, carried.hasNormal);
    }
    std::string reason;
    if (const Status status = carried.status; status != status::ok) {
        ++written.tally.statuses[status];
        const std::string& file = status >= status::heightModel ? modelPath : targetPath;
        reason = encoded(std::to_string(status) + " " + message_text(status, file));
    }
    if (options.exchanged) {
        std::swap(texts[0], texts[1]);
    }
    const bool hasNormal = normalWritten || (normalColumn && read.fields[2] && composer.delimiter != blanks);
    composer.compose(row.line, read.fields, texts, hasNormal, reason);
}

PointWriter::Names PointWriter::names() const {
    Names names = {"Hochwert [m]", "Rechtswert [m]", "ellipsoidische Höhe [m]", "Normalhöhe [m]"};
    if (targetGeocentric) {
        names = {"X [m]", "Y [m]", "Z [m]"};
    } else if (targetGeographic) {
        names[0] = options.withSeconds ? "Breite" : "Breite [°]";
        names[1] = options.withSeconds ? "Länge" : "Länge [°]";
    }
    if (options.exchanged) {
        std::swap(names[0], names[1]);
    }
    std::transform(names.begin(), names.end(), names.begin(),
                   [this](const std::string& name) { return encoded(name); });
    return names;
}

std::string PointWriter::heading(std::string_view line, const LineForm& form, bool hasHeight) const {
    Fields fields = PointLineReader(form).fields_of(line);
    Names names = this->names();
    if (!hasHeight) {
        fields[2].reset();
        names[2] = targetGeocentric ? names[2] : "";
    }
    if (form.delimiter == blanks) {  // a name is one column
        for (std::string& name : names) {
            std::replace(name.begin(), name.end(), ' ', '_');
        }
    }
    TextBuffer text;
    Composer(form, false, text)
        .compose(line, fields, {names[0], names[1], names[2], names[3]}, normalColumn && fields[2], "");
    return std::string(text.view());
}

std::string PointWriter::label(const LineForm& form, bool hasHeight) const {
    const Names names = this->names();
    std::vector<std::string> columns;
    std::size_t last = 0;
    for (std::size_t part = 0; part < form.columns.size(); ++part) {
        if (part == 2 && !hasHeight) {
            break;
        }
        const std::size_t column = form.columns[part];
        columns.resize(std::max(columns.size(), column + 1), "-");
        columns[column] = names[part];
        last = part == 2 ? column : std::max(last, column);
    }
    const auto behind = columns.begin() + static_cast<std::ptrdiff_t>(last) + 1;
    if (targetGeocentric && !hasHeight) {
        columns.insert(behind, names[2]);
    } else if (normalColumn && hasHeight) {
        columns.insert(behind, names[3]);
    }
    const std::string separator = form.delimiter == blanks ? "  " : std::string(1, form.delimiter);
    std::string text = "# ";
    for (const std::string& column : columns) {
        text += (text.size() > 2 ? separator : "") + column;
    }
    return text;
}

}  // namespace cli
