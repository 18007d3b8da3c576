#include "keeper/data_directory.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <utility>

#include "base/messages.h"
#include "system/output.h"
#include "system/platform.h"
#include "system/text.h"

namespace cli {
namespace {

std::string utf8_of(std::u16string_view units) {
    return cli::utf8_of(std::string(units.begin(), units.end()));
}

}  // namespace

std::string System::name() const {
    return cli::utf8_of(systemName.view());
}
std::string System::ellipsoid() const {
    return cli::utf8_of(ellipsoidName.view());
}
std::string System::kind_text() const {
    return cli::utf8_of(projectionKind.view());
}

bool System::has_axes_of(const System& other) const {
    return parameters[slot::semiMajorAxis] == other.parameters[slot::semiMajorAxis] &&
           parameters[slot::semiMinorAxis] == other.parameters[slot::semiMinorAxis];
}

bool System::has_datum_sets_of(const System& other) const {
    return std::all_of(datumSlots.begin(), datumSlots.end(),
                       [&](std::size_t slot) { return parameters.at(slot) == other.parameters.at(slot); });
}

std::string DataDirectory::file_name(const DefinitionEntry& entry) const {
    return cli::utf8_of(parameter_file_name(entry.name.view(), definition.scrambled).view());
}

std::string DataDirectory::path_of(const std::string& fileName) const {
    constexpr char separator = static_cast<char>(std::filesystem::path::preferred_separator);
    return name == "." ? fileName : name + separator + fileName;
}

std::string message(Status status, std::string_view fileName) {
    const Message parts = message_of(status);
    return utf8_of(parts.before) + std::string(parts.namesFile ? fileName : "") + utf8_of(parts.behind) +
           (parts.number > 0 ? std::to_string(parts.number) : "") + utf8_of(parts.end);
}

std::string status_text(Status status, std::string_view fileName) {
    return "status " + std::to_string(status) + ": " + message(status, fileName);
}

bool open_directory(const std::string& name, DataDirectory& directory) {
    if (name.empty()) {
        complain("the name of the data directory is empty; the current one is .");
        return false;
    }
    const std::optional<std::string> bytes = directory_bytes(name);
    if (!bytes) {
        complain(name + ": data directories may have the characters of Windows-1252 only");
        return false;
    }
    if (bytes->size() >= nameSize) {
        complain("the name of the data directory has more than " + std::to_string(nameSize - 1) +
                 " characters");
        return false;
    }
    directory.name = name;
    directory.bytes = *bytes;
    directory.status = read_definition_file(*bytes, directory.definition);
    if (directory.status != status::ok) {
        complain(status_text(directory.status, directory.path_of(std::string(definitionFileName))));
    }
    return directory.status == status::ok;
}

const DefinitionEntry* find_entry(const DataDirectory& directory, int code) {
    const DefinitionEntry* const entry = directory.definition.find(code);
    if (entry == nullptr) {
        complain(std::to_string(code) + ": " + status_text(status::codeNotListed, ""));
    }
    return entry;
}

System read_system(const DataDirectory& directory, const DefinitionEntry& entry, Column column) {
    System system;
    system.status = read_parameter_file(column, directory.bytes, entry.name.view(),
                                        directory.definition.scrambled, entry.code, system);
    return system;
}

bool open_system(const DataDirectory& directory, int code, Column column, System& system) {
    const DefinitionEntry* const entry = find_entry(directory, code);
    if (entry == nullptr) {
        return false;
    }
    system = read_system(directory, *entry, column);
    if (system.status != status::ok) {
        complain(status_text(system.status, directory.path_of(directory.file_name(*entry))));
    }
    return system.status == status::ok;
}

bool is_source_only(const System& source, const System& target) {
    return source.status == status::ok && target.status == status::firstTwoColumns + status::secondColumn;
}

Road::Road(std::string heightDirectory, const System& sourceSystem, const System& targetSystem)
    : directory(std::move(heightDirectory)),
      from(sourceSystem),
      to(targetSystem),
      source(Side::source, from, true),
      target(Side::target, to, true) {}

Transformed Road::transform(const Point& point, Heights heights) const {
    Transformed transformed;
    const HeightFlags flags = {.sourceIsNormal = heights.normalGiven,
                               .targetWantsNormal = heights.normalWanted,
                               .alsoUnasked = false};
    transformed.status =
        transform_point(point, source, target, flags, StreamedHeightModel(directory), transformed.result);
    return transformed;
}

}  // namespace cli
