#include "datafiles/data_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>

#include "base/fixed_text.h"

namespace lagestatus {
namespace {

// The longest directory, a separator, a base name of 99 and its extension fit with room to spare.
constexpr std::size_t pathSize = 512;
using Path = FixedText<pathSize>;

constexpr int noFile = -1;
constexpr char backslash = '\\';

// O_NONBLOCK: a FIFO of the file's name must not block the caller before it is found to be one.
constexpr int openFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

struct Opened {
    int handle;
    bool missing;  // there is no file of that name: the next way of looking for it may be tried
};

int open_retrying(int directoryHandle, const char* path, int flags) noexcept {
    int handle = noFile;
    do {
        handle = ::openat(directoryHandle, path, flags);
    } while (handle == noFile && errno == EINTR);
    return handle;
}

Opened open_regular(int directoryHandle, const char* path) noexcept {
    const int handle = open_retrying(directoryHandle, path, openFlags);
    if (handle == noFile) {
        return {noFile, errno == ENOENT || errno == ENOTDIR};
    }
    struct stat about = {};
    if (::fstat(handle, &about) != 0 || !S_ISREG(about.st_mode)) {
        ::close(handle);
        return {noFile, false};
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
// letters; empty if there is none. Reads the entries by the system call, since the C library's directory streams
// take heap memory.
FileName next_without_case(int directoryHandle, std::string_view wanted, std::string_view after) noexcept {
    FileName next;
    alignas(dirent64) std::array<char, 4096> entries;
    if (::lseek(directoryHandle, 0, SEEK_SET) != 0) {
        return next;
    }
    for (;;) {
        const ssize_t bytes = ::getdents64(directoryHandle, entries.data(), entries.size());
        if (bytes <= 0) {
            return next;
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
    const int directoryHandle =
        open_retrying(AT_FDCWD, directory.c_str(), O_RDONLY | O_CLOEXEC | O_DIRECTORY);
    if (directoryHandle == noFile) {
        return {noFile, true};
    }
    int handle = noFile;
    FileName name;
    do {
        name = next_without_case(directoryHandle, wanted, name.view());
        if (!name.view().empty()) {
            handle = open_regular(directoryHandle, name.c_str()).handle;
        }
    } while (handle == noFile && !name.view().empty());
    ::close(directoryHandle);
    return {handle, handle == noFile};
}

int open_path(std::string_view joined) noexcept {
    Path path;
    for (const char character : joined) {
        path.append(character == backslash ? '/' : character);
    }
    Opened opened = open_regular(AT_FDCWD, path.c_str());
    if (opened.missing) {
        opened = open_without_case(path.view());
    }
    // An archive unpacked without knowing the separator leaves files whose names hold the backslash itself.
    if (opened.missing && joined.find(backslash) != std::string_view::npos) {
        opened = open_regular(AT_FDCWD, Path(joined).c_str());
    }
    return opened.handle;
}

// Takes the carriage return out of every pair with a line feed, in place; returns what is left of the length.
std::size_t fold_line_ends(char* bytes, std::size_t length) noexcept {
    char* const end = bytes + length;
    // Most files have no carriage return at all: this search is all they cost.
    auto* write = static_cast<char*>(std::memchr(bytes, '\r', length));
    if (write == nullptr) {
        return length;
    }
    for (const char* read = write; read != end; ++read) {
        const bool pair = *read == '\r' && read + 1 != end && read[1] == '\n';
        if (!pair) {
            *write++ = *read;
        }
    }
    return static_cast<std::size_t>(write - bytes);
}

}  // namespace

DataFile::~DataFile() {
    if (handle != notOpen) {
        ::close(handle);
    }
}

bool DataFile::open(std::string_view directory, std::string_view name) noexcept {
    if (directory.size() > maxDirectory) {
        return false;
    }
    Path joined;
    if (directory != ".") {
        joined.append(directory);
        joined.append(backslash);
    }
    if (name.size() > Path::maxLength - joined.view().size()) {
        return false;
    }
    joined.append(name);
    handle = open_path(joined.view());
    return handle != notOpen;
}

bool DataFile::refill() noexcept {
    position = 0;
    end = 0;
    while (end == 0 && handle != notOpen && !readFailed) {
        char* const start = buffer.data();
        std::size_t filled = 0;
        if (carriageReturnHeld) {
            start[filled++] = '\r';
        }
        ssize_t bytes = 0;
        do {
            bytes = ::read(handle, start + filled, blockSize);
        } while (bytes < 0 && errno == EINTR);
        if (bytes < 0) {
            readFailed = true;
            return false;
        }
        if (bytes == 0) {
            end = filled;  // a carriage return at the very end is an ordinary byte
            carriageReturnHeld = false;
            return end > 0;
        }
        filled += static_cast<std::size_t>(bytes);
        carriageReturnHeld = start[filled - 1] == '\r';
        if (carriageReturnHeld) {
            --filled;
        }
        end = fold_line_ends(start, filled);
    }
    return end > 0;
}

}  // namespace lagestatus
