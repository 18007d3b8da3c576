#include "bulk/directory.h"

#include <filesystem>
#include <utility>

#include "bulk/texts.h"
#include "datafiles/line_reader.h"

namespace lagestatus {
namespace {

constexpr char separator = static_cast<char>(std::filesystem::path::preferred_separator);

// Where a reader stood when it failed; a file that was not opened, or has ended, is no matter of a line.
Failure failure_at(Status status, std::string file, const LineReader& lines) {
    Failure failure = {status, std::move(file)};
    const bool hasLine = status != status::ok && status != status::definitionFileNotOpened &&
                         status != status::parameterFileNotOpened && status != status::fileEnds;
    if (hasLine) {
        failure.line = lines.number();
        failure.text = utf8_of(lines.text().substr(0, lines.text().find('\n')));
    }
    return failure;
}

}  // namespace

Directory::Directory(std::string path) : name(std::move(path)) {
    LineReader lines;
    const Status read = lines.open(name, definitionFileName, PathText::utf8)
                            ? read_definition(lines, record)
                            : status::definitionFileNotOpened;
    ofDefinition = failure_at(read, path_of(definitionFileName), lines);
}

const ReadSystem& Directory::system(const DefinitionEntry& entry, Column column) const {
    const auto number = static_cast<std::size_t>(&entry - record.entries.data());
    const std::scoped_lock lock(mutex);
    auto& slot = systems.at(number).at(column == Column::intoBessel ? 0 : 1);
    if (slot == nullptr) {
        auto read = std::make_unique<ReadSystem>();
        LineReader lines;
        Status status = open_parameter_file(lines, name, entry.name.view(), record.scrambled, PathText::utf8);
        if (status == status::ok) {
            status = read_parameters(lines, column, entry.code, read->description);
        }
        read->name = utf8_of(read->description.systemName.view());
        read->kind = utf8_of(read->description.projectionKind.view());
        read->ellipsoid = utf8_of(read->description.ellipsoidName.view());
        read->file = path_of(file_name(entry));
        read->failure = failure_at(status, read->file, lines);
        slot = std::move(read);
    }
    return *slot;
}

std::shared_ptr<const HeldHeightModel> Directory::height_model() const {
    const std::scoped_lock lock(mutex);
    if (heightModel == nullptr) {
        heightModel = std::make_shared<const HeldHeightModel>(name);
    }
    return heightModel;
}

void Directory::read_all() const {
    for (const DefinitionEntry& entry : entries()) {
        (void)system(entry, Column::intoBessel);
        (void)system(entry, Column::outOfBessel);
    }
    (void)height_model();
}

std::string Directory::path_of(std::string_view fileName) const {
    return name == "." ? std::string(fileName) : name + separator + std::string(fileName);
}

std::string Directory::file_name(const DefinitionEntry& entry) const {
    return utf8_of(parameter_file_name(entry.name.view(), record.scrambled).view());
}

}  // namespace lagestatus
