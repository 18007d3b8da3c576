// What of a data file differs by platform: how a joined path is opened, read and closed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace lagestatus {

// The system's handle of an open file.
using FileHandle = std::intptr_t;
inline constexpr FileHandle noFile = -1;

// The longest directory, a separator, a base name of 99 and its extension fit with room to spare.
inline constexpr std::size_t pathSize = 512;

// The code page that paths are in on Windows.
inline constexpr unsigned westernCodePage = 1252;

// Opens a path whose parts are joined by backslashes, for reading by blocks. The handle is not inherited by child
// processes; what was found is a regular file; nothing blocks or asks the user.
//
// Windows: the 8-bit characters are those of code page 1252 (ISO 8859-1 but for the codes 0x80 to 0x9F), whatever code
// page the host has set. POSIX: the backslash is a separator; when there is no such file, the last component is looked
// up without regard to the case of ASCII letters (of several regular files the first in byte order), and last the path
// is tried with its backslashes as ordinary characters.
//
// Given:    joined    less than pathSize characters
// Returned: a handle to be closed, or noFile
[[nodiscard]] FileHandle open_data_file(std::string_view joined) noexcept;

// Reads the next bytes of a file. Returned: how many; 0 at its end; negative after a read error.
[[nodiscard]] std::ptrdiff_t read_data_file(FileHandle file, char* bytes, std::size_t count) noexcept;

void close_data_file(FileHandle file) noexcept;

}  // namespace lagestatus
