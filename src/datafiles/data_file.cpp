#include "datafiles/data_file.h"

#include <cstring>

#include "base/fixed_text.h"

namespace lagestatus {
namespace {

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
    if (handle != noFile) {
        close_data_file(handle);
    }
}

bool DataFile::open(std::string_view directory, std::string_view name, PathText encoding) noexcept {
    if (directory.size() > maxDirectory) {
        return false;
    }
    FixedText<maxDirectory + 2> parent;
    if (directory != ".") {
        parent.append(directory);
        parent.append('\\');
    }
    if (name.size() >= pathSize - parent.view().size()) {
        return false;
    }
    handle = open_data_file(parent.view(), name, encoding);
    return handle != noFile;
}

std::ptrdiff_t DataFile::read_stored(char* bytes, std::size_t count) noexcept {
    if (handle != noFile) {
        return read_data_file(handle, bytes, count);
    }
    if (held.empty() && failsBehind) {
        return -1;
    }
    count = held.copy(bytes, count);
    held.remove_prefix(count);
    return static_cast<std::ptrdiff_t>(count);
}

bool DataFile::refill() noexcept {
    position = 0;
    end = 0;
    while (end == 0 && !readFailed) {
        char* const start = buffer.data();
        std::size_t filled = 0;
        if (carriageReturnHeld) {
            start[filled++] = '\r';
        }
        const std::ptrdiff_t bytes = read_stored(start + filled, blockSize);
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
