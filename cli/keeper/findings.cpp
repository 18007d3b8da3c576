#include "keeper/findings.h"

#include <algorithm>

#include "system/output.h"

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
