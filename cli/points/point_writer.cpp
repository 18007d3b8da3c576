#include "points/point_writer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "bulk/texts.h"
#include "heights/height_model_file.h"
#include "keeper/data_directory.h"
#include "points/angle_text.h"
#include "system/output.h"
#include "system/text.h"

namespace cli {
namespace {

constexpr const char* unknown = "*";

constexpr std::array<double, 10> powersOfTen = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};

// Writes a number whose last decimal is beyond doubt, as std::to_chars would: product and rounding lose less than the
// margin. Returned: whether it is such a number.
bool append_plainly(std::string& text, double value, int decimals, char decimalMark) {
    constexpr double largest = 1e12;
    constexpr double margin = 1e-3;  // an ulp below the largest is 1.2e-4
    if (decimals >= static_cast<int>(powersOfTen.size())) {
        return false;
    }
    const double scaled = std::fabs(value) * powersOfTen[static_cast<std::size_t>(decimals)];
    if (!(scaled < largest)) {
        return false;
    }
    auto rest = static_cast<std::uint64_t>(scaled + 0.5);  // NOLINT(bugprone-incorrect-roundings): see margin
    if (std::fabs(scaled - static_cast<double>(rest)) > 0.5 - margin) {
        return false;
    }
    const bool negative = value < 0.0 && rest != 0;
    std::array<char, 24> digits = {};
    auto begin = digits.end();
    for (int count = 0; count <= decimals || rest != 0; ++count) {
        if (count == decimals && count > 0) {
            *--begin = decimalMark;
        }
        *--begin = static_cast<char>('0' + rest % 10);
        rest /= 10;
    }
    if (negative) {
        *--begin = '-';
    }
    text.append(begin, digits.end());
    return true;
}

// A number at the end of a text, with a fixed count of decimals.
void append_fixed(std::string& text, double value, int decimals, char decimalMark) {
    if (append_plainly(text, value, decimals, decimalMark)) {
        return;
    }
    std::string digits = fixed_text(value, decimals);
    std::replace(digits.begin(), digits.end(), '.', decimalMark);
    const bool minusZero = digits.front() == '-' && digits.find_first_not_of("-0.,") == std::string::npos;
    text.append(digits, minusZero ? 1 : 0);
}

// Writes lines with other texts in place of their coordinates.
class Composer {
  public:
    Composer(const LineForm& lineForm, std::string& output) : form(lineForm), out(output) {}

    // An empty text has no column where the line has none, neither has an empty reason.
    void compose(std::string_view line, const Fields& fields, const Texts& texts, bool hasNormal,
                 std::string_view reason) {
        // The fields in the order in which they stand; those that the line lacks behind them.
        const auto beginOf = [&](std::size_t part) {
            return fields[part] ? fields[part]->begin : std::string_view::npos;
        };
        std::array<std::size_t, 3> order = {0, 1, 2};
        std::sort(order.begin(), order.end(),
                  [&](std::size_t a, std::size_t b) { return beginOf(a) < beginOf(b); });
        std::size_t done = 0;
        std::size_t place = 0;
        for (; place < order.size() && fields[order[place]]; ++place) {
            const std::size_t part = order[place];
            const Span& field = *fields[part];
            replace(line.substr(done, field.begin - done), done > 0, field.end - field.begin, texts[part]);
            done = field.end;
            // New columns follow the height, or where there is none the last coordinate.
            const bool isLast = place + 1 == order.size() || !fields[order[place + 1]];
            if (fields[2] ? part != 2 : !isLast) {
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
            const bool inserted = part == 2 && place > 0;
            if (!fields[part] && !inserted && !texts[part].empty()) {
                insert(texts[part]);
            }
        }
        if (!reason.empty()) {
            append_reason(reason);
        }
    }

  private:
    // Text that is passed through. Behind a coordinate that stands between blanks, two of them take the place of those
    // that were there: they filled up a number that is gone.
    void append_passed(std::string_view text, bool behindField) {
        if (form.delimiter == blanks && behindField) {
            text.remove_prefix(std::min(text.find_first_not_of(blankCharacters), text.size()));
            out.append(text.empty() ? "" : "  ");
        }
        out.append(text);
    }

    // A field behind the text that stands before it.
    void replace(std::string_view before, bool behindField, std::size_t fieldSize, std::string_view text) {
        if (form.delimiter != blanks) {
            out.append(before).append(text);
            return;
        }
        const std::size_t content = before.find_last_not_of(blankCharacters) + 1;
        append_passed(before.substr(0, content), behindField);
        align(text, before.size() - content + fieldSize);
    }

    void insert(std::string_view text) {
        if (form.delimiter != blanks) {
            (out += form.delimiter).append(text);
        } else {
            align(text, 0);
        }
    }

    void align(std::string_view text, std::size_t width) {
        constexpr std::size_t columnWidth = 14;  // of coordinates between blanks, so that they stand in line
        const std::size_t separator = out.empty() || out.back() == '\n' ? 0 : 1;
        width = std::max(width, columnWidth + separator);
        out.append(std::max(width - std::min(width, display_width(text)), separator), ' ').append(text);
    }

    void append_reason(std::string_view reason) {
        if (form.delimiter == blanks) {
            out.append("  ").append(reason);
            return;
        }
        out += form.delimiter;
        const std::array special = {form.delimiter, '"'};
        if (reason.find_first_of(special.data(), 0, special.size()) == std::string_view::npos) {
            out.append(reason);
            return;
        }
        out += '"';
        for (const char character : reason) {
            out.append(character == '"' ? 2 : 1, character);
        }
        out += '"';
    }

    const LineForm& form;
    std::string& out;
};

}  // namespace

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
      normalGiven(runOptions.normalGiven && !sourceGeocentric),
      normalColumn(runOptions.normalWanted && !targetGeocentric),
      road(source.description, target.description,
           normalGiven || normalColumn ? directory.height_model() : nullptr),
      plausibility(source.description) {}

void PointWriter::lines(std::string_view text, const LineForm& form, std::uint64_t firstLine,
                        Written& written) const {
    PointLineReader reader(form);
    PointLine read;
    for (std::uint64_t number = firstLine; !text.empty(); ++number) {
        const auto [line, end] = take_line(text);
        if (is_passed_through(line)) {
            written.text.append(line);
        } else {
            reader.read(line, read);
            row(line, number, form, read, written);
        }
        written.text.append(end);
    }
}

void PointWriter::overlong_line(const LineForm& form, std::uint64_t line, std::size_t limit,
                                Written& written) const {
    PointLine read;
    read.error = "the line is longer than " + std::to_string(limit) + " bytes";
    row("", line, form, read, written);
    written.text += '\n';
}

void PointWriter::row(std::string_view line, std::uint64_t number, const LineForm& form, PointLine& read,
                      Written& written) const {
    ++written.tally.rows;
    if (read.error.empty() && sourceGeocentric && !read.hasHeight) {
        read.error = "no third coordinate";
    }
    if (read.error.empty()) {
        if (written.warning.text.empty() && !plausibility.fits(read.point)) {
            written.warning = {number, plausibility.likely_mistake(read.point)};
        }
        point_row(line, form, read, written);
        return;
    }
    ++written.tally.unreadable;
    if (written.errors.size() <= mostErrors) {
        written.errors.push_back({number, read.error});
    }
    const bool hasThird = read.fields[2] || sourceGeocentric || targetGeocentric;
    Composer(form, written.text)
        .compose(line, read.fields, {unknown, unknown, hasThird ? unknown : "", unknown},
                 normalColumn && read.fields[2], read.error);
}

std::string PointWriter::encoded(const std::string& text) const {
    return options.latin1 ? latin1(text).value_or(text) : text;
}

void PointWriter::point_row(std::string_view line, const LineForm& form, const PointLine& read,
                            Written& written) const {
    // Where normal heights play no part, none is asked for.
    const bool isNormal = normalGiven && (read.hasHeight || targetGeocentric);
    const bool normalWritten = normalColumn && read.hasHeight;
    const CarriedPoint carried = road.carry(
        read.point,
        {.sourceIsNormal = isNormal, .targetWantsNormal = isNormal || normalWritten, .alsoUnasked = false});
    const auto& at = carried.at;

    const char decimalMark = form.decimalComma ? ',' : '.';
    Texts numbers;
    for (const std::size_t part : {0U, 1U}) {
        std::string& number = numbers[part];
        if (!carried.hasPlace) {
            number = unknown;
        } else if (targetGeographic && options.withSeconds) {
            append_angle(number, at[part], options.degreeDecimals,
                         part == 0 ? Hemisphere::latitude : Hemisphere::longitude);
            std::replace(number.begin(), number.end(), '.', decimalMark);
            number = encoded(number);
        } else {
            append_fixed(number, at[part], targetGeographic ? options.degreeDecimals : options.metreDecimals,
                         decimalMark);
        }
    }
    const auto writeHeight = [&](std::size_t part, bool known) {
        if (known) {
            append_fixed(numbers[part], at[part], options.metreDecimals, decimalMark);
        } else {
            numbers[part] = unknown;
        }
    };
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
        std::swap(numbers[0], numbers[1]);
    }
    const bool hasNormal = normalWritten || (normalColumn && read.fields[2] && form.delimiter != blanks);
    Composer(form, written.text).compose(line, read.fields, numbers, hasNormal, reason);
}

// Of the coordinates, and of the normal height.
Texts PointWriter::names() const {
    Texts names = {"Hochwert [m]", "Rechtswert [m]", "ellipsoidische Höhe [m]", "Normalhöhe [m]"};
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
    Texts names = this->names();
    if (!hasHeight) {
        fields[2].reset();
        names[2] = targetGeocentric ? names[2] : "";
    }
    if (form.delimiter == blanks) {  // a name is one column
        for (std::string& name : names) {
            std::replace(name.begin(), name.end(), ' ', '_');
        }
    }
    std::string text;
    Composer(form, text).compose(line, fields, names, normalColumn && fields[2], "");
    return text;
}

std::string PointWriter::label(const LineForm& form, bool hasHeight) const {
    const Texts names = this->names();
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
