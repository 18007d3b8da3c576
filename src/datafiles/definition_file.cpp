#include "datafiles/definition_file.h"

#include <algorithm>

#include "datafiles/field_scanner.h"

namespace lagestatus {

const DefinitionEntry* DefinitionRecord::find(int code) const noexcept {
    const auto* const end = entries.data() + complete;
    const auto* const entry =
        std::find_if(entries.data(), end, [code](const DefinitionEntry& each) { return each.code == code; });
    return entry == end ? nullptr : entry;
}

Status read_definition_file(std::string_view directory, DefinitionRecord& record) noexcept {
    LineReader lines;
    return lines.open(directory, definitionFileName) ? read_definition(lines, record)
                                                     : status::definitionFileNotOpened;
}

Status read_definition(LineReader& lines, DefinitionRecord& record) noexcept {
    if (const Status read = lines.next(); read != status::ok) {
        return read;
    }
    FieldScanner head(lines.text());
    if (!head.integer(record.announced)) {
        return status::definitionHead;
    }
    record.scrambled = head.integer(record.flag) && record.flag == 1;
    record.count = std::min(record.announced, static_cast<int>(maxEntries));

    for (int number = 0; number < record.count; ++number) {
        DefinitionEntry& entry = record.entries[static_cast<std::size_t>(number)];
        if (const Status read = lines.next(); read != status::ok) {
            return read;
        }
        FieldScanner fields(lines.text());
        if (!fields.integer(entry.code)) {
            return status::definitionEntryCode + number;
        }
        if (!fields.integer(entry.auxiliary)) {
            entry.auxiliary = noAuxiliary;
        }
        if (const Status read = lines.next(); read != status::ok) {
            return read;
        }
        const std::string_view name = quoted_text(lines.text(), nameSize);
        if (name.empty()) {
            return status::definitionEntryName + number;
        }
        entry.name.assign(name);
        ++record.complete;
    }
    return status::ok;
}

}  // namespace lagestatus
