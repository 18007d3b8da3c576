#include "system/files.h"

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "system/platform.h"

namespace cli {
namespace {

template <typename Error = FileError>
[[noreturn]] void fail(const std::string& name, const std::string& what) {
    const int reason = errno;
    throw Error(name + ": " + what + ": " + std::generic_category().message(reason));
}

}  // namespace

InputFile::InputFile() noexcept : fileName("standard input"), descriptor(standardInput) {}

InputFile::InputFile(const std::string& path) : fileName(path), descriptor(open_to_read(path)) {
    std::error_code none;
    if (descriptor >= 0 && std::filesystem::is_directory(file_path(path), none)) {
        close_file(std::exchange(descriptor, -1));
        errno = EISDIR;
    }
    if (descriptor < 0) {
        fail(path, "cannot be opened");
    }
}

InputFile::InputFile(InputFile&& other) noexcept
    : fileName(std::move(other.fileName)), descriptor(std::exchange(other.descriptor, -1)) {}

InputFile::~InputFile() {
    if (descriptor > standardInput) {
        close_file(descriptor);
    }
}

std::optional<std::uint64_t> InputFile::size() const {
    return size_of_file(descriptor);
}

std::size_t InputFile::read(char* bytes, std::size_t size) {
    const std::ptrdiff_t count = read_file_bytes(descriptor, bytes, size);
    if (count < 0) {
        fail<ReadError>(fileName, "cannot be read");
    }
    return static_cast<std::size_t>(count);
}

OutputFile::OutputFile() noexcept : fileName("standard output"), descriptor(standardOutput) {
    keep_line_ends(standardOutput);
}

OutputFile::OutputFile(const std::string& path) : fileName(path), finalPath(path), descriptor(-1) {
    namespace fs = std::filesystem;
    std::error_code none;
    const fs::file_status existing = fs::status(file_path(path), none);
    if (fs::exists(existing) && !fs::is_regular_file(existing)) {
        descriptor = fs::is_directory(existing) ? -1 : open_to_write(path, false);
        errno = fs::is_directory(existing) ? EISDIR : errno;
    } else {
        // The file itself, not the link that leads to it.
        constexpr int mostLinks = 16;
        fs::path place = file_path(path);
        for (int links = 0; links < mostLinks && fs::is_symlink(fs::symlink_status(place, none)); ++links) {
            place = place.parent_path() / fs::read_symlink(place, none);
        }
        finalPath = path_text(place);
        constexpr int attempts = 100;
        errno = EEXIST;
        for (int attempt = 0; descriptor < 0 && errno == EEXIST && attempt < attempts; ++attempt) {
            temporaryPath = finalPath + ".part" + std::to_string(process_number() + attempt);
            descriptor = open_to_write(temporaryPath, true);
        }
        if (descriptor >= 0) {
            remove_when_interrupted(temporaryPath);
            if (fs::exists(existing)) {
                fs::permissions(file_path(temporaryPath), existing.permissions(), none);
            }
        }
    }
    if (descriptor < 0) {
        temporaryPath.clear();
        fail(path, "cannot be written");
    }
}

OutputFile::~OutputFile() {
    if (descriptor > standardOutput) {
        close_file(descriptor);
    }
    if (!temporaryPath.empty()) {
        std::error_code none;
        std::filesystem::remove(file_path(temporaryPath), none);
        remove_when_interrupted("");
    }
}

void OutputFile::write(std::string_view bytes) {
    while (!bytes.empty()) {
        const std::ptrdiff_t count = write_file_bytes(descriptor, bytes.data(), bytes.size());
        if (count <= 0) {
            fail(fileName, "cannot be written");
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

void OutputFile::complete() {
    if (descriptor > standardOutput && close_file(std::exchange(descriptor, -1)) != 0) {
        fail(fileName, "cannot be written");
    }
    if (temporaryPath.empty()) {
        return;
    }
    std::error_code error;
    std::filesystem::rename(file_path(temporaryPath), file_path(finalPath), error);
    if (error) {
        throw FileError(fileName + ": cannot be written: " + error.message());
    }
    temporaryPath.clear();
    remove_when_interrupted("");
}

std::string read_file(const std::string& path, std::size_t limit) {
    InputFile file(path);
    std::string bytes;
    for (;;) {
        constexpr std::size_t block = std::size_t{1} << 16;
        const std::size_t size = bytes.size();
        bytes.resize(size + block);
        const std::size_t count = file.read(bytes.data() + size, block);
        bytes.resize(size + count);
        if (count == 0) {
            return bytes;
        }
        if (bytes.size() > limit) {
            throw FileError(path + ": is larger than " + std::to_string(limit) + " bytes");
        }
    }
}

void write_file(const std::string& path, std::string_view bytes, Existing existing) {
    std::error_code none;
    if (existing == Existing::refuse && std::filesystem::exists(file_path(path), none)) {
        throw FileError(path + ": exists already");
    }
    OutputFile file(path);
    file.write(bytes);
    file.complete();
}

}  // namespace cli
