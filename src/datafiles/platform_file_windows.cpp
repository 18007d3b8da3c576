#include <windows.h>

#include <array>
#include <cstddef>
#include <string_view>

#include "datafiles/platform_file.h"

namespace lagestatus {
namespace {

constexpr std::string_view separators = "\\/";

HANDLE native(FileHandle file) noexcept {
    return reinterpret_cast<HANDLE>(file);  // NOLINT(*-reinterpret-cast, performance-no-int-to-ptr)
}

// No dialog box of the system for a drive without a medium, as long as it lives.
class NoErrorBoxes {
  public:
    NoErrorBoxes() noexcept { SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &before); }
    ~NoErrorBoxes() { SetThreadErrorMode(before, nullptr); }
    NoErrorBoxes(const NoErrorBoxes&) = delete;
    NoErrorBoxes& operator=(const NoErrorBoxes&) = delete;

  private:
    DWORD before = 0;
};

}  // namespace

FileHandle open_data_file(std::string_view joined) noexcept {
    // "\\DEFAULT" from the directory "\" means the root of the drive; a server's share has a third separator.
    const bool doubled = joined.size() > 1 && joined.find_first_not_of(separators) == 2;
    if (doubled && joined.find_first_of(separators, 2) == std::string_view::npos) {
        joined.remove_prefix(1);
    }
    std::array<wchar_t, pathSize> path = {};
    if (joined.empty() || joined.size() >= path.size() ||
        MultiByteToWideChar(westernCodePage, 0, joined.data(), static_cast<int>(joined.size()), path.data(),
                            static_cast<int>(path.size() - 1)) == 0) {
        return noFile;
    }
    // Should the path name a pipe, its server may not act as the host. For a file the same bit has another meaning.
    const DWORD flags =
        FILE_FLAG_SEQUENTIAL_SCAN | (doubled ? SECURITY_SQOS_PRESENT | SECURITY_ANONYMOUS : 0);
    const NoErrorBoxes quiet;
    // Others may go on writing, renaming and deleting.
    const auto file =
        CreateFileW(path.data(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, flags, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return noFile;
    }
    if (GetFileType(file) != FILE_TYPE_DISK) {  // the console, NUL, a serial port
        CloseHandle(file);
        return noFile;
    }
    return reinterpret_cast<FileHandle>(file);  // NOLINT(*-reinterpret-cast)
}

std::ptrdiff_t read_data_file(FileHandle file, char* bytes, std::size_t count) noexcept {
    const NoErrorBoxes quiet;
    DWORD got = 0;
    return ReadFile(native(file), bytes, static_cast<DWORD>(count), &got, nullptr) != 0
               ? static_cast<std::ptrdiff_t>(got)
               : -1;
}

void close_data_file(FileHandle file) noexcept {
    CloseHandle(native(file));
}

}  // namespace lagestatus
