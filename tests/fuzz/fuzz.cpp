#include "fuzz.h"

#include <unistd.h>

#include <cstdlib>

#include "datafiles/field_scanner.h"

namespace fuzzing {
namespace {

int lowest_free_handle() {
    const int handle = dup(STDERR_FILENO);
    close(handle);
    return handle;
}

}  // namespace

std::vector<char16_t> Input::units(std::size_t count) {
    std::vector<char16_t> text(count);
    for (char16_t& unit : text) {
        unit = take<char16_t>();
    }
    return text;
}

const DataDirectory& memory() {
    static const DataDirectory directory;
    return directory;
}

NoHandleLeft::NoHandleLeft() : lowestFree(lowest_free_handle()) {}
NoHandleLeft::~NoHandleLeft() {
    EXPECT_EQ(lowest_free_handle(), lowestFree);
}

bool between(int status, int first, int last) {
    return status >= first && status <= last;
}

bool is_status_of_parameter_file(int status) {
    return between(status, 8, 48) || between(status, 70, 89) || status == 100;
}

bool is_status_of_pipeline(int status) {
    const int ofHeights = status - 1000;
    return status == 12 || status == 14 || status == 90 || status == 92 || between(status, 201, 208) ||
           between(status, 301, 305) || between(status, 401, 405) || between(status, 501, 503) ||
           between(ofHeights, 27, 48) || ofHeights == 90 || between(ofHeights, 100, 110) ||
           between(ofHeights, 127, 128);
}

void expect_status(int status, bool allowed) {
    EXPECT_TRUE(status == 0 || allowed) << status;
    Buffer<char16_t> message(129 + 4, u'x');
    transfm_dll(status, u"NAME", message.get());
    EXPECT_EQ(narrow(message.values()).empty(), status == 0) << status;
}

std::optional<std::string> rewritten(std::string_view content, std::uint16_t linesAhead) {
    constexpr std::uint16_t blockSize = 16384;
    if (linesAhead >= blockSize) {
        return std::nullopt;
    }
    const bool mayHavePairs = content.find('\r') == std::string_view::npos;
    std::string text(linesAhead, '\n');
    for (const char character : content) {
        text += character == '\n' && mayHavePairs ? "\r\n" : std::string_view(&character, 1);
    }
    return text;
}

Stored stored_file(Input& input) {
    const auto choice = input.take<std::uint8_t>();
    const std::string_view plain = input.rest();
    const int key = choice - 127;
    std::string text = std::to_string(key) + '\n';
    int position = 0;
    for (const char character : plain) {
        const bool ends = character == '\n';
        const char stored = static_cast<char>(character + key - 1 - position % std::max(key, 1));
        if (key < 1 || (!ends && (stored == '\n' || stored == '\r')) || character == '\r' ||
            position == 998) {
            return {std::string(plain), false};
        }
        text += ends ? '\n' : stored;
        position = ends ? 0 : position + (position > 0 || !lagestatus::is_blank(character) ? 1 : 0);
    }
    return {text, key > 0};
}

void check(const Reached& done, double heightGiven, bool heights) {
    const auto& [status, result] = done;
    expect_status(status, is_status_of_pipeline(status));
    // With 1110, 1100, 1027 and 1028 there may be no point.
    const bool mayBeNone = status == 1110 || status == 1100 || status == 1027 || status == 1028;
    const bool none = same_bits({result.data(), 3}, std::array{0.0, 0.0, 0.0});
    const bool finite = std::ranges::all_of(result, [](double value) { return std::isfinite(value); });
    EXPECT_TRUE(between(status, 1, 999) ? none : finite || (mayBeNone && none)) << status;
    EXPECT_TRUE(heights || (status < 1000 && same_bits({&heightGiven, 1}, {&result[3], 1}))) << status;
}

Reached reached(const Road& road) {
    Reached both[2];
    for (Reached& done : both) {
        Road once = road;
        done.status = once.run();
        done.result = once.point;
    }
    EXPECT_TRUE(both[0] == both[1]);
    check(both[0], road.point[2],
          road.sourceFlag == -1 || road.targetFlag == -1 || road.targetEllipsoid.starts_with("Bessel"));
    return both[0];
}

}  // namespace fuzzing

// Called by libFuzzer and by the replay before the first input.
extern "C" int LLVMFuzzerInitialize(int* /*argumentCount*/, char*** /*arguments*/) {
    testing::GTEST_FLAG(throw_on_failure) = true;  // and nothing catches
    if (access("/dev/shm", W_OK | X_OK) == 0) {
        setenv("TMPDIR", "/dev/shm", 1);
    }
    return 0;
}
