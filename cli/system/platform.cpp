#include "system/platform.h"

#ifdef _WIN32

#include <windows.h>
// Behind windows.h, which they need.
#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <shellapi.h>
#include <sys/stat.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstdint>
#include <string_view>

namespace cli {
namespace {

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

std::string path_text(const std::filesystem::path& path) {
    return from_wide(path.native());
}

namespace {

// Shared, so that the file can be removed while it is open.
int open_shared(const std::string& path, DWORD access, DWORD disposition) {
    void* const handle =
        CreateFileW(to_wide(path).c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        const DWORD reason = GetLastError();
        errno = reason == ERROR_FILE_EXISTS                                        ? EEXIST
                : reason == ERROR_FILE_NOT_FOUND || reason == ERROR_PATH_NOT_FOUND ? ENOENT
                                                                                   : EACCES;
        return -1;
    }
    return _open_osfhandle(std::bit_cast<std::intptr_t>(handle), _O_BINARY);
}

// What one call of the runtime takes.
unsigned limited(std::size_t size) {
    return static_cast<unsigned>(std::min<std::size_t>(size, std::size_t{1} << 30));
}

std::wstring removedPath;  // set before the handler is, and never while it is

BOOL WINAPI remove_file(DWORD /*reason*/) {
    DeleteFileW(removedPath.c_str());
    return FALSE;  // and end as ever
}

}  // namespace

int open_to_read(const std::string& path) {
    return open_shared(path, GENERIC_READ, OPEN_EXISTING);
}

int open_to_write(const std::string& path, bool mustBeNew) {
    return open_shared(path, GENERIC_WRITE, mustBeNew ? CREATE_NEW : OPEN_EXISTING);
}

std::ptrdiff_t read_file_bytes(int descriptor, char* bytes, std::size_t size) {
    return _read(descriptor, bytes, limited(size));
}

std::ptrdiff_t write_file_bytes(int descriptor, const char* bytes, std::size_t size) {
    return _write(descriptor, bytes, limited(size));
}

int close_file(int descriptor) {
    return _close(descriptor);
}

std::optional<std::uint64_t> size_of_file(int descriptor) {
    struct _stat64 status = {};
    if (_fstat64(descriptor, &status) != 0 || (status.st_mode & _S_IFMT) != _S_IFREG) {
        return std::nullopt;
    }
    return static_cast<std::uint64_t>(status.st_size);
}

void keep_line_ends(int descriptor) {
    (void)_setmode(descriptor, _O_BINARY);
}

bool is_terminal(int descriptor) {
    return _isatty(descriptor) != 0;
}

int process_number() {
    return _getpid();
}

void remove_when_interrupted(const std::string& path) {
    SetConsoleCtrlHandler(remove_file, FALSE);
    removedPath = to_wide(path);
    if (!path.empty()) {
        SetConsoleCtrlHandler(remove_file, TRUE);
    }
}

StandardStreams::StandardStreams() : before(GetConsoleOutputCP()) {
    (void)_setmode(standardInput, _O_BINARY);
    SetConsoleOutputCP(CP_UTF8);
}

StandardStreams::~StandardStreams() {
    SetConsoleOutputCP(before);
}

}  // namespace cli

#else

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>

#include "base/uninterrupted.h"

namespace cli {

using lagestatus::uninterrupted;

namespace {

constexpr std::array<int, 7> endingSignals = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGXCPU, SIGXFSZ};

// A text at a place that a signal's handler may look at.
std::array<char, 4096> removedPath = {};

extern "C" void remove_file(int signal) {
    (void)unlink(removedPath.data());
    std::signal(signal, SIG_DFL);
    (void)raise(signal);
}

}  // namespace

std::vector<std::string> arguments(int argc, char** argv) {
    return {argv + 1, argv + argc};
}

std::filesystem::path file_path(const std::string& utf8) {
    return utf8;
}

std::string path_text(const std::filesystem::path& path) {
    return path.native();
}

int open_to_read(const std::string& path) {
    return uninterrupted([&] { return open(path.c_str(), O_RDONLY | O_CLOEXEC); });
}

int open_to_write(const std::string& path, bool mustBeNew) {
    constexpr mode_t allByTheMask = 0666;
    const int creating = mustBeNew ? O_CREAT | O_EXCL : 0;
    return uninterrupted([&] { return open(path.c_str(), O_WRONLY | O_CLOEXEC | creating, allByTheMask); });
}

std::ptrdiff_t read_file_bytes(int descriptor, char* bytes, std::size_t size) {
    return uninterrupted([&] { return read(descriptor, bytes, size); });
}

std::ptrdiff_t write_file_bytes(int descriptor, const char* bytes, std::size_t size) {
    return uninterrupted([&] { return write(descriptor, bytes, size); });
}

int close_file(int descriptor) {
    return close(descriptor);
}

std::optional<std::uint64_t> size_of_file(int descriptor) {
    struct stat status = {};
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    return static_cast<std::uint64_t>(status.st_size);
}

void keep_line_ends(int /*descriptor*/) {}

bool is_terminal(int descriptor) {
    return isatty(descriptor) != 0;
}

int process_number() {
    return getpid();
}

void remove_when_interrupted(const std::string& path) {
    const auto handleBy = [](void (*handler)(int)) {
        for (const int signal : endingSignals) {
            if (std::signal(signal, handler) == SIG_IGN) {
                std::signal(signal, SIG_IGN);  // as under nohup
            }
        }
    };
    handleBy(SIG_DFL);
    removedPath = {};
    if (path.empty() || path.size() >= removedPath.size()) {
        return;
    }
    std::copy(path.begin(), path.end(), removedPath.begin());
    handleBy(remove_file);
}

StandardStreams::StandardStreams() {
    // A closed one would be the next file that is opened. Each gets the side that fails.
    for (const int stream : {standardInput, standardOutput, standardError}) {
        if (fcntl(stream, F_GETFD) < 0) {
            (void)open("/dev/null", stream == standardInput ? O_WRONLY : O_RDONLY);
        }
    }
}
StandardStreams::~StandardStreams() = default;

}  // namespace cli

#endif
