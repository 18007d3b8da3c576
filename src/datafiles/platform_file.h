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

// What the 8-bit characters of a directory's name are on Windows: those of code page 1252 (ISO 8859-1 but for the codes
// 0x80 to 0x9F), as the names of files always are, or UTF-8. Elsewhere the bytes are the name.
enum class PathText : std::uint8_t { western, utf8 };
inline constexpr unsigned westernCodePage = 1252;

// Opens a file for reading by blocks, by the path that directory and name give one behind the other; the parts of a
// path are joined by backslashes. The handle is not inherited by child processes; what was found is a regular file;
// nothing blocks or asks the user.
//
// Windows: whatever code page the host has set plays no part. POSIX: the backslash is a separator; when there is no
// such file, the last component is looked up without regard to the case of ASCII letters (of several regular files the
// first in byte order), and last the path is tried with its backslashes as ordinary characters.
//
// Given:    directory  empty, or with the backslash behind it
//           name       of the file; both together less than pathSize characters
//           encoding   of the directory
// Returned: a handle to be closed, or noFile
[[nodiscard]] FileHandle open_data_file(std::string_view directory, std::string_view name,
                                        PathText encoding) noexcept;

// Reads the next bytes of a file. Returned: how many; 0 at its end; negative after a read error.
[[nodiscard]] std::ptrdiff_t read_data_file(FileHandle file, char* bytes, std::size_t count) noexcept;

void close_data_file(FileHandle file) noexcept;

}  // namespace lagestatus
