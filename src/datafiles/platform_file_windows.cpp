#include <windows.h>

#include <array>
#include <cstddef>
#include <string_view>

#include "datafiles/platform_file.h"

namespace lagestatus {
namespace {

constexpr std::wstring_view separators = L"\\/";

HANDLE native(FileHandle file) noexcept {
    return reinterpret_cast<HANDLE>(file);  // NOLINT(*-reinterpret-cast, performance-no-int-to-ptr)
}

// Of a path, in its code page.
struct Part {
    std::string_view text;
    unsigned codePage;
    DWORD flags;
};

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

FileHandle open_data_file(std::string_view directory, std::string_view name, PathText encoding) noexcept {
    std::array<wchar_t, pathSize> buffer = {};
    std::wstring_view path(buffer.data(), 0);
    for (const auto& [text, codePage, flags] :
         {Part{directory, encoding == PathText::utf8 ? CP_UTF8 : westernCodePage,
               encoding == PathText::utf8 ? DWORD{MB_ERR_INVALID_CHARS} : DWORD{0}},
          Part{name, westernCodePage, 0}}) {
        const int units =
            text.empty() ? 0
                         : MultiByteToWideChar(codePage, flags, text.data(), static_cast<int>(text.size()),
                                               buffer.data() + path.size(),
                                               static_cast<int>(buffer.size() - path.size() - 1));
        if (units == 0 && !text.empty()) {
            return noFile;
        }
        path = {buffer.data(), path.size() + static_cast<std::size_t>(units)};
    }
    // "\\DEFAULT" from the directory "\" means the root of the drive; a server's share has a third separator.
    const bool doubled = path.size() > 1 && path.find_first_not_of(separators) == 2;
    if (doubled && path.find_first_of(separators, 2) == std::wstring_view::npos) {
        path.remove_prefix(1);
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
