#include "platform.h"

#ifdef _WIN32

#include <windows.h>
// Behind windows.h, which they need.
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <cstdio>
#include <string_view>

namespace cli {
namespace {

constexpr UINT westernCodePage = 1252;

std::string from_wide(std::wstring_view text) {
    const int size = static_cast<int>(text.size());
    std::string bytes(text.size() * 3, '\0');
    bytes.resize(static_cast<std::size_t>(WideCharToMultiByte(
        CP_UTF8, 0, text.data(), size, bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr)));
    return bytes;
}

std::wstring to_wide(std::string_view utf8) {
    std::wstring text(utf8.size(), L'\0');
    text.resize(static_cast<std::size_t>(MultiByteToWideChar(
        CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), text.data(), static_cast<int>(text.size()))));
    return text;
}

}  // namespace

std::vector<std::string> arguments(int argc, char** argv) {
    int count = 0;
    wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
    if (wide == nullptr) {
        return {argv + 1, argv + argc};
    }
    std::vector<std::string> texts;
    for (int number = 1; number < count; ++number) {
        texts.push_back(from_wide(wide[number]));
    }
    LocalFree(static_cast<HLOCAL>(wide));
    return texts;
}

std::filesystem::path file_path(const std::string& utf8) {
    return to_wide(utf8);
}

std::optional<std::string> directory_bytes(const std::string& utf8) {
    const std::wstring wide = to_wide(utf8);
    std::string bytes(wide.size(), '\0');
    BOOL unknown = FALSE;
    const int size = static_cast<int>(wide.size());
    WideCharToMultiByte(westernCodePage, WC_NO_BEST_FIT_CHARS, wide.data(), size, bytes.data(), size, nullptr,
                        &unknown);
    return unknown != FALSE ? std::nullopt : std::optional(bytes);
}

StandardStreams::StandardStreams() : before(GetConsoleOutputCP()) {
    (void)_setmode(_fileno(stdin), _O_BINARY);
    SetConsoleOutputCP(CP_UTF8);
}

StandardStreams::~StandardStreams() {
    SetConsoleOutputCP(before);
}

}  // namespace cli

#else

namespace cli {

std::vector<std::string> arguments(int argc, char** argv) {
    return {argv + 1, argv + argc};
}

std::filesystem::path file_path(const std::string& utf8) {
    return utf8;
}

std::optional<std::string> directory_bytes(const std::string& utf8) {
    return utf8;
}

StandardStreams::StandardStreams() = default;
StandardStreams::~StandardStreams() = default;

}  // namespace cli

#endif
