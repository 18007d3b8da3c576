// A data directory in memory: each of its files is read once, when it is first needed.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>

#include "base/status.h"
#include "base/system_description.h"
#include "bulk/held_height_model.h"
#include "datafiles/definition_file.h"
#include "datafiles/parameter_file.h"

namespace lagestatus {

// Why a file gave nothing, in texts of UTF-8.
struct Failure {
    Status status = status::ok;
    std::string file = {};  // its path, as messages name it
    std::int64_t line = 0;  // 0: no line
    std::string text = {};  // of that line
    std::string more = {};  // behind the message of the status
};

// A system, as far as its file gave it. With a failure the description is not to be used for points.
struct ReadSystem {
    SystemDescription description;
    Failure failure;
    std::string name;  // texts of the description in UTF-8
    std::string kind;
    std::string ellipsoid;
    std::string file;  // path of the parameter file, as it is shown
};

// Any number of threads may ask one. std::bad_alloc leaves it as it was.
class Directory {
  public:
    // Reads DEFAULT. Given: a path in UTF-8, at most DataFile::maxDirectory bytes; "." for the current directory.
    explicit Directory(std::string path);

    // Of DEFAULT.
    [[nodiscard]] const Failure& failure() const noexcept { return ofDefinition; }
    [[nodiscard]] const DefinitionRecord& definition() const noexcept { return record; }
    [[nodiscard]] std::span<const DefinitionEntry> entries() const noexcept {
        return std::span(record.entries).first(record.complete);
    }

    // A system of entries(), read for one of its roles.
    [[nodiscard]] const ReadSystem& system(const DefinitionEntry& entry, Column column) const;

    [[nodiscard]] std::shared_ptr<const HeldHeightModel> height_model() const;

    void read_all() const;

    // The directory's path as it was given, and those of its files, as messages name them.
    [[nodiscard]] const std::string& path() const noexcept { return name; }
    [[nodiscard]] std::string path_of(std::string_view fileName) const;

    // The name of an entry's parameter file, in UTF-8.
    [[nodiscard]] std::string file_name(const DefinitionEntry& entry) const;

  private:
    std::string name;
    DefinitionRecord record;
    Failure ofDefinition;
    mutable std::mutex mutex;  // of what follows
    mutable std::array<std::array<std::unique_ptr<const ReadSystem>, 2>, maxEntries> systems;
    mutable std::shared_ptr<const HeldHeightModel> heightModel;
};

}  // namespace lagestatus
