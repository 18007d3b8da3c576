#include "datafiles/definition_file.h"

#include <algorithm>

#include "datafiles/data_file.h"
#include "datafiles/field_scanner.h"
#include "datafiles/line_reader.h"

namespace lagestatus {
namespace {

constexpr int plainLines = 0;  // DEFAULT is never scrambled

}  // namespace

Status read_definition_file(std::string_view directory, DefinitionRecord& record) noexcept {
    DataFile file;
    if (!file.open(directory, "DEFAULT")) {
        return status::definitionFileNotOpened;
    }
    Line line;
    if (const Status read = next_data_line(file, line, plainLines); read != status::ok) {
        return read;
    }
    FieldScanner head(line.text());
    int count = 0;
    if (!head.integer(count)) {
        return status::definitionHead;
    }
    int flag = 0;
    record.scrambled = head.integer(flag) && flag == 1;
    record.count = std::min(count, static_cast<int>(maxEntries));

    for (int number = 0; number < record.count; ++number) {
        DefinitionEntry& entry = record.entries[static_cast<std::size_t>(number)];
        if (const Status read = next_data_line(file, line, plainLines); read != status::ok) {
            return read;
        }
        FieldScanner fields(line.text());
        if (!fields.integer(entry.code)) {
            return status::definitionEntryCode + number;
        }
        if (!fields.integer(entry.auxiliary)) {
            entry.auxiliary = noAuxiliary;
        }
        if (const Status read = next_data_line(file, line, plainLines); read != status::ok) {
            return read;
        }
        const std::string_view name = quoted_text(line.text(), nameSize);
        if (name.empty()) {
            return status::definitionEntryName + number;
        }
        entry.name.assign(name);
        ++record.complete;
    }
    return status::ok;
}

}  // namespace lagestatus
