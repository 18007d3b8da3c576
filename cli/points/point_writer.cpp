#include "points/point_writer.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <utility>

#include "keeper/directory.h"
#include "keeper/parameter_text.h"
#include "points/angle_text.h"
#include "system/output.h"

namespace cli {
namespace {

constexpr std::size_t keptErrors = 21;  // of one piece; no more than these are told of a whole run
constexpr std::string_view unknown = "*";

constexpr std::array<double, 10> powersOfTen = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};

// Room for the largest double, which has 309 digits, and its decimals.
using NumberText = std::array<char, 340>;

// Writes a number whose last decimal is beyond doubt, as std::to_chars would: product and rounding lose less than the
// margin. It ends where the text ends. Returned: its beginning; null if it is not such a number.
char* write_plainly(NumberText& text, double value, int decimals, char decimalMark) {
    constexpr double largest = 1e12;
    constexpr double margin = 1e-3;  // an ulp below the largest is 1.2e-4
    if (decimals >= static_cast<int>(powersOfTen.size())) {
        return nullptr;
    }
    const double scaled = std::fabs(value) * powersOfTen[static_cast<std::size_t>(decimals)];
    if (!(scaled < largest)) {
        return nullptr;
    }
    auto rest = static_cast<std::uint64_t>(scaled + 0.5);  // NOLINT(bugprone-incorrect-roundings): see margin
    if (std::fabs(scaled - static_cast<double>(rest)) > 0.5 - margin) {
        return nullptr;
    }
    const bool negative = value < 0.0 && rest != 0;
    char* begin = text.data() + text.size();
    const auto put = [&begin, &rest] {
        *--begin = static_cast<char>('0' + rest % 10);
        rest /= 10;
    };
    for (int count = 0; count < decimals; ++count) {
        put();
    }
    if (decimals > 0) {
        *--begin = decimalMark;
    }
    do {
        put();
    } while (rest != 0);
    if (negative) {
        *--begin = '-';
    }
    return begin;
}

// A number at the end of a text, with a fixed count of decimals.
void append_fixed(std::string& text, double value, int decimals, char decimalMark) {
    NumberText digits;  // NOLINT(cppcoreguidelines-pro-type-member-init): written before it is read
    if (const char* const begin = write_plainly(digits, value, decimals, decimalMark); begin != nullptr) {
        text.append(std::string_view(begin, static_cast<std::size_t>(digits.data() + digits.size() - begin)));
        return;
    }
    char* const begin = digits.data();
    char* const end =
        std::to_chars(begin, begin + digits.size(), value, std::chars_format::fixed, decimals).ptr;
    if (decimals > 0) {
        end[-decimals - 1] = decimalMark;
    }
    const std::string_view written(begin, static_cast<std::size_t>(end - begin));
    const bool minusZero =
        written.front() == '-' && written.find_first_not_of("-0.,") == std::string_view::npos;
    text.append(written.substr(minusZero ? 1 : 0));
}

// A line with other texts in place of its coordinates.
struct Row {
    std::string_view line;
    const std::array<std::optional<Span>, 3>& fields;
    std::array<std::string_view, 3> texts;  // an empty one is no column
    std::optional<std::string_view> normal;
    std::string_view reason;  // an empty one is no column
};

class Composer {
  public:
    Composer(const LineForm& lineForm, std::string& output, bool asciiTexts)
        : form(lineForm), out(output), ascii(asciiTexts) {}

    void compose(const Row& row) {
        // The fields in the order in which they stand.
        std::array<std::size_t, 3> order = {};
        std::size_t count = 0;
        for (const std::size_t part : {0U, 1U, 2U}) {
            if (!row.fields[part]) {
                continue;
            }
            std::size_t place = count++;
            for (; place > 0 && row.fields[part]->begin < row.fields[order[place - 1]]->begin; --place) {
                order[place] = order[place - 1];
            }
            order[place] = part;
        }
        // New columns follow the height, or where there is none the last coordinate.
        const std::size_t anchor = row.fields[2] ? 2 : order[count > 0 ? count - 1 : 0];
        std::size_t done = 0;
        for (std::size_t place = 0; place < count; ++place) {
            const std::size_t part = order[place];
            const Span& field = *row.fields[part];
            replace(row.line.substr(done, field.begin - done), done > 0, field.end - field.begin,
                    row.texts[part]);
            done = field.end;
            if (part == anchor) {
                if (!row.fields[2] && !row.texts[2].empty()) {
                    insert(row.texts[2]);
                }
                if (row.normal) {
                    insert(*row.normal);
                }
            }
        }
        append_passed(row.line.substr(done), done > 0);
        for (const std::size_t part : {0U, 1U, 2U}) {
            const bool inserted = part == 2 && count > 0;
            if (!row.fields[part] && !inserted && !row.texts[part].empty()) {
                insert(row.texts[part]);
            }
        }
        if (!row.reason.empty()) {
            append_reason(row.reason);
        }
    }

  private:
    static constexpr std::size_t columnWidth =
        14;  // of coordinates between blanks, so that they stand in line

    // Text that is passed through. Behind a coordinate that stands between blanks, two of them take the place of those
    // that were there: they filled up a number that is gone.
    void append_passed(std::string_view text, bool behindField) {
        if (form.delimiter == blanks && behindField) {
            text.remove_prefix(std::min(text.find_first_not_of(" \t\v\f"), text.size()));
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
        const std::size_t content = before.find_last_not_of(" \t\v\f") + 1;
        append_passed(before.substr(0, content), behindField);
        const bool first = out.empty() || out.back() == '\n';
        align(text, std::max(before.size() - content + fieldSize, columnWidth + (first ? 0 : 1)), !first);
    }

    void insert(std::string_view text) {
        if (form.delimiter != blanks) {
            out += form.delimiter;
            out.append(text);
            return;
        }
        const bool first = out.empty() || out.back() == '\n';
        align(text, columnWidth + (first ? 0 : 1), !first);
    }

    void align(std::string_view text, std::size_t width, bool separated) {
        const std::size_t size = ascii ? text.size() : display_width(text);
        out.append(std::max<std::size_t>(width - std::min(width, size), separated ? 1 : 0), ' ');
        out.append(text);
    }

    void append_reason(std::string_view reason) {
        if (form.delimiter == blanks) {
            out.append("  ").append(reason);
            return;
        }
        out += form.delimiter;
        if (reason.find(form.delimiter) == std::string_view::npos &&
            reason.find('"') == std::string_view::npos) {
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
    bool ascii;
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

PointWriter::PointWriter(const RunOptions& runOptions, const std::string& directory,
                         const System& sourceSystem, const System& targetSystem, std::string targetFile,
                         std::string modelFile)
    : options(runOptions),
      source(sourceSystem),
      target(targetSystem),
      targetFileName(std::move(targetFile)),
      modelFileName(std::move(modelFile)),
      road(directory, sourceSystem, targetSystem),
      plausibility(sourceSystem),
      sourceGeocentric(sourceSystem.is(Kind::geocentric)),
      targetGeocentric(targetSystem.is(Kind::geocentric)),
      targetGeographic(targetSystem.is(Kind::geographic)) {}

void PointWriter::lines(std::string_view text, const LineForm& form, std::uint64_t firstLine,
                        Written& written) const {
    LineReader reader(form);
    PointLine read;
    for (std::uint64_t number = firstLine; !text.empty(); ++number) {
        const std::size_t feed = text.find('\n');
        std::string_view line = text.substr(0, feed);
        text.remove_prefix(feed == std::string_view::npos ? text.size() : feed + 1);
        const bool hasReturn = line.ends_with('\r');
        line.remove_suffix(hasReturn ? 1 : 0);
        this->line(line, hasReturn ? "\r\n" : "\n", number, reader, form, read, written);
    }
}

void PointWriter::line(std::string_view text, std::string_view end, std::uint64_t number, LineReader& reader,
                       const LineForm& form, PointLine& read, Written& written) const {
    if (is_passed_through(text)) {
        written.text.append(text).append(end);
        return;
    }
    ++written.tally.rows;
    reader.read(text, read);
    if (read.error.empty() && sourceGeocentric && !read.hasHeight) {
        read.error = "no third coordinate";
    }
    if (!read.error.empty()) {
        unreadable_row(text, number, form, read, written);
    } else {
        if (written.warning.text.empty() && !plausibility.fits(read.point)) {
            written.warning = {number, plausibility.likely_mistake(read.point)};
        }
        point_row(text, form, read, written);
    }
    written.text.append(end);
}

void PointWriter::unreadable_row(std::string_view text, std::uint64_t number, const LineForm& form,
                                 const PointLine& read, Written& written) const {
    ++written.tally.unreadable;
    if (written.errors.size() < keptErrors) {
        written.errors.push_back({number, read.error});
    }
    const bool third = read.fields[2].has_value() || sourceGeocentric || targetGeocentric;
    const auto normal = writes_normal(read) ? std::optional(unknown) : std::nullopt;
    Composer(form, written.text, true)
        .compose({text, read.fields, {unknown, unknown, third ? unknown : ""}, normal, read.error});
}

void PointWriter::overlong_line(const LineForm& form, std::uint64_t line, std::size_t limit,
                                Written& written) const {
    PointLine read;
    read.error = "the line is longer than " + std::to_string(limit) + " bytes";
    ++written.tally.rows;
    unreadable_row("", line, form, read, written);
    written.text += '\n';
}

// Whether a line has a place for the normal height: behind its height.
bool PointWriter::writes_normal(const PointLine& read) const {
    return options.normalWanted && !targetGeocentric && read.fields[2].has_value();
}

std::string PointWriter::reason_of(int status) const {
    return encoded(std::to_string(status) + " " +
                   message(status, status >= heightModelFrom ? modelFileName : targetFileName));
}

std::string PointWriter::encoded(const std::string& text) const {
    return options.latin1 ? latin1(text).value_or(text) : text;
}

void PointWriter::point_row(std::string_view text, const LineForm& form, const PointLine& read,
                            Written& written) const {
    // Where normal heights play no part, none is asked for.
    const bool normalGiven = options.normalGiven && !sourceGeocentric && (read.hasHeight || targetGeocentric);
    const bool normalWritten = options.normalWanted && !targetGeocentric && read.hasHeight;
    const bool heightsMatter = normalGiven || normalWritten;
    const Transformed transformed = road.transform(read.point, {normalGiven, heightsMatter});
    const int status = transformed.status;
    auto at = transformed.result;
    if (status >= heightModelFrom && !targetGeocentric && at[0] == 0.0 && at[1] == 0.0 && at[2] == 0.0) {
        // Where the height model is missing altogether the library may end early; the place does not hang on it.
        at = road.transform(read.point, {false, false}).result;
    }
    const bool complete = status == 0 || (status >= heightModelFrom && !heightsMatter);
    // A place without its height: all coordinates were computed, the height model gave nothing. Of X, Y, Z all hangs on
    // the height.
    const bool hasPlace = complete || (status >= heightModelFrom && !targetGeocentric &&
                                       (at[0] != 0.0 || at[1] != 0.0 || at[2] != 0.0));
    const bool hasThird = read.hasHeight || targetGeocentric;

    const WrittenForm& how = options.written;
    const char decimalMark = form.decimalComma ? ',' : '.';
    std::array<std::string, 4> numbers;
    const auto metres = [&](std::string& number, double value) {
        append_fixed(number, value, how.metreDecimals, decimalMark);
    };
    for (std::size_t part = 0; part < 2; ++part) {
        std::string& number = numbers[part];
        if (!hasPlace) {
            number = unknown;
        } else if (!targetGeographic) {
            metres(number, at[part]);
        } else if (how.withSeconds) {
            append_angle(number, at[part], how.degreeDecimals,
                         part == 0 ? Hemisphere::latitude : Hemisphere::longitude);
            std::replace(number.begin(), number.end(), '.', decimalMark);
            number = encoded(number);
        } else {
            append_fixed(number, at[part], how.degreeDecimals, decimalMark);
        }
    }
    if (hasThird) {
        const bool known = complete || (hasPlace && !normalGiven);
        known ? metres(numbers[2], at[2]) : void(numbers[2] = unknown);
    }
    if (normalWritten) {
        complete ? metres(numbers[3], at[3]) : void(numbers[3] = unknown);
    }
    std::string reason;
    if (!complete) {
        ++written.tally.statuses[status];
        reason = reason_of(status);
    }
    if (how.exchanged) {
        std::swap(numbers[0], numbers[1]);
    }
    const bool normalColumn = normalWritten || (writes_normal(read) && form.delimiter != blanks);
    Composer(form, written.text, !how.withSeconds)
        .compose({text,
                  read.fields,
                  {numbers[0], numbers[1], numbers[2]},
                  normalColumn ? std::optional<std::string_view>(numbers[3]) : std::nullopt,
                  reason});
}

PointWriter::Texts PointWriter::names() const {
    const bool degrees = targetGeographic && !options.written.withSeconds;
    Texts names = {"Hochwert [m]", "Rechtswert [m]", "ellipsoidische Höhe [m]"};
    if (targetGeocentric) {
        names = {"X [m]", "Y [m]", "Z [m]"};
    } else if (targetGeographic) {
        names[0] = degrees ? "Breite [°]" : "Breite";
        names[1] = degrees ? "Länge [°]" : "Länge";
    }
    if (options.written.exchanged) {
        std::swap(names[0], names[1]);
    }
    for (std::string& name : names) {
        name = encoded(name);
    }
    return names;
}

std::string PointWriter::heading(std::string_view line, const LineForm& form, bool hasHeight) const {
    LineReader reader(form);
    PointLine fields;
    fields.fields = reader.fields_of(line);
    if (!hasHeight) {
        fields.fields[2].reset();
    }
    Texts names = this->names();
    std::string normal = encoded("Normalhöhe [m]");
    if (!hasHeight && !targetGeocentric) {
        names[2].clear();
    }
    if (form.delimiter == blanks) {  // a name is one column
        for (std::string* const name : {&names[0], &names[1], &names[2], &normal}) {
            std::replace(name->begin(), name->end(), ' ', '_');
        }
    }
    std::string text;
    Composer(form, text, false)
        .compose({line,
                  fields.fields,
                  {names[0], names[1], names[2]},
                  writes_normal(fields) ? std::optional<std::string_view>(normal) : std::nullopt,
                  ""});
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
    auto behind = columns.begin() + static_cast<std::ptrdiff_t>(last) + 1;
    if (targetGeocentric && !hasHeight) {
        behind = columns.insert(behind, names[2]) + 1;
    }
    if (options.normalWanted && hasHeight && !targetGeocentric) {
        columns.insert(behind, encoded("Normalhöhe [m]"));
    }
    const std::string separator = form.delimiter == blanks ? "  " : std::string(1, form.delimiter);
    std::string text = "# ";
    for (const std::string& column : columns) {
        text += (text.size() > 2 ? separator : "") + column;
    }
    return text;
}

}  // namespace cli
