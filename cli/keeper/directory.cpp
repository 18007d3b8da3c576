#include "keeper/directory.h"

#include <algorithm>
#include <filesystem>
#include <optional>

#include "system/output.h"
#include "system/platform.h"

namespace cli {

std::string in_directory(const std::string& directory, const std::string& name) {
    constexpr char separator = static_cast<char>(std::filesystem::path::preferred_separator);
    return directory == "." ? name : directory + separator + name;
}

std::string status_text(int status, std::string_view fileName) {
    return "status " + std::to_string(status) + ": " + message(status, fileName);
}

const Entry* find_entry(const Definition& definition, int code) {
    const auto found = std::find_if(definition.entries.begin(), definition.entries.end(),
                                    [code](const Entry& entry) { return entry.code == code; });
    return found == definition.entries.end() ? nullptr : &*found;
}

bool open_directory(const std::string& directory, Definition& definition) {
    if (directory.empty()) {
        complain("the name of the data directory is empty; the current one is .");
        return false;
    }
    const std::optional<std::string> bytes = directory_bytes(directory);
    if (!bytes) {
        complain(directory + ": data directories may have the characters of Windows-1252 only");
        return false;
    }
    if (bytes->size() >= LAGESTATUS_NAME_SIZE) {
        complain("the name of the data directory has more than " + std::to_string(LAGESTATUS_NAME_SIZE - 1) +
                 " characters");
        return false;
    }
    definition = read_definition(directory);
    if (definition.status != 0) {
        complain(status_text(definition.status, in_directory(directory, "DEFAULT")));
    }
    return definition.status == 0;
}

bool open_system(const std::string& directory, const Definition& definition, int code, Role role,
                 System& system) {
    const Entry* const entry = find_entry(definition, code);
    if (entry == nullptr) {
        complain(std::to_string(code) + ": " + status_text(codeNotListed, ""));
        return false;
    }
    system = read_system(directory, definition, *entry, role);
    if (system.status != 0) {
        complain(
            status_text(system.status, in_directory(directory, parameter_file_name(definition, *entry))));
    }
    return system.status == 0;
}

bool is_source_only(const System& source, const System& target) {
    // Its first line of two numbers is then the first to miss the second.
    constexpr int firstOfSecondColumn = 70;
    return source.status == 0 && target.status == firstOfSecondColumn;
}

}  // namespace cli
