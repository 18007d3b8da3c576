#include "keeper/data_directory.h"

#include <algorithm>

#include "bulk/texts.h"
#include "datafiles/data_file.h"
#include "system/output.h"

namespace cli {
namespace {

// Returned: whether there is none.
bool complain_of(const Failure& failure) {
    if (failure.status != status::ok) {
        complain(status_text(failure.status, failure.file));
    }
    return failure.status == status::ok;
}

}  // namespace

bool have_same_axes(const SystemDescription& one, const SystemDescription& other) {
    return one.parameters[slot::semiMajorAxis] == other.parameters[slot::semiMajorAxis] &&
           one.parameters[slot::semiMinorAxis] == other.parameters[slot::semiMinorAxis];
}

bool have_same_datum_sets(const SystemDescription& one, const SystemDescription& other) {
    return std::all_of(datumSlots.begin(), datumSlots.end(), [&](std::size_t slot) {
        return one.parameters.at(slot) == other.parameters.at(slot);
    });
}

bool is_source_only(const ReadSystem& source, const ReadSystem& target) {
    return source.failure.status == status::ok &&
           target.failure.status == status::firstTwoColumns + status::secondColumn;
}

std::string status_text(Status status, std::string_view fileName) {
    return "status " + std::to_string(status) + ": " + message_text(status, fileName);
}

bool open_directory(const std::string& name, std::optional<Directory>& directory) {
    if (name.empty()) {
        complain("the name of the data directory is empty; the current one is .");
        return false;
    }
    if (name.size() > DataFile::maxDirectory) {
        complain("the name of the data directory has more than " + std::to_string(DataFile::maxDirectory) +
                 " bytes");
        return false;
    }
    return complain_of(directory.emplace(name).failure());
}

const DefinitionEntry* find_entry(const Directory& directory, int code) {
    const DefinitionEntry* const entry = directory.definition().find(code);
    if (entry == nullptr) {
        complain(std::to_string(code) + ": " + status_text(status::codeNotListed, ""));
    }
    return entry;
}

const ReadSystem* open_system(const Directory& directory, int code, Column column) {
    const DefinitionEntry* const entry = find_entry(directory, code);
    if (entry == nullptr) {
        return nullptr;
    }
    const ReadSystem& system = directory.system(*entry, column);
    return complain_of(system.failure) ? &system : nullptr;
}

}  // namespace cli
