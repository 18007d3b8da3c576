#include "keeper/findings.h"

#include <algorithm>
#include <utility>

#include "datafiles/field_scanner.h"
#include "system/output.h"
#include "system/text.h"

namespace cli {
namespace {

constexpr std::size_t keptOfAKind = 20;

}  // namespace

void Findings::add(bool isDefect, std::string_view kind, const std::string& text) {
    auto group = std::find_if(groups.begin(), groups.end(), [isDefect, kind](const Group& known) {
        return known.isDefect == isDefect && known.kind == kind;
    });
    if (group == groups.end()) {
        groups.push_back({isDefect, std::string(kind), {}, 0});
        group = groups.end() - 1;
    }
    ++group->count;
    if (group->texts.size() < keptOfAKind) {
        group->texts.push_back(text);
    }
}

void Findings::overlong_line(const lagestatus::LineReader& lines, const std::string& file) {
    const std::int64_t number = lines.last_overlong();
    const std::pair told(file, number);
    if (number == 0 || std::exchange(overlongTold, told) == told) {
        return;
    }
    constexpr std::size_t longest = lagestatus::LineReader::maxLength;
    defect("too long lines in " + file, file + ": line " + std::to_string(number) + ": " +
                                            std::to_string(longest + 1) +
                                            " characters or more: what is beyond the first " +
                                            std::to_string(longest) + " is read as another line");
}

void Findings::reading_error(const lagestatus::LineReader& lines, const std::string& file) {
    if (lines.failed()) {
        defect("file", file + ": cannot be read to its end");
    }
}

void Findings::decimal_commas(const lagestatus::LineReader& lines, int numbers, const std::string& file) {
    lagestatus::FieldScanner scanner(lines.text());
    double value = 0.0;
    while (numbers-- > 0 && scanner.number(value)) {
        if (scanner.remaining().starts_with(',')) {
            defect("decimal commas in " + file, file + ": line " + std::to_string(lines.number()) + ": " +
                                                    excerpt(lines.text()) + " is read as " +
                                                    number_text(value) + ": numbers have a decimal point");
            return;
        }
    }
}

std::size_t Findings::defects() const {
    std::size_t count = 0;
    for (const Group& group : groups) {
        count += group.isDefect ? group.count : 0;
    }
    return count;
}

void Findings::print() const {
    for (const Group& group : groups) {
        const std::string head = group.isDefect ? "  defect: " : "  note: ";
        for (const std::string& text : group.texts) {
            put(head + text + '\n');
        }
        if (group.count > group.texts.size()) {
            put(head + "and " + std::to_string(group.count - group.texts.size()) + " more: " + group.kind +
                '\n');
        }
    }
}

}  // namespace cli
