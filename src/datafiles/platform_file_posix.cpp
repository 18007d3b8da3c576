#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <string_view>

#include "base/fixed_text.h"
#include "base/uninterrupted.h"
#include "datafiles/platform_file.h"

namespace lagestatus {
namespace {

using Path = FixedText<pathSize>;

constexpr int noHandle = -1;
constexpr char backslash = '\\';

// O_NONBLOCK: a FIFO of the file's name must not block the caller before it is found to be one.
constexpr int openFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

struct Opened {
    int handle;
    bool missing;  // there is no file of that name: the next way of looking for it may be tried
};

int open_path(int directoryHandle, const char* path, int flags) noexcept {
    return uninterrupted([=] { return ::openat(directoryHandle, path, flags); });
}

Opened open_regular(int directoryHandle, const char* path) noexcept {
    const int handle = open_path(directoryHandle, path, openFlags);
    if (handle == noHandle) {
        return {noHandle, errno == ENOENT || errno == ENOTDIR};
    }
    struct stat about = {};
    if (::fstat(handle, &about) != 0 || !S_ISREG(about.st_mode)) {
        ::close(handle);
        return {noHandle, false};
    }
    return {handle, false};
}

char lower_ascii(char character) noexcept {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

bool equal_without_case(std::string_view left, std::string_view right) noexcept {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return lower_ascii(a) == lower_ascii(b); });
}

using FileName = FixedText<NAME_MAX + 1>;

// The next name in byte order, behind after, of those in the directory that equal wanted but for the case of
// letters; empty if there is none, or the directory cannot be read. Reads the entries by the system call, since the C
// library's directory streams take heap memory.
FileName next_without_case(int directoryHandle, std::string_view wanted, std::string_view after) noexcept {
    FileName next;
    alignas(dirent64) std::array<char, 4096> entries;
    if (::lseek(directoryHandle, 0, SEEK_SET) != 0) {
        return next;
    }
    for (;;) {
        const ssize_t bytes =
            uninterrupted([&] { return ::getdents64(directoryHandle, entries.data(), entries.size()); });
        if (bytes <= 0) {
            return bytes == 0 ? next : FileName();  // what was not listed might have come first
        }
        for (std::size_t at = 0; at < static_cast<std::size_t>(bytes);) {
            const auto* entry =
                reinterpret_cast<const dirent64*>(entries.data() + at);  // NOLINT(*-reinterpret-cast)
            const std::string_view name(static_cast<const char*>(entry->d_name));
            if (equal_without_case(name, wanted) && name > after &&
                (next.view().empty() || name < next.view())) {
                next.assign(name);
            }
            at += entry->d_reclen;
        }
    }
}

// Opens the first regular file of the directory that bears the path's last component in whatever case.
Opened open_without_case(std::string_view path) noexcept {
    const std::size_t slash = path.rfind('/');
    const bool hasDirectory = slash != std::string_view::npos;
    const Path directory(hasDirectory ? path.substr(0, slash + 1) : std::string_view("."));
    const std::string_view wanted = hasDirectory ? path.substr(slash + 1) : path;
    const int directoryHandle = open_path(AT_FDCWD, directory.c_str(), O_RDONLY | O_CLOEXEC | O_DIRECTORY);
    if (directoryHandle == noHandle) {
        return {noHandle, true};
    }
    int handle = noHandle;
    FileName name;
    do {
        name = next_without_case(directoryHandle, wanted, name.view());
        if (!name.view().empty()) {
            handle = open_regular(directoryHandle, name.c_str()).handle;
        }
    } while (handle == noHandle && !name.view().empty());
    ::close(directoryHandle);
    return {handle, handle == noHandle};
}

}  // namespace

FileHandle open_data_file(std::string_view directory, std::string_view name, PathText /*encoding*/) noexcept {
    Path joined(directory);
    joined.append(name);
    Path path;
    for (const char character : joined.view()) {
        path.append(character == backslash ? '/' : character);
    }
    Opened opened = open_regular(AT_FDCWD, path.c_str());
    if (opened.missing) {
        opened = open_without_case(path.view());
    }
    // An archive unpacked without knowing the separator leaves files whose names hold the backslash itself.
    if (opened.missing && joined.view().find(backslash) != std::string_view::npos) {
        opened = open_regular(AT_FDCWD, joined.c_str());
    }
    return opened.handle;
}

std::ptrdiff_t read_data_file(FileHandle file, char* bytes, std::size_t count) noexcept {
    return uninterrupted([=] { return ::read(static_cast<int>(file), bytes, count); });
}

void close_data_file(FileHandle file) noexcept {
    ::close(static_cast<int>(file));
}

}  // namespace lagestatus
